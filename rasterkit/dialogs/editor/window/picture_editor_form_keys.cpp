#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSplitter>
#include <QTimer>

#include <rasterkit/dialogs/editor/window/page_strip.h>
#include <rasterkit/dialogs/editor/window/picture_editor_form.h>
#include <rasterkit/qt/controls/edits.h>
#include <rasterkit/qt/forms/window_settings.h>
#include <rasterkit/qt/qt_text.h>
#include <rasterkit/runtime/ports.h>

/// Keys that work wherever the focus is, and what the window remembers.
namespace rasterkit {
namespace {

constexpr const char* kShowsPages = "FormPictureEditor.ShowsPages";
constexpr const char* kShowsSteps = "FormPictureEditor.ShowsSteps";
constexpr const char* kPagesWidth = "FormPictureEditor.PagesWidth";
constexpr const char* kStepsWidth = "FormPictureEditor.StepsWidth";

bool IsEnter(int key) {
  return key == Qt::Key_Return || key == Qt::Key_Enter;
}

/// Keys with which a list is scrolled.
bool IsForList(const QKeyEvent& event) {
  switch (event.key()) {
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
    case Qt::Key_Home:
    case Qt::Key_End:
      return true;
    default:
      return false;
  }
}

/// Whether text was typed into a number field that is not taken over yet.
bool HasTyping(const QObject& field) {
  const auto* line = field.findChild<QLineEdit*>();
  return line != nullptr && line->isModified() && line->isUndoAvailable();
}

void EndTyping(const QObject& field) {
  if (auto* line = field.findChild<QLineEdit*>()) line->setModified(false);
}

int NumberOf(const char* name, int usual) {
  bool isNumber = false;
  const int number = ToQt(ReadSetting(kWindowSection, name).value_or("")).toInt(&isNumber);
  return isNumber ? number : usual;
}

}  // namespace

void TFormPictureEditor::WatchKeyboard() {
  for (QWidget* widget : findChildren<QWidget*>()) {
    const bool isTool = qobject_cast<ToolRow*>(widget->parentWidget()) != nullptr;
    const bool takesKeys = widget->focusPolicy() != Qt::NoFocus || isTool;
    if (takesKeys && (widget->focusProxy() == nullptr)) widget->installEventFilter(this);
    // A file that is dropped on a field is opened by the window.
    if (auto* line = qobject_cast<QLineEdit*>(widget)) line->setAcceptDrops(false);
  }
}

bool TFormPictureEditor::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::ShortcutOverride) {
    const auto& key = static_cast<QKeyEvent&>(*event);
    if (qobject_cast<QAbstractItemView*>(watched) != nullptr && IsForList(key)) {
      event->accept();
      return true;
    }
    if (TakeShortcut(*watched, key)) {
      // The field must not use it as a key of its own.
      event->ignore();
      return true;
    }
  }
  if (event->type() == QEvent::KeyPress) {
    const auto& key = static_cast<const QKeyEvent&>(*event);
    if (IsEnter(key.key()) && TakeEnter(*watched)) return true;
  }
  return TScaledForm::eventFilter(watched, event);
}

/// In a number field, undo and redo first take back what was typed and not taken over.
bool TFormPictureEditor::TakeShortcut(QObject& receiver, const QKeyEvent& event) const {
  const QKeySequence key(event.keyCombination());
  if (!actions_.HasKey(key)) return false;
  const bool isUndo = actions_[EditorCommand::undo].shortcuts().contains(key);
  const bool isRedo = actions_[EditorCommand::redo].shortcuts().contains(key);
  const bool isField = qobject_cast<QAbstractSpinBox*>(&receiver) != nullptr;
  return !(isField && (isUndo || isRedo) && HasTyping(receiver));
}

/// Enter takes over what a field or a list shows; it does not close the window there.
bool TFormPictureEditor::TakeEnter(const QObject& receiver) {
  if (&receiver == ui_.steps) {
    model_->GoTo(static_cast<size_t>(std::max(ui_.steps->currentRow(), 0)));
    return true;
  }
  if (&receiver == ui_.angle) {
    EndTyping(receiver);
    RotateByField();
    return true;
  }
  if (&receiver != ui_.resolution && &receiver != ui_.page) return false;
  auto& field = static_cast<QSpinBox&>(const_cast<QObject&>(receiver));
  field.interpretText();
  EndTyping(receiver);
  return true;
}

void TFormPictureEditor::ReadPanels() {
  actions_[EditorCommand::showPages].setChecked(NumberOf(kShowsPages, 1) != 0);
  actions_[EditorCommand::showSteps].setChecked(NumberOf(kShowsSteps, 0) != 0);
  constexpr int kLeast = 1, kMost = 10'000, kColumnsOfSteps = 28;
  const int usual = kColumnsOfSteps * fontMetrics().averageCharWidth();
  const int pages = std::clamp(NumberOf(kPagesWidth, kLeast), kLeast, kMost);
  const int steps = std::clamp(NumberOf(kStepsWidth, usual), kLeast, kMost);
  // The splitter keeps to the least widths of the panels.
  ui_.splitter->setSizes({pages, kMost, steps});
}

void TFormPictureEditor::WritePanels() const {
  const auto write = [](const char* name, int number) {
    WriteSetting(kWindowSection, name, std::to_string(number));
  };
  write(kShowsPages, actions_[EditorCommand::showPages].isChecked() ? 1 : 0);
  write(kShowsSteps, actions_[EditorCommand::showSteps].isChecked() ? 1 : 0);
  const QList<int> sizes = ui_.splitter->sizes();
  // A hidden panel has no width to be remembered.
  if (sizes.first() > 0) write(kPagesWidth, sizes.first());
  if (sizes.last() > 0) write(kStepsWidth, sizes.last());
}

}  // namespace rasterkit
