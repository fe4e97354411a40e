#pragma once

#include <QMessageBox>
#include <memory>
#include <string>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Shows `text` (plain, UTF-8) in a modal window over the active one until the user closes it.
/// Called on another thread than the application's, it hands the text over and returns at once, as
/// a thread that the application waits for must not wait for the application.
RASTERKIT_EXPORT void ShowMessageBox(const std::string& text);

/// Asks `question` (plain, UTF-8) in a modal window over the active one; true when the user answers
/// Yes, which no key does unasked: No is the default, Escape and the frame mean No as well. False
/// without a window on another thread than the application's.
RASTERKIT_EXPORT bool AskYesOrNo(const std::string& question);

/// The window that ShowMessageBox shows. Application's thread only.
RASTERKIT_EXPORT std::unique_ptr<QMessageBox> MakeMessageBox(const QString& text);

/// The window that AskYesOrNo shows. Application's thread only.
RASTERKIT_EXPORT std::unique_ptr<QMessageBox> MakeQuestionBox(const QString& question);

}  // namespace rasterkit
