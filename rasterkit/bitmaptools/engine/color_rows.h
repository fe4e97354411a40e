#pragma once

#include <array>
#include <cstdint>
#include <functional>

namespace rasterkit {

class TBitmap;

namespace detail {

/// Result of contrast for each channel value.
std::array<uint8_t, 256> ContrastTable(int32_t percent);

/// Result of darkening (percent below 0) for each channel value.
std::array<uint8_t, 256> DarkenTable(int32_t percent);

/// Brightens or darkens one color by -100 to 100 percent.
void BrightenColor(int32_t percent, uint8_t& red, uint8_t& green, uint8_t& blue);

/// Tells whether a color is neither black nor white. White has red 254 or 255, green and blue 255.
constexpr bool IsNotBlackOrWhite(uint8_t red, uint8_t green, uint8_t blue) {
  if (red >= 254 && green == 255 && blue == 255) return false;
  return red != 0 || green != 0 || blue != 0;
}

/// Colors of a row that do not change.
enum class Spared { none, blackAndWhite };

/// Asked before each row. False ends the operation; empty means always true.
using KeepsGoing = std::function<bool()>;

/// Changes rows `first` to `last` of a pf24bit bitmap. Throws RangeError if the last row does not
/// exist, and TimeLimitError if the time of the call is over, after changing the rows before.
void ContrastRows(TBitmap& bitmap, int32_t first, int32_t last, int32_t percent, Spared spared,
                  const KeepsGoing& keepsGoing = {});
/// Brightens or darkens rows likewise. No-op for 0 percent and outside -100 to 100.
void BrightenRows(TBitmap& bitmap, int32_t first, int32_t last, int32_t percent, Spared spared,
                  const KeepsGoing& keepsGoing = {});

}  // namespace detail
}  // namespace rasterkit
