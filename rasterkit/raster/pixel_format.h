#pragma once

#include <array>
#include <cstdint>

namespace rasterkit {

/// Color 0x00BBGGRR, red in the low byte; a negative value names a system color of the host.
using TColor = int32_t;

inline constexpr TColor clBlack = 0x000000;
inline constexpr TColor clWhite = 0xFFFFFF;

/// Packs a color: r | g << 8 | b << 16.
constexpr TColor RGB(uint8_t r, uint8_t g, uint8_t b) {
  return static_cast<TColor>(r | (g << 8) | (b << 16));
}

/// How the pixels of a row are stored. The numbers of the enumerators are part of the interface.
///
///     pf1bit    8 pixels per byte, the first in bit 7; index into the palette
///     pf4bit    2 pixels per byte, the first in the high nibble; index into the palette
///     pf8bit    index into the palette
///     pf15bit   little-endian word  0rrrrrgg gggbbbbb
///     pf16bit   little-endian word  rrrrrggg gggbbbbb
///     pf24bit   bytes B G R
///     pf32bit   bytes B G R A, alpha straight (not premultiplied)
///     pfDevice  no format of its own; stored and written as 32-bit
///     pfCustom  a layout without a name here; use the number of stored bits
enum TPixelFormat {
  pfDevice,
  pf1bit,
  pf4bit,
  pf8bit,
  pf15bit,
  pf16bit,
  pf24bit,
  pf32bit,
  pfCustom
};

/// Bits per pixel in memory: 1, 4, 8, 16, 16, 24, 32; pfDevice and pfCustom 32.
constexpr int StoredBitsPerPixel(TPixelFormat format) {
  switch (format) {
    case pf1bit:
      return 1;
    case pf4bit:
      return 4;
    case pf8bit:
      return 8;
    case pf15bit:
    case pf16bit:
      return 16;
    case pf24bit:
      return 24;
    default:
      return 32;
  }
}

constexpr bool IsIndexed(TPixelFormat format) {
  return format == pf1bit || format == pf4bit || format == pf8bit;
}

/// Bytes from one row to the next: rows are padded to 4 bytes. `width` in pixels, not negative.
/// A 64-bit number, because a file may claim a row that a 32-bit host cannot address.
constexpr uint64_t StrideBytes(int64_t width, int bitsPerPixel) {
  return static_cast<uint64_t>((width * bitsPerPixel + 31) / 32 * 4);
}

/// One pixel of a 24-bit row.
struct RGBrec {
  uint8_t b, g, r;
};

/// One pixel of a 32-bit row.
struct RGBArec {
  uint8_t b, g, r, a;
};

/// Number of pixels of the row types below. It only gives the types a size: rows may be shorter or
/// longer, so a pointer must stay within the width of the bitmap.
inline constexpr int kRowTypePixels = 100001;

/// Rows of 24-bit and of 32-bit pixels, and pointers to them: `PRGBArray` is what
/// `TBitmap::ScanLine` of a pf24bit bitmap points to, `PRGBAarray` that of a pf32bit one.
using TRGBArray = std::array<RGBrec, kRowTypePixels>;
using TRGBAarray = std::array<RGBArec, kRowTypePixels>;
using PRGBArray = TRGBArray*;
using PRGBAarray = TRGBAarray*;

}  // namespace rasterkit
