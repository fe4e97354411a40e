#include <algorithm>
#include <cstring>

#include <rasterkit/kernels/bits/bit_columns.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE <rasterkit/kernels/bits/bit_columns.cpp>
// clang-format off: this file is compiled once for each target by the next line.
#include <hwy/foreach_target.h>
#include <hwy/highway.h>
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

/// Rows are added in blocks of so many bytes.
constexpr size_t kBlockBytes = 16;
constexpr size_t kBlockColumns = 8 * kBlockBytes;

HWY_INLINE uint8_t MeanOfOnes(uint32_t sum, uint32_t total, BitGrays grays) {
  const int64_t step = int64_t{grays.of1} - grays.of0;
  return static_cast<uint8_t>((int64_t{grays.of0} * total + total / 2 + step * sum) / total);
}

#if HWY_TARGET == HWY_SCALAR

void SumColumnsOfBits(const BitRun* runs, size_t count, size_t rowBytes, int16_t* sums) {
  std::fill_n(sums, 8 * rowBytes, int16_t{0});
  for (const BitRun* run = runs; run < runs + count; ++run) {
    for (int y = 0; y < run->count; ++y) {
      const uint8_t* row = run->rows[y];
      for (size_t x = 0; x < 8 * rowBytes; ++x) {
        if ((row[x / 8] >> (7 - x % 8) & 1) != 0) {
          sums[x] = static_cast<int16_t>(sums[x] + run->weight);
        }
      }
    }
  }
}

void SumTaps(const ColumnTaps::Table& taps, const int16_t* columns, uint32_t* sums) {
  for (size_t i = 0; i < taps.count; ++i) {
    const int16_t *weights = taps.weights + i * taps.length, *values = columns + taps.firsts[i];
    int32_t sum = 0;
    for (size_t x = 0; x < taps.length; ++x) sum += int32_t{weights[x]} * values[x];
    sums[i] = static_cast<uint32_t>(sum);
  }
}

void Means(const uint32_t* sums, size_t count, uint32_t total, BitGrays grays, uint8_t* target) {
  for (size_t i = 0; i < count; ++i) target[i] = MeanOfOnes(sums[i], total, grays);
}

#else

using Bytes = hn::CappedTag<uint8_t, 64>;
using ByteVector = hn::Vec<Bytes>;
using BlockTag = hn::Full128<uint8_t>;
using Block = hn::Vec<BlockTag>;

/// The ones of a byte's bits that a sum of three rows has in both digits.
struct Digits {
  Block low, high;
};

HWY_INLINE Digits SumOf(Block a, Block b, Block c) {
  const auto half = hn::Xor(a, b);
  return {hn::Xor(half, c), hn::Or(hn::And(a, b), hn::And(half, c))};
}

/// Reads rows of a block: of the row itself, or of a copy where the row ends.
class BlockReader {
 public:
  BlockReader(size_t at, size_t bytes) : at_(at), bytes_(bytes) {}
  HWY_INLINE Block operator()(const uint8_t* row) const {
    if (HWY_LIKELY(bytes_ == kBlockBytes)) return hn::LoadU(BlockTag(), row + at_);
    HWY_ALIGN uint8_t rest[kBlockBytes] = {};
    std::memcpy(rest, row + at_, bytes_);
    return hn::Load(BlockTag(), rest);
  }

 private:
  size_t at_, bytes_;
};

/// Spreads a block of bits to bytes, 255 for each one.
class Spreader {
 public:
  Spreader() {
    HWY_ALIGN uint8_t places[64], bits[64];
    for (size_t i = 0; i < 64; ++i) {
      places[i] = static_cast<uint8_t>(i / 8);
      bits[i] = static_cast<uint8_t>(128 >> i % 8);
    }
    places_ = hn::LoadU(Bytes(), places);
    bits_ = hn::LoadU(Bytes(), bits);
  }
  /// The columns of part `part` of the block that `block` points to.
  HWY_INLINE ByteVector operator()(const uint8_t* block, size_t part) const {
    const Bytes d;
    const auto step = hn::Set(d, static_cast<uint8_t>(part * hn::Lanes(d) / 8));
    const auto spread = hn::TableLookupBytes(hn::LoadDup128(d, block), hn::Add(places_, step));
    return hn::VecFromMask(d, hn::TestBit(spread, bits_));
  }

 private:
  ByteVector places_, bits_;
};

/// Adds `digits` of rows, of which digit i counts 2^i, to counts of the columns.
template <int kDigits>
HWY_INLINE void AddDigits(const Spreader& spread, const Block (&digits)[3], uint8_t* counts) {
  const Bytes d;
  HWY_ALIGN uint8_t blocks[3][kBlockBytes];
  for (int i = 0; i < kDigits; ++i) hn::Store(digits[i], BlockTag(), blocks[i]);
  for (size_t part = 0; part * hn::Lanes(d) < kBlockColumns; ++part) {
    // Ones are -1: numbers are kept below 0, and subtracted.
    auto sum = spread(blocks[kDigits - 1], part);
    for (int i = kDigits - 2; i >= 0; --i) {
      sum = hn::Add(hn::Add(sum, sum), spread(blocks[i], part));
    }
    uint8_t* to = counts + part * hn::Lanes(d);
    hn::Store(hn::Sub(hn::Load(d, to), sum), d, to);
  }
}

/// Counts of the ones of each column of a block.
HWY_INLINE void CountRun(const Spreader& spread, const BlockReader& read, const BitRun& run,
                         uint8_t* counts) {
  const uint8_t* const* row = run.rows;
  int left = run.count;
  for (; left >= 7; left -= 7, row += 7) {
    const Digits a = SumOf(read(row[0]), read(row[1]), read(row[2]));
    const Digits b = SumOf(read(row[3]), read(row[4]), a.low);
    const Digits c = SumOf(read(row[5]), read(row[6]), b.low);
    const Digits twos = SumOf(a.high, b.high, c.high);
    AddDigits<3>(spread, {c.low, twos.low, twos.high}, counts);
  }
  if (left >= 3) {
    // Missing rows are empty ones.
    const auto none = hn::Zero(BlockTag());
    const Digits a = SumOf(read(row[0]), read(row[1]), read(row[2]));
    if (left == 3) return AddDigits<2>(spread, {a.low, a.high, none}, counts);
    const Digits b = SumOf(read(row[3]), left > 4 ? read(row[4]) : none, a.low);
    const auto sixth = left > 5 ? read(row[5]) : none;
    const auto low = hn::Xor(b.low, sixth);
    const Digits twos = SumOf(a.high, b.high, hn::And(b.low, sixth));
    return AddDigits<3>(spread, {low, twos.low, twos.high}, counts);
  }
  if (left == 2) {
    const auto a = read(row[0]), b = read(row[1]);
    return AddDigits<2>(spread, {hn::Xor(a, b), hn::And(a, b), a}, counts);
  }
  if (left == 1) {
    const auto a = read(row[0]);
    AddDigits<1>(spread, {a, a, a}, counts);
  }
}

void SumColumnsOfBits(const BitRun* runs, size_t count, size_t rowBytes, int16_t* sums) {
  const Bytes d8;
  const hn::Repartition<int16_t, Bytes> d16;
  const hn::Half<Bytes> half;
  const Spreader spread;
  const size_t lanes = hn::Lanes(d16);
  for (size_t at = 0; at < rowBytes; at += kBlockBytes) {
    const BlockReader read(at, std::min(kBlockBytes, rowBytes - at));
    int16_t* to = sums + 8 * at;
    for (size_t i = 0; i < count; ++i) {
      HWY_ALIGN uint8_t counts[kBlockColumns];
      for (size_t x = 0; x < kBlockColumns; x += hn::Lanes(d8)) {
        hn::Store(hn::Zero(d8), d8, counts + x);
      }
      CountRun(spread, read, runs[i], counts);
      const auto weight = hn::Set(d16, static_cast<int16_t>(runs[i].weight));
      for (size_t x = 0; x < kBlockColumns; x += lanes) {
        const auto words = hn::PromoteTo(d16, hn::Load(half, counts + x));
        const auto weighted = hn::Mul(words, weight);
        hn::StoreU(i == 0 ? weighted : hn::Add(hn::LoadU(d16, to + x), weighted), d16, to + x);
      }
    }
  }
}

using TapTag = hn::Full128<int32_t>;
using TapVector = hn::Vec<TapTag>;

/// Products of a tap, to be added up.
template <size_t kLength>
HWY_INLINE TapVector ProductsOf(const int16_t* weights, const int16_t* columns, size_t length) {
  const hn::Full128<int16_t> d;
  auto first = hn::Zero(TapTag()), second = hn::Zero(TapTag());
  const size_t end = kLength > 0 ? kLength : length;
  for (size_t x = 0; x < end; x += 8) {
    first = hn::ReorderWidenMulAccumulate(TapTag(), hn::LoadU(d, weights + x),
                                          hn::LoadU(d, columns + x), first, second);
  }
  return hn::Add(first, second);
}

/// The sums of four vectors, beside one another.
HWY_INLINE TapVector SumsOf(TapVector a, TapVector b, TapVector c, TapVector e) {
  const TapTag d;
  const hn::Repartition<int64_t, TapTag> pairs;
  const auto ab = hn::Add(hn::InterleaveLower(d, a, b), hn::InterleaveUpper(d, a, b));
  const auto ce = hn::Add(hn::InterleaveLower(d, c, e), hn::InterleaveUpper(d, c, e));
  const auto wideAb = hn::BitCast(pairs, ab), wideCe = hn::BitCast(pairs, ce);
  return hn::Add(hn::BitCast(d, hn::InterleaveLower(pairs, wideAb, wideCe)),
                 hn::BitCast(d, hn::InterleaveUpper(pairs, wideAb, wideCe)));
}

template <size_t kLength>
void SumTapsOf(const ColumnTaps::Table& taps, const int16_t* columns, uint32_t* sums) {
  const size_t length = kLength > 0 ? kLength : taps.length;
  for (size_t i = 0; i < taps.count; i += 4) {
    TapVector products[4];
    for (size_t k = 0; k < 4; ++k) {
      products[k] = ProductsOf<kLength>(taps.weights + (i + k) * length,
                                        columns + taps.firsts[i + k], length);
    }
    const auto four = SumsOf(products[0], products[1], products[2], products[3]);
    hn::StoreU(hn::BitCast(hn::Full128<uint32_t>(), four), hn::Full128<uint32_t>(), sums + i);
  }
}

void SumTaps(const ColumnTaps::Table& taps, const int16_t* columns, uint32_t* sums) {
  if (taps.length == 8) return SumTapsOf<8>(taps, columns, sums);
  if (taps.length == 16) return SumTapsOf<16>(taps, columns, sums);
  SumTapsOf<0>(taps, columns, sums);
}

void Means(const uint32_t* sums, size_t count, uint32_t total, BitGrays grays, uint8_t* target) {
  size_t i = 0;
#if HWY_HAVE_FLOAT64
  const hn::CappedTag<double, 8> d;
  const hn::Rebind<int32_t, decltype(d)> d32;
  const hn::Rebind<uint8_t, decltype(d)> d8;
  const double step = static_cast<double>(grays.of1) - grays.of0;
  // Half a unit more lies so far from both whole quotients that rounding cannot reach them.
  const auto base = hn::Set(d, static_cast<double>(uint64_t{grays.of0} * total + total / 2) + 0.5);
  const auto steps = hn::Set(d, step), part = hn::Set(d, 1.0 / total);
  for (; i + hn::Lanes(d) <= count; i += hn::Lanes(d)) {
    const auto numbers = hn::LoadU(d32, reinterpret_cast<const int32_t*>(sums + i));
    const auto dividend = hn::MulAdd(hn::PromoteTo(d, numbers), steps, base);
    const auto quotient = hn::DemoteTo(d32, hn::Mul(dividend, part));
    hn::StoreU(hn::DemoteTo(d8, quotient), d8, target + i);
  }
#endif
  for (; i < count; ++i) target[i] = MeanOfOnes(sums[i], total, grays);
}

#endif

}  // namespace
}  // namespace rasterkit::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rasterkit::kernels {
namespace {

HWY_EXPORT(SumColumnsOfBits);
HWY_EXPORT(SumTaps);
HWY_EXPORT(Means);

constexpr size_t kWeightsOfVector = 8;
/// Longer taps are counted word by word.
constexpr int kLongestTap = 64;
constexpr uint32_t kLargestWeight = 32767;

}  // namespace

void SumBitColumns(const BitRun* runs, size_t count, size_t rowBytes, int16_t* sums) {
  HWY_DYNAMIC_DISPATCH(SumColumnsOfBits)(runs, count, rowBytes, sums);
}

bool ColumnTaps::Fits(const HalftoneAxis& axis) {
  if (axis.innerWeight > kLargestWeight) return false;
  return std::all_of(axis.taps.begin(), axis.taps.end(), [](const HalftoneTap& tap) {
    return tap.count <= kLongestTap && tap.firstWeight <= kLargestWeight &&
           tap.lastWeight <= kLargestWeight;
  });
}

ColumnTaps::ColumnTaps(const HalftoneAxis& axis) : count_(axis.taps.size()) {
  size_t longest = 1;
  for (const HalftoneTap& tap : axis.taps) {
    longest = std::max(longest, static_cast<size_t>(tap.count));
  }
  length_ = (longest + kWeightsOfVector - 1) / kWeightsOfVector * kWeightsOfVector;
  const size_t padded = axis.taps.size() + kTapPadding;
  weights_.resize(padded * length_);
  firsts_.resize(padded);
  int32_t* firsts = firsts_.data();
  int16_t* weights = weights_.data();
  for (const HalftoneTap& tap : axis.taps) {
    *firsts++ = tap.first;
    std::fill_n(weights, tap.count, static_cast<int16_t>(axis.innerWeight));
    weights[0] = static_cast<int16_t>(tap.firstWeight);
    if (tap.count > 1) weights[tap.count - 1] = static_cast<int16_t>(tap.lastWeight);
    weights += length_;
  }
}

void ColumnTaps::Sum(const int16_t* columns, uint32_t* sums) const {
  HWY_DYNAMIC_DISPATCH(SumTaps)({firsts_.data(), weights_.data(), count_, length_}, columns, sums);
}

void MeansOfOnes(const uint32_t* sums, size_t count, uint32_t total, BitGrays grays,
                 uint8_t* target) {
  HWY_DYNAMIC_DISPATCH(Means)(sums, count, total, grays, target);
}

}  // namespace rasterkit::kernels
#endif  // HWY_ONCE
