#include <algorithm>
#include <bit>

#include <rasterkit/kernels/halftone/halftone_rows.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE <rasterkit/kernels/halftone/halftone_rows.cpp>
// clang-format off: this file is compiled once for each target by the next line.
#include <hwy/foreach_target.h>
#include <hwy/highway.h>
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

/// Columns `x` to `end - 1`, one by one.
template <class Sum>
void SumRowsOneByOne(const WeightedRows& rows, size_t x, size_t end, Sum* sums) {
  for (; x < end; ++x) {
    uint32_t sum = rows.adds ? sums[x] : 0;
    for (int i = 0; i < rows.count; ++i) {
      sum += rows.weights[i] * rows.data[static_cast<size_t>(i) * rows.stride + x];
    }
    sums[x] = static_cast<Sum>(sum);
  }
}

/// Taps and division of sums that take 64 bits, one by one.
void MeansOneByOne(const uint32_t* columns, const HalftoneAxis& axis, uint64_t total,
                   uint8_t* target) {
  for (const HalftoneTap& tap : axis.taps) {
    for (size_t c = 0; c < 3; ++c) {
      const uint32_t* column = columns + 3 * static_cast<size_t>(tap.first) + c;
      uint64_t sum = uint64_t{tap.firstWeight} * *column, between = 0;
      for (int i = 1; i + 1 < tap.count; ++i) between += column[3 * static_cast<size_t>(i)];
      sum += axis.innerWeight * between;
      if (tap.count > 1) {
        sum += uint64_t{tap.lastWeight} * column[3 * static_cast<size_t>(tap.count - 1)];
      }
      *target++ = static_cast<uint8_t>((sum + total / 2) / total);
    }
  }
}

#if HWY_TARGET == HWY_SCALAR

template <bool kWeighted, class Sum>
size_t SumRowVectors(const WeightedRows&, size_t, Sum*) {
  return 0;
}

template <class Sum>
void SumTaps(const Sum* columns, const HalftoneAxis& axis, Sum* sums) {
  for (const HalftoneTap& tap : axis.taps) {
    for (size_t c = 0; c < 3; ++c) {
      const Sum* column = columns + 3 * static_cast<size_t>(tap.first) + c;
      uint32_t sum = tap.firstWeight * *column;
      for (int i = 1; i < tap.count; ++i) {
        sum += (i + 1 < tap.count ? axis.innerWeight : tap.lastWeight) *
               column[3 * static_cast<size_t>(i)];
      }
      *sums++ = static_cast<Sum>(sum);
    }
  }
}

size_t DivideWords(const uint16_t*, size_t, const WordDivisor&, uint8_t*) {
  return 0;
}
size_t DivideLongs(const uint32_t*, size_t, uint32_t, uint8_t*) {
  return 0;
}

#else

/// Two vectors of columns at a time: as many as keep the adders busy.
template <bool kWeighted, class Sum>
size_t SumRowVectors(const WeightedRows& rows, size_t bytes, Sum* sums) {
  const hn::ScalableTag<Sum> d;
  const hn::Rebind<uint8_t, decltype(d)> dBytes;
  const size_t lanes = hn::Lanes(d);
  size_t x = 0;
  for (; x + 2 * lanes <= bytes; x += 2 * lanes) {
    auto low = rows.adds ? hn::LoadU(d, sums + x) : hn::Zero(d);
    auto high = rows.adds ? hn::LoadU(d, sums + x + lanes) : hn::Zero(d);
    const uint8_t* row = rows.data + x;
    for (int i = 0; i < rows.count; ++i, row += rows.stride) {
      auto a = hn::PromoteTo(d, hn::LoadU(dBytes, row));
      auto b = hn::PromoteTo(d, hn::LoadU(dBytes, row + lanes));
      if constexpr (kWeighted) {
        const auto weight = hn::Set(d, static_cast<Sum>(rows.weights[i]));
        a = hn::Mul(a, weight);
        b = hn::Mul(b, weight);
      }
      low = hn::Add(low, a);
      high = hn::Add(high, b);
    }
    hn::StoreU(low, d, sums + x);
    hn::StoreU(high, d, sums + x + lanes);
  }
  return x;
}

/// Four lanes: a pixel, and one that the next pixel overwrites.
template <class Sum>
using PixelTag = hn::CappedTag<Sum, 4>;

/// Taps of one count whose weights are all 1: the picture shrinks to a whole part.
template <int kCount, class Sum>
void SumPlainTaps(const Sum* columns, const HalftoneAxis& axis, Sum* sums) {
  const PixelTag<Sum> d;
  for (const HalftoneTap& tap : axis.taps) {
    const Sum* pixel = columns + 3 * static_cast<size_t>(tap.first);
    auto sum = hn::LoadU(d, pixel);
    for (int i = 1; i < kCount; ++i) sum = hn::Add(sum, hn::LoadU(d, pixel + 3 * i));
    hn::StoreU(sum, d, sums);
    sums += 3;
  }
}

template <class Sum>
void SumWeightedTaps(const Sum* columns, const HalftoneAxis& axis, Sum* sums) {
  const PixelTag<Sum> d;
  const auto inner = hn::Set(d, static_cast<Sum>(axis.innerWeight));
  for (const HalftoneTap& tap : axis.taps) {
    const Sum* pixel = columns + 3 * static_cast<size_t>(tap.first);
    const Sum* last = pixel + 3 * static_cast<size_t>(tap.count - 1);
    auto sum = hn::Mul(hn::LoadU(d, pixel), hn::Set(d, static_cast<Sum>(tap.firstWeight)));
    if (tap.count > 2) {
      auto between = hn::LoadU(d, pixel + 3);
      for (pixel += 6; pixel < last; pixel += 3) between = hn::Add(between, hn::LoadU(d, pixel));
      sum = hn::Add(sum, hn::Mul(between, inner));
    }
    if (tap.count > 1) {
      sum = hn::Add(sum, hn::Mul(hn::LoadU(d, last), hn::Set(d, static_cast<Sum>(tap.lastWeight))));
    }
    hn::StoreU(sum, d, sums);
    sums += 3;
  }
}

template <class Sum>
void SumTaps(const Sum* columns, const HalftoneAxis& axis, Sum* sums) {
  // Weights of 1 alone are what a whole number of columns for each target pixel leaves.
  switch (axis.innerWeight == 1 ? axis.total : 0) {
    case 1:
      return SumPlainTaps<1>(columns, axis, sums);
    case 2:
      return SumPlainTaps<2>(columns, axis, sums);
    case 3:
      return SumPlainTaps<3>(columns, axis, sums);
    case 4:
      return SumPlainTaps<4>(columns, axis, sums);
    case 5:
      return SumPlainTaps<5>(columns, axis, sums);
    case 6:
      return SumPlainTaps<6>(columns, axis, sums);
    case 8:
      return SumPlainTaps<8>(columns, axis, sums);
    default:
      return SumWeightedTaps(columns, axis, sums);
  }
}

size_t DivideWords(const uint16_t* sums, size_t count, const WordDivisor& divisor,
                   uint8_t* target) {
  const hn::ScalableTag<uint16_t> d;
  const hn::RebindToSigned<decltype(d)> dSigned;
  const hn::Rebind<uint8_t, decltype(d)> dBytes;
  const auto half = hn::Set(d, divisor.half), factor = hn::Set(d, divisor.factor);
  size_t i = 0;
  for (; i + hn::Lanes(d) <= count; i += hn::Lanes(d)) {
    const auto sum = hn::Add(hn::LoadU(d, sums + i), half);
    const auto mean = hn::ShiftRightSame(hn::MulHigh(sum, factor), divisor.shift);
    hn::StoreU(hn::DemoteTo(dBytes, hn::BitCast(dSigned, mean)), dBytes, target + i);
  }
  return i;
}

/// A quotient in floating point that is right or short by one, and a remainder that tells: halving
/// the sum makes it fit a signed number, and the factor is a little too small.
size_t DivideLongs(const uint32_t* sums, size_t count, uint32_t total, uint8_t* target) {
  const hn::ScalableTag<int32_t> d;
  const hn::RebindToUnsigned<decltype(d)> dUnsigned;
  const hn::RebindToFloat<decltype(d)> dFloat;
  const hn::Rebind<uint8_t, decltype(d)> dBytes;
  const auto half = hn::Set(dUnsigned, total / 2);
  const auto divisor = hn::Set(d, static_cast<int32_t>(total));
  const auto most = hn::Set(d, static_cast<int32_t>(total) - 1);
  const auto factor = hn::Set(dFloat, 2.0f / static_cast<float>(total) * (1 - 1.0f / (1 << 20)));
  size_t i = 0;
  for (; i + hn::Lanes(d) <= count; i += hn::Lanes(d)) {
    const auto sum = hn::Add(hn::LoadU(dUnsigned, sums + i), half);
    const auto halved = hn::BitCast(d, hn::ShiftRight<1>(sum));
    const auto mean = hn::ConvertTo(d, hn::Mul(hn::ConvertTo(dFloat, halved), factor));
    const auto rest = hn::Sub(hn::BitCast(d, sum), hn::Mul(mean, divisor));
    const auto short1 = hn::VecFromMask(d, hn::Gt(rest, most));  // -1 where it is short
    hn::StoreU(hn::DemoteTo(dBytes, hn::Sub(mean, short1)), dBytes, target + i);
  }
  return i;
}

/// The weighted sum of a tap's columns, as whole numbers that a double holds.
template <class D>
HWY_INLINE hn::Vec<D> SumTap(D d, const int32_t* column, const HalftoneTap& tap,
                             hn::Vec<D> innerWeight) {
  const hn::Rebind<int32_t, D> dLongs;
  const auto load = [&](const int32_t* place) {
    return hn::PromoteTo(d, hn::LoadU(dLongs, place));
  };
  const int32_t* last = column + 3 * static_cast<size_t>(tap.count - 1);
  auto sum = hn::Mul(load(column), hn::Set(d, static_cast<double>(tap.firstWeight)));
  if (tap.count > 2) {
    auto between = load(column + 3);
    for (column += 6; column < last; column += 3) between = hn::Add(between, load(column));
    sum = hn::Add(sum, hn::Mul(between, innerWeight));
  }
  if (tap.count == 1) return sum;
  return hn::Add(sum, hn::Mul(load(last), hn::Set(d, static_cast<double>(tap.lastWeight))));
}

/// Doubles hold the sums, so that only the quotient is rounded: it is right or short by one, and
/// its remainder tells.
template <class D>
HWY_INLINE hn::Vec<D> MeansOfSums(D d, hn::Vec<D> sums, hn::Vec<D> divisor, hn::Vec<D> factor) {
  const auto mean = hn::Floor(hn::Mul(sums, factor));
  const auto rest = hn::Sub(sums, hn::Mul(mean, divisor));
  return hn::Add(mean, hn::IfThenElseZero(hn::Ge(rest, divisor), hn::Set(d, 1.0)));
}

/// A pixel at a time is written with a byte too many, which the next one overwrites.
void MeansInDoubles(const uint32_t* columns, const HalftoneAxis& axis, uint64_t total,
                    uint8_t* target) {
  const hn::CappedTag<double, 4> d;
  const hn::Rebind<int32_t, decltype(d)> dLongs;
  const hn::Rebind<uint8_t, decltype(d)> dBytes;
  const auto inner = hn::Set(d, static_cast<double>(axis.innerWeight));
  const uint64_t wholeHalf = total / 2;
  const auto half = hn::Set(d, static_cast<double>(wholeHalf));
  const auto divisor = hn::Set(d, static_cast<double>(total));
  const auto factor = hn::Set(d, 1 / static_cast<double>(total) * (1 - 1.0 / (1 << 30)));
  const auto make = [&](const HalftoneTap& tap, uint8_t* pixel) {
    // Sums of bytes whose weights add up to 2^23 at most are no negative numbers.
    const auto* column =
        reinterpret_cast<const int32_t*>(columns + 3 * static_cast<size_t>(tap.first));
    for (size_t c = 0; c < 4; c += hn::Lanes(d)) {
      const auto sums = hn::Add(SumTap(d, column + c, tap, inner), half);
      const auto means = hn::DemoteTo(dLongs, MeansOfSums(d, sums, divisor, factor));
      hn::StoreU(hn::DemoteTo(dBytes, means), dBytes, pixel + c);
    }
  };
  if (axis.taps.empty()) return;
  const HalftoneTap* last = &axis.taps.back();
  for (const HalftoneTap* tap = axis.taps.data(); tap != last; ++tap, target += 3) {
    make(*tap, target);
  }
  uint8_t pixel[4];
  make(*last, pixel);
  std::copy_n(pixel, 3, target);
}

#endif

template <class Sum>
void SumRowsOf(const WeightedRows& rows, size_t bytes, Sum* sums) {
  const bool plain = std::all_of(rows.weights, rows.weights + rows.count,
                                 [](uint32_t weight) { return weight == 1; });
  const size_t done =
      plain ? SumRowVectors<false>(rows, bytes, sums) : SumRowVectors<true>(rows, bytes, sums);
  SumRowsOneByOne(rows, done, bytes, sums);
}

void SumRows16(const WeightedRows& rows, size_t bytes, uint16_t* sums) {
  SumRowsOf(rows, bytes, sums);
}
void SumRows32(const WeightedRows& rows, size_t bytes, uint32_t* sums) {
  SumRowsOf(rows, bytes, sums);
}
void SumColumns16(const uint16_t* columns, const HalftoneAxis& axis, uint16_t* sums) {
  SumTaps(columns, axis, sums);
}
void SumColumns32(const uint32_t* columns, const HalftoneAxis& axis, uint32_t* sums) {
  SumTaps(columns, axis, sums);
}

void Divide16(const uint16_t* sums, size_t count, const WordDivisor& divisor, uint8_t* target) {
  for (size_t i = DivideWords(sums, count, divisor, target); i < count; ++i) {
    target[i] = static_cast<uint8_t>((uint32_t{sums[i]} + divisor.half) * divisor.factor >> 16 >>
                                     divisor.shift);
  }
}

void Divide32(const uint32_t* sums, size_t count, uint32_t total, uint8_t* target) {
  for (size_t i = DivideLongs(sums, count, total, target); i < count; ++i) {
    target[i] = static_cast<uint8_t>((sums[i] + total / 2) / total);
  }
}

void MeansOf64(const uint32_t* columns, const HalftoneAxis& axis, uint64_t total, uint8_t* target) {
#if HWY_TARGET != HWY_SCALAR && HWY_HAVE_FLOAT64
  // All whole numbers up to 2^53 are doubles.
  if (total < (uint64_t{1} << 45)) return MeansInDoubles(columns, axis, total, target);
#endif
  MeansOneByOne(columns, axis, total, target);
}

}  // namespace
}  // namespace rasterkit::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rasterkit::kernels {
namespace {

HWY_EXPORT(SumRows16);
HWY_EXPORT(SumRows32);
HWY_EXPORT(SumColumns16);
HWY_EXPORT(SumColumns32);
HWY_EXPORT(Divide16);
HWY_EXPORT(Divide32);
HWY_EXPORT(MeansOf64);

/// The largest sum that is divided: white, and half of the total.
constexpr uint64_t LargestSum(uint64_t total) {
  return 255 * total + total / 2;
}

/// The shift that leaves the factor as many of its 16 bits as there can be.
int ShiftFor(uint64_t total) {
  return std::bit_width(total - (total > 1 ? 1 : 0)) - 1;
}

uint64_t FactorFor(uint64_t total) {
  return ((uint64_t{1} << (16 + ShiftFor(total))) + total - 1) / total;
}

}  // namespace

// A factor too large by less than one carries into the quotient only beyond sums of 2^(16 + shift)
// divided by what it is too large, times the total.
bool WordDivisor::Fits(uint64_t total) {
  if (total < 2 || LargestSum(total) > 0xFFFF) return false;
  const uint64_t power = uint64_t{1} << (16 + ShiftFor(total));
  const uint64_t excess = FactorFor(total) * total - power;
  return FactorFor(total) <= 0xFFFF && excess * LargestSum(total) < power;
}

WordDivisor WordDivisor::For(uint64_t total) {
  return {static_cast<uint16_t>(total / 2), static_cast<uint16_t>(FactorFor(total)),
          ShiftFor(total)};
}

void SumRows(const WeightedRows& rows, size_t bytes, uint16_t* sums) {
  HWY_DYNAMIC_DISPATCH(SumRows16)(rows, bytes, sums);
}
void SumRows(const WeightedRows& rows, size_t bytes, uint32_t* sums) {
  HWY_DYNAMIC_DISPATCH(SumRows32)(rows, bytes, sums);
}
void SumColumns(const uint16_t* columns, const HalftoneAxis& axis, uint16_t* sums) {
  HWY_DYNAMIC_DISPATCH(SumColumns16)(columns, axis, sums);
}
void SumColumns(const uint32_t* columns, const HalftoneAxis& axis, uint32_t* sums) {
  HWY_DYNAMIC_DISPATCH(SumColumns32)(columns, axis, sums);
}
void DivideSums(const uint16_t* sums, size_t count, const WordDivisor& divisor, uint8_t* target) {
  HWY_DYNAMIC_DISPATCH(Divide16)(sums, count, divisor, target);
}
void DivideSums(const uint32_t* sums, size_t count, uint32_t total, uint8_t* target) {
  HWY_DYNAMIC_DISPATCH(Divide32)(sums, count, total, target);
}

void MeansOfColumns(const uint32_t* columns, const HalftoneAxis& axis, uint64_t total,
                    uint8_t* target) {
  HWY_DYNAMIC_DISPATCH(MeansOf64)(columns, axis, total, target);
}

}  // namespace rasterkit::kernels
#endif
