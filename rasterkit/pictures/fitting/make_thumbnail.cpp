#include <algorithm>
#include <cstring>

#include <rasterkit/codecs/jpeg/jpeg_encoder.h>
#include <rasterkit/codecs/picture_io.h>
#include <rasterkit/pictures/fitting/make_thumbnail.h>
#include <rasterkit/raster/fill.h>
#include <rasterkit/raster/stretch/halftone.h>

namespace rasterkit::detail {
namespace {

constexpr int kSide = 160, kQuality = 80;

struct Box {
  int width = 1, height = 1;
};

Box BoxOf(int width, int height) {
  const int longer = std::max(width, height);
  if (longer <= kSide) return {width, height};
  const auto scaled = [&](int side) {
    return std::max(1,
                    static_cast<int>((int64_t{2} * side * kSide + longer) / (int64_t{2} * longer)));
  };
  return {scaled(width), scaled(height)};
}

/// Every n-th sample: numbers are not averaged before they are colors.
Samples Thinned(const Samples& source, const Box& box) {
  Samples small(source.Layout(), box.width, box.height, source.Planes() > 1);
  const size_t pixel = source.PixelBytes();
  for (int plane = 0; plane < source.Planes(); ++plane) {
    for (int y = 0; y < box.height; ++y) {
      const auto from = static_cast<int>(int64_t{y} * source.Height() / box.height);
      const uint8_t* const row = source.Row(from, plane);
      for (int x = 0; x < box.width; ++x) {
        const auto column = static_cast<size_t>(int64_t{x} * source.Width() / box.width);
        std::memcpy(small.Row(y, plane) + static_cast<size_t>(x) * pixel, row + column * pixel,
                    pixel);
      }
    }
  }
  return small;
}

Raster Shrunk(const Raster& rows, const Box& box) {
  Raster small(pf24bit, box.width, box.height);
  const PixelRect place{0, 0, box.width, box.height};
  FillRaster(small, place, clWhite);
  BlitHalftone(small, place, rows);
  return small;
}

}  // namespace

std::vector<uint8_t> MakeThumbnail(const Pixels& pixels, const std::string& noData,
                                   const NumberStretch& stretch) {
  const Box box = BoxOf(WidthOf(pixels), HeightOf(pixels));
  if (const auto* rows = std::get_if<Raster>(&pixels)) {
    return EncodeJpeg(Shrunk(*rows, box), kQuality);
  }
  Changes unused;
  const auto& samples = std::get<Samples>(pixels);
  const Raster small = VisiblePixels(Thinned(samples, box), noData, unused,
                                     SettledStretch(samples, noData, stretch));
  return EncodeJpeg(Shrunk(small, box), kQuality);
}

}  // namespace rasterkit::detail
