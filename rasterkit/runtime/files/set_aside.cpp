#include <cerrno>
#include <cstdio>

#include <fcntl.h>

#include <rasterkit/runtime/files/backup_names.h>
#include <rasterkit/runtime/files/file_calls.h>
#include <rasterkit/runtime/files/file_sync.h>
#include <rasterkit/runtime/files/set_aside.h>

namespace rasterkit::detail {
namespace {

/// The last number of a name that ends in ".bak".
constexpr int kMostNames = 99;

/// Renames without replacing a file of that name; 0 or the error number.
int RenameToFreeName(const SystemFile& folder, const std::string& from, const std::string& to) {
  constexpr unsigned kNoReplace = RENAME_NOREPLACE;
  if (Calls().renameAt(folder.Handle(), from.c_str(), to.c_str(), kNoReplace) == 0) return 0;
  if (errno != EINVAL && errno != ENOSYS && errno != EOPNOTSUPP) return errno;
  // NFS, some FUSE file systems; kernels and emulators without the call.
  struct stat status {};
  if (Calls().statusAt(folder.Handle(), to.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0) {
    return EEXIST;
  }
  if (errno != ENOENT) return errno;
  return Calls().renameAt(folder.Handle(), from.c_str(), to.c_str(), 0) == 0 ? 0 : errno;
}

}  // namespace

SetAside::SetAside(const std::string& fileName, bool syncs) : fileName_(fileName) {
  Rename(syncs, 0, kMostNames, [](const std::string& name, int number) {
    return name + ".bak" + (number == 0 ? "" : std::to_string(number));
  });
}

SetAside::SetAside(const std::string& fileName, bool syncs, int backupNumber)
    : fileName_(fileName) {
  Rename(syncs, backupNumber, kMostBackups, BackupNameOf);
}

/// Takes the first free name of the numbers from `first` to `last`.
template <typename NameOf>
void SetAside::Rename(bool syncs, int first, int last, NameOf nameOf) {
  const size_t slash = fileName_.rfind('/');
  const bool hasFolder = slash != std::string::npos;
  name_ = hasFolder ? fileName_.substr(slash + 1) : fileName_;
  folder_ =
      OpenAt(AT_FDCWD, hasFolder ? fileName_.substr(0, slash + 1) : ".", O_RDONLY | O_DIRECTORY);
  if (!folder_.IsOpen()) ThrowSystemError("cannot be renamed", errno, fileName_);
  bool isDone = false;
  for (int number = first; !isDone && number <= last; ++number) {
    isDone = Take(nameOf(name_, number));
  }
  if (!isDone) ThrowSystemError("cannot be renamed", EEXIST, fileName_);
  if (!syncs) return;
  if (const int error = SyncFolder(folder_); error != 0) {
    PutBack();
    ThrowSystemError("cannot be renamed", error, fileName_);
  }
}

/// Returns false if the backup name is taken.
bool SetAside::Take(const std::string& backup) {
  const int error = RenameToFreeName(folder_, name_, backup);
  if (error == EEXIST) return false;
  if (error != 0) ThrowSystemError("cannot be renamed", error, fileName_);
  backup_ = backup;
  return true;
}

std::string SetAside::BackupName() const {
  return fileName_.substr(0, fileName_.size() - name_.size()) + backup_;
}

bool SetAside::PutBack() noexcept {
  return RenameToFreeName(folder_, backup_, name_) == 0;
}

bool SetAside::Remove() noexcept {
  return Calls().unlinkAt(folder_.Handle(), backup_.c_str()) == 0 || errno == ENOENT;
}

FileIdentity::FileIdentity(const std::string& fileName) {
  struct stat status {};
  exists_ = Calls().statusAt(AT_FDCWD, fileName.c_str(), &status, 0) == 0;
  if (!exists_) {
    // A name that the system cannot have names no file.
    const bool isAbsent = errno == ENOENT || errno == ENOTDIR || errno == ENAMETOOLONG;
    if (!isAbsent) ThrowSystemError("cannot be examined", errno, fileName);
    return;
  }
  mode_ = status.st_mode;
  device_ = status.st_dev;
  number_ = status.st_ino;
}

}  // namespace rasterkit::detail
