#pragma once

#include <cstdint>

namespace rasterkit {

class TBitmap;

/// How pixels are packed at each bit depth.
namespace detail {

/// Splits a byte of two 4-bit pixels. Both outputs are the high nibble, so odd pixels of a 4-bit
/// bitmap read as their even neighbor; all functions for single 4-bit pixels share this behavior.
inline void SplitNibbles(uint8_t value, uint8_t& high, uint8_t& low) {
  high = value >> 4;
  low = value >> 4;
}

/// Packs two 4-bit pixels. `low` is not masked: its high bits spill into the high nibble.
inline void JoinNibbles(uint8_t& target, uint8_t high, uint8_t low) {
  target = static_cast<uint8_t>(low | (high << 4));
}

/// Expands a 5-6-5 word by times 8, 4, 8; only 0xFFFF gives pure white.
inline void Word565ToRGB(uint16_t word, uint8_t& red, uint8_t& green, uint8_t& blue) {
  const bool white = word == 0xFFFF;
  red = white ? 255 : static_cast<uint8_t>((word >> 11) * 8);
  green = white ? 255 : static_cast<uint8_t>(((word >> 5) & 0x3F) * 4);
  blue = white ? 255 : static_cast<uint8_t>((word & 0x1F) * 8);
}

/// Packs channels (0 to 255) into a 5-6-5 word by dropping their low bits.
inline uint16_t RGBToWord565(uint16_t red, uint16_t green, uint16_t blue) {
  if (red == 255 && green == 255 && blue == 255) return 0xFFFF;
  return static_cast<uint16_t>(((red >> 3) << 11) | ((green >> 2) << 5) | (blue >> 3));
}

/// Sets or clears pixel `n` (not negative) of a 1-bit row.
inline void SetMonoBit(int32_t n, uint8_t* row, bool value) {
  const int mask = 128 >> (n % 8);
  uint8_t& byte = row[n / 8];
  byte = static_cast<uint8_t>(value ? byte | mask : byte & ~mask);
}

/// Tells whether the pixel at `position` (0 the first, 7 the last) of a byte of a 1-bit row equals
/// `value`. True for positions outside 0 to 7.
inline bool TestMonoBit(int32_t position, uint8_t byte, bool value) {
  const int mask = position < 0 || position > 7 ? 0 : 128 >> position;
  return (byte & mask) == (value ? mask : 0);
}

/// Gets the bytes per pixel (0 for pf1bit and pf4bit) and, if a pixel takes less than a byte, its
/// bits (else 0).
///
/// pfDevice and pfCustom have no size of their own: their stored bits count, and the bitmap is
/// switched to pf24bit if those are three bytes, else to pf32bit. Returns false, with the bitmap
/// unchanged and `bytesPerPixel` 0, if the stored bits are not whole bytes or the format is
/// unknown.
bool GetPixelByteInfo(TBitmap& bitmap, int32_t& bytesPerPixel, int32_t& bitsPerPixel);

/// Converts bits to whole bytes in `bytesPerPixel`. Returns false if they are more than a byte but
/// not whole bytes.
bool BytesOfBits(int32_t bits, int32_t& bytesPerPixel);

}  // namespace detail
}  // namespace rasterkit
