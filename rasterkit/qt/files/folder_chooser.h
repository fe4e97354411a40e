#pragma once

#include <string>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Lets the user choose a folder in a modal window over the active one, with `prompt` as its title;
/// what the port `folderChooser` is filled with. It starts at `directory`, or at the nearest folder
/// above that exists, else at the current one. True when the user chose a folder, which is then in
/// `directory`, absolute; else that stays as it was. Without a QApplication, and on another thread
/// than its own, the dialog is cancelled. `options` are passed over.
RASTERKIT_EXPORT bool ChooseFolder(std::string& directory, const std::string& prompt, int options);

}  // namespace rasterkit
