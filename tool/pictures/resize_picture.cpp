#include "tool/pictures/resize_picture.h"

#include <rasterkit/bitmaptools/engine/composition.h>

#include "tool/pictures/alpha_channel.h"
#include "tool/pictures/palette_indexes.h"

namespace rasterkit::tool {
namespace {

/// Converts a bitmap to a format whose pixels the library averages. It cannot average palette
/// indexes and 15- and 16-bit pixels: a gray picture becomes true color and is converted back
/// afterwards, other pictures with a palette become true color only if requested.
class AveragedFormat {
 public:
  AveragedFormat(TBitmap& bitmap, bool smooth)
      : isGray_(bitmap.PixelFormat() == pf8bit && IsGrayRamp(bitmap.Palette()) &&
                !bitmap.Transparent()) {
    const bool isTrueColor = !HasIndexes(bitmap) || smooth;
    if (!isTrueColor && !isGray_) return;
    KeyToAlpha(bitmap);
    if (!HasAlpha(bitmap)) bitmap.SetPixelFormat(pf24bit);
  }

  void RestoreGrays(TBitmap& bitmap) const {
    if (isGray_) bitmap.SetPixelFormat(pf8bit);
  }

 private:
  bool isGray_;
};

/// Keeps the size on paper: fewer pixels are fewer dots per inch.
Resolution Scaled(const Resolution& dpi, double horizontal, double vertical) {
  return dpi.IsKnown() ? Resolution{dpi.x * horizontal, dpi.y * vertical} : dpi;
}

void Stretch(std::unique_ptr<TBitmap>& bitmap, const PictureSize& size, bool smooth) {
  const AveragedFormat format(*bitmap, smooth);
  // Without pixels: resizing frees the bitmap before its properties are needed.
  TBitmap properties;
  const auto transparency =
      bitmap->Transparent() ? CarriedTransparency::fixed : CarriedTransparency::none;
  properties.CarryFrom(*bitmap, {.transparency = transparency});
  const Resolution dpi = Scaled(bitmap->Dpi(), static_cast<double>(size.width) / bitmap->Width(),
                                static_cast<double>(size.height) / bitmap->Height());
  // The key color is drawn like any other color and marked again below.
  bitmap->SetTransparent(false);
  ResizeBitmap(bitmap, size.width, size.height, true);
  bitmap->CarryFrom(properties, {.palette = false, .transparency = transparency});
  bitmap->SetDpi(dpi);
  format.RestoreGrays(*bitmap);
}

/// Keeps the map area, with pixels of another size.
void ScalePlace(std::optional<TiffGeoTags>& place, double columns, double rows) {
  if (!place) return;
  place->pixelScale[0] *= columns;
  place->pixelScale[1] *= rows;
}

}  // namespace

void ResizePicture(Subject& picture, const PictureSize& size, bool smooth) {
  const int width = picture.bitmap->Width(), height = picture.bitmap->Height();
  Stretch(picture.bitmap, size, smooth);
  ScalePlace(picture.place, static_cast<double>(width) / size.width,
             static_cast<double>(height) / size.height);
}

}  // namespace rasterkit::tool
