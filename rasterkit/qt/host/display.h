#pragma once

#include <memory>
#include <string>

namespace rasterkit {

/// A platform plugin with which Qt can open windows now.
struct UsablePlatform {
  /// In the notation of Qt's option -platform.
  std::string name;
  /// The connection to its display, if it has one. Keep it until Qt has its own: some servers reset
  /// when their last client leaves and refuse other clients meanwhile.
  std::shared_ptr<void> connection;
};

/// Returns the first usable platform of QT_QPA_PLATFORM, else Wayland or X11. Qt ends the process
/// if it finds none, so check first. Throws an Error that says what is missing.
UsablePlatform FindPlatform();

}  // namespace rasterkit
