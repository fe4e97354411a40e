// Writes the seeds of the fuzzer of recipes.
// usage: make_recipe_seeds FOLDER

#include <cstdio>
#include <fstream>
#include <random>
#include <string>

#include <rasterkit/pictures/recipes/recipe_text.h>

#include "tests/pictures/recipes/every_step.h"

using namespace rasterkit;

namespace {

void Save(const std::string& name, const std::string& text) {
  std::ofstream out(name, std::ios::binary);
  out << text;
  if (!out) std::fprintf(stderr, "%s was not written\n", name.c_str());
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) return 2;
  const std::string folder = std::string(arguments[1]) + "/";
  for (const RecipeStep& step : test::EveryStep()) {
    Save(folder + RecipeStepName(step) + ".json", WriteRecipe({"seed", {step}, {}}));
  }
  Save(folder + "every.json", WriteRecipe({"seed", test::EveryStep(), {}}));
  std::mt19937 random(1);
  constexpr int kRandom = 6;
  for (int i = 0; i < kRandom; ++i) {
    Save(folder + "random-" + std::to_string(i + 1) + ".json",
         WriteRecipe(test::RandomRecipe(random)));
  }
  Save(folder + "least.json", R"({"schema":1,"steps":[]})");
  Save(folder + "twice.json", R"({"schema":1,"steps":[],"steps":[]})");
  Save(folder + "deep.json", R"({"schema":1,"steps":[[[[[[[[[[]]]]]]]]]]})");
  Save(folder + "huge.json",
       R"({"schema":1,"steps":[{"step":"rotate","revision":2,"degrees":1e300}]})");
  return 0;
}
