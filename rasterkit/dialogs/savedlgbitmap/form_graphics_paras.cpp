#include <initializer_list>

#include <rasterkit/dialogs/savedlgbitmap/form_graphics_paras.h>
#include <rasterkit/qt/controls/edits.h>
#include <rasterkit/qt/controls/navigator.h>
#include <rasterkit/qt/guarded.h>
#include <rasterkit/qt/qt_text.h>
#include <rasterkit/runtime/ports.h>

#include "ui_form_graphics_paras.h"

namespace rasterkit {
namespace {

/// The width of two buttons of the navigator.
constexpr int kWidthWithoutHelp = 56;

}  // namespace

TFormGraphicsParas::TFormGraphicsParas(QWidget* parent)
    : TScaledForm(parent), ui_(std::make_unique<Ui::FormGraphicsParas>()) {
  SetUpForm(*ui_);
  for (TFloatEdit* edit : {ui_->FlEdWidth, ui_->FlEdHeight}) {
    edit->setDecimals(0);
    edit->setNegativeAllowed(false);
    edit->setMaximum(INT32_MAX);
  }
  // The panels and the edits are shown alternately in the same place.
  for (QLabel* panel : {ui_->PanBmpW, ui_->PanBmpH}) {
    panel->setMinimumHeight(ui_->FlEdWidth->sizeHint().height());
  }
  ShowPixelEdits(false);
  resize(sizeHint());
  heightToShow_ = height();
  model_ = std::make_unique<GraphicsParasModel>(static_cast<GraphicsParasView&>(*this));
  ConnectControls();
}

TFormGraphicsParas::~TFormGraphicsParas() = default;

void TFormGraphicsParas::ConnectControls() {
  connect(ui_->CoBoGraphType, &QComboBox::currentIndexChanged, this,
          [this](int position) { model_->CoBoGraphTypeChange(position); });
  connect(ui_->SpEdDpi, &TSpinEditReal::valueChanged, this,
          [this](double dpi) { model_->SpEdDpiChange(dpi); });
  connect(ui_->CoBoColors, &QComboBox::currentIndexChanged, this,
          [this](int position) { model_->CoBoColorsChange(position); });
  connect(ui_->TrackBarComp, &QSlider::valueChanged, this,
          [this](int position) { model_->TrackBarCompChange(position); });
  connect(ui_->FlEdWidth, &TFloatEdit::valueChanged, this,
          [this](double pixels) { model_->FlEdSizeChange(SizeEdit::FlEdWidth, pixels); });
  connect(ui_->FlEdHeight, &TFloatEdit::valueChanged, this,
          [this](double pixels) { model_->FlEdSizeChange(SizeEdit::FlEdHeight, pixels); });
  connect(ui_->NaviResult, &TNavigator::postClicked, this, &QDialog::accept);
  connect(ui_->NaviResult, &TNavigator::cancelClicked, this, &QDialog::reject);
  connect(ui_->NaviResult, &TNavigator::helpClicked, this,
          Guarded([] { ShowHelpTopic(kHelpOfGraphicsParas); }));
}

void TFormGraphicsParas::HideHelp() {
  ui_->NaviResult->setHelpVisible(false);
  ui_->NaviResult->setFixedWidth(kWidthWithoutHelp);
}

void TFormGraphicsParas::setVisible(bool visible) {
  if (visible && heightToShow_) {
    // A stored position has the height of other groups.
    SetWindowHeight(*heightToShow_);
    model_->FormShow();
    heightToShow_.reset();
  }
  TScaledForm::setVisible(visible);
}

QWidget& TFormGraphicsParas::PanelOf(ParasGroup group) const {
  return *BoxOf(group).parentWidget();
}

QGroupBox& TFormGraphicsParas::BoxOf(ParasGroup group) const {
  switch (group) {
    case ParasGroup::type:
      return *ui_->GBGraphType;
    case ParasGroup::resolution:
      return *ui_->GBDpi;
    case ParasGroup::bitmap:
      return *ui_->GBBitmap;
    case ParasGroup::jpeg:
      return *ui_->GBJpeg;
    case ParasGroup::pixelSize:
      return *ui_->GBPixels;
    case ParasGroup::millimeters:
      break;
  }
  return *ui_->GBMm;
}

QLabel& TFormGraphicsParas::LabelOf(ParasText text) const {
  switch (text) {
    case ParasText::LabComp:
      return *ui_->LabComp;
    case ParasText::LabBmpSize:
      return *ui_->LabBmpSize;
    case ParasText::PanBmpW:
      return *ui_->PanBmpW;
    case ParasText::PanBmpH:
      return *ui_->PanBmpH;
    case ParasText::PanBmpSize:
      return *ui_->PanBmpSize;
    case ParasText::PanWmm:
      return *ui_->PanWmm;
    case ParasText::PanHmm:
      break;
  }
  return *ui_->PanHmm;
}

std::string TFormGraphicsParas::Title(ParasGroup group) const {
  return FromQt(BoxOf(group).title());
}

void TFormGraphicsParas::SetTitle(ParasGroup group, const std::string& title) {
  BoxOf(group).setTitle(ToQt(title));
}

int TFormGraphicsParas::Height(ParasGroup group) const {
  // The height of a panel is always its size hint.
  return PanelOf(group).sizeHint().height();
}

void TFormGraphicsParas::SetVisible(ParasGroup group, bool visible) {
  PanelOf(group).setVisible(visible);
}

void TFormGraphicsParas::SetWindowHeight(int height) {
  // Otherwise the minimum height is that of the previous groups.
  layout()->activate();
  if (heightToShow_) heightToShow_ = height;
  if (!isMaximized()) resize(width(), height);
}

std::string TFormGraphicsParas::Text(ParasText text) const {
  return FromQt(LabelOf(text).text());
}

void TFormGraphicsParas::SetText(ParasText text, const std::string& content) {
  LabelOf(text).setText(ToQt(content));
}

void TFormGraphicsParas::ShowPixelEdits(bool shown) {
  // The mnemonic of the one label would belong to a hidden field while the panels are shown.
  for (QWidget* part :
       std::initializer_list<QWidget*>{ui_->LabPixelEdits, ui_->FlEdWidth, ui_->FlEdHeight}) {
    part->setVisible(shown);
  }
  for (QLabel* part : {ui_->LabBmpPixels, ui_->PanBmpW, ui_->PanBmpH}) part->setVisible(!shown);
}

void TFormGraphicsParas::SetSize(SizeEdit edit, double pixels) {
  (edit == SizeEdit::FlEdWidth ? ui_->FlEdWidth : ui_->FlEdHeight)->setValue(pixels);
}

void TFormGraphicsParas::SelectType(int position) {
  ui_->CoBoGraphType->setCurrentIndex(position);
}

void TFormGraphicsParas::SelectColors(int position) {
  ui_->CoBoColors->setCurrentIndex(position);
}

void TFormGraphicsParas::SetDpi(double dpi) {
  ui_->SpEdDpi->setValue(dpi);
}

void TFormGraphicsParas::SetTrackBar(int position) {
  ui_->TrackBarComp->setValue(position);
}

}  // namespace rasterkit
