#include <ctime>
#include <exception>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <rasterkit/runtime/files/file_calls.h>
#include <rasterkit/runtime/files/stale_files.h>
#include <rasterkit/runtime/files/temporary_names.h>

namespace rasterkit::detail {
namespace {

constexpr time_t kDay = 24 * 60 * 60;

struct CloseFolder {
  void operator()(DIR* folder) const { closedir(folder); }
};

bool IsFirstVisit(const SystemFile& folder) {
  static std::mutex mutex;
  static std::set<std::pair<dev_t, ino_t>> visited;
  struct stat status {};
  if (fstat(folder.Handle(), &status) != 0) return false;
  const std::lock_guard lock(mutex);
  return visited.emplace(status.st_dev, status.st_ino).second;
}

bool IsStale(const struct stat& status) {
  return S_ISREG(status.st_mode) && status.st_uid == geteuid() &&
         status.st_mtime < time(nullptr) - kDay;
}

void RemoveIfStale(int folder, const std::string& name) {
  struct stat status {};
  if (fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0 || !IsStale(status)) return;
  constexpr int kFlags = O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;
  SystemFile file = OpenAt(folder, name, O_RDONLY | kFlags);
  if (!file.IsOpen()) file = OpenAt(folder, name, O_WRONLY | kFlags);
  struct stat opened {};
  if (!file.IsOpen() || fstat(file.Handle(), &opened) != 0 || opened.st_ino != status.st_ino) {
    return;
  }
  if (flock(file.Handle(), LOCK_EX | LOCK_NB) == 0) unlinkat(folder, name.c_str(), 0);
}

void RemoveStale(const SystemFile& folder) {
  if (!IsFirstVisit(folder)) return;
  SystemFile readable = OpenAt(folder.Handle(), ".", O_RDONLY | O_DIRECTORY);
  if (!readable.IsOpen()) return;
  const std::unique_ptr<DIR, CloseFolder> entries(fdopendir(readable.Handle()));
  if (!entries) return;
  // The list owns the handle from here on.
  readable.Release();
  while (const dirent* entry = readdir(entries.get())) {
    const std::string name = entry->d_name;
    if (TemporaryName::Matches(name)) RemoveIfStale(dirfd(entries.get()), name);
  }
}

}  // namespace

void RemoveStaleFiles(const SystemFile& folder) noexcept {
  try {
    RemoveStale(folder);
  } catch (const std::exception&) {
    // Saving goes on without it.
  }
}

}  // namespace rasterkit::detail
