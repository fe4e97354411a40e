#include <QAccessible>
#include <QKeyEvent>
#include <QScopedValueRollback>
#include <algorithm>
#include <utility>

#include <rasterkit/dialogs/size/choose_size_form.h>
#include <rasterkit/dialogs/size/size_facts.h>
#include <rasterkit/qt/controls/edits.h>
#include <rasterkit/qt/controls/redo_keys.h>
#include <rasterkit/qt/guarded.h>
#include <rasterkit/qt/look/icons.h>
#include <rasterkit/qt/qt_text.h>

#include "ui_choose_size_form.h"

namespace rasterkit {
namespace {

using Field = ChangeSizeModel::Field;

/// In the order of the lists in the form.
constexpr LengthUnit kUnits[] = {LengthUnit::pixels, LengthUnit::percent, LengthUnit::millimeters};
constexpr Filter kFilters[] = {Filter::automatic, Filter::nearest, Filter::linear, Filter::area};

template <typename List, typename Value>
int PlaceIn(const List& list, const Value& value) {
  return static_cast<int>(std::find(std::begin(list), std::end(list), value) - std::begin(list));
}

bool IsUndoOrRedo(const QKeyEvent& event) {
  return event.matches(QKeySequence::Undo) || IsRedo(event);
}

}  // namespace

TFormChooseSize::TFormChooseSize(ChangeSizeModel& model, Picture picture, QWidget* parent)
    : TScaledForm(parent),
      model_(model),
      picture_(std::move(picture)),
      ui_(std::make_unique<Ui::FormChooseSize>()) {
  SetUpForm(*ui_);
  ui_->ButtonOK->setIcon(Icon("post"));
  ui_->ButtonExit->setIcon(Icon("cancel"));
  ui_->ButtonUndo->setIcon(Icon("undo"));
  ui_->ButtonRedo->setIcon(Icon("redo"));
  constexpr double kGreatestNumber = 1e9;
  for (TFloatEdit* edit : {ui_->FlEdWidth, ui_->FlEdHeight, ui_->FlEdDpi}) {
    edit->setNegativeAllowed(false);
    edit->setMaximum(kGreatestNumber);
  }
  for (QWidget* control : findChildren<QWidget*>()) control->installEventFilter(this);
  ui_->FlEdDpi->setDecimals(2);
  QFont strong = ui_->LabFault->font();
  strong.setBold(true);
  ui_->LabFault->setFont(strong);
  ui_->LabNowValue->setText(ToQt(SizeFactsText(picture_)));
  ConnectControls();
  model_.BytesOf = [this](int32_t width, int32_t height) {
    return BytesAtSize(picture_, width, height, model_.GetFilter());
  };
  model_.OnField = [this](Field field, double value) {
    (field == Field::width ? ui_->FlEdWidth : ui_->FlEdHeight)->setValue(value);
  };
  model_.OnState = [this] { ShowState(); };
  ShowState();
  ui_->FlEdWidth->setFocus();
  ui_->FlEdWidth->selectAll();
}

TFormChooseSize::~TFormChooseSize() {
  // A field that loses the focus still reports what is typed.
  hide();
  model_.BytesOf = nullptr;
  model_.OnField = nullptr;
  model_.OnState = nullptr;
}

void TFormChooseSize::ConnectControls() {
  const auto number = [this](TFloatEdit* edit, Field field) {
    connect(edit, &TFloatEdit::valueChanged, this, [this, field](double value) {
      if (isShowing_) return;
      Application.Guard([&] {
        model_.FlEdChange(field, value);
        ShowResult();
      });
    });
    connect(edit, &TFloatEdit::editingFinished, this, [this] { model_.EndTyping(); });
  };
  number(ui_->FlEdWidth, Field::width);
  number(ui_->FlEdHeight, Field::height);
  connect(ui_->FlEdDpi, &TFloatEdit::valueChanged, this, [this](double value) {
    if (!isShowing_) Application.Guard([&] { model_.SetDpi(value); });
  });
  connect(ui_->FlEdDpi, &TFloatEdit::editingFinished, this, [this] { model_.EndTyping(); });
  connect(ui_->UnitBox, &QComboBox::currentIndexChanged, this, [this](int place) {
    if (!isShowing_) Application.Guard([&] { model_.SetUnit(kUnits[place]); });
  });
  connect(ui_->FilterBox, &QComboBox::currentIndexChanged, this, [this](int place) {
    if (isShowing_) return;
    Application.Guard([&] {
      model_.SetFilter(kFilters[place]);
      ShowResult();
    });
  });
  connect(ui_->CheckKeep, &QCheckBox::toggled, this, [this](bool checked) {
    if (isShowing_) return;
    Application.Guard([&] {
      model_.SetProportional(checked);
      ShowResult();
    });
  });
  connect(ui_->ButtonUndo, &QPushButton::clicked, this, Guarded([this] { model_.Undo(); }));
  connect(ui_->ButtonRedo, &QPushButton::clicked, this, Guarded([this] { model_.Redo(); }));
  connect(ui_->ButtonOK, &QPushButton::clicked, this, &QDialog::accept);
  connect(ui_->ButtonExit, &QPushButton::clicked, this, &QDialog::reject);
}

void TFormChooseSize::ShowState() {
  const QScopedValueRollback showing(isShowing_, true);
  constexpr int kDecimals = 2;
  const bool isInPixels = model_.Unit() == LengthUnit::pixels;
  for (TFloatEdit* edit : {ui_->FlEdWidth, ui_->FlEdHeight}) {
    edit->setDecimals(isInPixels ? 0 : kDecimals);
  }
  ui_->FlEdWidth->setValue(model_.Width());
  ui_->FlEdHeight->setValue(model_.Height());
  // Typed digits stay as they are.
  if (ui_->FlEdDpi->value() != model_.Dpi()) ui_->FlEdDpi->setValue(model_.Dpi());
  const bool isOnPaper = model_.Unit() == LengthUnit::millimeters;
  ui_->FlEdDpi->setEnabled(isOnPaper);
  ui_->LabResolution->setEnabled(isOnPaper);
  ui_->UnitBox->setCurrentIndex(PlaceIn(kUnits, model_.Unit()));
  ui_->FilterBox->setCurrentIndex(PlaceIn(kFilters, model_.GetFilter()));
  ui_->CheckKeep->setChecked(model_.Proportional());
  ShowResult();
}

void TFormChooseSize::ShowResult() {
  ui_->LabResultValue->setText(ToQt(SizeResultText(model_, picture_)));
  const QString fault = ToQt(SizeFaultText(model_));
  if (ui_->LabFault->text() != fault) {
    ui_->LabFault->setText(fault);
    QAccessibleEvent event(ui_->LabFault, QAccessible::Alert);
    if (!fault.isEmpty()) QAccessible::updateAccessibility(&event);
    MakeRoomForFault();
  }
  ui_->ButtonOK->setEnabled(model_.CanConfirm());
  ui_->ButtonUndo->setEnabled(model_.CanUndo());
  ui_->ButtonRedo->setEnabled(model_.CanRedo());
}

// A text of several lines has a height only when its width is known.
void TFormChooseSize::MakeRoomForFault() {
  const int height = ui_->LabFault->heightForWidth(ui_->LabFault->width());
  ui_->LabFault->setMinimumHeight(std::max(height, 0));
}

// Some controls use these keys for themselves: fields take back single letters.
bool TFormChooseSize::eventFilter(QObject* watched, QEvent* event) {
  if (watched == ui_->LabFault && event->type() == QEvent::Resize) MakeRoomForFault();
  const bool isKey = event->type() == QEvent::KeyPress || event->type() == QEvent::ShortcutOverride;
  if (isKey && IsUndoOrRedo(static_cast<QKeyEvent&>(*event))) {
    event->ignore();
    if (event->type() == QEvent::KeyPress) keyPressEvent(static_cast<QKeyEvent*>(event));
    return true;
  }
  return TScaledForm::eventFilter(watched, event);
}

void TFormChooseSize::keyPressEvent(QKeyEvent* event) {
  if (!IsUndoOrRedo(*event)) return TScaledForm::keyPressEvent(event);
  event->accept();
  Application.Guard([&] { IsRedo(*event) ? model_.Redo() : model_.Undo(); });
}

}  // namespace rasterkit
