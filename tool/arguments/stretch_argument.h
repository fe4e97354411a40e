#pragma once

#include <optional>
#include <string>

#include <rasterkit/raster/number_stretch.h>

namespace rasterkit::tool {

/// Reads "minmax", "percent P", "fixed A,B" or "full"; a colon may stand for the blank. Nothing for
/// any other text, a percentage outside 0 to less than 50, and A equal to B.
std::optional<NumberStretch> ParseStretch(const std::string& text);

/// Says what is wrong with the text; nothing if it can be read.
std::string CheckStretch(const std::string& text);

}  // namespace rasterkit::tool
