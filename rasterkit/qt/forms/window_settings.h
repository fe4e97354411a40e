#pragma once

#include <QList>
#include <QRect>
#include <QWidget>
#include <string>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// The section of the settings file with the window positions.
inline constexpr const char* kWindowSection = "Settings";

/// Gives a window that is not shown yet the position, size and maximized state stored under `name`
/// (the window's object name if empty), moved onto an existing screen. Returns false and changes
/// nothing if none is stored or the stored values are invalid.
RASTERKIT_EXPORT bool LoadWindowSettings(QWidget& window, const std::string& name = "");

/// Stores the position, size and maximized state of the window in the host's settings. A window
/// without a name is not stored.
RASTERKIT_EXPORT void SaveWindowSettings(const QWidget& window, const std::string& name = "");

/// Sets the geometry of the window, moved onto the existing screens.
RASTERKIT_EXPORT void PlaceWindow(QWidget& window, const QRect& place);

/// Returns where to open a window that was last at `place`: the same place if it is entirely on the
/// screens. Otherwise it is moved, and made smaller if necessary, into the screen that shows most
/// of it (the first screen if none does). `captionHeight` pixels stay free above it.
RASTERKIT_EXPORT QRect BringBack(QRect place, const QList<QRect>& screens, int captionHeight);

}  // namespace rasterkit
