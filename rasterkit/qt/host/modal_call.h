#pragma once

#include <memory>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// What an exported routine that opens a dialog holds for as long as it runs, before it makes its
/// form. Where the host has no QApplication, one is made and ended with the call: in Qt's style
/// Fusion, with dark or light colours where the setting "Style" in section "Settings" is "dark" or
/// "light". The process's locale stays as it was. Where the host has no QtHost, the same. Calls may
/// nest.
class RASTERKIT_EXPORT TModalCall {
 public:
  /// Throws Error when no dialog can be shown: no display, an application object without widgets,
  /// or another thread than the application's.
  TModalCall();
  ~TModalCall();
  TModalCall(const TModalCall&) = delete;
  TModalCall& operator=(const TModalCall&) = delete;

 private:
  struct Services;
  std::unique_ptr<Services> services_;
};

}  // namespace rasterkit
