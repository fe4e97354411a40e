#include <cstdio>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <rasterkit/runtime/files/file_calls.h>

namespace rasterkit::detail {
namespace {

int OpenFileAt(int folder, const char* name, int flags, mode_t mode) {
  return openat(folder, name, flags, mode);
}

int Duplicate(int handle) {
  return fcntl(handle, F_DUPFD_CLOEXEC, 0);
}

int AccessAt(int folder, const char* name, int mode) {
  return faccessat(folder, name, mode, 0);
}

/// Without flags the older call, which every file system has.
int RenameAt(int folder, const char* oldName, const char* name, unsigned flags) {
  if (flags == 0) return renameat(folder, oldName, folder, name);
  return renameat2(folder, oldName, folder, name, flags);
}

int UnlinkAt(int folder, const char* name) {
  return unlinkat(folder, name, 0);
}

int SetAttribute(int handle, const char* name, const void* value, size_t size) {
  return fsetxattr(handle, name, value, size, 0);
}

int Reserve(int handle, off_t position, off_t count) {
  return fallocate(handle, 0, position, count);
}

int AwaitWrites(int handle) {
  return sync_file_range(handle, 0, 0, SYNC_FILE_RANGE_WAIT_BEFORE);
}

FileCalls calls = {
    .openAt = OpenFileAt,
    .duplicate = Duplicate,
    .close = close,
    .readPieces = readv,
    .readPiecesAt = preadv,
    .write = write,
    .writeAt = pwrite,
    .reserve = Reserve,
    .status = fstat,
    .statusAt = fstatat,
    .accessAt = AccessAt,
    .readLinkAt = readlinkat,
    .linkAt = linkat,
    .renameAt = RenameAt,
    .unlinkAt = UnlinkAt,
    .lock = flock,
    .changeMode = fchmod,
    .changeOwner = fchown,
    .setTimes = futimens,
    .listAttributes = flistxattr,
    .getAttribute = fgetxattr,
    .setAttribute = SetAttribute,
    .removeAttribute = fremovexattr,
    .syncData = fdatasync,
    .syncAll = fsync,
    .syncFileSystem = syncfs,
    .statusOfFileSystem = fstatfs,
    .awaitWrites = AwaitWrites,
};

}  // namespace

FileCalls& Calls() {
  return calls;
}

}  // namespace rasterkit::detail
