#pragma once

#include <optional>
#include <string>
#include <vector>

#include <rasterkit/pictures/recipes/apply_recipe.h>
#include <rasterkit/pictures/recipes/recipe.h>

namespace rasterkit::tool {

/// Reads the file of a recipe. Throws Failure(exitInputUnreadable), with line and column or the
/// path of the value.
Recipe LoadRecipe(const std::string& file, bool anyRevision);

/// The file of a slot: "over=plan.png".
struct SlotFile {
  std::string slot, file;
};

/// Nothing for other texts.
std::optional<SlotFile> ParseSlotFile(const std::string& text);
std::string CheckSlotFile(const std::string& text);

/// Throws Failure(exitWrongUsage) if a slot of the recipe has no file, or several, or if a file is
/// for a slot that the recipe does not have.
void CheckSlots(const Recipe& recipe, const std::vector<SlotFile>& files);

/// Opens the pictures of the slots. Throws Failure(exitInputUnreadable).
RecipeSlots OpenSlots(const Recipe& recipe, const std::vector<SlotFile>& files);

}  // namespace rasterkit::tool
