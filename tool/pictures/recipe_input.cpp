#include "tool/pictures/recipe_input.h"

#include <algorithm>

#include <fmt/format.h>

#include <rasterkit/pictures/recipes/recipe_text.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/stream.h>

#include "tool/arguments/near_word.h"
#include "tool/command/exit_code.h"
#include "tool/command/interruption.h"
#include "tool/command/standard_input.h"
#include "tool/pictures/change_picture.h"

namespace rasterkit::tool {
namespace {

/// The text of a file, and a little more than the most that a recipe may have.
std::string TextOf(const std::string& file) {
  const std::string name = ReadableName(file);
  const InterruptibleInput waiting(name);
  TFileStream stream(name);
  std::string text(kMostRecipeBytes + 1, '\0');
  size_t count = 0;
  while (count < text.size()) {
    const size_t more =
        stream.Read({reinterpret_cast<uint8_t*>(text.data()) + count, text.size() - count});
    if (more == 0) break;
    count += more;
  }
  text.resize(count);
  return text;
}

bool Has(const std::vector<std::string>& slots, const std::string& slot) {
  return std::find(slots.begin(), slots.end(), slot) != slots.end();
}

}  // namespace

Recipe LoadRecipe(const std::string& file, bool anyRevision) {
  try {
    return ReadRecipe(TextOf(file), {anyRevision});
  } catch (const Error& error) {
    throw Failure(exitInputUnreadable, file + ": " + error.Reason());
  }
}

std::optional<SlotFile> ParseSlotFile(const std::string& text) {
  const size_t equals = text.find('=');
  if (equals == std::string::npos || equals == 0 || equals + 1 == text.size()) return std::nullopt;
  return SlotFile{text.substr(0, equals), text.substr(equals + 1)};
}

std::string CheckSlotFile(const std::string& text) {
  if (ParseSlotFile(text)) return {};
  return "must be SLOT=FILE, such as over=plan.png, not '" + text + "'";
}

void CheckSlots(const Recipe& recipe, const std::vector<SlotFile>& files) {
  const std::vector<std::string> slots = SlotsOf(recipe);
  std::vector<std::string> filled;
  for (const SlotFile& file : files) {
    if (!Has(slots, file.slot)) {
      const std::string known =
          slots.empty() ? "it has none" : fmt::format("it has {}", fmt::join(slots, ", "));
      throw Failure(exitWrongUsage,
                    fmt::format("--with {}={}: the recipe has no slot '{}'; {}{}", file.slot,
                                file.file, file.slot, known, DidYouMean(file.slot, slots)));
    }
    if (Has(filled, file.slot)) {
      throw Failure(exitWrongUsage,
                    fmt::format("--with is given twice for the slot '{}'", file.slot));
    }
    filled.push_back(file.slot);
  }
  for (const std::string& slot : slots) {
    if (Has(filled, slot)) continue;
    throw Failure(exitWrongUsage,
                  fmt::format("the recipe needs a second picture: --with {}=FILE", slot));
  }
}

RecipeSlots OpenSlots(const Recipe& recipe, const std::vector<SlotFile>& files) {
  PictureOptions reading;
  reading.isAsStored = recipe.isAsStored;
  RecipeSlots slots;
  for (const SlotFile& file : files) slots.emplace(file.slot, OpenPicture(file.file, reading));
  return slots;
}

}  // namespace rasterkit::tool
