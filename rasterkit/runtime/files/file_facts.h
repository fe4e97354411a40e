#pragma once

#include <cstdint>
#include <string>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// What tells one state of a file from another one. A name that is a link stands for the file that
/// it leads to.
struct FileFacts {
  bool exists = false;
  /// The file itself, under any name.
  uint64_t device = 0, inode = 0;
  uint64_t bytes = 0;
  /// Time of the last change, in nanoseconds since 1970.
  int64_t changed = 0;

  bool IsSameFile(const FileFacts& other) const {
    return exists && other.exists && device == other.device && inode == other.inode;
  }
  friend bool operator==(const FileFacts&, const FileFacts&) = default;
};

/// A name that leads to nothing, or that cannot be looked up, does not exist.
RASTERKIT_EXPORT FileFacts FactsOfFile(const std::string& fileName);

/// Throws FileError, with the reason, if a save under this name would be refused: the folder is
/// missing or cannot be written, or the file is protected. Writes nothing.
RASTERKIT_EXPORT void RequireSavable(const std::string& fileName);

/// The name from the root on, without "." and "..": "plan.tif" becomes "/home/me/plan.tif". Links
/// stay.
RASTERKIT_EXPORT std::string FullName(const std::string& fileName);

}  // namespace rasterkit
