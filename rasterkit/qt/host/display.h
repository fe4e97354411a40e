#pragma once

#include <memory>
#include <string>

namespace rasterkit {

/// A platform on which Qt can open windows now.
struct UsablePlatform {
  /// As Qt's option -platform takes it.
  std::string name;
  /// The connection to its display, if it has one. Keep it until Qt has its own: some servers begin
  /// anew, and refuse others meanwhile, when their last client leaves.
  std::shared_ptr<void> connection;
};

/// The first platform of QT_QPA_PLATFORM that can be used, else Wayland or X11. Qt ends the process
/// where it finds none; this asks first. Throws Error that says what is missing.
UsablePlatform FindPlatform();

}  // namespace rasterkit
