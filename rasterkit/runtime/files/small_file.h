#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include <rasterkit/runtime/export.h>

/// Files that lie beside another one under names that follow from its own; internal to the library.
namespace rasterkit::detail {

/// The bytes of a small file.
struct SmallFile {
  std::string bytes;
  /// True if the file is longer than what was read.
  bool isCut = false;
};

/// True if the name leads to a regular file, or to a link to one.
RASTERKIT_EXPORT bool IsRegularFile(const std::string& fileName);

/// Reads at most `most` bytes of a regular file. Returns nothing if there is no such name or if it
/// leads to anything else: a pipe or a device of that name would block. Throws FileError if the
/// file cannot be opened or read.
RASTERKIT_EXPORT std::optional<SmallFile> ReadSmallFile(const std::string& fileName, size_t most);

}  // namespace rasterkit::detail
