#include <algorithm>

#include <rasterkit/codecs/jpeg/jpeg_encoder.h>
#include <rasterkit/codecs/jpeg/jpeg_thumbnail.h>
#include <rasterkit/raster/fill.h>
#include <rasterkit/raster/stretch/halftone.h>

namespace rasterkit::detail {
namespace {

constexpr int kSide = 160, kQuality = 80;

}  // namespace

ThumbnailSides ThumbnailSidesOf(int width, int height) {
  const int longer = std::max(width, height);
  if (longer <= kSide) return {width, height};
  const auto scaled = [&](int side) {
    return std::max(1,
                    static_cast<int>((int64_t{2} * side * kSide + longer) / (int64_t{2} * longer)));
  };
  return {scaled(width), scaled(height)};
}

std::vector<uint8_t> EncodeThumbnail(const Raster& rows, const ThumbnailSides& sides) {
  Raster small(pf24bit, sides.width, sides.height);
  const PixelRect place{0, 0, sides.width, sides.height};
  FillRaster(small, place, clWhite);
  BlitHalftone(small, place, rows);
  return EncodeJpeg(small, kQuality);
}

}  // namespace rasterkit::detail
