#include <cstring>

#include <rasterkit/codecs/jpeg/jpeg_thumbnail.h>
#include <rasterkit/codecs/picture_io.h>
#include <rasterkit/pictures/fitting/make_thumbnail.h>

namespace rasterkit::detail {
namespace {

/// Every n-th sample: numbers are not averaged before they are colors.
Samples Thinned(const Samples& source, const ThumbnailSides& sides) {
  Samples small(source.Layout(), sides.width, sides.height, source.Planes() > 1);
  const size_t pixel = source.PixelBytes();
  for (int plane = 0; plane < source.Planes(); ++plane) {
    for (int y = 0; y < sides.height; ++y) {
      const auto from = static_cast<int>(int64_t{y} * source.Height() / sides.height);
      const uint8_t* const row = source.Row(from, plane);
      for (int x = 0; x < sides.width; ++x) {
        const auto column = static_cast<size_t>(int64_t{x} * source.Width() / sides.width);
        std::memcpy(small.Row(y, plane) + static_cast<size_t>(x) * pixel, row + column * pixel,
                    pixel);
      }
    }
  }
  return small;
}

}  // namespace

std::vector<uint8_t> MakeThumbnail(const Pixels& pixels, const std::string& noData) {
  const ThumbnailSides sides = ThumbnailSidesOf(WidthOf(pixels), HeightOf(pixels));
  if (const auto* rows = std::get_if<Raster>(&pixels)) {
    return EncodeThumbnail(*rows, sides);
  }
  Changes unused;
  const Raster small = VisiblePixels(Thinned(std::get<Samples>(pixels), sides), noData, unused);
  return EncodeThumbnail(small, sides);
}

}  // namespace rasterkit::detail
