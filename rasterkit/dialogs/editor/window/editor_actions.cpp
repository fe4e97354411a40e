#include <QMenu>
#include <string_view>

#include <rasterkit/dialogs/editor/window/editor_actions.h>
#include <rasterkit/qt/guarded.h>
#include <rasterkit/qt/look/icons.h>
#include <rasterkit/qt/qt_text.h>

namespace rasterkit {
namespace {

enum class Menu { file, edit, picture, view, help };

struct Description {
  EditorCommand command;
  /// "ActionXxx" and "ToolXxx" are object names.
  const char* name;
  std::string_view text, hint;
  const char* icon;
  /// Separated by blanks, the first one is shown.
  const char* keys;
  Menu menu;
  /// Number of its group among the tools; 0: no tool.
  int toolGroup;
  /// A line above it in the menu.
  bool beginsGroup = false;
  bool isCheckable = false;
};

using enum EditorCommand;

constexpr Description kDescriptions[] = {
    {open, "Open", rsEditorOpen, rsEditorOpenHint, "open", "Ctrl+O", Menu::file, 1},
    {save, "Save", rsSavingSave, rsEditorSaveHint, "save", "Ctrl+S", Menu::file, 1, true},
    {saveAs, "SaveAs", rsEditorSaveAs, rsEditorSaveAsHint, "save-as", "Ctrl+Shift+S", Menu::file,
     1},
    {settings, "Settings", rsEditorSettings, rsEditorSettingsHint, "", "Ctrl+Alt+S", Menu::file, 0},
    {close, "Close", rsEditorCloseWindow, rsEditorCloseWindowHint, "", "Ctrl+W", Menu::file, 0,
     true},
    {undo, "Undo", rsEditorUndo, rsEditorUndoHint, "undo", "Ctrl+Z", Menu::edit, 2},
    {redo, "Redo", rsEditorRedo, rsEditorRedoHint, "redo", "Ctrl+Shift+Z Ctrl+Y", Menu::edit, 2},
    {turnLeft, "TurnLeft", rsEditorTurnLeft, rsEditorTurnLeftHint, "turn-left", "Ctrl+L",
     Menu::picture, 3},
    {turnRight, "TurnRight", rsEditorTurnRight, rsEditorTurnRightHint, "turn-right", "Ctrl+R",
     Menu::picture, 3},
    {mirror, "Mirror", rsEditorMirror, rsEditorMirrorHint, "mirror", "Ctrl+M", Menu::picture, 3},
    {flip, "Flip", rsEditorFlip, rsEditorFlipHint, "flip", "Ctrl+Shift+M", Menu::picture, 3},
    {angle, "Angle", rsEditorAngle, rsEditorAngleHint, "rotate", "Ctrl+Shift+R", Menu::picture, 3},
    {crop, "Crop", rsEditorCrop, rsEditorCropHint, "crop", "Ctrl+K", Menu::picture, 4, true},
    {size, "Size", rsEditorResize, rsEditorResizeHint, "size", "Ctrl+H", Menu::picture, 4},
    {values, "Values", rsEditorValues, rsEditorValuesHint, "edit-values", "Ctrl+E", Menu::picture,
     5, true},
    {gray, "Gray", rsEditorGrayscale, rsEditorGrayscaleHint, "grayscale", "Ctrl+G", Menu::picture,
     5},
    {mono, "Mono", rsEditorMono, rsEditorMonoHint, "black-white", "Ctrl+B", Menu::picture, 5},
    {colors256, "256Colors", rsEditor256Colors, rsEditor256ColorsHint, "colors-256", "Ctrl+8",
     Menu::picture, 5},
    {fit, "Fit", rsEditorFit, rsCropFitHint, "fit", "Ctrl+0", Menu::view, 6},
    {actualSize, "ActualSize", rsEditorActualSize, rsEditorActualSizeHint, "actual-size", "Ctrl+1",
     Menu::view, 6},
    {zoomIn, "ZoomIn", rsEditorZoomIn, rsEditorZoomInHint, "zoom-in", "Ctrl++ Ctrl+=", Menu::view,
     6},
    {zoomOut, "ZoomOut", rsEditorZoomOut, rsEditorZoomOutHint, "zoom-out", "Ctrl+-", Menu::view, 6},
    {showPages, "ShowPages", rsEditorShowPages, rsEditorShowPagesHint, "pages", "F7", Menu::view, 7,
     true, true},
    {showSteps, "ShowSteps", rsEditorShowSteps, rsEditorShowStepsHint, "steps", "F8", Menu::view, 7,
     false, true},
    {firstPage, "FirstPage", rsEditorFirstPage, rsEditorFirstPageHint, "", "Ctrl+Home", Menu::view,
     0, true},
    {previousPage, "PreviousPage", rsEditorPreviousPage, rsEditorPreviousPageHint, "", "PgUp",
     Menu::view, 0},
    {nextPage, "NextPage", rsEditorNextPage, rsEditorNextPageHint, "", "PgDown", Menu::view, 0},
    {lastPage, "LastPage", rsEditorLastPage, rsEditorLastPageHint, "", "Ctrl+End", Menu::view, 0},
    {help, "Help", rsEditorHelp, rsEditorHelpHint, "help", "F1", Menu::help, 8},
};

constexpr bool IsInOrder() {
  int next = 0;
  for (const Description& description : kDescriptions) {
    if (static_cast<int>(description.command) != next++) return false;
  }
  return next == kEditorCommands;
}
static_assert(IsInOrder());

QList<QKeySequence> KeysOf(const Description& description) {
  QList<QKeySequence> keys;
  for (const QString& key : QString::fromLatin1(description.keys).split(u' ')) {
    keys += QKeySequence(key);
  }
  return keys;
}

QString WithoutMnemonic(QString text) {
  return text.remove(u'&').remove(QLatin1String("..."));
}

QAction* NewAction(const Description& description, QWidget& window) {
  auto* action = new QAction(ResourceText(description.text), &window);
  const QString hint = ResourceText(description.hint);
  const QList<QKeySequence> keys = KeysOf(description);
  action->setObjectName(QStringLiteral("Action") + description.name);
  if (*description.icon != '\0') action->setIcon(Icon(description.icon));
  action->setShortcuts(keys);
  action->setToolTip(hint + " (" + keys.first().toString(QKeySequence::NativeText) + ')');
  action->setStatusTip(hint);
  action->setIconText(WithoutMnemonic(action->text()));
  action->setCheckable(description.isCheckable);
  window.addAction(action);
  return action;
}

}  // namespace

EditorActions::EditorActions(QWidget& window) : QObject(&window) {
  for (const Description& description : kDescriptions) {
    QAction* action = NewAction(description, window);
    actions_[static_cast<size_t>(description.command)] = action;
    connect(action, &QAction::triggered, this,
            Guarded([this, command = description.command] { Q_EMIT called(command); }));
  }
}

void EditorActions::FillMenus(QMenuBar& bar) const {
  const std::pair<Menu, std::string_view> titles[] = {{Menu::file, rsEditorMenuFile},
                                                      {Menu::edit, rsEditorMenuEdit},
                                                      {Menu::picture, rsEditorMenuPicture},
                                                      {Menu::view, rsEditorMenuView},
                                                      {Menu::help, rsEditorMenuHelp}};
  for (const auto& [which, title] : titles) {
    QMenu* menu = bar.addMenu(ResourceText(title));
    for (const Description& description : kDescriptions) {
      if (description.menu != which) continue;
      if (description.beginsGroup) menu->addSeparator();
      menu->addAction(&(*this)[description.command]);
    }
  }
}

void EditorActions::FillTools(ToolRow& row) const {
  int group = 1;
  for (const Description& description : kDescriptions) {
    if (description.toolGroup == 0) continue;
    if (description.toolGroup != group) row.AddLine();
    group = description.toolGroup;
    row.AddTool((*this)[description.command], QStringLiteral("Tool") + description.name);
  }
}

void EditorActions::FillContextMenu(QMenu& menu) const {
  for (const Menu which : {Menu::edit, Menu::picture, Menu::view}) {
    menu.addSeparator();
    for (const Description& description : kDescriptions) {
      if (description.menu != which) continue;
      if (description.beginsGroup) menu.addSeparator();
      menu.addAction(&(*this)[description.command]);
    }
  }
}

bool EditorActions::HasKey(const QKeySequence& key) const {
  for (const QAction* action : actions_) {
    if (action->isVisible() && action->shortcuts().contains(key)) return true;
  }
  return false;
}

QString EditorActions::KeysAsText() const {
  QString text;
  for (const QAction* action : actions_) {
    if (!action->isVisible()) continue;
    QStringList keys;
    for (const QKeySequence& key : action->shortcuts()) {
      keys += key.toString(QKeySequence::NativeText);
    }
    text += keys.join(QStringLiteral(", ")) + QStringLiteral(": ") + action->statusTip() + u'\n';
  }
  return text;
}

}  // namespace rasterkit
