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
  /// Full name of the file that is to be written; empty for the name that is suggested.
  std::string target;
  Recipe recipe;
};

/// Lines "KEY VALUE", an empty line, and the recipe as JSON.
std::string WriteJournalNote(const JournalNote& note);

/// Nothing if the text is no such note, or one that this version cannot read.
std::optional<JournalNote> ReadJournalNote(const std::string& text);

/// True if no version can read it: it is no note, or cut. False for a note with steps, keys or
/// revisions of another version, which may be able to.
bool IsDamagedJournalNote(const std::string& text);

}  // namespace rasterkit
