#include <rasterkit/dialogs/editchangesize/change_bitmap_size.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>

namespace rasterkit {

std::unique_ptr<TBitmap> ChangeBitmapSize(const TBitmap* bitmap, int32_t width, int32_t height,
                                          bool stretch) {
  if (bitmap == nullptr) return nullptr;
  auto resized = std::make_unique<TBitmap>();
  // A custom format has the depth of its rows.
  if (bitmap->PixelFormat() == pfCustom) resized->SetPixelFormat(bitmap->Content().Format());
  resized->SetPixelFormat(bitmap->PixelFormat());
  resized->SetPalette(bitmap->Palette());
  resized->SetSize(width, height);
  if (stretch) {
    resized->Canvas().StretchDraw({0, 0, width, height}, *bitmap);
  } else {
    resized->Canvas().Draw(0, 0, *bitmap);
  }
  return resized;
}

}  // namespace rasterkit
