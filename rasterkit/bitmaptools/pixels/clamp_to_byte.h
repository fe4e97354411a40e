#pragma once

#include <cmath>
#include <cstdint>

#include <rasterkit/runtime/rounding.h>

namespace rasterkit::detail {

/// Rounds `value` to the nearest channel value, halves to even, clamped to 0 to 255. NaN gives 0,
/// the low byte of what processors return when they round it.
inline uint8_t ClampToByte(float value) {
  if (value > 255) return 255;
  if (value < 0 || std::isnan(value)) return 0;
  return static_cast<uint8_t>(Round(value));
}

}  // namespace rasterkit::detail
