#include <cstring>

#include <rasterkit/bitmaptools/engine/composition.h>
#include <rasterkit/bitmaptools/pixels/color.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/icon.h>

namespace rasterkit {
namespace {

TBitmap NewBitmap(TPixelFormat format, int width, int height) {
  TBitmap bitmap;
  bitmap.SetPixelFormat(format);
  bitmap.SetSize(width, height);
  return bitmap;
}

/// Makes pixels of the key color transparent white, all others opaque.
void MakeClear(TBitmap& bitmap, TColor key) {
  constexpr uint32_t kColor = 0x00FFFFFF;
  uint8_t red, green, blue;
  GetRGB(key, red, green, blue);
  const uint32_t clear = blue | uint32_t{green} << 8 | uint32_t{red} << 16;
  for (int y = 0; y < bitmap.Height(); ++y) {
    uint8_t* row = bitmap.ScanLine(y);
    for (int x = 0; x < bitmap.Width(); ++x, row += 4) {
      uint32_t pixel;
      std::memcpy(&pixel, row, sizeof pixel);
      pixel = (pixel & kColor) == clear ? kColor : pixel | ~kColor;
      std::memcpy(row, &pixel, sizeof pixel);
    }
  }
}

}  // namespace

void CopyBitmapToIcon(TBitmap* bitmap, TIcon& icon, bool leftHalfOnly) {
  if (bitmap == nullptr) return;
  const int width = leftHalfOnly ? bitmap->Width() / 2 : bitmap->Width();
  const int height = bitmap->Height();
  if (width == 0 || height == 0) return;
  TBitmap color = NewBitmap(pf32bit, width, height);
  color.Canvas().Draw(0, 0, *bitmap);
  MakeClear(color, color.PixelColor(0, 0));
  // The alpha channel is used; the mask stays as it was created.
  icon.SetColorAndMask(color, NewBitmap(pf1bit, width, height));
}

}  // namespace rasterkit
