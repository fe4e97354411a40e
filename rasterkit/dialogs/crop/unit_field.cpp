#include <QKeyEvent>
#include <QLineEdit>

#include <rasterkit/dialogs/crop/unit_field.h>
#include <rasterkit/qt/controls/redo_keys.h>

namespace rasterkit {

TUnitField::TUnitField(QWidget* parent) : TSpinEditReal(parent) {
  connect(lineEdit(), &QLineEdit::textEdited, this, [this] { isTyped_ = true; });
  connect(this, &QAbstractSpinBox::editingFinished, this, [this] {
    if (!isTyped_) return;
    isTyped_ = false;
    if (OnTyped) OnTyped(value());
  });
}

void TUnitField::stepBy(int steps) {
  // What is typed but not finished counts from here.
  if (isTyped_) {
    isTyped_ = false;
    if (OnTyped) OnTyped(value());
  }
  if (!OnStep) return TSpinEditReal::stepBy(steps);
  OnStep(steps);
  selectAll();
}

bool TUnitField::event(QEvent* event) {
  if (event->type() == QEvent::ShortcutOverride && !isTyped_) {
    const auto& key = static_cast<const QKeyEvent&>(*event);
    if (key.matches(QKeySequence::Undo) || IsRedo(key)) {
      event->ignore();
      return false;
    }
  }
  return TSpinEditReal::event(event);
}

}  // namespace rasterkit
