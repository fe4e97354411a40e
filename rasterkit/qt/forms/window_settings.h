#pragma once

#include <QList>
#include <QRect>
#include <QWidget>
#include <string>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Section of the settings file that keeps the windows' places.
inline constexpr const char* kWindowSection = "Settings";

/// Gives a window that is not shown yet the place and size that SaveWindowSettings kept under
/// `name` (the window's object name when empty), brought back to a screen that is there, maximised
/// if it was; false, and nothing is changed, when none is kept or what is kept is no place.
RASTERKIT_EXPORT bool LoadWindowSettings(QWidget& window, const std::string& name = "");

/// Keeps where the window stands, and whether it is maximised, in the host's settings. A window
/// without a name is not kept.
RASTERKIT_EXPORT void SaveWindowSettings(const QWidget& window, const std::string& name = "");

/// Sets the window's geometry, brought back to the screens that are there.
RASTERKIT_EXPORT void PlaceWindow(QWidget& window, const QRect& place);

/// The place for a window that was at `place` when last seen: the same where it lies wholly on the
/// screens, else moved, and made smaller where need be, into the one that shows most of it (the
/// first of them when none does). `captionHeight` pixels stay free above it.
RASTERKIT_EXPORT QRect BringBack(QRect place, const QList<QRect>& screens, int captionHeight);

}  // namespace rasterkit
