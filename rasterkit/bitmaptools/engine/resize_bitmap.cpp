#include <utility>

#include <rasterkit/bitmaptools/engine/composition.h>
#include <rasterkit/graphics/bitmap.h>

namespace rasterkit {
namespace {

/// Carries what gives the pixels their meaning and nothing else: the palette of indexes, the alpha
/// mark of alpha bytes.
void CarryMeaning(const TBitmap& source, TBitmap& target) {
  const bool hasAlphaBytes = source.StoredBits() == 32 && target.StoredBits() == 32;
  target.CarryFrom(source, {.resolution = false,
                            .profile = false,
                            .alphaFormat = hasAlphaBytes,
                            .transparency = CarriedTransparency::none});
}

bool IsAveraged(TPixelFormat format) {
  return format == pf24bit || format == pf32bit;
}

/// Tells whether pixels of the transparent color are skipped. If there is an alpha channel, it is
/// copied and the color does not count.
bool HasHoles(const TBitmap& bitmap) {
  const bool hasAlpha = bitmap.StoredBits() == 32 && bitmap.AlphaFormat() == afDefined;
  return bitmap.Transparent() && !hasAlpha;
}

/// Sets the size of the new bitmap and draws the picture. New area is filled only if some of it
/// stays visible.
void Stretch(const TBitmap& source, int32_t width, int32_t height, TBitmap& target) {
  const TRect whole{0, 0, width, height};
  if (source.Empty()) {
    target.SetSize(width, height);
  } else if (HasHoles(source)) {
    target.SetSize(width, height);
    target.Canvas().StretchDraw(whole, source);
  } else {
    target.ResetPixels(target.PixelFormat(), width, height);
    target.Canvas().CopyStretched(whole, source);
  }
}

}  // namespace

void ResizeBitmap(std::unique_ptr<TBitmap>& bitmap, int32_t newWidth, int32_t newHeight,
                  bool keepFormat) {
  if (bitmap == nullptr) return;
  auto resized = std::make_unique<TBitmap>();
  resized->SetPixelFormat(keepFormat ? bitmap->PixelFormat() : pf32bit);
  CarryMeaning(*bitmap, *resized);
  resized->SetTransparentMode(tmAuto);
  if (IsAveraged(resized->PixelFormat())) resized->Canvas().StretchMode = smHalftone;
  Stretch(*bitmap, newWidth, newHeight, *resized);
  bitmap = std::move(resized);
}

}  // namespace rasterkit
