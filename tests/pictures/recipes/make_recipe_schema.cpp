// Prints the JSON Schema of recipes: make_recipe_schema > docs/recipe.schema.json

#include <cstdio>

#include "tests/pictures/recipes/recipe_schema.h"

int main() {
  std::fputs(rasterkit::test::RecipeSchema().c_str(), stdout);
  return 0;
}
