#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <rasterkit/graphics/bitmap.h>

namespace rasterkit::tool {

/// How two pictures of one size differ to the eye.
struct PictureDifference {
  /// Pixels that differ by more than the tolerance in a channel or in their opacity.
  uint64_t pixels = 0;
  /// The greatest difference of a channel anywhere, 0 to 255, within the tolerance or not.
  int greatest = 0;
  /// The first of those pixels, row by row.
  int x = -1, y = -1;
};

/// Compares colours and opacity, whatever the depths; pixels that are wholly transparent in both
/// are alike. Both bitmaps are converted to 32-bit. Nothing when the sizes differ.
std::optional<PictureDifference> ComparePictures(TBitmap& a, TBitmap& b, int tolerance);

}  // namespace rasterkit::tool
