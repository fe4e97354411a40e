#pragma once

#include <QMessageBox>
#include <memory>
#include <string>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Shows `text` (plain, UTF-8) in a modal window over the active one until the user closes it. On
/// another thread than the application's it posts the text and returns at once: a thread that the
/// application waits for must not wait for the application.
RASTERKIT_EXPORT void ShowMessageBox(const std::string& text);

/// Shows `question` (plain, UTF-8) in a modal window over the active one and returns true if the
/// user answers Yes. No is the default button; Escape and the close button of the frame also mean
/// No. Returns false without a window on another thread than the application's.
RASTERKIT_EXPORT bool AskYesOrNo(const std::string& question);

/// Creates the window that ShowMessageBox shows. Application's thread only.
RASTERKIT_EXPORT std::unique_ptr<QMessageBox> MakeMessageBox(const QString& text);

/// Creates the window that AskYesOrNo shows. Application's thread only.
RASTERKIT_EXPORT std::unique_ptr<QMessageBox> MakeQuestionBox(const QString& question);

}  // namespace rasterkit
