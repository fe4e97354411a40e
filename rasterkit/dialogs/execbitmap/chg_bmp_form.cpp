#include <QKeyEvent>
#include <QKeySequence>
#include <QMouseEvent>
#include <QPainter>
#include <QSlider>
#include <algorithm>
#include <string>
#include <utility>

#include <rasterkit/dialogs/execbitmap/chg_bmp_form.h>
#include <rasterkit/qt/bitmap_image.h>
#include <rasterkit/qt/controls/edits.h>
#include <rasterkit/qt/controls/navigator.h>
#include <rasterkit/qt/host/modal_call.h>
#include <rasterkit/qt/qt_color.h>
#include <rasterkit/qt/qt_text.h>
#include <rasterkit/strings/strings.h>

#include "ui_chg_bmp_form.h"

namespace rasterkit {
namespace {

constexpr ValueControl kControls[kValueControls] = {
    ValueControl::lightness, ValueControl::contrast, ValueControl::sharpen,  ValueControl::red,
    ValueControl::green,     ValueControl::blue,     ValueControl::grayValue};

/// The positions of the previews in PanBmps.
constexpr int kWidthsUnused = 36, kHeightUnused = 21, kGap = 24;
constexpr int kLeft = (kWidthsUnused - kGap) / 2, kTop = kHeightUnused / 2;

/// Returns the size of the box in screen pixels: a picture at its own size has one picture pixel
/// per screen pixel.
QSize PixelSize(const QWidget& box) {
  return (QSizeF(box.size()) * box.devicePixelRatioF()).toSize();
}

}  // namespace

TFormChgBmp::TFormChgBmp(ChangeValuesModel& model, QWidget* parent)
    : TScaledForm(parent), model_(model), ui_(std::make_unique<Ui::FormChgBmp>()) {
  SetUpForm(*ui_);
  ShowOperation();
  ConnectValues();
  ConnectPreviews();
  ShowValues();
}

TFormChgBmp::~TFormChgBmp() {
  model_.OnValues = nullptr;
  model_.OnRepaint = nullptr;
}

TFormChgBmp::Controls TFormChgBmp::ControlsOf(ValueControl control) const {
  switch (control) {
    case ValueControl::lightness:
      return {ui_->TrackLightness, ui_->SpEdLightness};
    case ValueControl::contrast:
      return {ui_->TrackContrast, ui_->SpEdContrast};
    case ValueControl::sharpen:
      return {ui_->TrackSharpen, ui_->SpEdSharpen};
    case ValueControl::red:
      return {ui_->TBRed, ui_->SpEdRed};
    case ValueControl::green:
      return {ui_->TBGreen, ui_->SpEdGreen};
    case ValueControl::blue:
      return {ui_->TBBlue, ui_->SpEdBlue};
    case ValueControl::grayValue:
      break;
  }
  return {ui_->TrackBar, ui_->SpEdIntens};
}

void TFormChgBmp::ConnectValues() {
  for (const ValueControl control : kControls) {
    const auto change = [this, control](int value) {
      if (!isShowing_) model_.Change(control, value);
    };
    const Controls controls = ControlsOf(control);
    connect(controls.track, &QSlider::valueChanged, this, change);
    connect(controls.spin, &TSpinEditInt::valueChanged, this, change);
  }
  connect(ui_->NaviResult, &TNavigator::postClicked, this, &QDialog::accept);
  connect(ui_->NaviResult, &TNavigator::cancelClicked, this, &QDialog::reject);
  connect(ui_->NaviResult, &TNavigator::refreshClicked, this, [this] { model_.Reset(); });
  model_.OnValues = [this] { ShowValues(); };
  model_.OnRepaint = [this] { RepaintChanged(); };
}

void TFormChgBmp::ConnectPreviews() {
  ui_->PanBmps->installEventFilter(this);
  ui_->PaintBoxOrg->OnPaint = [this](TPaintBox& box, QPainter& painter) {
    PaintPreview(box, painter, original_, true);
  };
  ui_->PaintBoxChg->OnPaint = [this](TPaintBox& box, QPainter& painter) {
    PaintPreview(box, painter, changed_, false);
  };
  ui_->PaintBoxOrg->OnMouseDown = [this](TPaintBox&, QMouseEvent& e) { PaintBoxOrgMouseDown(e); };
  ui_->PaintBoxOrg->OnMouseMove = [this](TPaintBox&, QMouseEvent& e) { PaintBoxOrgMouseMove(e); };
  ui_->PaintBoxOrg->OnMouseUp = [this](TPaintBox&, QMouseEvent&) { ShowPanCursor(false); };
  ui_->PaintBoxOrg->OnKeyDown = [this](TPaintBox&, QKeyEvent& e) { PaintBoxOrgKeyDown(e); };
  ui_->PaintBoxFarbe->OnPaint = [this](TPaintBox&, QPainter& p) { PaintBoxFarbePaint(p); };
}

/// The form keeps no room for a panel that its operation does not use.
void TFormChgBmp::HidePanel(QWidget& panel) {
  panel.hide();
  resize(width(), height() - panel.sizeHint().height() - layout()->spacing());
}

void TFormChgBmp::ShowOperation() {
  setWindowTitle(ToQt(model_.Caption()));
  if (!model_.ShowsGrayValue()) HidePanel(*ui_->PanIntens);
  if (!model_.ShowsEditingPanel()) HidePanel(*ui_->PanEdit);
  // The operations have different heights.
  SetSettingsName("FormChgBmp" + std::to_string(model_.Operation()));
  ui_->PanShowColor->setVisible(model_.ShowsSwatch());
  ShowRefresh();
  const ScaleTexts& texts = model_.TextsOfGrayValue();
  ui_->LabVon->setText(ToQt(texts.LabVon));
  ui_->LabMitte->setText(ToQt(texts.LabMitte));
  ui_->LabMitte->setVisible(!texts.LabMitte.empty());
  ui_->LabBis->setText(ToQt(texts.LabBis));
  ui_->PaintBoxOrg->setFocus();
  if (model_.ShowsEditingPanel()) ui_->TrackLightness->setFocus();
  if (model_.ShowsGrayValue()) ui_->TrackBar->setFocus();
}

/// While all task slots hold brightness, the other controls have no effect until Refresh; explain
/// that in the tip.
void TFormChgBmp::ShowRefresh() {
  QPushButton& refresh = ui_->NaviResult->Button(nbRefresh);
  refresh.setVisible(true);
  constexpr TaskSlots kTaken = {kTaskBrightness, kTaskBrightness, kTaskBrightness, kTaskBrightness};
  if (!model_.ShowsEditingPanel() || model_.Slots() != kTaken) return;
  const QString hint = ResourceText(rsRefreshValuesHint);
  const QString key = QKeySequence(QKeySequence::Refresh).toString(QKeySequence::NativeText);
  refresh.setToolTip(hint + " (" + key + ")");
  refresh.setAccessibleDescription(hint);
}

void TFormChgBmp::ShowValues() {
  const bool before = std::exchange(isShowing_, true);
  for (const ValueControl control : kControls) {
    const Controls controls = ControlsOf(control);
    const ValueRange range = model_.Range(control);
    controls.track->setRange(range.least, range.greatest);
    controls.spin->setRange(range.least, range.greatest);
    controls.track->setValue(model_.Value(control));
    controls.spin->setValue(model_.Value(control));
  }
  isShowing_ = before;
}

bool TFormChgBmp::eventFilter(QObject* watched, QEvent* event) {
  if (watched == ui_->PanBmps && event->type() == QEvent::Resize) PanBmpsResize();
  return TScaledForm::eventFilter(watched, event);
}

void TFormChgBmp::PanBmpsResize() {
  const int width = std::max((ui_->PanBmps->width() - kWidthsUnused) / 2, 0);
  const int height = std::max(ui_->PanBmps->height() - kHeightUnused, 0);
  ui_->PanOrg->setGeometry(kLeft, kTop, width, height);
  ui_->PanChg->setGeometry(kLeft + width + kGap, kTop, width, height);
  ui_->PanOrg->layout()->activate();
  ui_->PanChg->layout()->activate();
  MeasurePreviews();
  RepaintPreviews();
}

void TFormChgBmp::MeasurePreviews() {
  previewSize_ = PixelSize(*ui_->PaintBoxOrg);
  model_.InitBmpPos(previewSize_.width(), previewSize_.height());
  original_ = TBitmap();
  changed_ = TBitmap();
  ShowPanCursor(false);
}

/// The background beside and below the pictures follows the style.
void TFormChgBmp::changeEvent(QEvent* event) {
  TScaledForm::changeEvent(event);
  const bool isOfStyle =
      event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange;
  const bool hasPreviews = !previewSize_.isEmpty();
  if (isOfStyle && hasPreviews) RepaintPreviews();
}

void TFormChgBmp::RepaintChanged() {
  changed_ = TBitmap();
  ui_->PaintBoxChg->update();
  ui_->PaintBoxFarbe->update();
}

void TFormChgBmp::RepaintPreviews() {
  original_ = TBitmap();
  ui_->PaintBoxOrg->update();
  RepaintChanged();
}

void TFormChgBmp::PaintPreview(TPaintBox& box, QPainter& painter, TBitmap& content,
                               bool isOriginal) {
  // On another screen the box may have another number of pixels although its size is the same.
  if (PixelSize(*ui_->PaintBoxOrg) != previewSize_) {
    MeasurePreviews();
    RepaintPreviews();
  }
  if (content.Empty()) {
    const TColor ground = ColorOf(box.palette().color(QPalette::Window));
    content = isOriginal ? model_.OriginalPreview(ground) : model_.ChangedPreview(ground);
  }
  if (content.Empty()) return box.PaintFocus(painter);
  QImage image = ImageOfBitmap(content);
  image.setDevicePixelRatio(box.devicePixelRatioF());
  painter.drawImage(0, 0, image);
  box.PaintFocus(painter);
}

TPoint TFormChgBmp::PixelOf(const QMouseEvent& event) const {
  const QPointF pixel = event.position() * ui_->PaintBoxOrg->devicePixelRatioF();
  return {qRound(pixel.x()), qRound(pixel.y())};
}

void TFormChgBmp::PaintBoxOrgMouseDown(QMouseEvent& event) {
  if (event.button() != Qt::LeftButton) return;
  model_.Position().Press(PixelOf(event));
  ShowPanCursor(true);
}

void TFormChgBmp::PaintBoxOrgMouseMove(QMouseEvent& event) {
  if (!(event.buttons() & Qt::LeftButton)) return;
  if (model_.Position().Drag(PixelOf(event))) RepaintPreviews();
}

void TFormChgBmp::PaintBoxOrgKeyDown(QKeyEvent& event) {
  constexpr int kStep = 20;
  int right = 0, down = 0;
  switch (event.key()) {
    case Qt::Key_Left:
      right = -kStep;
      break;
    case Qt::Key_Right:
      right = kStep;
      break;
    case Qt::Key_Up:
      down = -kStep;
      break;
    case Qt::Key_Down:
      down = kStep;
      break;
    default:
      return event.ignore();
  }
  if (model_.Position().Scroll(right, down)) RepaintPreviews();
}

void TFormChgBmp::ShowPanCursor(bool isDragging) {
  const TPoint most = model_.Position().MaxOffset();
  if (most.X == 0 && most.Y == 0) return ui_->PaintBoxOrg->unsetCursor();
  ui_->PaintBoxOrg->setCursor(isDragging ? Qt::ClosedHandCursor : Qt::OpenHandCursor);
}

void TFormChgBmp::PaintBoxFarbePaint(QPainter& painter) {
  painter.fillRect(ui_->PaintBoxFarbe->rect(), QtColor(model_.SwatchColor()));
}

bool ConfirmValues(ChangeValuesModel& model) {
  const TModalCall call;
  TFormChgBmp form(model);
  return form.ShowModal() == mrOk;
}

}  // namespace rasterkit
