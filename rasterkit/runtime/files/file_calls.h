#pragma once

#include <cstddef>
#include <ctime>

#include <sys/stat.h>
#include <sys/types.h>
#include <sys/uio.h>
#include <sys/vfs.h>

/// The system calls by which files are saved. Tests put functions that fail in place of them.
namespace rasterkit::detail {

struct FileCalls {
  int (*openAt)(int folder, const char* name, int flags, mode_t mode);
  int (*duplicate)(int handle);
  int (*close)(int handle);
  ssize_t (*readPieces)(int handle, const iovec* pieces, int count);
  ssize_t (*readPiecesAt)(int handle, const iovec* pieces, int count, off_t position);
  ssize_t (*write)(int handle, const void* bytes, size_t count);
  ssize_t (*writeAt)(int handle, const void* bytes, size_t count, off_t position);

  /// Gives a range of a file its place on the disk.
  int (*reserve)(int handle, off_t position, off_t count);

  int (*status)(int handle, struct stat* status);
  int (*statusAt)(int folder, const char* name, struct stat* status, int flags);
  int (*accessAt)(int folder, const char* name, int mode);
  ssize_t (*readLinkAt)(int folder, const char* name, char* target, size_t size);

  int (*linkAt)(int oldFolder, const char* oldName, int folder, const char* name, int flags);
  int (*renameAt)(int folder, const char* oldName, const char* name, unsigned flags);
  int (*unlinkAt)(int folder, const char* name);
  int (*lock)(int handle, int operation);

  int (*changeMode)(int handle, mode_t mode);
  int (*changeOwner)(int handle, uid_t owner, gid_t group);
  /// Of the last read and the last write.
  int (*setTimes)(int handle, const timespec* times);
  ssize_t (*listAttributes)(int handle, char* names, size_t size);
  ssize_t (*getAttribute)(int handle, const char* name, void* value, size_t size);
  int (*setAttribute)(int handle, const char* name, const void* value, size_t size);
  int (*removeAttribute)(int handle, const char* name);

  int (*syncData)(int handle);
  int (*syncAll)(int handle);
  int (*syncFileSystem)(int handle);
  int (*statusOfFileSystem)(int handle, struct statfs* status);
  /// Waits for writes of the file that have begun.
  int (*awaitWrites)(int handle);
};

/// The table that every save of the process uses. Only tests change it, while nothing is saved.
FileCalls& Calls();

}  // namespace rasterkit::detail
