#include <rasterkit/kernels/mix/watermark.h>
#include <rasterkit/kernels/mix/watermark_factors.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE <rasterkit/kernels/mix/watermark.cpp>
// clang-format off: this file is compiled once for each target by the next line.
#include <hwy/foreach_target.h>
#include <hwy/highway.h>
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

/// One less than a half in units of 2^-24: with the lowest bit of the whole part added it rounds
/// halves to even.
constexpr uint32_t kNearlyHalf = (1u << 23) - 1;

void PressOneByOne(const uint32_t* factors, uint8_t* bgr, const uint8_t* grays,
                   const uint8_t* strengths, size_t width) {
  for (size_t x = 0; x < width; ++x) {
    const uint32_t factor = factors[WatermarkRow(grays[x]) * kWatermarkStrengths + strengths[x]];
    const uint32_t lift = WatermarkLift(grays[x], strengths[x]);
    for (size_t i = 3 * x; i < 3 * x + 3; ++i) {
      const uint32_t units = bgr[i] * factor + lift;
      bgr[i] = static_cast<uint8_t>((units + kNearlyHalf + (units >> 24 & 1)) >> 24);
    }
  }
}

#if HWY_TARGET == HWY_SCALAR

void PressRow(const uint32_t* factors, uint8_t* bgr, const uint8_t* grays, const uint8_t* strengths,
              size_t width) {
  PressOneByOne(factors, bgr, grays, strengths, width);
}

#else

using Lanes = hn::ScalableTag<uint32_t>;
using SignedLanes = hn::RebindToSigned<Lanes>;
using Bytes = hn::Rebind<uint8_t, Lanes>;
using LaneVector = hn::Vec<Lanes>;
using ByteVector = hn::Vec<Bytes>;

/// What a vector of pixels is multiplied with, and what is added.
struct Pressure {
  LaneVector factor, lift;
};

HWY_INLINE Pressure PressureOf(const uint32_t* factors, LaneVector gray, LaneVector strength) {
  const Lanes d;
  const auto lastDark = hn::Set(d, uint32_t{kFirstLightGray - 1});
  const auto row = hn::Sub(hn::Max(gray, lastDark), lastDark);
  const auto place = hn::Add(hn::ShiftLeft<8>(row), strength);
  const auto lifted = hn::And(hn::Eq(row, hn::Zero(d)),
                              hn::Lt(strength, hn::Set(d, uint32_t{kFirstHarmlessStrength})));
  const auto distance = hn::Sub(hn::Set(d, 255u), strength);
  return {hn::GatherIndex(d, factors, hn::BitCast(SignedLanes(), place)),
          hn::IfThenElseZero(lifted, hn::ShiftLeft<24>(distance))};
}
static_assert(kWatermarkStrengths == 1 << 8);

HWY_INLINE ByteVector Press(const Pressure& pressure, ByteVector channel) {
  const Lanes d;
  const auto units = hn::Add(hn::Mul(hn::PromoteTo(d, channel), pressure.factor), pressure.lift);
  const auto odd = hn::And(hn::ShiftRight<24>(units), hn::Set(d, 1u));
  const auto rounded = hn::Add(units, hn::Add(odd, hn::Set(d, kNearlyHalf)));
  return hn::DemoteTo(Bytes(), hn::BitCast(SignedLanes(), hn::ShiftRight<24>(rounded)));
}

HWY_INLINE void PressVector(const uint32_t* factors, uint8_t* bgr, const uint8_t* grays,
                            const uint8_t* strengths) {
  const Lanes d;
  const Bytes bytes;
  const auto strength = hn::PromoteTo(d, hn::LoadU(bytes, strengths));
  // Most of a watermark is paper.
  if (hn::AllTrue(d, hn::Gt(strength, hn::Set(d, kFirstHarmlessStrength - 1u)))) return;
  const Pressure pressure =
      PressureOf(factors, hn::PromoteTo(d, hn::LoadU(bytes, grays)), strength);
  ByteVector blue, green, red;
  hn::LoadInterleaved3(bytes, bgr, blue, green, red);
  hn::StoreInterleaved3(Press(pressure, blue), Press(pressure, green), Press(pressure, red), bytes,
                        bgr);
}

void PressRow(const uint32_t* factors, uint8_t* bgr, const uint8_t* grays, const uint8_t* strengths,
              size_t width) {
  const size_t lanes = hn::Lanes(Lanes());
  size_t x = 0;
  for (; x + lanes <= width; x += lanes) {
    PressVector(factors, bgr + 3 * x, grays + x, strengths + x);
  }
  PressOneByOne(factors, bgr + 3 * x, grays + x, strengths + x, width - x);
}

#endif

}  // namespace
}  // namespace rasterkit::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rasterkit::kernels {
namespace {

HWY_EXPORT(PressRow);

}  // namespace

void PressWatermark24(uint8_t* bgr, const uint8_t* grays, const uint8_t* strengths, size_t width) {
  HWY_DYNAMIC_DISPATCH(PressRow)(WatermarkFactors(), bgr, grays, strengths, width);
}

}  // namespace rasterkit::kernels
#endif
