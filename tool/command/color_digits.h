#pragma once

#include <string>

#include <rasterkit/raster/pixel_format.h>

namespace rasterkit::tool {

/// Check of options that are colors: six hexadecimal digits RRGGBB. Says what is wrong, or returns
/// an empty string.
std::string CheckColor(const std::string& text);

/// The color of six hexadecimal digits RRGGBB.
TColor ColorOf(const std::string& digits);

}  // namespace rasterkit::tool
