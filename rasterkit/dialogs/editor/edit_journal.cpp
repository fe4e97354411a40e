#include <exception>
#include <utility>

#include <rasterkit/dialogs/editor/edit_journal.h>

namespace rasterkit {

std::optional<JournalNote> EditJournal::Find(const std::string& file, int page) {
  LeaveFound();
  if (folder_.empty()) return std::nullopt;
  std::optional<JournalNote> best;
  try {
    for (JournalFile& journal : JournalFile::Abandoned(folder_)) {
      const std::optional<std::string> text = journal.Read();
      std::optional<JournalNote> note = text ? ReadJournalNote(*text) : std::nullopt;
      if (!note) {
        journal.Clear();
        continue;
      }
      const bool isBetter = !best || (best->page != page && note->page == page);
      if (note->file != file || !isBetter) continue;
      best = std::move(note);
      found_.emplace(std::move(journal));
    }
  } catch (const std::exception&) {
    return std::nullopt;
  }
  return best;
}

void EditJournal::DropFound() {
  if (found_) found_->Clear();
  found_.reset();
}

void EditJournal::Keep(const JournalNote& note) {
  if (folder_.empty()) return;
  try {
    if (!own_) own_.emplace(folder_);
    own_->Write(WriteJournalNote(note));
    DropFound();
  } catch (const std::exception&) {
    // A note that is older than the picture would be taken up as if it were not.
    if (own_) own_->Clear();
  }
}

void EditJournal::Forget() {
  if (own_) own_->Clear();
  own_.reset();
}

}  // namespace rasterkit
