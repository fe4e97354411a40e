#pragma once

#include <QIcon>
#include <QString>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// One of the project's own drawings: "post", "cancel", "help", "refresh", "undo", "crop", "fit",
/// "actual-size", "picture", "open", "save", "mirror", "grayscale", "black-white", "colors-256",
/// "edit-values", "info", "file", "folder", "folder-up", "list", "details". Sharp at every size,
/// and drawn in dark colours on a light palette, in light ones on a dark palette, whichever the
/// application has when it is painted. Disabled ones are pale. An unknown name gives an empty icon.
RASTERKIT_EXPORT QIcon Icon(const QString& name);

/// What desktops show the tool by, in colours of its own.
QIcon ProgramIcon();

}  // namespace rasterkit
