#pragma once

#include <rasterkit/raster/pixel_format.h>

namespace rasterkit {

/// The pixel format of 1, 4, 8, 15, 16 or 24 bits per pixel; pf32bit for every other number.
constexpr TPixelFormat FormatOfBits(int bits) {
  switch (bits) {
    case 1:
      return pf1bit;
    case 4:
      return pf4bit;
    case 8:
      return pf8bit;
    case 15:
      return pf15bit;
    case 16:
      return pf16bit;
    case 24:
      return pf24bit;
    default:
      return pf32bit;
  }
}

}  // namespace rasterkit
