#pragma once

#include <QAction>
#include <QMenuBar>
#include <QObject>
#include <array>
#include <functional>

#include <rasterkit/dialogs/editor/window/tool_row.h>

namespace rasterkit {

/// What a user can call in the editor, in the order of the menus.
enum class EditorCommand {
  open,
  save,
  saveAs,
  settings,
  close,
  undo,
  redo,
  turnLeft,
  turnRight,
  mirror,
  flip,
  angle,
  crop,
  size,
  values,
  gray,
  mono,
  colors256,
  fit,
  actualSize,
  zoomIn,
  zoomOut,
  showPages,
  showSteps,
  firstPage,
  previousPage,
  nextPage,
  lastPage,
  help
};
inline constexpr int kEditorCommands = static_cast<int>(EditorCommand::help) + 1;

/// The actions of the editor: words, drawings, keys and tips in one table, shown in menus and as
/// tools. An action that is hidden has no key.
class EditorActions : public QObject {
  Q_OBJECT

 public:
  /// Adds the actions to the window, whose keys they are.
  explicit EditorActions(QWidget& window);

  QAction& operator[](EditorCommand command) const {
    return *actions_[static_cast<size_t>(command)];
  }

  void FillMenus(QMenuBar& bar) const;
  void FillTools(ToolRow& row) const;
  /// The steps and the view, for a menu over the picture.
  void FillContextMenu(QMenu& menu) const;
  /// Whether a key belongs to one of the actions that can be called.
  bool HasKey(const QKeySequence& key) const;
  /// Each action with its keys, as a text for people.
  QString KeysAsText() const;

 Q_SIGNALS:
  void called(rasterkit::EditorCommand command);

 private:
  std::array<QAction*, kEditorCommands> actions_{};
};

}  // namespace rasterkit
