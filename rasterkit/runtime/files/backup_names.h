#pragma once

#include <span>
#include <string>

#include <rasterkit/runtime/export.h>

namespace rasterkit::detail {

/// The largest number that a backup name can have.
inline constexpr int kMostBackups = 9999;

/// The backup name of a file: "plan.tif~" for 1, "plan.tif~2" for 2 and so on.
RASTERKIT_EXPORT std::string BackupNameOf(const std::string& file, int number);

/// The smallest number whose backup names of all these files are free, so that they can share it; 1
/// if there is none.
RASTERKIT_EXPORT int FreeBackupNumber(std::span<const std::string> files);

}  // namespace rasterkit::detail
