#pragma once

#include <cstdint>

#include "tests/reference/extended.h"

/// The gray value written straight from its rule, slow and obvious: red * 0.297 + green * 0.589 +
/// blue * 0.114 in the 80-bit extended format, cut toward zero.
namespace rasterkit::reference {

/// Each constant, product and sum is rounded to `Number`, in this order.
template <class Number>
uint8_t GrayIn(uint8_t r, uint8_t g, uint8_t b) {
  constexpr Number redWeight = Number(297) / 1000;
  constexpr Number greenWeight = Number(589) / 1000;
  constexpr Number blueWeight = Number(114) / 1000;
  return static_cast<uint8_t>(r * redWeight + g * greenWeight + b * blueWeight);
}

/// In the processor's own extended numbers where there are any.
inline uint8_t GrayInExtended(uint8_t r, uint8_t g, uint8_t b) {
  return GrayIn<Extended>(r, g, b);
}

inline uint8_t GrayInWholeNumbers(uint8_t r, uint8_t g, uint8_t b) {
  return GrayIn<ExtendedInWholeNumbers>(r, g, b);
}

}  // namespace rasterkit::reference
