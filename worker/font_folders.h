#pragma once

#include <string>
#include <vector>

namespace rasterkit::worker {

/// Folders of the system's and the user's fonts and of their descriptions, which are opened while a
/// page is drawn.
std::vector<std::string> FontFolders();

}  // namespace rasterkit::worker
