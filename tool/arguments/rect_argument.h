#pragma once

#include <optional>
#include <string>

#include <rasterkit/pictures/recipes/recipe.h>

namespace rasterkit::tool {

/// Parses "X,Y,W,H": left, top, width, height, each a whole number of pixels, or each a percentage
/// ("10%,10%,80%,80%").
std::optional<RecipeCrop> ParseRect(const std::string& text);

/// Check of options that are rectangles. Says what is wrong, or returns an empty string.
std::string CheckRect(const std::string& text);

/// Parses "MINX,MINY,MAXX,MAXY" in map units; each minimum is below its maximum.
std::optional<RecipeCrop> ParseMapRect(const std::string& text);

std::string CheckMapRect(const std::string& text);

}  // namespace rasterkit::tool
