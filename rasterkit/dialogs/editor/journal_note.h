#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include <rasterkit/pictures/recipes/recipe.h>

namespace rasterkit {

/// What a journal says: the steps of a picture that are not saved.
struct JournalNote {
  /// Full name of the picture's file, its size and time of change when it was opened.
  std::string file;
  uint64_t bytes = 0;
  int64_t changed = 0;
  int page = 1;
  /// Resolution of a PDF page or a metafile; 0 for other pictures.
  double dpi = 0;
  /// Steps that are done; the others of the recipe can be done again.
  size_t place = 0;
  Recipe recipe;
};

/// Lines "KEY VALUE", an empty line, and the recipe as JSON.
std::string WriteJournalNote(const JournalNote& note);

/// Nothing if the text is no such note, or damaged.
std::optional<JournalNote> ReadJournalNote(const std::string& text);

}  // namespace rasterkit
