#pragma once

#include <string>

#include <rasterkit/pictures/recipes/recipe.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

inline constexpr size_t kMostRecipeSteps = 1000;
inline constexpr size_t kMostRecipeBytes = 1 << 20;

struct RecipeReading {
  /// Steps whose result has changed since the recipe was made are taken as they are today.
  bool anyRevision = false;
};

/// Reads a recipe. Throws FormatError: faults of syntax with line and column, others with the path
/// of the value ("/steps/2/percent: 300 is above 100").
RASTERKIT_EXPORT Recipe ReadRecipe(const std::string& json, const RecipeReading& reading = {});

/// The name of the step's kind in recipes: "crop".
RASTERKIT_EXPORT const char* RecipeStepName(const RecipeStep& step);

/// Writes a recipe: the same bytes for the same recipe, indented by two spaces. Values that are as
/// in a new step are omitted. Throws RangeError, with the path of the value, for what ReadRecipe
/// would refuse.
RASTERKIT_EXPORT std::string WriteRecipe(const Recipe& recipe);

}  // namespace rasterkit
