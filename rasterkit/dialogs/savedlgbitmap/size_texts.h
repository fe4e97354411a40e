#pragma once

#include <string>
#include <string_view>

/// Sizes as the settings window shows them, whatever the process's locale is.
namespace rasterkit {

struct BitmapSizeText {
  std::string number;
  /// A key of the resource table: "[byte]", "[kB]" or "[MB]".
  std::string_view unit;
};

/// The memory that the pixels take without their rows' padding: up to 10,000 in bytes, up to
/// 1,000,000 in thousands, above in millions with two decimals (see DecimalMark). Computed in
/// single precision; halves of what is written go to the even digit.
BitmapSizeText TextOfBitmapSize(int bits, double width, double height);

/// Whole millimetres, with no more than 7 digits that are not 0.
std::string TextOfMillimetres(float millimetres);

}  // namespace rasterkit
