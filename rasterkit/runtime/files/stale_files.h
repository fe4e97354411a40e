#pragma once

#include <rasterkit/runtime/files/system_file.h>

namespace rasterkit::detail {

/// Removes temporary files that ended processes of this user left in the folder: regular files with
/// such a name, older than a day, that no process has locked. Runs once per folder and process.
/// Errors are ignored.
void RemoveStaleFiles(const SystemFile& folder) noexcept;

}  // namespace rasterkit::detail
