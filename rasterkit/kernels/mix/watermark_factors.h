#pragma once

#include <cstdint>

namespace rasterkit::kernels {

/// What a watermark makes of a channel c: (c * factor + lift) in units of 2^-24, rounded to the
/// nearest whole number, halves to the even one.
///
/// The mark's strength is 0 (strongest) to 255. Dark pixels, of gray values up to 127, keep
/// strength / 255 of their distance from white; light ones keep the share
/// ((gray / 255 - 0.5) * (255 - strength) + strength) / 255 of themselves, which is taken as a
/// single-precision number. Strengths from 250 on leave everything as it is.
inline constexpr int kWatermarkStrengths = 256;
inline constexpr int kFirstLightGray = 128;
inline constexpr uint8_t kFirstHarmlessStrength = 250;

/// The factors by brightness and strength: row 0 for all dark pixels, row i for gray 127 + i. Made
/// with the first call.
const uint32_t* WatermarkFactors();

/// Which row of the factors a gray value has.
constexpr uint32_t WatermarkRow(uint8_t gray) {
  return gray < kFirstLightGray ? 0 : gray - kFirstLightGray + 1u;
}

constexpr uint32_t WatermarkLift(uint8_t gray, uint8_t strength) {
  const bool lifted = gray < kFirstLightGray && strength < kFirstHarmlessStrength;
  return lifted ? (255u - strength) << 24 : 0;
}

}  // namespace rasterkit::kernels
