#pragma once

#include <cstdint>

#include <rasterkit/raster/pixel_format.h>

/// 15- and 16-bit pixels: little-endian words of packed channels. A channel is widened by a shift
/// only, so its maximum is 248 or 252; only the word of all ones is pure white.
namespace rasterkit {

inline uint16_t LoadWord(const uint8_t* bytes) {
  return static_cast<uint16_t>(bytes[0] | bytes[1] << 8);
}

inline void StoreWord(uint8_t* bytes, uint16_t word) {
  bytes[0] = static_cast<uint8_t>(word);
  bytes[1] = static_cast<uint8_t>(word >> 8);
}

/// Color 0x00BBGGRR of a word rrrrrggg gggbbbbb.
constexpr TColor ColorFromWord565(uint16_t word) {
  if (word == 0xFFFF) return clWhite;
  return RGB(static_cast<uint8_t>(word >> 11 << 3), static_cast<uint8_t>((word >> 5 & 0x3F) << 2),
             static_cast<uint8_t>((word & 0x1F) << 3));
}

/// Color 0x00BBGGRR of a word 0rrrrrgg gggbbbbb; the highest bit is ignored.
constexpr TColor ColorFromWord555(uint16_t word) {
  if ((word & 0x7FFF) == 0x7FFF) return clWhite;
  return RGB(static_cast<uint8_t>((word >> 10 & 0x1F) << 3),
             static_cast<uint8_t>((word >> 5 & 0x1F) << 3),
             static_cast<uint8_t>((word & 0x1F) << 3));
}

/// Word of a color 0x00BBGGRR: the high bits of each channel.
constexpr uint16_t Word565FromColor(TColor color) {
  return static_cast<uint16_t>((color & 0xF8) << 8 | (color >> 8 & 0xFC) << 3 |
                               (color >> 19 & 0x1F));
}

constexpr uint16_t Word555FromColor(TColor color) {
  return static_cast<uint16_t>((color & 0xF8) << 7 | (color >> 8 & 0xF8) << 2 |
                               (color >> 19 & 0x1F));
}

}  // namespace rasterkit
