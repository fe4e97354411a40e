#include <utility>

#include <rasterkit/bitmaptools/engine/composition.h>
#include <rasterkit/host/graphics/bitmap.h>

namespace rasterkit {
namespace {

/// What the pixels mean goes along with them: the palette of indexes, the alpha channel.
void TakeMeaning(const TBitmap& source, TBitmap& target) {
  if (target.PixelFormat() == source.PixelFormat()) target.SetPalette(source.Palette());
  if (target.StoredBits() == 32 && source.StoredBits() == 32)
    target.SetAlphaFormat(source.AlphaFormat());
}

bool IsAveraged(TPixelFormat format) {
  return format == pf24bit || format == pf32bit;
}

/// Every pixel will be drawn, so that none needs the colour of new area, unless there is nothing to
/// draw.
void SetSize(TBitmap& bitmap, int32_t width, int32_t height, bool staysNew) {
  if (staysNew)
    bitmap.SetSize(width, height);
  else
    bitmap.ResetPixels(bitmap.PixelFormat(), width, height);
}

}  // namespace

void ResizeBitmap(std::unique_ptr<TBitmap>& bitmap, int32_t newWidth, int32_t newHeight,
                  bool keepFormat) {
  if (bitmap == nullptr) return;
  auto resized = std::make_unique<TBitmap>();
  resized->SetPixelFormat(keepFormat ? bitmap->PixelFormat() : pf32bit);
  TakeMeaning(*bitmap, *resized);
  resized->SetTransparentMode(tmAuto);
  SetSize(*resized, newWidth, newHeight, bitmap->Empty());
  if (IsAveraged(resized->PixelFormat())) resized->Canvas().StretchMode = smHalftone;
  resized->Canvas().CopyStretched({0, 0, newWidth, newHeight}, *bitmap);
  bitmap = std::move(resized);
}

}  // namespace rasterkit
