#pragma once

#include <exception>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit {

/// What saving does if there is a file of that name.
enum class IfExists {
  /// Replaces the file.
  replace,
  /// Throws FileExistsError, also if another program creates the file while this one is written.
  fail,
};

struct AtomicFileOptions {
  IfExists ifExists = IfExists::replace;
  /// A commit waits until the file is on the disk, so that a power failure does not lose it.
  /// Without this, a power failure soon after the commit can lose the new file and the one that it
  /// replaced.
  bool syncs = true;
  /// A replaced file stays beside the new one under a backup name: "plan.tif~", or with a number if
  /// that is taken ("plan.tif~2"). Files of such names are never replaced. The backup is a second
  /// name of the old file, made before the new one takes its place, or a copy where the file system
  /// has no links. Without a backup the commit fails.
  bool keepsBackup = false;
};

/// Thrown with IfExists::fail if the name is taken.
class RASTERKIT_EXPORT FileExistsError : public FileError {
 public:
  using FileError::FileError;
};

/// Thrown if the new file has its name and the system does not confirm that the name is on the
/// disk: a power failure could undo it.
class RASTERKIT_EXPORT UnsyncedError : public FileError {
 public:
  using FileError::FileError;
};

/// Thrown if the backup of the old file cannot be made; the old file stays.
class RASTERKIT_EXPORT BackupError : public FileError {
 public:
  using FileError::FileError;
};

/// A file that is written as a whole or not at all. Bytes go to a temporary file in the folder of
/// the target; `Commit` gives it the name of the target. Without `Commit` (an exception, an early
/// return) the target stays unchanged and the temporary file is deleted. If the target is a
/// symbolic link, the file it points to is replaced; a link of another user in a folder that
/// everybody can write to is refused.
///
/// A replaced file hands on its owner, group, mode bits, access control list and extended
/// attributes `user.*`. If the system does not allow that, rights are reduced so that no other user
/// gains any, and there is a warning.
///
/// A target that is not a regular file (a pipe, a device) is written directly and in order.
///
/// An object is used by one thread at a time, which may change.
class RASTERKIT_EXPORT AtomicFile : public TStream {
 public:
  /// Throws FileError if the folder does not exist or cannot be written, or if rights of the old
  /// file cannot be reduced as needed; FileExistsError.
  explicit AtomicFile(const std::string& fileName, const AtomicFileOptions& options = {});
  ~AtomicFile() override;

  /// Throws FileError if the target is a pipe or a device. `Read` also writes what is buffered; see
  /// `Write`.
  size_t Read(std::span<uint8_t> target) override;
  /// If it throws, bytes are lost: the file can be neither written nor committed afterwards.
  void Write(std::span<const uint8_t> source) override;
  uint64_t Position() const override;
  void SetPosition(uint64_t position) override;
  uint64_t Size() const override;
  /// Returns false if the target is a pipe or a device, which takes bytes only in order.
  bool IsSeekable() const;

  /// The name given to the constructor.
  const std::string& FileName() const;
  /// What the new file does not have from the old one, without the file name. Known after the
  /// constructor, except if another program creates the file while this one is written: then after
  /// `Commit`.
  const std::vector<std::string>& Warnings() const;

  /// Lets the backup have this number or the next one that is free, so that files which belong
  /// together can share one. 1 is the name without a number.
  void SetBackupNumber(int number);
  /// The full name of the backup, beside the file that a symbolic link leads to. Empty before
  /// `Commit`, and if no file was replaced.
  std::string BackupName() const;
  /// The full name of the target after all symbolic links.
  const std::string& TargetName() const;

  /// Ends the writing: hands all bytes to the system and checks that it took them. `Commit` does it
  /// if needed. Throws FileError.
  void Finish();

  /// Finishes, waits until the bytes are on the disk, gives the file its name, and waits until that
  /// is on the disk too. Throws FileError or FileExistsError; the target is then unchanged, except
  /// with UnsyncedError: only the last wait failed, and the new file is there.
  void Commit();

  /// Commits several files. Waits once for all of them on the same disk, which takes much less time
  /// than one commit after another. Returns the error for each file, null on success.
  static std::vector<std::exception_ptr> CommitAll(
      std::span<const std::unique_ptr<AtomicFile>> files);

 private:
  struct State;
  static std::vector<std::exception_ptr> CommitStates(std::span<State* const> states);

  std::unique_ptr<State> state_;
};

/// Returns false for an AtomicFile that is not seekable, true for any other stream.
RASTERKIT_EXPORT bool IsSeekable(const TStream& stream);

}  // namespace rasterkit
