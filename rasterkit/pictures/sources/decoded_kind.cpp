#include <rasterkit/bands/layouts.h>
#include <rasterkit/pictures/sources/decoded_kind.h>
#include <rasterkit/pictures/sources/sample_rows.h>

namespace rasterkit::detail {
namespace {

/// Depths below 8 bits that a raster does not have become the next one, with the same colors.
PixelLayout AsRaster(const PixelLayout& layout) {
  return LayoutOf(SampleRows(layout, true, 1, 1));
}

DecodedKind KindOfPng(PixelLayout layout) {
  constexpr int kWide = 16, kHalfNibble = 2;
  if (layout.bits == kWide) {
    // A transparent color of so many bits becomes an alpha channel.
    if (layout.alpha == AlphaKind::transparentColor) {
      layout.alpha = AlphaKind::straight;
      ++layout.bands;
    }
    return {layout, false};
  }
  if (layout.model == ColorModel::gray && layout.alpha == AlphaKind::straight) {
    layout.model = ColorModel::rgb;
    layout.bands = 4;
  }
  if (layout.model == ColorModel::gray && layout.bits == kHalfNibble) {
    layout.model = ColorModel::palette;
    layout.palette = GrayPalette(1 << kHalfNibble);
  }
  return {AsRaster(layout), true};
}

DecodedKind KindOfSamples(PixelLayout layout) {
  constexpr int kByte = 8;
  const bool isPlain = layout.bits == 1 || layout.bits == 4 || layout.bits == kByte;
  const bool isPalette = layout.model == ColorModel::palette && layout.bands == 1;
  const bool isByte = layout.type == NumberType::uint8 && layout.extraBands == 0;
  if (isByte && isPlain && layout.model == ColorModel::grayWhiteIsZero && layout.bands == 1) {
    layout.model = ColorModel::gray;
  }
  const bool isGray = layout.model == ColorModel::gray && layout.bands == 1;
  const bool isColor = layout.model == ColorModel::rgb && layout.bits == kByte &&
                       layout.alpha != AlphaKind::associated;
  if (isByte && ((isPlain && (isGray || isColor)) || isPalette)) return {AsRaster(layout), true};
  return {layout, false};
}

}  // namespace

DecodedKind DecodedKindOf(PictureType type, const PixelLayout& stored) {
  if (type == PictureType::png) return KindOfPng(stored);
  const bool keepsNumbers =
      type == PictureType::tiff || type == PictureType::jp2 || type == PictureType::heif;
  if (keepsNumbers) return KindOfSamples(stored);
  const bool isRaster = IsRasterLayout(stored);
  return {isRaster ? AsRaster(stored) : stored, isRaster};
}

}  // namespace rasterkit::detail
