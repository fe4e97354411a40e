#pragma once

#include <functional>
#include <span>
#include <string>
#include <vector>

#include <rasterkit/pictures/picture.h>
#include <rasterkit/pictures/recipes/recipe.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Names the slot of what a step takes from a second picture: a CombineStep, a ChangeStep with
/// UsePalette, or an EditStep with a copy of metadata. See RecipeCombine for names.
using SlotNaming = std::function<std::string(const Step& step)>;

/// The steps of a recipe that do to any picture what these steps do: crops and sizes are in pixels.
/// Throws UnsupportedError for pixels of a window or a program (PixelsStep), which no recipe holds,
/// for a second picture that has steps of its own besides one stretch, and, if `slotOf` is empty,
/// for steps that need a slot.
RASTERKIT_EXPORT std::vector<RecipeStep> RecipeStepsOf(std::span<const Step> steps,
                                                       const SlotNaming& slotOf = {});

/// The same for all steps of a picture but those of its orientation.
RASTERKIT_EXPORT std::vector<RecipeStep> RecipeStepsOf(const Picture& picture,
                                                       const SlotNaming& slotOf = {});

}  // namespace rasterkit
