#include <algorithm>
#include <array>

#include <rasterkit/kernels/halftone/halftone_alpha.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE <rasterkit/kernels/halftone/halftone_alpha.cpp>
// clang-format off: this file is compiled once for each target by the next line.
#include <hwy/foreach_target.h>
#include <hwy/highway.h>
// clang-format on

// Why the quotients are right: dividend n and divisor d are whole numbers that the type holds, and
// n / d < 256. Where the quotient is no whole number it lies at least 1 / d below the next one. A
// correctly rounded division reaches that one only from within half a unit of the last place below
// 256, which is 2^-17 for floats and 2^-46 for doubles: less than 1 / d, as long as d, which is at
// most 255 times the total, stays below 2^17 or 2^46. Cutting then gives the true whole part.

#ifndef RASTERKIT_HALFTONE_ALPHA_ONCE
#define RASTERKIT_HALFTONE_ALPHA_ONCE
namespace rasterkit::kernels {
namespace {

/// Sums of 255 * 255 times the weights, and half a divisor, are exact floats and doubles up to
/// these totals; sums of rows are whole numbers of 31 bits.
constexpr uint64_t kFloatTotal = 257, kDoubleTotal = uint64_t{1} << 36;
constexpr uint32_t kRowsTotal = 0x7FFFFFFF / (255 * 255);

/// Target pixels whose sums are kept at a time: a whole number of vectors.
constexpr size_t kBlock = 64;

/// The sums of some target pixels, and what they are divided by: alpha times `isColor` plus
/// `total`.
template <class Real>
struct Block {
  alignas(64) Real sums[kOpacitySums * kBlock] = {};
  alignas(64) uint8_t pixels[4 * kBlock];
  alignas(16) Real isColor[kOpacitySums] = {1, 1, 1, 0};
  alignas(16) Real total[kOpacitySums] = {};
};

}  // namespace
}  // namespace rasterkit::kernels
#endif

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

/// Pixels `x` to `width - 1`, one by one.
void SumRowsOneByOne(const WeightedRows& rows, size_t x, size_t width, int32_t* sums) {
  for (; x < width; ++x) {
    int32_t* sum = sums + kOpacitySums * x;
    if (!rows.adds) std::fill_n(sum, kOpacitySums, 0);
    for (int i = 0; i < rows.count; ++i) {
      const uint8_t* pixel = rows.data + static_cast<size_t>(i) * rows.stride + 4 * x;
      const auto alpha = static_cast<int32_t>(rows.weights[i] * pixel[3]);
      for (size_t c = 0; c < 3; ++c) sum[c] += alpha * pixel[c];
      sum[3] += alpha;
    }
  }
}

#if HWY_TARGET == HWY_SCALAR

template <bool kWeighted>
size_t SumRowVectors(const WeightedRows&, size_t, int32_t*) {
  return 0;
}

template <class Real>
void SumTap(const int32_t* column, const AlphaColumns::Tap& tap, float innerWeight, Real* sum) {
  for (size_t c = 0; c < kOpacitySums; ++c) {
    sum[c] = static_cast<Real>(tap.firstWeight) * static_cast<Real>(column[c]);
    for (int32_t i = 1; i < tap.count; ++i) {
      sum[c] += static_cast<Real>(i + 1 < tap.count ? innerWeight : tap.lastWeight) *
                static_cast<Real>(column[kOpacitySums * static_cast<size_t>(i) + c]);
    }
  }
}

template <class Real>
bool DivideBlock(size_t pixels, Block<Real>& block) {
  bool isOpaque = true;
  for (size_t i = 0; i < kOpacitySums * pixels; ++i) {
    const Real alpha = block.sums[i | 3];
    isOpaque &= alpha != 0;
    const auto divisor =
        static_cast<uint64_t>(std::max(alpha, Real{1}) * block.isColor[i % 4] + block.total[i % 4]);
    block.pixels[i] =
        static_cast<uint8_t>((static_cast<uint64_t>(block.sums[i]) + divisor / 2) / divisor);
  }
  return isOpaque;
}

#else

/// Colors times alpha, and alpha times 1, of the pixels from `row` on. The products fit the lower
/// halves of the lanes.
template <class D>
HWY_INLINE hn::Vec<D> TimesAlpha(D d, const uint8_t* row) {
  const hn::Rebind<uint8_t, D> dBytes;
  const hn::Repartition<uint16_t, D> dWords;
  alignas(16) static constexpr uint32_t kColors[4] = {0xFF, 0xFF, 0xFF, 0};
  alignas(16) static constexpr uint32_t kOnce[4] = {0, 0, 0, 1};
  const auto pixels = hn::PromoteTo(d, hn::LoadU(dBytes, row));
  const auto factors = hn::Or(hn::And(hn::Broadcast<3>(pixels), hn::LoadDup128(d, kColors)),
                              hn::LoadDup128(d, kOnce));
  return hn::BitCast(d, hn::Mul(hn::BitCast(dWords, pixels), hn::BitCast(dWords, factors)));
}

/// Two vectors at a time: as many as keep the adders busy.
template <bool kWeighted>
size_t SumRowVectors(const WeightedRows& rows, size_t width, int32_t* sums) {
  const hn::ScalableTag<uint32_t> d;
  const hn::RebindToSigned<decltype(d)> dSigned;
  const size_t lanes = hn::Lanes(d), count = width * kOpacitySums;
  const auto start = [&](size_t x) {
    return rows.adds ? hn::BitCast(d, hn::LoadU(dSigned, sums + x)) : hn::Zero(d);
  };
  size_t x = 0;
  for (; x + 2 * lanes <= count; x += 2 * lanes) {
    auto low = start(x), high = start(x + lanes);
    const uint8_t* row = rows.data + x;
    for (int i = 0; i < rows.count; ++i, row += rows.stride) {
      auto a = TimesAlpha(d, row), b = TimesAlpha(d, row + lanes);
      if constexpr (kWeighted) {
        const auto weight = hn::Set(d, rows.weights[i]);
        a = hn::Mul(a, weight);
        b = hn::Mul(b, weight);
      }
      low = hn::Add(low, a);
      high = hn::Add(high, b);
    }
    hn::StoreU(hn::BitCast(dSigned, low), dSigned, sums + x);
    hn::StoreU(hn::BitCast(dSigned, high), dSigned, sums + x + lanes);
  }
  return x / kOpacitySums;
}

template <class D>
HWY_INLINE hn::Vec<D> LoadReals(D d, const int32_t* place) {
  const auto longs = hn::LoadU(hn::Rebind<int32_t, D>(), place);
  if constexpr (sizeof(hn::TFromD<D>) == sizeof(int32_t)) {
    return hn::ConvertTo(d, longs);
  } else {
    return hn::PromoteTo(d, longs);
  }
}

template <class D>
HWY_INLINE hn::Vec<hn::Rebind<int32_t, D> > CutToLongs(D, hn::Vec<D> reals) {
  const hn::Rebind<int32_t, D> dLongs;
  if constexpr (sizeof(hn::TFromD<D>) == sizeof(int32_t)) {
    return hn::ConvertTo(dLongs, reals);
  } else {
    return hn::DemoteTo(dLongs, reals);
  }
}

/// The weighted sums of a tap's columns, part by part where a vector has no four lanes.
template <class Real>
HWY_INLINE void SumTap(const int32_t* columns, const AlphaColumns::Tap& tap, float innerWeight,
                       Real* sums) {
  const hn::CappedTag<Real, kOpacitySums> d;
  for (size_t c = 0; c < kOpacitySums; c += hn::Lanes(d)) {
    const int32_t* column = columns + c;
    const int32_t* last = column + kOpacitySums * static_cast<size_t>(tap.count - 1);
    auto sum = hn::Mul(LoadReals(d, column), hn::Set(d, static_cast<Real>(tap.firstWeight)));
    if (tap.count > 2) {
      column += kOpacitySums;
      auto between = LoadReals(d, column);
      for (column += kOpacitySums; column < last; column += kOpacitySums) {
        between = hn::Add(between, LoadReals(d, column));
      }
      sum = hn::Add(sum, hn::Mul(between, hn::Set(d, static_cast<Real>(innerWeight))));
    }
    if (tap.count > 1) {
      const auto weight = hn::Set(d, static_cast<Real>(tap.lastWeight));
      sum = hn::Add(sum, hn::Mul(LoadReals(d, last), weight));
    }
    hn::StoreU(sum, d, sums + c);
  }
}

/// Makes the block's pixels; false when one of them has no alpha at all. Floats take many pixels at
/// a time, doubles no more than one.
template <class Real>
bool DivideBlock(size_t pixels, Block<Real>& block) {
  constexpr bool kFloats = sizeof(Real) == sizeof(float);
  const hn::CappedTag<Real, kFloats ? HWY_MAX_BYTES / sizeof(Real) : kOpacitySums> d;
  const hn::Rebind<uint8_t, decltype(d)> dBytes;
  auto isOpaque = hn::Eq(hn::Zero(d), hn::Zero(d));
  for (size_t i = 0; i < kOpacitySums * pixels; i += hn::Lanes(d)) {
    const auto sums = hn::LoadU(d, block.sums + i);
    hn::Vec<decltype(d)> alpha, isColor, total;
    if constexpr (kFloats) {
      alpha = hn::Broadcast<3>(sums);
      isColor = hn::LoadDup128(d, block.isColor);
      total = hn::LoadDup128(d, block.total);
    } else {
      alpha = hn::Set(d, block.sums[i | 3]);
      isColor = hn::LoadU(d, block.isColor + i % kOpacitySums);
      total = hn::LoadU(d, block.total + i % kOpacitySums);
    }
    const auto one = hn::Set(d, Real{1});
    isOpaque = hn::And(isOpaque, hn::Ge(alpha, one));
    const auto divisor = hn::Add(hn::Mul(hn::Max(alpha, one), isColor), total);
    const auto half = hn::Floor(hn::Mul(divisor, hn::Set(d, Real{0.5})));
    const auto mean = hn::Div(hn::Add(sums, half), divisor);
    hn::StoreU(hn::DemoteTo(dBytes, CutToLongs(d, mean)), dBytes, block.pixels + i);
  }
  return hn::AllTrue(d, isOpaque);
}

#endif

template <class Real>
size_t MeansOf(const int32_t* sums, const AlphaColumns& columns, uint8_t* target,
               uint32_t* transparent) {
  Block<Real> block;
  block.total[3] = static_cast<Real>(columns.total);
  size_t count = 0;
  for (size_t first = 0; first < columns.taps.size(); first += kBlock) {
    const size_t pixels = std::min(kBlock, columns.taps.size() - first);
    for (size_t i = 0; i < pixels; ++i) {
      const AlphaColumns::Tap& tap = columns.taps[first + i];
      SumTap(sums + kOpacitySums * static_cast<size_t>(tap.first), tap, columns.innerWeight,
             block.sums + kOpacitySums * i);
    }
    const bool isOpaque = DivideBlock(pixels, block);
    std::copy_n(block.pixels, 4 * pixels, target + 4 * first);
    for (size_t i = 0; !isOpaque && i < pixels; ++i) {
      if (block.sums[kOpacitySums * i + 3] == 0) {
        transparent[count++] = static_cast<uint32_t>(first + i);
      }
    }
  }
  return count;
}

void SumRows(const WeightedRows& rows, size_t width, int32_t* sums) {
  const bool plain = std::all_of(rows.weights, rows.weights + rows.count,
                                 [](uint32_t weight) { return weight == 1; });
  const size_t done =
      plain ? SumRowVectors<false>(rows, width, sums) : SumRowVectors<true>(rows, width, sums);
  SumRowsOneByOne(rows, done, width, sums);
}

size_t Means(const int32_t* sums, const AlphaColumns& columns, uint8_t* target,
             uint32_t* transparent) {
  if (columns.total <= kFloatTotal) return MeansOf<float>(sums, columns, target, transparent);
#if HWY_TARGET == HWY_SCALAR || HWY_HAVE_FLOAT64
  return MeansOf<double>(sums, columns, target, transparent);
#else
  return 0;
#endif
}

}  // namespace
}  // namespace rasterkit::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rasterkit::kernels {
namespace {

HWY_EXPORT(SumRows);
HWY_EXPORT(Means);

using Sums = std::array<uint64_t, kAlphaSums>;

uint8_t RoundedQuotient(uint64_t sum, uint64_t divisor) {
  return static_cast<uint8_t>((sum + divisor / 2) / divisor);
}

/// The sums that a tap covers, each times its weight.
Sums AddTap(const uint64_t* sums, const HalftoneTap& tap, uint32_t innerWeight) {
  Sums result{};
  const auto add = [&](int32_t column, uint64_t weight) {
    for (size_t i = 0; i < kAlphaSums; ++i) {
      result[i] += weight * sums[static_cast<size_t>(column) * kAlphaSums + i];
    }
  };
  const int32_t last = tap.first + tap.count - 1;
  add(tap.first, tap.firstWeight);
  for (int32_t column = tap.first + 1; column < last; ++column) add(column, innerWeight);
  if (tap.count > 1) add(last, tap.lastWeight);
  return result;
}

}  // namespace

void AddWeightedPixels32(const uint8_t* pixels, size_t width, uint32_t weight, uint64_t* sums) {
  for (size_t x = 0; x < width; ++x, pixels += 4, sums += kAlphaSums) {
    const uint64_t alpha = uint64_t{weight} * pixels[3];
    sums[3] += alpha;
    for (size_t c = 0; c < 3; ++c) {
      sums[c] += alpha * pixels[c];
      sums[4 + c] += uint64_t{weight} * pixels[c];
    }
  }
}

void MeanRow32(const uint64_t* sums, const HalftoneAxis& columns, uint32_t rowsTotal,
               uint8_t* target) {
  const uint64_t total = uint64_t{rowsTotal} * columns.total;
  for (const HalftoneTap& tap : columns.taps) {
    const Sums sum = AddTap(sums, tap, columns.innerWeight);
    for (size_t c = 0; c < 3; ++c) {
      target[c] =
          sum[3] != 0 ? RoundedQuotient(sum[c], sum[3]) : RoundedQuotient(sum[4 + c], total);
    }
    target[3] = RoundedQuotient(sum[3], total);
    target += 4;
  }
}

bool AlphaColumns::Fit(uint32_t rowsTotal, uint32_t columnsTotal) {
#if HWY_HAVE_FLOAT64
  constexpr uint64_t kLargest = kDoubleTotal;
#else
  constexpr uint64_t kLargest = kFloatTotal;
#endif
  return rowsTotal <= kRowsTotal && uint64_t{rowsTotal} * columnsTotal <= kLargest;
}

AlphaColumns::AlphaColumns(const HalftoneAxis& columns, uint32_t rowsTotal)
    : innerWeight(static_cast<float>(columns.innerWeight)),
      total(uint64_t{rowsTotal} * columns.total) {
  taps.reserve(columns.taps.size());
  for (const HalftoneTap& tap : columns.taps) {
    taps.push_back({tap.first, tap.count, static_cast<float>(tap.firstWeight),
                    static_cast<float>(tap.lastWeight)});
  }
}

void SumAlphaRows(const WeightedRows& rows, size_t width, int32_t* sums) {
  HWY_DYNAMIC_DISPATCH(SumRows)(rows, width, sums);
}

size_t MeansByAlpha(const int32_t* sums, const AlphaColumns& columns, uint8_t* target,
                    uint32_t* transparent) {
  return HWY_DYNAMIC_DISPATCH(Means)(sums, columns, target, transparent);
}

}  // namespace rasterkit::kernels
#endif
