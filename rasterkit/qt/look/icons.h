#pragma once

#include <QIcon>
#include <QString>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Returns one of the project's icons: "post", "cancel", "help", "refresh", "undo", "crop", "fit",
/// "actual-size", "picture", "open", "save", "mirror", "grayscale", "black-white", "colors-256",
/// "edit-values", "info", "file", "folder", "folder-up", "list", "details". Sharp at every size.
/// Painted in dark colors on a light palette and in light colors on a dark one, whichever the
/// application has at that time; paler if disabled. An unknown name gives an empty icon.
RASTERKIT_EXPORT QIcon Icon(const QString& name);

/// Returns the icon of the tool for the desktop; its colors do not depend on the palette.
QIcon ProgramIcon();

}  // namespace rasterkit
