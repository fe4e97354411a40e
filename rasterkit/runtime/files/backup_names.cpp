#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>

#include <rasterkit/runtime/files/backup_names.h>
#include <rasterkit/runtime/files/file_calls.h>

namespace rasterkit::detail {
namespace {

bool IsFree(const std::string& name) {
  struct stat unused {};
  if (Calls().statusAt(AT_FDCWD, name.c_str(), &unused, AT_SYMLINK_NOFOLLOW) == 0) return false;
  // No file bears a name that is too long.
  return errno == ENOENT || errno == ENAMETOOLONG;
}

}  // namespace

std::string BackupNameOf(const std::string& file, int number) {
  return file + '~' + (number == 1 ? "" : std::to_string(number));
}

int FreeBackupNumber(std::span<const std::string> files) {
  for (int number = 1; number <= kMostBackups; ++number) {
    const auto isFree = [&](const std::string& file) { return IsFree(BackupNameOf(file, number)); };
    if (std::all_of(files.begin(), files.end(), isFree)) return number;
  }
  return 1;
}

}  // namespace rasterkit::detail
