#pragma once

#include <optional>
#include <string>

#include <rasterkit/dialogs/editor/journal_note.h>
#include <rasterkit/runtime/journal/journal_file.h>

namespace rasterkit {

/// The journal of one window. No call throws: editing goes on where no journal can be written.
class EditJournal {
 public:
  /// `folder`: empty for no journal at all.
  explicit EditJournal(std::string folder) : folder_(std::move(folder)) {}

  /// Takes the newest journal of this file that an ended process left; `page` is preferred where
  /// there are several. Removes damaged ones; those of other versions stay. The journal stays until
  /// Keep or Forget.
  std::optional<JournalNote> Find(const std::string& file, int page);
  /// Leaves what was found for another time.
  void LeaveFound() { found_.reset(); }
  /// Removes what was found.
  void DropFound();

  /// Writes the note in place of the one before, and then removes what was found. Both stay if it
  /// cannot be written.
  void Keep(const JournalNote& note);
  /// Nothing is left to be taken up.
  void Forget();

 private:
  std::string folder_;
  std::optional<JournalFile> found_;
  std::optional<JournalFile> own_;
};

}  // namespace rasterkit
