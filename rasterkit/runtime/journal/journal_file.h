#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/files/system_file.h>

/// Notes of work that is not saved yet, for the next start after a crash.
namespace rasterkit {

/// The folder of journals in the user's state folder: "$XDG_STATE_HOME/rasterkit/journal", or
/// "~/.local/state/rasterkit/journal". Empty if neither is known.
RASTERKIT_EXPORT std::string JournalFolder();

/// Most bytes of a journal.
inline constexpr size_t kMostJournalBytes = size_t{2} << 20;

/// A journal that this object alone holds: a file NAME.json for its user alone, replaced as a
/// whole, and a file NAME.lock that the system unlocks when the process ends, however it ends. The
/// name has the number of the process.
class RASTERKIT_EXPORT JournalFile {
 public:
  /// A new journal. Makes the folder, for its user alone. Throws FileError.
  explicit JournalFile(std::string folder);
  /// Releases the journal; its bytes, if there are any, stay for the next start.
  ~JournalFile();
  JournalFile(JournalFile&& other) noexcept = default;
  JournalFile& operator=(JournalFile&&) = delete;

  /// The journals that no process holds, the newest first; they are held afterwards. At most 100:
  /// older ones are removed, and what is no journal stays as it is. Never throws for what it finds
  /// in the folder.
  static std::vector<JournalFile> Abandoned(const std::string& folder);

  /// Full name of the file with the bytes.
  std::string FileName() const;
  /// Nothing if there are no bytes, or more than kMostJournalBytes.
  std::optional<std::string> Read() const;
  /// Throws FileError, also for more than kMostJournalBytes; what was written before stays then.
  void Write(const std::string& bytes);
  /// Removes the bytes; the journal can be written again.
  void Clear() noexcept;

 private:
  JournalFile(std::string folder, std::string name, detail::SystemFile lock)
      : folder_(std::move(folder)), name_(std::move(name)), lock_(std::move(lock)) {}

  static detail::SystemFile Lock(const std::string& fileName, int flags);

  std::string folder_, name_;
  detail::SystemFile lock_;
};

}  // namespace rasterkit
