#include <string>

#include <rasterkit/bands/pixel_grid.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {

int PlanesOf(const Pixels& pixels) {
  const auto* samples = std::get_if<Samples>(&pixels);
  return samples != nullptr ? samples->Planes() : 1;
}

PixelGrid GridOf(Pixels& pixels, int plane) {
  if (auto* samples = std::get_if<Samples>(&pixels)) {
    return {{samples->Row(0, plane), samples->Stride(), samples->Width(), samples->Height()},
            static_cast<int>(samples->PixelBytes() * 8)};
  }
  auto& raster = std::get<Raster>(pixels);
  return {{raster.Row(0), raster.Stride(), raster.Width(), raster.Height()},
          StoredBitsPerPixel(raster.Format())};
}

ConstPixelGrid GridOf(const Pixels& pixels, int plane) {
  if (const auto* samples = std::get_if<Samples>(&pixels)) {
    return {{samples->Row(0, plane), samples->Stride(), samples->Width(), samples->Height()},
            static_cast<int>(samples->PixelBytes() * 8)};
  }
  const auto& raster = std::get<Raster>(pixels);
  return {{raster.Row(0), raster.Stride(), raster.Width(), raster.Height()},
          StoredBitsPerPixel(raster.Format())};
}

GridPart PartOf(const ConstPixelGrid& grid, const BandRect& part) {
  const size_t bit = static_cast<size_t>(part.left) * static_cast<size_t>(grid.bits);
  return {{grid.rows.Row(part.top) + bit / 8, grid.rows.stride, part.width, part.height},
          static_cast<int>(bit % 8) / grid.bits};
}

void RequireSides(const Pixels& pixels, Sides sides) {
  const int width = WidthOf(pixels), height = HeightOf(pixels);
  if (width == sides.width && height == sides.height) return;
  throw RangeError("a step for " + std::to_string(sides.width) + " x " +
                   std::to_string(sides.height) + " pixels got a picture of " +
                   std::to_string(width) + " x " + std::to_string(height));
}

}  // namespace rasterkit::detail
