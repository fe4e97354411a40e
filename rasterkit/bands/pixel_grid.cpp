#include <string>

#include <rasterkit/bands/pixel_grid.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {

PixelGrid GridOf(Raster& raster) {
  return {{raster.Row(0), raster.Stride(), raster.Width(), raster.Height()},
          StoredBitsPerPixel(raster.Format())};
}

PixelGrid GridOf(Samples& samples, int plane) {
  return {{samples.Row(0, plane), samples.Stride(), samples.Width(), samples.Height()},
          static_cast<int>(samples.PixelBytes() * 8)};
}

void RequireSides(const Pixels& pixels, Sides sides) {
  const int width = WidthOf(pixels), height = HeightOf(pixels);
  if (width == sides.width && height == sides.height) return;
  throw RangeError("a step for " + std::to_string(sides.width) + " x " +
                   std::to_string(sides.height) + " pixels got a picture of " +
                   std::to_string(width) + " x " + std::to_string(height));
}

}  // namespace rasterkit::detail
