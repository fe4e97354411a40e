#include <QLineEdit>

#include <rasterkit/dialogs/crop/unit_field.h>

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

}  // namespace rasterkit
