#pragma once

#include <cstdint>

#include <rasterkit/drawing/ink/drawing_modes.h>

/// Bitwise raster operations on rows of 32-bit pixels.
namespace rasterkit::detail {

/// The truth table of an operation: bit (4 brush + 2 source + picture) is the result.
using TernaryCode = uint8_t;

inline constexpr TernaryCode kCopyBrush = 0xF0;
inline constexpr TernaryCode kCopySource = 0xCC;
inline constexpr TernaryCode kInvertPicture = 0x55;

constexpr TernaryCode CodeOf(uint32_t rop3) {
  return static_cast<TernaryCode>(rop3 >> 16);
}

/// Returns the operation that applies `rop` with the brush as the pen; invalid numbers copy.
constexpr TernaryCode CodeOf(Rop2 rop) {
  const auto number = static_cast<uint32_t>(rop);
  if (number < 1 || number > 16) return kCopyBrush;
  const uint32_t table = number - 1;
  const uint32_t withoutBrush = table & 3, withBrush = table >> 2;
  return static_cast<TernaryCode>(withoutBrush * 0x05 | withBrush * 0x50);
}

constexpr bool NeedsBrush(TernaryCode code) {
  return (code >> 4) != (code & 0x0F);
}
constexpr bool NeedsSource(TernaryCode code) {
  return ((code >> 2) & 0x33) != (code & 0x33);
}
constexpr bool NeedsPicture(TernaryCode code) {
  return ((code >> 1) & 0x55) != (code & 0x55);
}

/// Computes picture = operation(brush, source, picture) for all 32 bits of `count` pixels.
void TernaryRow(TernaryCode code, const uint32_t* brush, const uint32_t* source, uint32_t* picture,
                int count);

/// Mixes `drawn` into the picture: round((drawn c + picture (255 - c)) / 255) for each byte, where
/// c is the coverage of the pixel.
void MixRow(const uint32_t* drawn, const uint8_t* coverage, uint32_t* picture, int count);

}  // namespace rasterkit::detail
