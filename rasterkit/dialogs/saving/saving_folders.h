#pragma once

#include <string>
#include <vector>

/// The folders that windows of saving and opening remember in the host's settings. Internal to this
/// folder.
namespace rasterkit::detail {

/// Existing folders in which files were saved or opened, the last one first; at most six.
std::vector<std::string> RecentFolders();

void RememberFolder(const std::string& folder);

/// Where a window starts: the folder of the named file, else the last one, else the current one.
std::string FirstFolder(const std::string& file);

}  // namespace rasterkit::detail
