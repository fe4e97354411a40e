#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QToolButton>

#include <rasterkit/dialogs/editchangesize/edit_size.h>
#include <rasterkit/dialogs/editpdfbitmap/form_edit_pdf_bmp.h>
#include <rasterkit/qt/controls/edits.h>
#include <rasterkit/qt/controls/navigator.h>
#include <rasterkit/qt/qt_text.h>

#include "ui_form_edit_pdf_bmp.h"

/// The view of the model.
namespace rasterkit {
namespace {

/// "Page (total No. of pages 3)" gets its first letter as mnemonic.
QString WithMnemonic(QString text) {
  return "&" + text.replace(u'&', QLatin1String("&&"));
}

}  // namespace

QWidget& TFormEditPdfBmp::WidgetOf(EditControl control) const {
  switch (control) {
    case EditControl::SpeedButtonOpen:
      return *ui_->SpeedButtonOpen;
    case EditControl::SpeedButtonViewZoom:
      return *ui_->SpeedButtonViewZoom;
    case EditControl::SpeedButtonViewOrig:
      return *ui_->SpeedButtonViewOrig;
    case EditControl::SpeedButtonMirror:
      return *ui_->SpeedButtonMirror;
    case EditControl::SpeedButtonGrayScale:
      return *ui_->SpeedButtonGrayScale;
    case EditControl::SpeedButtonBlackWhite:
      return *ui_->SpeedButtonBlackWhite;
    case EditControl::SpeedButton256Colors:
      return *ui_->SpeedButton256Colors;
    case EditControl::SpeedButtonCut:
      return *ui_->SpeedButtonCut;
    case EditControl::SpeedButtonEdit:
      return *ui_->SpeedButtonEdit;
    case EditControl::SpeedButtonSave:
      return *ui_->SpeedButtonSave;
    case EditControl::LabelDpiX:
      return *ui_->LabelDpiX;
    case EditControl::CoBoResolution:
      return *ui_->CoBoResolution;
    case EditControl::LabelRotation:
      return *ui_->LabelRotation;
    case EditControl::CoBoRotation:
      return *ui_->CoBoRotation;
    case EditControl::LabelPage:
      return *ui_->LabelPage;
    case EditControl::SpinEditPage:
      return *ui_->SpinEditPage;
    case EditControl::LabelPageSize:
      return *ui_->LabelPageSize;
    case EditControl::NaviResultPost:
      return ui_->NaviResult->Button(nbPost);
    case EditControl::NaviResultCancel:
      return ui_->NaviResult->Button(nbCancel);
    case EditControl::NaviResultHelp:
      break;
  }
  return ui_->NaviResult->Button(nbHelp);
}

void TFormEditPdfBmp::SetVisible(EditControl control, bool visible) {
  WidgetOf(control).setVisible(visible);
  if (control == EditControl::LabelPageSize) ui_->LabelPageSizeCaption->setVisible(visible);
}

void TFormEditPdfBmp::SetEnabled(EditControl control, bool enabled) {
  Enable(WidgetOf(control), enabled);
}

/// A control that had the focus when it was disabled gets the focus back.
void TFormEditPdfBmp::Enable(QWidget& widget, bool enabled) {
  if (!enabled && focusBefore_ == nullptr && focusWidget() == &widget) focusBefore_ = &widget;
  widget.setEnabled(enabled);
  if (!enabled || focusBefore_ != &widget) return;
  widget.setFocus();
  focusBefore_.clear();
}

void TFormEditPdfBmp::SetDown(EditControl button, bool down) {
  static_cast<QToolButton&>(WidgetOf(button)).setChecked(down);
}

void TFormEditPdfBmp::SetText(EditControl control, const std::string& text) {
  QWidget& widget = WidgetOf(control);
  if (auto* box = qobject_cast<QComboBox*>(&widget)) return box->setEditText(ToQt(text));
  const bool callsAnother = control == EditControl::LabelPage;
  static_cast<QLabel&>(widget).setText(callsAnother ? WithMnemonic(ToQt(text)) : ToQt(text));
}

void TFormEditPdfBmp::SetPage(int page, int lastPage) {
  ui_->SpinEditPage->setMaximum(lastPage);
  ui_->SpinEditPage->setValue(page);
}

void TFormEditPdfBmp::SetCaption(const std::string& caption) {
  setWindowTitle(ToQt(caption));
}

// The layout gives the panel the width of its visible buttons.
void TFormEditPdfBmp::WidenButtonPanel(int) {}

void TFormEditPdfBmp::Repaint() {
  ui_->PaintBoxPdf->update();
}

void TFormEditPdfBmp::ShowHourglass(bool shown) {
  if (shown == hasHourglass_) return;
  hasHourglass_ = shown;
  if (shown) {
    QApplication::setOverrideCursor(Qt::WaitCursor);
  } else {
    QApplication::restoreOverrideCursor();
  }
}

void TFormEditPdfBmp::ShowRendering(bool active) {
  Enable(*ui_->PaintBoxPdf, !active);
  if (active) return progressDelay_.start();
  progressDelay_.stop();
  ui_->PanelRendering->hide();
}

void TFormEditPdfBmp::Close(int modalResult) {
  done(modalResult == mrOk ? QDialog::Accepted : QDialog::Rejected);
}

bool TFormEditPdfBmp::ChangeBitmap(int32_t operation, TBitmap& bitmap, TChgBmpValuesRec& values) {
  return rasterkit::ChangeBitmap(operation, &bitmap, true, values);
}

bool TFormEditPdfBmp::EditSize(int32_t& width, int32_t& height, bool& proportional) {
  return rasterkit::EditSize(width, height, proportional);
}

}  // namespace rasterkit
