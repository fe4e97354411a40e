#include <rasterkit/dialogs/editchangesize/change_size_form.h>
#include <rasterkit/qt/controls/edits.h>
#include <rasterkit/qt/look/icons.h>

#include "ui_change_size_form.h"

namespace rasterkit {

using Field = ChangeSizeModel::Field;

TFormChangeSize::TFormChangeSize(ChangeSizeModel& model, QWidget* parent)
    : TScaledForm(parent), model_(model), ui_(std::make_unique<Ui::FormChangeSize>()) {
  SetUpForm(*ui_);
  ui_->ButtonOK->setIcon(Icon("post"));
  ui_->ButtonExit->setIcon(Icon("cancel"));
  for (TFloatEdit* edit : {ui_->FlEdW, ui_->FlEdH}) {
    edit->setDecimals(0);
    edit->setNegativeAllowed(false);
    edit->setMaximum(ChangeSizeModel::kGreatest);
  }
  ui_->FlEdW->setValue(model.Width());
  ui_->FlEdH->setValue(model.Height());
  ui_->CheckProp->setChecked(model.Proportional());
  ui_->FlEdW->selectAll();
  model_.OnField = [this](Field field, double value) { EditOf(field).setValue(value); };
  for (TFloatEdit* edit : {ui_->FlEdW, ui_->FlEdH}) {
    connect(edit, &TFloatEdit::valueChanged, this, [this, edit] { FlEdChange(*edit); });
  }
  connect(ui_->CheckProp, &QCheckBox::toggled, this,
          [this](bool checked) { model_.SetProportional(checked); });
  connect(ui_->ButtonOK, &QPushButton::clicked, this, &QDialog::accept);
  connect(ui_->ButtonExit, &QPushButton::clicked, this, &QDialog::reject);
}

TFormChangeSize::~TFormChangeSize() {
  model_.OnField = nullptr;
}

TFloatEdit& TFormChangeSize::EditOf(Field field) const {
  return field == Field::width ? *ui_->FlEdW : *ui_->FlEdH;
}

void TFormChangeSize::FlEdChange(TFloatEdit& sender) {
  model_.FlEdChange(&sender == ui_->FlEdW ? Field::width : Field::height, sender.value());
}

}  // namespace rasterkit
