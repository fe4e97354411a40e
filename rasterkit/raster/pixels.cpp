#include <rasterkit/raster/pixels.h>

namespace rasterkit {

namespace {

PixelLayout LayoutOfRaster(const Raster& raster) {
  PixelLayout layout;
  layout.profile = raster.profile;
  if (raster.transparentColor) layout.alpha = AlphaKind::transparentColor;
  switch (raster.Format()) {
    case pf1bit:
    case pf4bit:
    case pf8bit: {
      layout.bits = StoredBitsPerPixel(raster.Format());
      layout.bands = 1;
      const HPALETTE ramp = GrayPalette(1 << layout.bits);
      layout.model = raster.palette == ramp ? ColorModel::gray : ColorModel::palette;
      if (layout.model == ColorModel::palette) layout.palette = raster.palette;
      break;
    }
    case pf32bit:
      if (raster.alphaFormat == afDefined) {
        layout.bands = 4;
        layout.alpha = AlphaKind::straight;
      }
      break;
    default:
      break;
  }
  return layout;
}

}  // namespace

PixelLayout LayoutOf(const Pixels& pixels) {
  if (const auto* samples = std::get_if<Samples>(&pixels)) return samples->Layout();
  return LayoutOfRaster(std::get<Raster>(pixels));
}

}  // namespace rasterkit
