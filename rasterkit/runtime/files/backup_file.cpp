#include <array>
#include <cerrno>
#include <cstdint>
#include <span>
#include <system_error>
#include <utility>

#include <fcntl.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/atomic_file.h>
#include <rasterkit/runtime/files/backup_file.h>
#include <rasterkit/runtime/files/backup_names.h>
#include <rasterkit/runtime/files/file_calls.h>
#include <rasterkit/runtime/files/file_rights.h>
#include <rasterkit/runtime/files/file_sync.h>
#include <rasterkit/runtime/files/temporary_file.h>

namespace rasterkit::detail {
namespace {

constexpr size_t kPiece = 128 * 1024;
constexpr mode_t kPrivateMode = 0600;
const std::string kNoBackup = "cannot be written: no backup of the old file can be made: ";

/// Memory sticks have no links, and neither have some networks. A system can refuse to link a file
/// that the user does not own, or one with too many names.
bool MeansNoLinks(int error) {
  return error == EPERM || error == EOPNOTSUPP || error == EMLINK || error == ENOSYS ||
         error == EXDEV;
}

bool IsSame(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

void CopyBytes(const SystemFile& from, const SystemFile& to, const std::string& name) {
  std::vector<uint8_t> piece(kPiece);
  int64_t position = 0;
  while (true) {
    iovec whole{piece.data(), piece.size()};
    const size_t count = ReadPieces(from, {&whole, 1}, position, name);
    if (count == 0) return;
    WriteAll(to, std::span(piece).first(count), position, name);
    position += static_cast<int64_t>(count);
  }
}

}  // namespace

BackupFile::BackupFile(const SystemFile& folder, std::string name, const std::string& target,
                       const Options& options)
    : folder_(folder), name_(std::move(name)), target_(target), options_(options) {
  if (Calls().statusAt(folder_.Handle(), name_.c_str(), &original_, AT_SYMLINK_NOFOLLOW) != 0) {
    if (errno == ENOENT) return;
    Fail(errno);
  }
  const int error = Link();
  if (error == ENOENT || error == 0) return;
  if (!MeansNoLinks(error)) Fail(error);
  try {
    Copy();
  } catch (const BackupError&) {
    throw;
  } catch (const Error& reason) {
    throw BackupError(kNoBackup + reason.Reason(), target_);
  }
}

void BackupFile::Fail(int error) const {
  throw BackupError(kNoBackup + std::generic_category().message(error), target_);
}

/// Makes the second name, at the first number that is free. Returns 0 or the error number.
int BackupFile::Link() {
  const int folder = folder_.Handle();
  for (int number = options_.number; number <= kMostBackups; ++number) {
    const std::string backup = BackupNameOf(name_, number);
    if (Calls().linkAt(folder, name_.c_str(), folder, backup.c_str(), 0) == 0) {
      number_ = number;
      return 0;
    }
    if (errno != EEXIST) return errno;
  }
  return EEXIST;
}

/// Writes a copy under a temporary name first: a backup name leads to a whole file or to none.
void BackupFile::Copy() {
  constexpr int kFlags = O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;
  const SystemFile old = OpenAt(folder_.Handle(), name_, O_RDONLY | kFlags);
  if (!old.IsOpen() || Calls().status(old.Handle(), &original_) != 0) Fail(errno);
  TemporaryFile copy(folder_, kPrivateMode, target_);
  CopyBytes(old, copy.File(), target_);
  warnings_ = KeepRights(old, copy.File(), target_);
  const std::array<timespec, 2> times = {original_.st_atim, original_.st_mtim};
  if (Calls().setTimes(copy.File().Handle(), times.data()) != 0) {
    warnings_.push_back("the times of the old file cannot be kept in its backup: " +
                        std::generic_category().message(errno));
  }
  const SystemFile* const file = &copy.File();
  if (options_.syncs) {
    if (const int error = SyncData({&file, 1}).front(); error != 0) Fail(error);
  }
  for (int number = options_.number; number <= kMostBackups; ++number) {
    if (!copy.CreateName(BackupNameOf(name_, number))) continue;
    number_ = number;
    return;
  }
  Fail(EEXIST);
}

void BackupFile::RemoveIfNeedless() noexcept {
  if (number_ == 0) return;
  struct stat now {};
  // A rename that reports an error can be done all the same, on a network.
  const bool isThere =
      Calls().statusAt(folder_.Handle(), name_.c_str(), &now, AT_SYMLINK_NOFOLLOW) == 0 &&
      IsSame(now, original_);
  if (!isThere) return;
  const std::string backup = BackupNameOf(name_, number_);
  if (Calls().unlinkAt(folder_.Handle(), backup.c_str()) == 0 || errno == ENOENT) number_ = 0;
}

}  // namespace rasterkit::detail
