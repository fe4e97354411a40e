#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <map>

#include <fcntl.h>
#include <linux/magic.h>

#include <rasterkit/runtime/files/file_calls.h>
#include <rasterkit/runtime/files/file_sync.h>

namespace rasterkit::detail {
namespace {

/// The number of files above which one call for the whole file system is cheaper than one for each.
constexpr size_t kMostSyncedAlone = 7;

/// Types of file systems (ext2 to ext4 share one) whose sync waits until everything is on the disk.
/// The sync of others, as of networks and of programs (FUSE), may have no effect. That of overlayfs
/// depends on the file systems below.
constexpr std::array kWholeSystems = std::to_array<uint32_t>(
    {EXT4_SUPER_MAGIC, XFS_SUPER_MAGIC, BTRFS_SUPER_MAGIC, F2FS_SUPER_MAGIC, TMPFS_MAGIC});

/// Some file systems have no sync and say that the file does not fit the call.
int ErrorOf(int result) {
  return result == 0 || errno == EINVAL ? 0 : errno;
}

int SyncOne(const SystemFile& file) {
  return ErrorOf(Uninterrupted([&] { return Calls().syncData(file.Handle()); }));
}

/// Returns the file's own error after its file system was synced: the call for a file system does
/// not say which file failed, and before Linux 5.8 not even that one did.
int ErrorAfterSync(const SystemFile& file) {
  if (Uninterrupted([&] { return Calls().awaitWrites(file.Handle()); }) == 0) return 0;
  const bool isUnknown = errno == EINVAL || errno == ENOSYS || errno == ESPIPE || errno == EPERM;
  return isUnknown ? SyncOne(file) : errno;
}

bool CanSyncFileSystem(const SystemFile& file) {
  struct statfs status {};
  if (Uninterrupted([&] { return Calls().statusOfFileSystem(file.Handle(), &status); }) != 0) {
    return false;
  }
  return std::ranges::find(kWholeSystems, static_cast<uint32_t>(status.f_type)) !=
         kWholeSystems.end();
}

bool SyncFileSystem(const SystemFile& file) {
  if (!CanSyncFileSystem(file)) return false;
  return Uninterrupted([&] { return Calls().syncFileSystem(file.Handle()); }) == 0;
}

}  // namespace

std::vector<int> SyncData(std::span<const SystemFile* const> files) {
  std::map<dev_t, std::vector<size_t>> systems;
  for (size_t i = 0; i < files.size(); ++i) {
    struct stat status {};
    // A file whose device is unknown shares one with no other; the sync itself reports errors.
    const bool isKnown = Calls().status(files[i]->Handle(), &status) == 0;
    systems[isKnown ? status.st_dev : 0].push_back(i);
  }
  std::vector<int> errors(files.size());
  for (const auto& [device, members] : systems) {
    const bool isDone =
        device != 0 && members.size() > kMostSyncedAlone && SyncFileSystem(*files[members.front()]);
    for (const size_t i : members) {
      errors[i] = isDone ? ErrorAfterSync(*files[i]) : SyncOne(*files[i]);
    }
  }
  return errors;
}

int SyncFolder(const SystemFile& folder) {
  const SystemFile readable = OpenAt(folder.Handle(), ".", O_RDONLY | O_DIRECTORY);
  if (!readable.IsOpen()) return 0;
  return ErrorOf(Uninterrupted([&] { return Calls().syncAll(readable.Handle()); }));
}

}  // namespace rasterkit::detail
