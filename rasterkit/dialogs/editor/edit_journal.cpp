#include <exception>
#include <filesystem>
#include <system_error>
#include <utility>

#include <rasterkit/dialogs/editor/edit_journal.h>
#include <rasterkit/runtime/files/file_name.h>

namespace rasterkit {
namespace {

/// True if what stands there can never be taken up.
bool IsWorthless(const JournalFile& journal, const std::optional<std::string>& text) {
  if (text) return IsDamagedJournalNote(*text);
  std::error_code error;
  const uintmax_t bytes = std::filesystem::file_size(ToPath(journal.FileName()), error);
  if (error) return error == std::errc::no_such_file_or_directory;
  // Else it could not be read this time.
  return bytes == 0 || bytes > kMostJournalBytes;
}

}  // namespace

std::optional<JournalNote> EditJournal::Find(const std::string& file, int page) {
  LeaveFound();
  if (folder_.empty()) return std::nullopt;
  std::optional<JournalNote> best;
  try {
    for (JournalFile& journal : JournalFile::Abandoned(folder_)) {
      const std::optional<std::string> text = journal.Read();
      std::optional<JournalNote> note = text ? ReadJournalNote(*text) : std::nullopt;
      if (!note) {
        if (IsWorthless(journal, text)) journal.Clear();
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
    // The note before stays: it leads from the same file to most of the work.
  }
}

void EditJournal::Forget() {
  if (own_) own_->Clear();
  own_.reset();
}

}  // namespace rasterkit
