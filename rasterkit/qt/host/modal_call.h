#pragma once

#include <memory>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// The environment of an exported routine that opens a dialog; create it before the form and keep
/// it until the routine returns. If the host has no QApplication, one is created for the time of
/// the call: style Fusion, with dark or light colors if the setting "Style" in section "Settings"
/// is "dark" or "light". The locale of the process does not change. A missing QtHost is created the
/// same way. Calls may be nested.
class RASTERKIT_EXPORT TModalCall {
 public:
  /// Throws Error if no dialog can be shown: no display, an application object without widgets, or
  /// another thread than the application's.
  TModalCall();
  ~TModalCall();
  TModalCall(const TModalCall&) = delete;
  TModalCall& operator=(const TModalCall&) = delete;

 private:
  struct Services;
  std::unique_ptr<Services> services_;
};

}  // namespace rasterkit
