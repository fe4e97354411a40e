#pragma once

#include <memory>
#include <string>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Makes a Qt application the host: for as long as it lives, every port of `HostPorts()` that was
/// empty has its Qt side (message pump, message box, picture file dialogs, the dialog for a page of
/// a PDF file, system colours, settings), and termination events and timers of the application's
/// thread arrive from whatever Qt loop is turning. Texts are in the host's language (language.h).
///
/// Make one right after the QApplication and on its thread, and end it before that. Several may
/// live at once; the first one serves. Ports that the host filled itself are left alone.
class RASTERKIT_EXPORT QtHost {
 public:
  /// `settingsFile` is the INI file for window places; empty takes SettingsStore::DefaultFile.
  /// Throws Error when there is no QApplication or it lives on another thread.
  explicit QtHost(const std::string& settingsFile = "");
  ~QtHost();
  QtHost(const QtHost&) = delete;
  QtHost& operator=(const QtHost&) = delete;

 private:
  struct Adapter;
  std::unique_ptr<Adapter> adapter_;
};

}  // namespace rasterkit
