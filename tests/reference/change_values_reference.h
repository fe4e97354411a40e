#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>

#include <rasterkit/graphics/bitmap.h>

#include "tests/reference/extended.h"

/// Sharpening and the shift of colors, written straight from the rules: pixel by pixel, from a
/// copy of the whole picture.
namespace rasterkit::reference {

/// The channel (0 blue, 1 green, 2 red) of a 24-bit pixel; pixels outside count as the edge.
inline int ChannelOf(const TBitmap& bitmap, int x, int y, int channel) {
  const int column = std::clamp(x, 0, bitmap.Width() - 1);
  const int row = std::clamp(y, 0, bitmap.Height() - 1);
  return bitmap.ScanLine(row)[3 * column + channel];
}

inline bool HasFarNeighbor(const TBitmap& bitmap, int x, int y) {
  for (int channel = 0; channel < 3; ++channel)
    for (int dy = -1; dy <= 1; ++dy)
      for (int dx = -1; dx <= 1; ++dx)
        if (std::abs(ChannelOf(bitmap, x + dx, y + dy, channel) -
                     ChannelOf(bitmap, x, y, channel)) >= 4)
          return true;
  return false;
}

inline void Sharpen(TBitmap& bitmap, int32_t percent) {
  if (percent == 0 || bitmap.Width() == 0 || bitmap.Height() == 0) return;
  bitmap.SetPixelFormat(pf24bit);
  percent = std::clamp(percent, -100, 100);
  const auto copy = bitmap.Clone();
  // Per nine times the distance from the mean, in 1 / 32768.
  const int64_t share = RoundEven(Extended(percent > 0 ? 2 * percent : percent) / 100 / 9 * 32768);
  for (int y = 0; y < bitmap.Height(); ++y)
    for (int x = 0; x < bitmap.Width(); ++x) {
      if (!HasFarNeighbor(*copy, x, y)) continue;
      for (int channel = 0; channel < 3; ++channel) {
        const int value = ChannelOf(*copy, x, y, channel);
        int distance = 0;
        for (int dy = -1; dy <= 1; ++dy)
          for (int dx = -1; dx <= 1; ++dx)
            distance += value - ChannelOf(*copy, x + dx, y + dy, channel);
        const int64_t change = (distance * share + 16384) >> 15;  // halves go up
        bitmap.ScanLine(y)[3 * x + channel] =
            static_cast<uint8_t>(std::clamp<int64_t>(value + change, 0, 255));
      }
    }
}

inline void ShiftColors(TBitmap& bitmap, float red, float green, float blue) {
  if (bitmap.Width() == 0 || bitmap.Height() == 0) return;
  bitmap.SetPixelFormat(pf24bit);
  const auto shifted = [](uint8_t channel, float percent) {
    const auto factor = static_cast<float>(Extended(percent) / 100 + 1);
    const Extended product = channel * Extended(factor);
    if (product > 255) return uint8_t{255};
    if (product < 0) return uint8_t{0};
    return static_cast<uint8_t>(RoundEven(product));
  };
  for (int y = 0; y < bitmap.Height(); ++y)
    for (int x = 0; x < bitmap.Width(); ++x) {
      RGBrec& pixel = reinterpret_cast<RGBrec*>(bitmap.ScanLine(y))[x];
      pixel = {shifted(pixel.b, blue), shifted(pixel.g, green), shifted(pixel.r, red)};
    }
}

}  // namespace rasterkit::reference
