#pragma once

#include <string_view>

namespace rasterkit {

/// Reads the number in a box's text. The first minus sign or digit starts it; after that every
/// digit, wherever it stands, belongs to it, and all else is skipped: "1a5" is 15, "dpi 300" is
/// 300. False, and `value` is as it was, where there is no digit ("-").
///
/// `value` is whole, and cut to the range of 32 bits. With `foldAngle` whole turns are taken off:
/// 360 while it is above 359.9, and -360 while it is below -360.1. So 360 becomes 0, while -360
/// stays.
bool ParseComboNumber(std::string_view text, double& value, bool foldAngle);

}  // namespace rasterkit
