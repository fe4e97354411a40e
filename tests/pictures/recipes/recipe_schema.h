#pragma once

#include <string>

namespace rasterkit::test {

/// The JSON Schema of recipes, from the keys that the reader knows.
std::string RecipeSchema();

}  // namespace rasterkit::test
