#pragma once

#include <cstdint>

#include <rasterkit/raster/pixel_format.h>

/// 15- and 16-bit pixels: little-endian words of packed channels. A channel is widened to full
/// scale: its high bits are repeated below it, so 31 of 5 bits and 63 of 6 bits become 255. Image
/// readers widen the words of bitmap files in the same way, and dropping the low bits gives the
/// word back.
namespace rasterkit {

inline uint16_t LoadWord(const uint8_t* bytes) {
  return static_cast<uint16_t>(bytes[0] | bytes[1] << 8);
}

inline void StoreWord(uint8_t* bytes, uint16_t word) {
  bytes[0] = static_cast<uint8_t>(word);
  bytes[1] = static_cast<uint8_t>(word >> 8);
}

/// A channel of 5 bits, or the low 5 bits of a word, as 8 bits.
constexpr uint8_t Widen5(int channel) {
  return static_cast<uint8_t>((channel & 0x1F) << 3 | (channel & 0x1F) >> 2);
}

/// A channel of 6 bits, or the low 6 bits of a word, as 8 bits.
constexpr uint8_t Widen6(int channel) {
  return static_cast<uint8_t>((channel & 0x3F) << 2 | (channel & 0x3F) >> 4);
}

/// Color 0x00BBGGRR of a word rrrrrggg gggbbbbb.
constexpr TColor ColorFromWord565(uint16_t word) {
  return RGB(Widen5(word >> 11), Widen6(word >> 5), Widen5(word));
}

/// Color 0x00BBGGRR of a word 0rrrrrgg gggbbbbb; the highest bit is ignored.
constexpr TColor ColorFromWord555(uint16_t word) {
  return RGB(Widen5(word >> 10), Widen5(word >> 5), Widen5(word));
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
