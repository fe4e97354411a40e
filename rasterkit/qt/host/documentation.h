#pragma once

#include <QString>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// The full name of the installed documentation of the windows; empty if it is not installed.
RASTERKIT_EXPORT QString InstalledDocumentation();

/// Shows a help topic of the host; where the host has none, opens the installed documentation with
/// the desktop's program for it. False if neither is there.
RASTERKIT_EXPORT bool OpenHelp(int helpContext);

}  // namespace rasterkit
