#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace rasterkit::detail {

/// Reads a number as XMP writes them: "0.25", "-1", "300/1". Nothing for other texts and for
/// fractions by zero. The locale has no say.
std::optional<double> XmpNumber(std::string_view text);

/// Writes a number with up to six digits behind the point, without zeros at the end.
std::string XmpText(double value);

/// Writes a fraction: "300/1", "725932/10000".
std::string XmpFraction(double value);

}  // namespace rasterkit::detail
