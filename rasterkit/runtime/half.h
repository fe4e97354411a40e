#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

namespace rasterkit {

/// Converts an IEEE half (1 bit sign, 5 exponent, 10 fraction) to a double, exactly. Zero and
/// infinity keep their sign; NaN does not.
inline double HalfToDouble(uint16_t half) {
  constexpr int kBias = 25;  // of exponents of whole fractions: 15, and the fraction's 10 bits
  const int exponent = half >> 10 & 31, fraction = half & 1023;
  const double sign = half >> 15 != 0 ? -1 : 1;
  if (exponent == 0) return sign * std::ldexp(fraction, 1 - kBias);
  if (exponent < 31) return sign * std::ldexp(fraction + 1024, exponent - kBias);
  return fraction == 0 ? sign * std::numeric_limits<double>::infinity()
                       : std::numeric_limits<double>::quiet_NaN();
}

}  // namespace rasterkit
