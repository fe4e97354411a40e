#include <QKeyEvent>
#include <QScopedValueRollback>
#include <algorithm>

#include <rasterkit/dialogs/bitmapframe/crop_bitmap_form.h>
#include <rasterkit/qt/look/icons.h>
#include <rasterkit/qt/qt_text.h>
#include <rasterkit/strings/strings.h>

#include "ui_crop_bitmap_form.h"

namespace rasterkit {

TFormCropBitmap::TFormCropBitmap(TBitmap& bitmap, const TRect& start, QWidget* parent)
    : TScaledForm(parent), ui_(std::make_unique<Ui::FormCropBitmap>()) {
  SetUpForm(*ui_);
  // The tool calls this handler after its own painting, so the frame is over the picture.
  ui_->PaintBox->OnPaint = [](TPaintBox& box, QPainter& painter) { box.PaintFocus(painter); };
  fBmpCutRect = std::make_unique<TBmpCutRect>(ui_->PaintBox, ui_->LabelSizeValue);
  ConnectControls();
  fBmpCutRect->SetOrgBitmap(&bitmap);
  const TRect& all = fBmpCutRect->BitmapRect();
  const bool meets = start.Left < std::min(start.Right, all.Right) &&
                     start.Top < std::min(start.Bottom, all.Bottom) && start.Right > 0 &&
                     start.Bottom > 0;
  if (meets) {
    RDRect cut(start);
    cut.Intersect(RDRect(all));
    fBmpCutRect->SetBmpCutRect(cut);
    fBmpCutRect->ForgetCutHistory();
  }
  fBmpCutRect->OnStateChanged = [this](BmpCutModel&) { ShowState(); };
  ShowState();
  ui_->PaintBox->setFocus();
}

TFormCropBitmap::~TFormCropBitmap() = default;

void TFormCropBitmap::ConnectControls() {
  ui_->SpeedButtonFit->setIcon(Icon("fit"));
  ui_->SpeedButtonOrgSize->setIcon(Icon("actual-size"));
  ui_->SpeedButtonUndo->setIcon(Icon("undo"));
  ui_->SpeedButtonWhole->setIcon(Icon("picture"));
  connect(ui_->SpeedButtonFit, &QPushButton::clicked, this, &TFormCropBitmap::SpeedButtonFitClick);
  connect(ui_->SpeedButtonOrgSize, &QPushButton::clicked, this,
          &TFormCropBitmap::SpeedButtonOrgSizeClick);
  connect(ui_->SpeedButtonUndo, &QPushButton::clicked, this,
          &TFormCropBitmap::SpeedButtonUndoClick);
  connect(ui_->SpeedButtonWhole, &QPushButton::clicked, this,
          &TFormCropBitmap::SpeedButtonWholeClick);
  for (QSpinBox* edit : {ui_->SpEdLeft, ui_->SpEdTop, ui_->SpEdWidth, ui_->SpEdHeight}) {
    connect(edit, &QSpinBox::valueChanged, this, &TFormCropBitmap::SpEdChange);
  }
  connect(ui_->NaviResult, &TNavigator::postClicked, this, &QDialog::accept);
  connect(ui_->NaviResult, &TNavigator::cancelClicked, this, &QDialog::reject);

  TPaintBox& box = *ui_->PaintBox;
  box.OnResize = [this](TPaintBox& sender) { fBmpCutRect->OnResize(sender); };
  box.OnMouseWheel = [this](TPaintBox& sender, QWheelEvent& event) {
    fBmpCutRect->OnMouseWheel(sender, event);
  };
  box.OnKeyDown = [this](TPaintBox& sender, QKeyEvent& event) {
    fBmpCutRect->OnKeyDown(sender, event);
  };
}

void TFormCropBitmap::SpeedButtonFitClick() {
  fBmpCutRect->SetFitInOrgBmp(true);
  ui_->PaintBox->update();
}

void TFormCropBitmap::SpeedButtonOrgSizeClick() {
  fBmpCutRect->SetFitInOrgBmp(false);
  ui_->PaintBox->update();
}

void TFormCropBitmap::SpeedButtonUndoClick() {
  fBmpCutRect->UndoCutRect();
}

void TFormCropBitmap::SpeedButtonWholeClick() {
  fBmpCutRect->DelCutRect();
  ui_->PaintBox->update();
}

void TFormCropBitmap::SpEdChange() {
  if (isShowingNumbers_) return;
  const CropNumbers wanted{ui_->SpEdLeft->value(), ui_->SpEdTop->value(), ui_->SpEdWidth->value(),
                           ui_->SpEdHeight->value()};
  const TRect rect = InsideBitmap(wanted, fBmpCutRect->BitmapRect()).Rect();
  fBmpCutRect->SetBmpCutRect(RDRect(rect));
}

// The tool itself does not update the size text when a cut ends.
void TFormCropBitmap::ShowState() {
  fBmpCutRect->ShowCutBmpSize();
  ui_->SpeedButtonWhole->setEnabled(fBmpCutRect->GetCutRectExists());
  ui_->SpeedButtonUndo->setEnabled(fBmpCutRect->CanUndo());
  ShowNumbers();
  ShowIsLossless();
}

void TFormCropBitmap::SetIsLossless(std::function<bool(const TRect& part)> isLossless) {
  isLossless_ = std::move(isLossless);
  ui_->LabelLossless->setVisible(isLossless_ != nullptr);
  ShowIsLossless();
}

void TFormCropBitmap::ShowIsLossless() {
  if (!isLossless_) return;
  const bool isLossless = isLossless_(ChosenRect());
  ui_->LabelLossless->setText(ResourceText(isLossless ? rsCropLossless : rsCropNotLossless));
}

void TFormCropBitmap::ShowNumbers() {
  const QScopedValueRollback showing(isShowingNumbers_, true);
  const TRect& bitmap = fBmpCutRect->BitmapRect();
  const CropNumbers numbers = CropNumbersOf(*fBmpCutRect);
  ui_->SpEdLeft->setRange(0, std::max(bitmap.Right - 1, 0));
  ui_->SpEdTop->setRange(0, std::max(bitmap.Bottom - 1, 0));
  ui_->SpEdWidth->setRange(std::min(1, bitmap.Right), bitmap.Right);
  ui_->SpEdHeight->setRange(std::min(1, bitmap.Bottom), bitmap.Bottom);
  ui_->SpEdLeft->setValue(numbers.left);
  ui_->SpEdTop->setValue(numbers.top);
  ui_->SpEdWidth->setValue(numbers.width);
  ui_->SpEdHeight->setValue(numbers.height);
}

// Keys that the focused control does not use.
void TFormCropBitmap::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape && fBmpCutRect->CancelDrag()) return;
  if (event->key() == Qt::Key_Delete) return SpeedButtonWholeClick();
  if (event->matches(QKeySequence::Undo)) return SpeedButtonUndoClick();
  TScaledForm::keyPressEvent(event);
}

}  // namespace rasterkit
