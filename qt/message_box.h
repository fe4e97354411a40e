#pragma once

#include <QMessageBox>
#include <memory>
#include <string>

#include <rasterkit/host/runtime/export.h>

namespace rasterkit {

/// Shows `text` (plain, UTF-8) in a modal window over the active one until the user closes it.
/// Called on another thread than the application's, it hands the text over and returns at once, as
/// a thread that the application waits for must not wait for the application.
RASTERKIT_EXPORT void ShowMessageBox(const std::string& text);

/// The window that ShowMessageBox shows. Application's thread only.
RASTERKIT_EXPORT std::unique_ptr<QMessageBox> MakeMessageBox(const QString& text);

}  // namespace rasterkit
