#pragma once

#include <optional>
#include <string>

#include <rasterkit/pictures/reading/picture_size.h>
#include <rasterkit/pictures/recipes/recipe.h>

namespace rasterkit::tool {

/// Parses a size as typed: pixels as in PictureSize, or percent of the picture ("50%", "50%x25%").
std::optional<RecipeResize> ParseResize(const std::string& text);

/// Check of options that are sizes in pixels. Says what is wrong, or returns an empty string.
std::string CheckSize(const std::string& text);

/// The same for sizes in pixels or percent.
std::string CheckSizeOrPercent(const std::string& text);

}  // namespace rasterkit::tool
