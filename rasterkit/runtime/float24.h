#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

namespace rasterkit::detail {

/// Converts a 24-bit float (1 bit sign, 7 exponent, 16 fraction) of TIFF files to a float, exactly.
/// Zero and infinity keep their sign; NaN does not.
inline float Float24ToFloat(uint32_t bits) {
  constexpr int kBias = 63 + 16;  // of exponents of whole fractions
  const int exponent = static_cast<int>(bits >> 16 & 127);
  const int fraction = static_cast<int>(bits & 0xFFFF);
  const float sign = (bits >> 23 & 1) != 0 ? -1.0f : 1.0f;
  if (exponent == 0) return sign * std::ldexp(static_cast<float>(fraction), 1 - kBias);
  if (exponent < 127) {
    return sign * std::ldexp(static_cast<float>(fraction + 0x10000), exponent - kBias);
  }
  return fraction == 0 ? sign * std::numeric_limits<float>::infinity()
                       : std::numeric_limits<float>::quiet_NaN();
}

/// The bits of the nearest 24-bit float; beyond the greatest one infinity.
inline uint32_t FloatToFloat24(double value) {
  constexpr uint32_t kInfinity = 0x7F0000;
  constexpr int kLeastExponent = -62;
  const uint32_t sign = std::signbit(value) ? 0x800000u : 0u;
  if (std::isnan(value)) return kInfinity | 1;
  if (value == 0) return sign;
  const int exponent = std::isinf(value) ? 64 : std::max(std::ilogb(value), kLeastExponent);
  if (exponent > 63) return sign | kInfinity;
  // Numbers below 2^-62 have no bit in front of the fraction. Rounding may carry into the exponent,
  // which gives the next power of two.
  const auto fraction =
      static_cast<uint32_t>(std::nearbyint(std::ldexp(std::fabs(value), 16 - exponent)));
  const auto stored = static_cast<uint32_t>(exponent - kLeastExponent) << 16;
  return sign | std::min(stored + fraction, kInfinity);
}

}  // namespace rasterkit::detail
