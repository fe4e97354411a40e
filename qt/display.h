#pragma once

#include <string>

namespace rasterkit {

/// The name of a platform on which Qt can open windows now, as its option -platform takes it: the
/// first usable one of QT_QPA_PLATFORM, else Wayland or X11. Qt ends the process where it finds
/// none; this asks first. Throws Error that says what is missing.
std::string UsablePlatform();

}  // namespace rasterkit
