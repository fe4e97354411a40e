#pragma once

#include <QIcon>
#include <QString>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Returns one of the project's icons: "post", "cancel", "help", "refresh", "undo", "redo", "crop",
/// "fit", "actual-size", "zoom-in", "zoom-out", "picture", "open", "save", "save-as", "turn-left",
/// "turn-right", "mirror", "flip", "rotate", "size", "grayscale", "black-white", "colors-256",
/// "edit-values", "pages", "steps", "info", "file", "folder", "folder-up", "list", "details". Sharp
/// at every size.
/// Painted in dark colors on a light palette and in light colors on a dark one, whichever the
/// application has at that time; paler if disabled. An unknown name gives an empty icon.
RASTERKIT_EXPORT QIcon Icon(const QString& name);

/// Returns the icon of the tool for the desktop; its colors do not depend on the palette.
QIcon ProgramIcon();

}  // namespace rasterkit
