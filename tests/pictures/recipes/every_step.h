#pragma once

#include <random>
#include <vector>

#include <rasterkit/pictures/recipes/recipe.h>

/// Steps of every kind for tests.
namespace rasterkit::test {

/// Random values of each field within its range, in random number. The slots are "mark", "colors"
/// and "stated".
RecipeStep RandomStep(std::mt19937& random);
Recipe RandomRecipe(std::mt19937& random);

/// One step of each kind that fits pictures of at least 40 x 30 pixels with a position and a
/// resolution.
std::vector<RecipeStep> EveryStep();

/// Compares all fields. A field that is not compared does not compile.
bool IsSame(const RecipeStep& a, const RecipeStep& b);
bool IsSame(const RecipeSave& a, const RecipeSave& b);
bool IsSame(const Recipe& a, const Recipe& b);

}  // namespace rasterkit::test
