#include <utility>

#include <rasterkit/bitmaptools/pixels/gray_mono.h>
#include <rasterkit/dialogs/editchangesize/change_bitmap_size.h>
#include <rasterkit/dialogs/editpdfbitmap/combo_number.h>
#include <rasterkit/dialogs/editpdfbitmap/edit_pdf_bmp_model.h>
#include <rasterkit/dialogs/execbitmap/change_bitmap.h>
#include <rasterkit/runtime/rounding.h>

namespace rasterkit {
namespace {

constexpr int32_t kValues = 0, kBlackWhite = 5;

}  // namespace

bool EditPdfBmpModel::AppliesAtOnce() const {
  return !names_.fIsPDF && !names_.fBmpFileExisted;
}

/// Changes the work bitmap. Returns false if nothing was changed.
bool EditPdfBmpModel::ChangeInPlace(const std::function<bool()>& change) {
  if (!fWorkBitmap) return false;
  EditState before = CurrentState();
  std::unique_ptr<TBitmap> copy = CopyForUndo(fWorkBitmap.get());
  if (!change()) return false;
  undo_.Begin(std::move(before));
  undo_.KeepBitmap(std::move(copy));
  fBmpChanged = true;
  return true;
}

/// Shows the work bitmap after its pixels changed; earlier changes of the crop rectangle can no
/// longer be undone.
void EditPdfBmpModel::ShowChanged() {
  fBmpCutRect.SetOrgBitmap(fWorkBitmap.get());
  fBmpCutRect.ForgetCutHistory();
  view_.Repaint();
}

void EditPdfBmpModel::ClickSetting(EditControl button,
                                   const std::function<bool(TBitmap&)>& change) {
  if (!AppliesAtOnce()) {
    BeginChange();
    controls_.Click(button);
    return GenerateBitmaps(false);
  }
  if (!ChangeInPlace([&] { return change(*fWorkBitmap); })) return;
  controls_.Click(button);
  ShowChanged();
}

void EditPdfBmpModel::ClickBlackWhite() {
  ClickSetting(EditControl::SpeedButtonBlackWhite, [this](TBitmap& bitmap) {
    if (fCtrlPressed) {
      TChgBmpValuesRec values;
      return view_.ChangeBitmap(kBlackWhite, bitmap, values);
    }
    ColorBmpToSW(&bitmap, kBlackWhiteThreshold);
    return true;
  });
  CheckBmpAction();
}

void EditPdfBmpModel::Mirror() {
  ChangeInPlace([&] {
    fBmpCutRect.SwapBitmaps(true);
    return true;
  });
  controls_.Click(EditControl::SpeedButtonMirror);
  fBmpCutRect.ForgetCutHistory();
}

void EditPdfBmpModel::ApplyResolution(bool isEntered) {
  double value = 0;
  const bool isNumber =
      ParseComboNumber(controls_.Text(EditControl::CoBoResolution), value, false) && value > 0;
  if (!names_.fIsPDF || !isNumber) return;
  // A resolution that was canceled or too large may be tried again.
  const bool isMissing = isEntered && !fWorkBitmap;
  if (value == fResolution && !isMissing) return;
  BeginChange();
  GenerateBitmaps(false);
}

void EditPdfBmpModel::ApplyRotation() {
  double value = 0;
  if (!ParseComboNumber(controls_.Text(EditControl::CoBoRotation), value, true)) return;
  const int rotation = static_cast<int>(Round(value));
  if (rotation == fRotation) return;
  if (!AppliesAtOnce()) {
    BeginChange();
    fRotation = rotation;
    return GenerateBitmaps(true);
  }
  if (!fWorkBitmap) {
    fRotation = rotation;
    return;
  }
  ChangeInPlace([&] {
    fRotation = rotation;
    BmpRotate();
    return true;
  });
  ShowChanged();
}

void EditPdfBmpModel::ChangePage(int page) {
  BeginChange();
  controls_.TakePage(page);
  ResetForPage();
  ShowPageSize();
  GenerateBitmaps(true);
}

/// Settings of one page do not apply to the next, except for 256 colors.
void EditPdfBmpModel::ResetForPage() {
  fRotation = 0;
  controls_.SetText(EditControl::CoBoRotation, "0");
  for (const EditControl button :
       {EditControl::SpeedButtonMirror, EditControl::SpeedButtonGrayScale,
        EditControl::SpeedButtonBlackWhite}) {
    controls_.SetDown(button, false);
  }
}

/// Sets a new work bitmap; the previous one is kept for undo if memory allows.
void EditPdfBmpModel::ReplaceWorkBitmap(std::unique_ptr<TBitmap> bitmap) {
  ReleaseWorkBitmap(PixelBytes(*bitmap));
  fWorkBitmap = std::move(bitmap);
  fBmpCutRect.SetOrgBitmap(fWorkBitmap.get());
}

void EditPdfBmpModel::TakeCutBitmap() {
  std::unique_ptr<TBitmap> cut = fBmpCutRect.GetCutBitmap();
  if (!cut) return;
  fBmpCutRect.DelCutRect();
  ReplaceWorkBitmap(std::move(cut));
}

void EditPdfBmpModel::Cut() {
  if (!fWorkBitmap || !fBmpCutRect.GetCutRectExists()) return;
  BeginChange();
  TakeCutBitmap();
  fBmpCutRect.CalculateBmpPaintRect(true);
  fBmpChanged = true;
  ChangeOrgGraphic();
  fBmpCutRect.ForgetCutHistory();
  view_.Repaint();
}

void EditPdfBmpModel::EditValues() {
  const bool isConfirmed = ChangeInPlace([&] {
    TChgBmpValuesRec values;
    return view_.ChangeBitmap(kValues, *fWorkBitmap, values);
  });
  if (!isConfirmed) return;
  fBmpCutRect.DelCutRect();
  ShowChanged();
  fBmpCutRect.CalculateBmpPaintRect(true);
  ChangeOrgGraphic();
}

void EditPdfBmpModel::EditSize() {
  if (!fWorkBitmap) return;
  int32_t width = fWorkBitmap->Width(), height = fWorkBitmap->Height();
  bool keepAspect = true;
  if (!view_.EditSize(width, height, keepAspect)) return;
  std::unique_ptr<TBitmap> resized = ChangeBitmapSize(fWorkBitmap.get(), width, height, keepAspect);
  BeginChange();
  ReplaceWorkBitmap(std::move(resized));
  fBmpChanged = true;
  ChangeOrgGraphic();
  fBmpCutRect.ForgetCutHistory();
  view_.Repaint();
}

}  // namespace rasterkit
