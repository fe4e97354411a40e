#pragma once

#include <map>
#include <string>
#include <vector>

#include <rasterkit/pictures/picture.h>
#include <rasterkit/pictures/recipes/recipe.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// The pictures of a recipe's slots by name.
using RecipeSlots = std::map<std::string, Picture>;

/// Adds a step of a recipe to a picture. Throws RangeError, with the picture unchanged, if it does
/// not fit: a rectangle outside, millimeters without a resolution, map units without a position, a
/// slot that is not filled.
RASTERKIT_EXPORT void ApplyRecipeStep(Picture& picture, const RecipeStep& step,
                                      const RecipeSlots& slots = {});

/// The slots that the steps name, each once, in the order of the steps.
RASTERKIT_EXPORT std::vector<std::string> SlotsOf(const Recipe& recipe);

/// Adds all steps and what `recipe.save` says about depth and metadata. Throws RangeError as above
/// with the number of the step ("/steps/2: ..."), counted from 0; other errors of a step keep their
/// kind and get the number too. The picture is unchanged then.
RASTERKIT_EXPORT void ApplyRecipe(Picture& picture, const Recipe& recipe,
                                  const RecipeSlots& slots = {});

/// Adds what `save` says about depth and metadata: what is removed of the metadata first, then the
/// depth. Transparent parts that the depth cannot hold are painted with `save.background`.
RASTERKIT_EXPORT void ApplySaving(Picture& picture, const RecipeSave& save);

/// The edit that removes what is not kept; empty for `all`.
RASTERKIT_EXPORT MetadataEdit EditOf(RecipeSave::Keep keep);

/// Gives a picture another depth. Transparent parts that it cannot hold are painted with the
/// background first; true if there were any.
RASTERKIT_EXPORT bool ApplyDepth(Picture& picture, int bits, TColor background = clWhite);

/// The options of a save that `save` states; depth and metadata are steps of the picture.
RASTERKIT_EXPORT SaveOptions SaveOptionsOf(const RecipeSave& save);

/// The rectangle of pixels that a crop keeps in this picture. Throws RangeError.
RASTERKIT_EXPORT CropStep PixelsOf(const RecipeCrop& crop, const Picture& picture);

/// The pixels of the part of a rectangle that is inside the picture, whatever `outside` says;
/// nothing if there is none. Throws RangeError if the rectangle has no area or the picture does not
/// know its unit.
RASTERKIT_EXPORT std::optional<CropStep> PixelsInside(const RecipeCrop& crop,
                                                      const Picture& picture);

/// The size that a resize leads to. Throws RangeError.
RASTERKIT_EXPORT ResizeStep PixelsOf(const RecipeResize& resize, const Picture& picture);

}  // namespace rasterkit
