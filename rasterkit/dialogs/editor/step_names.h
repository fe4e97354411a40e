#pragma once

#include <string>
#include <vector>

#include <rasterkit/pictures/picture.h>
#include <rasterkit/pictures/recipes/recipe.h>

namespace rasterkit {

/// What a step is called in the list: "Turn left", "Crop to 800 x 600". `after` is the picture with
/// the step.
std::string StepName(const RecipeStep& step, const Picture& after);

}  // namespace rasterkit
