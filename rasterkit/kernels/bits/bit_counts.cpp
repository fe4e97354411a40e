#include <array>
#include <bit>
#include <cstring>

#include <rasterkit/kernels/bits/bit_counts.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE <rasterkit/kernels/bits/bit_counts.cpp>
// clang-format off: this file is compiled once for each target by the next line.
#include <hwy/foreach_target.h>
#include <hwy/highway.h>
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

constexpr int kWordBits = 64;
/// Bits of a word that begins at any bit of a byte.
constexpr int kWindowBits = kWordBits - 7;

HWY_INLINE uint64_t LoadWord(const uint8_t* bytes) {
  uint64_t word;
  std::memcpy(&word, bytes, sizeof word);
  return __builtin_bswap64(word);
}

/// Bits from `first` on, from the highest of the result.
HWY_INLINE uint64_t WindowAt(const uint8_t* row, int64_t first) {
  return LoadWord(row + first / 8) << (first % 8);
}

/// The highest `count` bits, which are less than 64.
HWY_INLINE uint64_t HighBits(int count) {
  return ~(~uint64_t{0} >> count);
}

HWY_INLINE uint32_t OnesOf(uint64_t word) {
  return static_cast<uint32_t>(__builtin_popcountll(word));
}

/// Ones of `count` bits from `first` on.
uint32_t OnesOfRange(const uint8_t* row, int64_t first, int64_t count) {
  uint32_t ones = 0;
  constexpr int64_t kBytewise = kWindowBits / 8 * 8;
  for (; count > kBytewise; count -= kBytewise, first += kBytewise) {
    ones += OnesOf(WindowAt(row, first) & HighBits(kBytewise));
  }
  return ones + OnesOf(WindowAt(row, first) & HighBits(static_cast<int>(count)));
}

template <class Sum>
HWY_INLINE void Taps(const uint8_t* row, const HalftoneAxis& axis, uint32_t weight, Sum* sums) {
  const uint32_t inner = axis.innerWeight;
  for (const HalftoneTap& tap : axis.taps) {
    uint32_t sum = 0;
    if (tap.count <= kWindowBits) {
      const uint64_t window = WindowAt(row, tap.first);
      const auto first = static_cast<uint32_t>(window >> (kWordBits - 1));
      const uint64_t others = window & HighBits(tap.count) & (~uint64_t{0} >> 1);
      const auto last = static_cast<uint32_t>(others >> (kWordBits - tap.count)) & 1u;
      sum = first * tap.firstWeight + OnesOf(others) * inner + last * (tap.lastWeight - inner);
    } else {
      const uint32_t first = OnesOfRange(row, tap.first, 1);
      const uint32_t last = OnesOfRange(row, int64_t{tap.first} + tap.count - 1, 1);
      sum = first * tap.firstWeight + last * tap.lastWeight +
            OnesOfRange(row, int64_t{tap.first} + 1, int64_t{tap.count} - 2) * inner;
    }
    *sums++ += Sum{weight} * sum;
  }
}

void TapsInWords(const uint8_t* row, const HalftoneAxis& axis, uint32_t weight, uint32_t* sums) {
  Taps(row, axis, weight, sums);
}

void TapsInLongs(const uint8_t* row, const HalftoneAxis& axis, uint32_t weight, uint64_t* sums) {
  Taps(row, axis, weight, sums);
}

#if HWY_TARGET == HWY_SCALAR

void GroupCounts(const uint8_t* row, size_t rowBytes, int bits, uint8_t* counts) {
  for (size_t i = 0; i < rowBytes; ++i) {
    for (int at = 8 - bits; at >= 0; at -= bits) {
      const uint32_t group = static_cast<uint32_t>(row[i]) >> at & ((1u << bits) - 1);
      *counts = static_cast<uint8_t>(*counts + OnesOf(group));
      ++counts;
    }
  }
}

void Weighted(const uint8_t* counts, size_t count, uint32_t weight, uint32_t* sums) {
  for (size_t i = 0; i < count; ++i) sums[i] += weight * counts[i];
}

void Scaled(uint32_t* sums, size_t count, uint32_t base, uint32_t factor) {
  for (size_t i = 0; i < count; ++i) sums[i] = base + factor * sums[i];
}

#else

using Bytes = hn::Full128<uint8_t>;
using Vector = hn::Vec<Bytes>;
constexpr size_t kVectorBytes = 16;

HWY_INLINE Vector OnesOfNibbles(Vector nibbles) {
  alignas(16) constexpr uint8_t kOnes[16] = {0, 1, 1, 2, 1, 2, 2, 3, 1, 2, 2, 3, 2, 3, 3, 4};
  return hn::TableLookupBytes(hn::Load(Bytes(), kOnes), nibbles);
}

HWY_INLINE void AddTo(uint8_t* counts, Vector added) {
  hn::StoreU(hn::Add(hn::LoadU(Bytes(), counts), added), Bytes(), counts);
}

template <int kBits>
HWY_INLINE void AddGroups(Vector bytes, uint8_t* counts) {
  const Bytes d;
  const auto low = hn::Set(d, uint8_t{15});
  const auto highNibbles = hn::ShiftRight<4>(bytes), lowNibbles = hn::And(bytes, low);
  if constexpr (kBits == 8) {
    AddTo(counts, hn::Add(OnesOfNibbles(highNibbles), OnesOfNibbles(lowNibbles)));
  } else if constexpr (kBits == 4) {
    const auto high = OnesOfNibbles(highNibbles), rest = OnesOfNibbles(lowNibbles);
    AddTo(counts, hn::InterleaveLower(d, high, rest));
    AddTo(counts + kVectorBytes, hn::InterleaveUpper(d, high, rest));
  } else {
    const hn::Repartition<uint16_t, Bytes> d16;
    const auto pair = hn::Set(d, uint8_t{3});
    const auto a = OnesOfNibbles(hn::ShiftRight<2>(highNibbles));
    const auto b = OnesOfNibbles(hn::And(highNibbles, pair));
    const auto e = OnesOfNibbles(hn::ShiftRight<2>(lowNibbles));
    const auto f = OnesOfNibbles(hn::And(lowNibbles, pair));
    const auto firstLow = hn::BitCast(d16, hn::InterleaveLower(d, a, b));
    const auto firstHigh = hn::BitCast(d16, hn::InterleaveUpper(d, a, b));
    const auto secondLow = hn::BitCast(d16, hn::InterleaveLower(d, e, f));
    const auto secondHigh = hn::BitCast(d16, hn::InterleaveUpper(d, e, f));
    AddTo(counts, hn::BitCast(d, hn::InterleaveLower(d16, firstLow, secondLow)));
    AddTo(counts + kVectorBytes, hn::BitCast(d, hn::InterleaveUpper(d16, firstLow, secondLow)));
    AddTo(counts + 2 * kVectorBytes,
          hn::BitCast(d, hn::InterleaveLower(d16, firstHigh, secondHigh)));
    AddTo(counts + 3 * kVectorBytes,
          hn::BitCast(d, hn::InterleaveUpper(d16, firstHigh, secondHigh)));
  }
}

template <int kBits>
void AddAllGroups(const uint8_t* row, size_t rowBytes, uint8_t* counts) {
  size_t i = 0;
  for (; i + kVectorBytes <= rowBytes; i += kVectorBytes) {
    AddGroups<kBits>(hn::LoadU(Bytes(), row + i), counts + i * 8 / kBits);
  }
  if (i == rowBytes) return;
  uint8_t rest[kVectorBytes] = {};
  std::memcpy(rest, row + i, rowBytes - i);
  AddGroups<kBits>(hn::LoadU(Bytes(), rest), counts + i * 8 / kBits);
}

void GroupCounts(const uint8_t* row, size_t rowBytes, int bits, uint8_t* counts) {
  if (bits == 2) return AddAllGroups<2>(row, rowBytes, counts);
  if (bits == 4) return AddAllGroups<4>(row, rowBytes, counts);
  AddAllGroups<8>(row, rowBytes, counts);
}

using Words = hn::ScalableTag<uint32_t>;

void Weighted(const uint8_t* counts, size_t count, uint32_t weight, uint32_t* sums) {
  const Words d32;
  const hn::Rebind<uint8_t, Words> d8;
  const auto factor = hn::Set(d32, weight);
  size_t i = 0;
  for (; i + hn::Lanes(d32) <= count; i += hn::Lanes(d32)) {
    const auto numbers = hn::PromoteTo(d32, hn::LoadU(d8, counts + i));
    hn::StoreU(hn::Add(hn::LoadU(d32, sums + i), hn::Mul(numbers, factor)), d32, sums + i);
  }
  for (; i < count; ++i) sums[i] += weight * counts[i];
}

void Scaled(uint32_t* sums, size_t count, uint32_t base, uint32_t factor) {
  const Words d32;
  const auto bases = hn::Set(d32, base), factors = hn::Set(d32, factor);
  size_t i = 0;
  for (; i + hn::Lanes(d32) <= count; i += hn::Lanes(d32)) {
    hn::StoreU(hn::Add(bases, hn::Mul(hn::LoadU(d32, sums + i), factors)), d32, sums + i);
  }
  for (; i < count; ++i) sums[i] = base + factor * sums[i];
}

#endif

}  // namespace
}  // namespace rasterkit::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rasterkit::kernels {
namespace {

HWY_EXPORT(GroupCounts);
HWY_EXPORT(Weighted);
HWY_EXPORT(Scaled);
HWY_EXPORT(TapsInWords);
HWY_EXPORT(TapsInLongs);

}  // namespace

bool CountsGroupsOf(int bits) {
  return bits == 2 || bits == 4 || bits == 8;
}

void AddGroupCounts(const uint8_t* row, size_t rowBytes, int bits, uint8_t* counts) {
  HWY_DYNAMIC_DISPATCH(GroupCounts)(row, rowBytes, bits, counts);
}

void AddWeighted(const uint8_t* counts, size_t count, uint32_t weight, uint32_t* sums) {
  HWY_DYNAMIC_DISPATCH(Weighted)(counts, count, weight, sums);
}

void ScaleSums(uint32_t* sums, size_t count, uint32_t base, uint32_t factor) {
  HWY_DYNAMIC_DISPATCH(Scaled)(sums, count, base, factor);
}

void AddTaps(const uint8_t* row, const HalftoneAxis& axis, uint32_t weight, uint32_t* sums) {
  HWY_DYNAMIC_DISPATCH(TapsInWords)(row, axis, weight, sums);
}

void AddTaps(const uint8_t* row, const HalftoneAxis& axis, uint32_t weight, uint64_t* sums) {
  HWY_DYNAMIC_DISPATCH(TapsInLongs)(row, axis, weight, sums);
}

}  // namespace rasterkit::kernels
#endif  // HWY_ONCE
