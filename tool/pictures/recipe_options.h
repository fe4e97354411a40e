#pragma once

#include <vector>

#include <rasterkit/metadata/edit/metadata_edit.h>
#include <rasterkit/pictures/recipes/recipe.h>

#include "tool/command/output_options.h"

namespace rasterkit::tool {

/// What a recipe says about writing a picture as these options do; without the type. It has no
/// words for some strips: `metadata` is then Keep::all.
RecipeSave RecipeSaveOf(const PictureOptions& options);

/// Adds what a recipe says about writing to options that do not say it themselves. The strips of
/// both count.
void AddSave(PictureOptions& options, const RecipeSave& save);

/// Adds what `edit` strips and removes.
void AddStrips(MetadataEdit& strips, const MetadataEdit& edit);

/// The strips in steps of a recipe: no page of a file may keep what they remove.
MetadataEdit StripsIn(const std::vector<RecipeStep>& steps);

}  // namespace rasterkit::tool
