#pragma once

#include <memory>
#include <string>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Connects a Qt application with the library. While it lives, every port of `HostPorts()` that was
/// empty is filled with its Qt implementation (message pump, message box, picture file dialogs, the
/// dialog for a page of a PDF file, system colors, settings). Termination events and timers of the
/// application's thread arrive from every running Qt event loop. Texts are in the host's language
/// (language.h).
///
/// Create it right after the QApplication, on its thread, and destroy it before the QApplication.
/// Several may live at once; the first one is active. Ports that the host filled do not change.
class RASTERKIT_EXPORT QtHost {
 public:
  /// `settingsFile` is the INI file for window positions; empty means SettingsStore::DefaultFile.
  /// Throws Error if there is no QApplication or it lives on another thread.
  explicit QtHost(const std::string& settingsFile = "");
  ~QtHost();
  QtHost(const QtHost&) = delete;
  QtHost& operator=(const QtHost&) = delete;

 private:
  struct Adapter;
  std::unique_ptr<Adapter> adapter_;
};

}  // namespace rasterkit
