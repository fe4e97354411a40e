#pragma once

#include <string>
#include <string_view>

/// Sizes as the settings window shows them, independent of the locale of the process.
namespace rasterkit {

struct BitmapSizeText {
  std::string number;
  /// A key of the resource table: "[byte]", "[kB]" or "[MB]".
  std::string_view unit;
};

/// Returns the memory of the pixels without row padding: up to 10,000 in bytes, up to 1,000,000 in
/// thousands, above in millions with two decimals (see DecimalMark). Computed in single precision
/// and rounded, halves to even.
BitmapSizeText TextOfBitmapSize(int bits, double width, double height);

/// Returns whole millimeters with at most 7 significant digits.
std::string TextOfMillimeters(float millimeters);

}  // namespace rasterkit
