#pragma once

#include <optional>
#include <string>

#include <rasterkit/raster/pixel_format.h>

namespace rasterkit::tool {

/// Reads a color: six hexadecimal digits RRGGBB, with or without "#" before them, or a name in any
/// case. Nothing for any other text.
std::optional<TColor> ParseColor(const std::string& text);

/// Check of options that are colors. Says what is wrong, or returns an empty string.
std::string CheckColor(const std::string& text);

/// The color of a text that CheckColor accepts.
TColor ColorOf(const std::string& text);

/// The digits RRGGBB of a color.
std::string DigitsOf(TColor color);

/// "black, gray, ...": the names, for the help.
std::string ColorNames();

}  // namespace rasterkit::tool
