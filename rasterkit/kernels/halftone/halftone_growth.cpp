#include <algorithm>

#include <rasterkit/kernels/halftone/halftone_growth.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE <rasterkit/kernels/halftone/halftone_growth.cpp>
// clang-format off: this file is compiled once for each target by the next line.
#include <hwy/foreach_target.h>
#include <hwy/highway.h>
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

constexpr size_t kBlockBytes = 12;

#if HWY_TARGET == HWY_SCALAR

void Grow(const uint8_t* pixels, const GrowthPlan& plan, uint16_t* sums) {
  for (const GrowthBlock& block : plan.blocks) {
    const uint8_t* left = pixels + 3 * static_cast<size_t>(block.start);
    for (size_t i = 0; i < kBlockBytes; ++i) {
      const uint32_t a = left[block.order[i]], b = left[block.order[i] + 3u];
      *sums++ = static_cast<uint16_t>(a * (plan.total - block.rightWeights[i]) +
                                      b * block.rightWeights[i]);
    }
  }
}

size_t MixVectors(const uint16_t*, uint16_t, const uint16_t*, uint16_t, size_t, const WordDivisor&,
                  uint8_t*) {
  return 0;
}

#else

/// left * total + (right - left) * weight, which wraps on the way and is exact in the end.
template <class D>
HWY_INLINE void StoreGrown(D d, hn::Vec<D> left, hn::Vec<D> right, const uint16_t* weights,
                           hn::Vec<D> total, uint16_t* sums) {
  const auto step = hn::Mul(hn::Sub(right, left), hn::LoadU(d, weights));
  hn::StoreU(hn::Add(hn::Mul(left, total), step), d, sums);
}

void Grow(const uint8_t* pixels, const GrowthPlan& plan, uint16_t* sums) {
  const hn::Full128<uint8_t> d;
#if HWY_MAX_BYTES >= 32
  const hn::FixedTag<uint16_t, 16> dWords;
#else
  const hn::Full128<uint16_t> dWords;
#endif
  const auto total = hn::Set(dWords, plan.total);
  for (const GrowthBlock& block : plan.blocks) {
    const uint8_t* place = pixels + 3 * static_cast<size_t>(block.start);
    const auto order = hn::LoadU(d, block.order);
    const auto left = hn::TableLookupBytes(hn::LoadU(d, place), order);
    const auto right = hn::TableLookupBytes(hn::LoadU(d, place + 3), order);
#if HWY_MAX_BYTES >= 32
    StoreGrown(dWords, hn::PromoteTo(dWords, left), hn::PromoteTo(dWords, right),
               block.rightWeights, total, sums);
#else
    const hn::Half<decltype(d)> dHalf;
    StoreGrown(dWords, hn::PromoteTo(dWords, hn::LowerHalf(dHalf, left)),
               hn::PromoteTo(dWords, hn::LowerHalf(dHalf, right)), block.rightWeights, total, sums);
    StoreGrown(dWords, hn::PromoteTo(dWords, hn::UpperHalf(dHalf, left)),
               hn::PromoteTo(dWords, hn::UpperHalf(dHalf, right)), block.rightWeights + 8, total,
               sums + 8);
#endif
    sums += kBlockBytes;
  }
}

size_t MixVectors(const uint16_t* upper, uint16_t upperWeight, const uint16_t* lower,
                  uint16_t lowerWeight, size_t count, const WordDivisor& divisor, uint8_t* target) {
  const hn::ScalableTag<uint16_t> d;
  const hn::RebindToSigned<decltype(d)> dSigned;
  const hn::Rebind<uint8_t, decltype(d)> dBytes;
  const auto above = hn::Set(d, upperWeight), below = hn::Set(d, lowerWeight);
  const auto half = hn::Set(d, divisor.half), factor = hn::Set(d, divisor.factor);
  size_t i = 0;
  for (; i + hn::Lanes(d) <= count; i += hn::Lanes(d)) {
    const auto sum =
        hn::Add(hn::Mul(hn::LoadU(d, upper + i), above), hn::Mul(hn::LoadU(d, lower + i), below));
    const auto mean = hn::ShiftRightSame(hn::MulHigh(hn::Add(sum, half), factor), divisor.shift);
    hn::StoreU(hn::DemoteTo(dBytes, hn::BitCast(dSigned, mean)), dBytes, target + i);
  }
  return i;
}

#endif

void Mix(const uint16_t* upper, uint16_t upperWeight, const uint16_t* lower, uint16_t lowerWeight,
         size_t count, const WordDivisor& divisor, uint8_t* target) {
  size_t i = MixVectors(upper, upperWeight, lower, lowerWeight, count, divisor, target);
  for (; i < count; ++i) {
    const uint32_t sum = uint32_t{upper[i]} * upperWeight + uint32_t{lower[i]} * lowerWeight;
    target[i] = static_cast<uint8_t>((sum + divisor.half) * divisor.factor >> 16 >> divisor.shift);
  }
}

}  // namespace
}  // namespace rasterkit::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rasterkit::kernels {
namespace {

HWY_EXPORT(Grow);
HWY_EXPORT(Mix);

GrowthBlock MakeBlock(const HalftoneTap* taps, size_t count) {
  GrowthBlock block;
  block.start = std::min(taps[0].first, taps[count - 1].first);
  for (size_t pixel = 0; pixel < count; ++pixel) {
    const HalftoneTap& tap = taps[pixel];
    for (size_t c = 0; c < 3; ++c) {
      block.order[3 * pixel + c] =
          static_cast<uint8_t>(3 * (tap.first - block.start) + static_cast<int>(c));
      block.rightWeights[3 * pixel + c] = static_cast<uint16_t>(tap.count > 1 ? tap.lastWeight : 0);
    }
  }
  return block;
}

}  // namespace

GrowthPlan PlanGrowth(const HalftoneAxis& axis) {
  constexpr size_t kBlockPixels = 4;
  GrowthPlan plan;
  plan.total = static_cast<uint16_t>(axis.total);
  const size_t count = axis.taps.size();
  for (size_t i = 0; i < count; i += kBlockPixels) {
    plan.blocks.push_back(MakeBlock(&axis.taps[i], std::min(kBlockPixels, count - i)));
  }
  return plan;
}

void GrowRow(const uint8_t* pixels, const GrowthPlan& plan, uint16_t* sums) {
  HWY_DYNAMIC_DISPATCH(Grow)(pixels, plan, sums);
}

void MixRows(const uint16_t* upper, uint16_t upperWeight, const uint16_t* lower,
             uint16_t lowerWeight, size_t count, const WordDivisor& divisor, uint8_t* target) {
  HWY_DYNAMIC_DISPATCH(Mix)(upper, upperWeight, lower, lowerWeight, count, divisor, target);
}

}  // namespace rasterkit::kernels
#endif
