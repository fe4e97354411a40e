#pragma once

#include <string>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Lets the user choose a folder in a modal window over the active one; `prompt` is the title. It
/// fills the port `folderChooser`. The window starts at `directory`, or at its nearest existing
/// parent, else at the current folder. Returns true if the user chose a folder, which is in
/// `directory` then, absolute; otherwise `directory` does not change. Without a QApplication, or on
/// another thread than the application's, the dialog counts as canceled. `options` are ignored.
RASTERKIT_EXPORT bool ChooseFolder(std::string& directory, const std::string& prompt, int options);

}  // namespace rasterkit
