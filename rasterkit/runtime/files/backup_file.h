#pragma once

#include <string>
#include <vector>

#include <sys/stat.h>

#include <rasterkit/runtime/files/system_file.h>

namespace rasterkit::detail {

/// A second name of a file that is about to be replaced, or a copy where the file system has no
/// links. Errors are thrown as BackupError for the name `target`.
class BackupFile {
 public:
  struct Options {
    /// The first number that is tried; see BackupNameOf.
    int number = 1;
    /// A copy is on the disk before it has its name.
    bool syncs = true;
  };

  /// Backs up the file `name` of the folder, which must outlive this object. Files of the names
  /// before the first free one stay. If there is no file of that name, nothing is done.
  BackupFile(const SystemFile& folder, std::string name, const std::string& target,
             const Options& options);

  /// The number of the backup name; 0 if there was no file.
  int Number() const { return number_; }
  /// What a copy does not have from the file.
  const std::vector<std::string>& Warnings() const { return warnings_; }

  /// Removes the backup if the file still has its own name, so that nothing is lost.
  void RemoveIfNeedless() noexcept;

 private:
  [[noreturn]] void Fail(int error) const;
  int Link();
  void Copy();

  const SystemFile& folder_;
  const std::string name_, target_;
  const Options options_;
  int number_ = 0;
  /// The file that was backed up.
  struct stat original_ {};
  std::vector<std::string> warnings_;
};

}  // namespace rasterkit::detail
