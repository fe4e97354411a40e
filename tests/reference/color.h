#pragma once

#include <cmath>
#include <cstdint>

#include <rasterkit/raster/pixel_format.h>

#include "tests/reference/extended.h"
#include "tests/reference/gray.h"

/// Brightness written straight from its rule: extended intermediates, singles where a value is
/// stored as single.
namespace rasterkit::reference {

inline uint8_t ClampToByte(float x) {
  if (x > 255) return 255;
  if (x < 0) return 0;
  return static_cast<uint8_t>(std::lrint(x));
}

inline TColor ColorBrightness(TColor color, int32_t percent) {
  const uint32_t bits = color < 0 ? 0 : static_cast<uint32_t>(color);
  uint8_t channels[3] = {static_cast<uint8_t>(bits), static_cast<uint8_t>(bits >> 8),
                         static_cast<uint8_t>(bits >> 16)};
  const auto f = static_cast<float>(1 + Extended(percent) / 100);
  const auto d = static_cast<float>(Extended(f) - 1);
  const int gray = GrayInWholeNumbers(channels[0], channels[1], channels[2]);
  const auto lift = static_cast<int64_t>((255 - gray) * Extended(d));
  for (uint8_t& channel : channels) {
    const Extended product = channel * Extended(f);
    if (percent < 0) {
      channel = static_cast<uint8_t>(RoundEven(product) & 0xFF);
    } else {
      channel = ClampToByte(static_cast<float>(product + lift));
    }
  }
  return RGB(channels[0], channels[1], channels[2]);
}

}  // namespace rasterkit::reference
