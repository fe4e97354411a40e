#pragma once

#include <array>
#include <cstdint>

namespace rasterkit {

class TBitmap;

namespace detail {

/// What contrast makes of each channel value.
std::array<uint8_t, 256> ContrastTable(int32_t percent);

/// What darkening (percent below 0) makes of each channel value.
std::array<uint8_t, 256> DarkenTable(int32_t percent);

/// One color, red first, brightened or darkened by -100 to 100 percent.
void BrightenColor(int32_t percent, uint8_t& red, uint8_t& green, uint8_t& blue);

/// False for black and for white; a red of 254 counts as white already, while green and blue must
/// be 255.
constexpr bool IsNotBlackOrWhite(uint8_t red, uint8_t green, uint8_t blue) {
  if (red >= 254 && green == 255 && blue == 255) return false;
  return red != 0 || green != 0 || blue != 0;
}

/// Which colors of a row stay as they are.
enum class Spared { none, blackAndWhite };

/// Changes rows `first` to `last` of a pf24bit bitmap. Throws RangeError when the last row does not
/// exist, after doing those that do.
void ContrastRows(TBitmap& bitmap, int32_t first, int32_t last, int32_t percent, Spared spared);
/// Percentages outside -100 to 100, and 0, change nothing.
void BrightenRows(TBitmap& bitmap, int32_t first, int32_t last, int32_t percent, Spared spared);

}  // namespace detail
}  // namespace rasterkit
