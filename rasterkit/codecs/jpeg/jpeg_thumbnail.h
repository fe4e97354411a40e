#pragma once

#include <cstdint>
#include <vector>

#include <rasterkit/raster/raster.h>

namespace rasterkit::detail {

/// Sides of a thumbnail: at most 160 pixels, in the proportion of the picture, never larger.
struct ThumbnailSides {
  int width = 1, height = 1;
};
ThumbnailSides ThumbnailSidesOf(int width, int height);

/// Shrinks rows to the sides, each pixel the exact mean of its area, and encodes them as a JPEG
/// file of quality 80. Transparent pixels become white.
std::vector<uint8_t> EncodeThumbnail(const Raster& rows, const ThumbnailSides& sides);

}  // namespace rasterkit::detail
