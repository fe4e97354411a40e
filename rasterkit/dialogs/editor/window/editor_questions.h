#pragma once

#include <QMessageBox>
#include <memory>

#include <rasterkit/dialogs/editor/editor_view.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// The window with a question of the editor. Its buttons have words of their own; they are
/// QMessageBox::Yes, No and Cancel, where the question has such answers. Escape and the close
/// button of the frame cancel.
RASTERKIT_EXPORT std::unique_ptr<QMessageBox> MakeEditorQuestion(EditorQuestion question,
                                                                 const QString& text);

/// Shows the question over the active window. Anything else than a pressed button cancels.
EditorAnswer AskEditorQuestion(EditorQuestion question, const QString& text);

}  // namespace rasterkit
