#include <rasterkit/bitmaptools/pixels/bit_depths.h>
#include <rasterkit/bitmaptools/pixels/color.h>
#include <rasterkit/bitmaptools/pixels/transparency.h>
#include <rasterkit/bitmaptools/pixels/transparent_palette.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/kernels/gray/recolor.h>
#include <rasterkit/kernels/gray/whiten.h>

namespace rasterkit {
namespace {

using kernels::GraySide;

constexpr uint32_t ColorNumber(uint8_t red, uint8_t green, uint8_t blue, uint8_t alpha) {
  return uint32_t{alpha} << 24 | uint32_t{red} << 16 | uint32_t{green} << 8 | blue;
}

/// Calls `change(row, width)` for every row from the top.
template <class Change>
void ChangeRows(TBitmap& bitmap, Change change) {
  const auto width = static_cast<size_t>(bitmap.Width());
  for (int y = 0; y < bitmap.Height(); ++y) change(bitmap.ScanLine(y), width);
  bitmap.SetModified(true);
}

/// Recolors the two formats that support both sides of the gray scale.
void RecolorBytes(TBitmap& bitmap, GraySide side, uint32_t color) {
  if (bitmap.PixelFormat() == pf24bit) {
    ChangeRows(bitmap, [=](uint8_t* row, size_t width) {
      kernels::RecolorByGray24(row, width, side, color);
    });
  } else if (bitmap.PixelFormat() == pf32bit) {
    ChangeRows(bitmap, [=](uint8_t* row, size_t width) {
      kernels::RecolorByGray32(row, width, side, color);
    });
  }
}

void WhitenBottomLeftPixel(TBitmap& bitmap) {
  uint8_t* pixel = bitmap.ScanLine(bitmap.Height() - 1);
  switch (bitmap.PixelFormat()) {
    case pf16bit:
      pixel[0] = pixel[1] = 255;
      break;
    case pf24bit:
    case pf32bit:
      pixel[0] = pixel[1] = pixel[2] = 255;
      break;
    default:
      return;
  }
  bitmap.SetModified(true);
}

}  // namespace

void SetToTransparent(TBitmap* bitmap, uint8_t threshold) {
  if (bitmap == nullptr || threshold == 255) return;
  if (bitmap->Palette()) {
    detail::SetPaletteToTransparent(*bitmap, threshold);
  } else {
    SetColorAbGray(bitmap, threshold, 255, 255, 255, 255);
  }
}

void SetColorAbGray(TBitmap* bitmap, uint8_t threshold, uint8_t red, uint8_t green, uint8_t blue,
                    uint8_t alpha) {
  if (bitmap == nullptr) return;
  const GraySide side = kernels::GraysAbove(threshold);
  if (bitmap->PixelFormat() != pf16bit) {
    return RecolorBytes(*bitmap, side, ColorNumber(red, green, blue, alpha));
  }
  const uint16_t word = detail::RGBToWord565(red, green, blue);
  ChangeRows(*bitmap,
             [=](uint8_t* row, size_t width) { kernels::RecolorByGray16(row, width, side, word); });
}

void SetColorBisGray(TBitmap* bitmap, uint8_t threshold, uint8_t red, uint8_t green, uint8_t blue,
                     uint8_t alpha) {
  if (bitmap == nullptr) return;
  RecolorBytes(*bitmap, kernels::GraysBelow(threshold), ColorNumber(red, green, blue, alpha));
}

void CheckTransColForPDF(TBitmap* bitmap) {
  if (bitmap == nullptr || bitmap->Empty()) return;
  if (bitmap->Palette()) {
    detail::MoveWhiteToTheEnd(*bitmap);
  } else {
    WhitenBottomLeftPixel(*bitmap);
  }
}

void SetTransColor(TBitmap& bitmap, TColor color) {
  if (bitmap.PixelFormat() != pf24bit || bitmap.Empty()) return;
  uint8_t red, green, blue;
  GetRGB(color, red, green, blue);
  const uint8_t* corner = bitmap.ScanLine(bitmap.Height() - 1);
  const uint32_t from = ColorNumber(corner[2], corner[1], corner[0], 0);
  const uint32_t to = ColorNumber(red, green, blue, 0);
  ChangeRows(bitmap,
             [=](uint8_t* row, size_t width) { kernels::ReplaceColor24(row, width, from, to); });
}

void ResetTransparent(TBitmap& bitmap) {
  if (!bitmap.Transparent() || bitmap.PixelFormat() != pf32bit) return;
  ChangeRows(bitmap, kernels::WhitenTransparentPixels);
  bitmap.SetTransparent(false);
}

}  // namespace rasterkit
