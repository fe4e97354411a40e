#pragma once

#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/ports.h>

class QWidget;

namespace rasterkit {

/// Runs a picture open or save dialog with a preview pane over `parent` (the active window if
/// null). It fills the port `pictureFileDialog`. Without a QApplication, or on another thread than
/// the application's, the dialog counts as canceled.
///
/// - `FileName` is preselected; a folder in it takes precedence over `InitialDir`, and if neither
///   exists the current folder is shown. A filter index outside the list selects the first entry.
/// - Opening accepts existing files only. A name without an extension gets one of the chosen entry
///   for which the file exists.
/// - Saving gives the name the extension of the chosen entry, regardless of what was typed (see
///   NameForEntry), and then asks before overwriting that file if `ofOverwritePrompt` is set.
/// - The current folder of the process does not change, except when saving without `ofNoChangeDir`:
///   then it becomes the folder of the chosen file.
///
/// Returns true if the user confirmed: `FileName` is absolute then, and `FilterIndex` is the chosen
/// entry. Otherwise `dialog` does not change.
RASTERKIT_EXPORT bool RunPictureFileDialog(PictureFileDialog& dialog, QWidget* parent = nullptr);

}  // namespace rasterkit
