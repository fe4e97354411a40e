#include <rasterkit/bitmaptools/pixels/bit_depths.h>
#include <rasterkit/graphics/bitmap.h>

namespace rasterkit::detail {
namespace {

/// Gets the bytes of a format without a size of its own, and switches the bitmap to one with a
/// size.
bool SettleFormat(TBitmap& bitmap, int32_t& bytesPerPixel) {
  if (!BytesOfBits(bitmap.StoredBits(), bytesPerPixel)) return false;
  bitmap.SetPixelFormat(bytesPerPixel == 3 ? pf24bit : pf32bit);
  return true;
}

bool FindBytesPerPixel(TBitmap& bitmap, int32_t& bytesPerPixel) {
  bytesPerPixel = 0;
  switch (bitmap.PixelFormat()) {
    case pf1bit:
    case pf4bit:
      return true;
    case pf8bit:
      bytesPerPixel = 1;
      return true;
    case pf15bit:
    case pf16bit:
      bytesPerPixel = 2;
      return true;
    case pf24bit:
      bytesPerPixel = 3;
      return true;
    case pf32bit:
      bytesPerPixel = 4;
      return true;
    case pfDevice:
    case pfCustom:
      return SettleFormat(bitmap, bytesPerPixel);
  }
  return false;
}

}  // namespace

bool BytesOfBits(int32_t bits, int32_t& bytesPerPixel) {
  const int32_t bytes = bits / 8;
  const bool whole = bytes <= 0 || bits % 8 == 0;
  bytesPerPixel = whole ? bytes : 0;
  return whole;
}

bool GetPixelByteInfo(TBitmap& bitmap, int32_t& bytesPerPixel, int32_t& bitsPerPixel) {
  const bool known = FindBytesPerPixel(bitmap, bytesPerPixel);
  bitsPerPixel = bytesPerPixel > 0 ? 0 : (bitmap.PixelFormat() == pf1bit ? 1 : 4);
  return known;
}

}  // namespace rasterkit::detail
