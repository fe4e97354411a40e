// Recipes: texts of JSON that name steps. What is read can be written and is then the same, and
// its steps fit a small picture or are refused.

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <utility>

#include <rasterkit/pictures/recipes/apply_recipe.h>
#include <rasterkit/pictures/recipes/recipe_text.h>
#include <rasterkit/pictures/recipes/steps_of_picture.h>
#include <rasterkit/runtime/errors.h>

#include "fuzz/require.h"

using namespace rasterkit;

namespace {

/// Each step costs what those before it cost.
constexpr size_t kMostApplied = 40;

Picture PlainPicture() {
  Raster rows(pf8bit, 9, 7);
  rows.palette = DefaultPalette(pf8bit);
  return Picture::Of(std::make_unique<TBitmap>(std::move(rows)));
}

/// With a resolution and a position.
Picture SmallPicture() {
  MetadataEdit edit;
  edit.resolution = Resolution{200, 100};
  Picture picture = PlainPicture();
  return picture.Edit(edit).Apply(PlaceStep{{2, 0, 0, -2, 10, 20}});
}

/// True if the steps fit.
bool Fits(Picture& picture, const Recipe& recipe) {
  RecipeSlots slots;
  for (const std::string& slot : SlotsOf(recipe)) slots.emplace(slot, PlainPicture());
  const size_t before = picture.Steps().size();
  try {
    ApplyRecipe(picture, recipe, slots);
    return true;
  } catch (const Error& error) {
    Require(!error.Reason().empty());
    Require(picture.Steps().size() == before);
    return false;
  }
}

void Take(const Recipe& recipe) {
  const std::string text = WriteRecipe(recipe);
  Require(WriteRecipe(ReadRecipe(text)) == text);
  SaveOptionsOf(recipe.save);
  if (recipe.steps.size() > kMostApplied) return;
  Picture picture = SmallPicture();
  if (!Fits(picture, recipe)) return;
  Require(picture.Width() > 0 && picture.Height() > 0);
  // The steps that were made are a recipe again.
  Recipe again;
  again.steps = RecipeStepsOf(std::span(picture.Steps()).subspan(2),
                              [](const Step&) { return std::string("other"); });
  Require(!WriteRecipe(again).empty());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  try {
    Take(ReadRecipe(text, {.anyRevision = true}));
  } catch (const FormatError& error) {
    Require(!error.Reason().empty());
  }
  return 0;
}
