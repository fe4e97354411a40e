#pragma once

#include <exception>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include <rasterkit/pictures/picture.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

namespace detail {
struct FileParts;
}

/// A picture that is written but does not have its name yet, for programs that save many: the
/// targets stay as they were until `Commit`. Without it the new files are deleted.
class RASTERKIT_EXPORT PendingSave {
 public:
  /// Does all of Picture::Save but the last step. Throws as it does.
  PendingSave(const Picture& picture, const std::string& file, const SaveOptions& options = {},
              const Run& run = {});
  /// The same for the pages of a document; see Document::Prepare.
  PendingSave(const detail::FileParts& parts, const std::string& file, const SaveOptions& options,
              const Run& run);
  ~PendingSave();
  PendingSave(PendingSave&&) noexcept;

  const rasterkit::Report& Report() const;
  /// Gives the files their names. Throws FileError or FileExistsError; the old files are then there
  /// as before, except with UnsyncedError, and if only a file beside the picture could not be
  /// written. The report then names the backups.
  void Commit();
  /// Commits several saves and waits once for all on the same disk. Returns the error for each,
  /// null on success.
  static std::vector<std::exception_ptr> CommitAll(std::span<PendingSave* const> saves);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace rasterkit
