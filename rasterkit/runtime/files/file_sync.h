#pragma once

#include <span>
#include <vector>

#include <rasterkit/runtime/files/system_file.h>

namespace rasterkit::detail {

/// Waits until the bytes of the files are on the disk. Returns the error number of each file, 0 on
/// success. Many files of one file system cost little more than one if its type is known to sync as
/// a whole.
std::vector<int> SyncData(std::span<const SystemFile* const> files);

/// Waits until the names in the folder are on the disk. Returns the error number; 0 also for a
/// folder that cannot be read or that the file system does not sync.
int SyncFolder(const SystemFile& folder);

}  // namespace rasterkit::detail
