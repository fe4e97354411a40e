#pragma once

#include <string_view>

namespace rasterkit {

/// Reads the number in the text of a box. It starts at the first minus sign or digit; all following
/// digits belong to it and other characters are skipped: "1a5" is 15, "dpi 300" is 300. Returns
/// false and does not change `value` if there is no digit ("-").
///
/// `value` is an integer, clamped to 32 bits. With `foldAngle` whole turns are removed: 360 is
/// subtracted while it is above 359.9, and added while it is below -360.1. So 360 becomes 0, and
/// -360 stays.
bool ParseComboNumber(std::string_view text, double& value, bool foldAngle);

}  // namespace rasterkit
