#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <rasterkit/graphics/bitmap.h>

namespace rasterkit::tool {

/// The visible difference between two pictures of the same size.
struct PictureDifference {
  /// Pixels that differ by more than the tolerance in a channel or in their opacity.
  uint64_t pixels = 0;
  /// The greatest difference of any channel, 0 to 255, even within the tolerance.
  int greatest = 0;
  /// The first of those pixels, row by row.
  int x = -1, y = -1;
};

/// Compares colors and opacity at any depth; two fully transparent pixels are equal. Converts both
/// bitmaps to 32-bit. Returns nothing if the sizes differ.
std::optional<PictureDifference> ComparePictures(TBitmap& a, TBitmap& b, int tolerance);

}  // namespace rasterkit::tool
