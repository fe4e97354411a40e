#include <fstream>
#include <iostream>
#include <iterator>

#include <rasterkit/rasterkit.h>

namespace rk = rasterkit;

// replay_recipe RECIPE.json IN OUT [SLOT FILE]...
int main(int count, char** arguments) {
  try {
    std::ifstream file(arguments[1]);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    const rk::Recipe recipe = rk::ReadRecipe(text);
    rk::RecipeSlots slots;  // second pictures
    for (int i = 4; i + 1 < count; i += 2) {
      slots.emplace(arguments[i], rk::Picture::Open(arguments[i + 1]));
    }
    rk::OpenOptions options;
    options.turnsUpright = !recipe.isAsStored;
    // Also strips the other pages of a TIFF file.
    const rk::RecipeOutput output(rk::Picture::Open(arguments[2], options), recipe, slots);
    rk::SaveOptions save = rk::SaveOptionsOf(recipe.save);
    save.type.reset();  // that of the name
    output.Save(arguments[3], save);
  } catch (const rk::Error& error) {  // "/steps/2/percent: 300 is above 100"
    std::cerr << error.what() << "\n";
    return 1;
  }
}
