#pragma once

#include <rasterkit/pictures/recipes/recipe.h>

#include "tool/command/output_options.h"

namespace rasterkit::tool {

/// What a recipe says about writing a picture as these options do; without the type. It has no
/// words for some strips: `metadata` is then Keep::all.
RecipeSave RecipeSaveOf(const PictureOptions& options);

/// Adds what a recipe says about writing to options that do not say it themselves. The strips of
/// both count.
void AddSave(PictureOptions& options, const RecipeSave& save);

}  // namespace rasterkit::tool
