#include <cerrno>
#include <cstdio>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <rasterkit/runtime/files/file_calls.h>
#include <rasterkit/runtime/files/stale_files.h>
#include <rasterkit/runtime/files/temporary_file.h>

namespace rasterkit::detail {
namespace {

std::string PathOfHandle(const SystemFile& file) {
  return "/proc/self/fd/" + std::to_string(file.Handle());
}

/// Marks the file as in use. Not every file system has locks.
void Lock(const SystemFile& file) {
  Calls().lock(file.Handle(), LOCK_EX | LOCK_NB);
}

}  // namespace

TemporaryFile::TemporaryFile(const SystemFile& folder, mode_t mode, std::string target)
    : folder_(folder), target_(std::move(target)) {
  if (!OpenNameless(mode)) OpenNamed(mode);
}

void TemporaryFile::Fail(int error) const {
  ThrowSystemError("cannot be written", error, target_);
}

/// A thread that ends the process has removed the temporary files and may not have seen this one.
void TemporaryFile::FailIfRemoved() {
  if (!TemporaryName::AreRemoved()) return;
  RemoveName();
  Fail(EINTR);
}

/// A file without a name vanishes by itself even when the process is killed. Not every file system
/// has such files.
bool TemporaryFile::OpenNameless(mode_t mode) {
  file_ = OpenAt(folder_.Handle(), ".", O_RDWR | O_TMPFILE, mode);
  return file_.IsOpen() && Calls().accessAt(AT_FDCWD, PathOfHandle(file_).c_str(), F_OK) == 0;
}

void TemporaryFile::OpenNamed(mode_t mode) {
  RemoveStaleFiles(folder_);
  do {
    name_.reset();
    const NameChange change;
    FailIfRemoved();
    name_ = std::make_unique<TemporaryName>(folder_.Handle());
    file_ = OpenAt(folder_.Handle(), name_->Text(), O_RDWR | O_CREAT | O_EXCL, mode);
  } while (!file_.IsOpen() && errno == EEXIST);
  if (!file_.IsOpen()) {
    const int error = errno;
    name_.reset();
    Fail(error);
  }
  FailIfRemoved();
  Lock(file_);
}

/// A link can only be made to a free name, so the file gets a temporary one before it is renamed.
void TemporaryFile::NameTheNameless() {
  RemoveStaleFiles(folder_);
  Lock(file_);
  const std::string source = PathOfHandle(file_);
  int result = 0;
  do {
    name_.reset();
    const NameChange change;
    FailIfRemoved();
    name_ = std::make_unique<TemporaryName>(folder_.Handle());
    result = Calls().linkAt(AT_FDCWD, source.c_str(), folder_.Handle(), name_->Text().c_str(),
                            AT_SYMLINK_FOLLOW);
  } while (result != 0 && errno == EEXIST);
  if (result == 0) return FailIfRemoved();
  const int error = errno;
  name_.reset();
  Fail(error);
}

void TemporaryFile::RemoveName() {
  if (name_ == nullptr) return;
  // A network may fail for a moment.
  if (Calls().unlinkAt(folder_.Handle(), name_->Text().c_str()) != 0 && errno != ENOENT) {
    Calls().unlinkAt(folder_.Handle(), name_->Text().c_str());
  }
  name_.reset();
}

void TemporaryFile::ReplaceName(const std::string& name) {
  if (name_ == nullptr) NameTheNameless();
  if (Calls().renameAt(folder_.Handle(), name_->Text().c_str(), name.c_str(), 0) != 0) Fail(errno);
  name_.reset();
}

bool TemporaryFile::CreateName(const std::string& name) {
  if (name_ == nullptr) {
    const std::string source = PathOfHandle(file_);
    if (Calls().linkAt(AT_FDCWD, source.c_str(), folder_.Handle(), name.c_str(),
                       AT_SYMLINK_FOLLOW) == 0) {
      return true;
    }
    if (errno == EEXIST) return false;
    Fail(errno);
  }
  if (Calls().renameAt(folder_.Handle(), name_->Text().c_str(), name.c_str(), RENAME_NOREPLACE) ==
      0) {
    name_.reset();
    return true;
  }
  if (errno == EEXIST) return false;
  // NFS, some FUSE file systems; kernels and emulators without the call.
  if (errno == EINVAL || errno == ENOSYS || errno == EOPNOTSUPP) return LinkNamed(name);
  Fail(errno);
}

/// For file systems without a rename that spares what is there.
bool TemporaryFile::LinkNamed(const std::string& name) {
  const int folder = folder_.Handle();
  if (Calls().linkAt(folder, name_->Text().c_str(), folder, name.c_str(), 0) != 0) {
    const int error = errno;
    // A network that repeats a request can report the link that it made before as an obstacle.
    if (error == EEXIST && !IsSameFile(file_, name)) return false;
    if (error == EPERM || error == ENOSYS || error == EOPNOTSUPP) return ClaimName(name);
    if (error != EEXIST) Fail(error);
  }
  RemoveName();
  return true;
}

/// For file systems without links as well: the name is taken with an empty file, which then is
/// replaced.
bool TemporaryFile::ClaimName(const std::string& name) {
  const NameChange change;
  FailIfRemoved();
  const SystemFile claim = OpenAt(folder_.Handle(), name, O_WRONLY | O_CREAT | O_EXCL, 0600);
  if (!claim.IsOpen()) {
    if (errno == EEXIST) return false;
    Fail(errno);
  }
  const int folder = folder_.Handle();
  if (Calls().renameAt(folder, name_->Text().c_str(), name.c_str(), 0) == 0) {
    name_.reset();
    return true;
  }
  const int error = errno;
  if (IsSameFile(claim, name)) Calls().unlinkAt(folder, name.c_str());
  Fail(error);
}

bool TemporaryFile::IsSameFile(const SystemFile& file, const std::string& name) const {
  struct stat open {
  }, named{};
  return Calls().status(file.Handle(), &open) == 0 &&
         Calls().statusAt(folder_.Handle(), name.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 &&
         open.st_dev == named.st_dev && open.st_ino == named.st_ino;
}

}  // namespace rasterkit::detail
