#pragma once

#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/ports.h>

class QWidget;

namespace rasterkit {

/// Runs a picture open or save dialog with a preview pane over `parent` (the active window when
/// null); what the port `pictureFileDialog` is filled with. Without a QApplication, and on another
/// thread than its own, the dialog is cancelled.
///
/// - `FileName` is shown at first; a folder in it goes before `InitialDir`, and where neither
///   exists the current folder is shown. A filter index outside the list shows the first entry.
/// - Opening takes existing files only. A name without its extension gets one that the chosen entry
///   has.
/// - Saving gives the name the extension of the chosen entry, whatever was typed (see
///   NameForEntry), and then asks before it overwrites that file where `ofOverwritePrompt` is set.
/// - The process's current folder stays as it is; only saving without `ofNoChangeDir` makes it the
///   folder of the chosen file.
///
/// True when the user confirmed: `FileName` is then absolute, `FilterIndex` the entry chosen. Else
/// `dialog` is unchanged.
RASTERKIT_EXPORT bool RunPictureFileDialog(PictureFileDialog& dialog, QWidget* parent = nullptr);

}  // namespace rasterkit
