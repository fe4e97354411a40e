#pragma once

#include <string>

#include <sys/stat.h>

#include <rasterkit/runtime/files/system_file.h>

namespace rasterkit::detail {

/// What a file name leads to.
struct SaveTarget {
  enum class Kind {
    /// The name is free.
    none,
    regular,
    /// A pipe, a device, or a file that only an open handle leads to: written directly.
    straight,
  };

  Kind kind = Kind::none;
  /// The folder, opened with O_PATH, and the name in it after all links.
  SystemFile folder;
  std::string name;
  /// The same name with the folders that lead to it.
  std::string path;
  /// Status of what the name leads to, unless that is nothing.
  struct stat status {};
};

/// Follows symbolic links to the name that a write reaches, whether a file of that name exists or
/// not. A link of another user in a folder that everybody can write to (/tmp) is not followed.
/// Throws FileError, also for a folder.
SaveTarget FindTarget(const std::string& fileName);

}  // namespace rasterkit::detail
