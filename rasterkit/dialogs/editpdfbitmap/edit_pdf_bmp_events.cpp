#include <rasterkit/bitmaptools/files/picture_file_dialogs.h>
#include <rasterkit/bitmaptools/pixels/gray_mono.h>
#include <rasterkit/dialogs/editpdfbitmap/edit_pdf_bmp_model.h>
#include <rasterkit/qt/modal_results.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/ports.h>
#include <rasterkit/runtime/threads/application.h>
#include <rasterkit/strings/format_text.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit {

void EditPdfBmpModel::Handle(const std::function<void()>& action) {
  if (isHandling_) return;
  isHandling_ = true;
  try {
    action();
  } catch (...) {
    Application.HandleException();
    Application.Guard([this] { PutRight(); });
  }
  undo_.Settle();
  ShowAvailability();
  isHandling_ = false;
  if (closesAfterwards_) Close(mrCancel);
}

/// After an exception: restores the previous picture if it was kept, and updates the view.
void EditPdfBmpModel::PutRight() {
  if (undo_.IsNew() && undo_.HasStep()) return TakeStepBack();
  if (undo_.IsNew() && undo_.AwaitsBitmap()) TakeState(undo_.Take().state);
  fBmpCutRect.SetOrgBitmap(fWorkBitmap.get());
  CheckBmpAction();
}

/// A page whose rendering was canceled cannot be saved.
void EditPdfBmpModel::ShowAvailability() {
  controls_.SetEnabled(EditControl::SpeedButtonSave, fWorkBitmap != nullptr);
  controls_.SetEnabled(EditControl::NaviResultPost, fWorkBitmap || !names_.fIsPDF);
  controls_.ShowDown();
}

void EditPdfBmpModel::Close(int modalResult) {
  closesAfterwards_ = false;
  modalResult_ = modalResult;
  view_.Close(modalResult);
}

void EditPdfBmpModel::CutRectChanged() {
  controls_.SetEnabled(EditControl::SpeedButtonCut, fBmpCutRect.GetCutRectExists());
  fBmpCutRect.ShowCutBmpSize();
}

// Combo boxes. A key that is typed announces the change of the text that follows it, which is not
// applied before Enter is pressed.

void EditPdfBmpModel::CoBoResolutionChange(const std::string& text) {
  Handle([&] {
    controls_.TakeText(EditControl::CoBoResolution, text);
    ShowPageSize();
    if (!fInEditCoBo) return ApplyResolution(false);
    fInEditCoBo = false;
  });
}

bool EditPdfBmpModel::CoBoResolutionKeyPress(ComboKey key) {
  if (isHandling_) return false;
  if (key == ComboKey::enter) {
    fInEditCoBo = false;
    Handle([&] { ApplyResolution(true); });
    return false;
  }
  const bool isTyping = key == ComboKey::backspace || key == ComboKey::digit;
  if (isTyping) fInEditCoBo = true;
  return isTyping;
}

void EditPdfBmpModel::CoBoRotationChange(const std::string& text) {
  Handle([&] {
    controls_.TakeText(EditControl::CoBoRotation, text);
    if (!fInEditCoBo) ApplyRotation();
  });
}

bool EditPdfBmpModel::CoBoRotationKeyPress(ComboKey key) {
  if (isHandling_) return false;
  if (key == ComboKey::enter) {
    fInEditCoBo = false;
    Handle([&] { ApplyRotation(); });
    return false;
  }
  const bool isTyping = key != ComboKey::other;
  if (isTyping) fInEditCoBo = true;
  return isTyping;
}

void EditPdfBmpModel::CoBoExit() {
  fInEditCoBo = false;
}

void EditPdfBmpModel::SpinEditPageChange(int page) {
  Handle([&] {
    if (page != controls_.Page()) ChangePage(page);
  });
}

// Buttons.

void EditPdfBmpModel::SpeedButtonOpenClick() {
  Handle([&] {
    const std::string& now = names_.fOrgFilename;
    std::string name;
    if (BitmapOpenDialog(ExtractFilePath(now), ExtractFileExt(now), bfLoadBmp, name, true)) {
      OpenOther(name);
    }
  });
}

void EditPdfBmpModel::FormDropFile(const std::string& fileName) {
  Handle([&] { OpenOther(fileName); });
}

void EditPdfBmpModel::OpenOther(const std::string& name) {
  if (OpenSource(name)) names_.fBmpName = ExtractFileName(name);
}

void EditPdfBmpModel::ShowAt(bool fit) {
  Handle([&] {
    fBmpCutRect.CalculateBmpPaintRect(fit);
    view_.Repaint();
  });
}

void EditPdfBmpModel::SpeedButtonViewZoomClick() {
  ShowAt(true);
}

void EditPdfBmpModel::SpeedButtonViewOrigClick() {
  ShowAt(false);
}

void EditPdfBmpModel::FormActivate() {
  ShowAt(true);
}

void EditPdfBmpModel::FormResize() {
  fBmpCutRect.OnResize();
}

bool EditPdfBmpModel::FormMouseWheel(int wheelDelta, const TPoint& mousePos) {
  bool handled = true;
  fBmpCutRect.OnMouseWheel(wheelDelta, mousePos, handled);
  return handled;
}

void EditPdfBmpModel::SpeedButtonMirrorClick() {
  Handle([&] { Mirror(); });
}

void EditPdfBmpModel::SpeedButton256ColorsClick() {
  Handle([&] {
    ClickSetting(EditControl::SpeedButton256Colors, [](TBitmap& bitmap) {
      bitmap.SetPixelFormat(pf8bit);
      return true;
    });
  });
}

void EditPdfBmpModel::SpeedButtonGrayScaleClick() {
  Handle([&] {
    ClickSetting(EditControl::SpeedButtonGrayScale, [](TBitmap& bitmap) {
      BitmapToGray(&bitmap, false);
      return true;
    });
  });
}

void EditPdfBmpModel::SpeedButtonBlackWhiteClick() {
  Handle([&] { ClickBlackWhite(); });
}

void EditPdfBmpModel::SpeedButtonCutClick() {
  Handle([&] { Cut(); });
}

void EditPdfBmpModel::SpeedButtonEditClick() {
  Handle([&] { EditValues(); });
}

void EditPdfBmpModel::SpeedButtonSaveClick() {
  Handle([&] {
    if (fWorkBitmap && RunSaveDialog()) SaveBitmap();
  });
}

// Ways out.

/// The name is used in the target's folder, whichever folder the user went to.
bool EditPdfBmpModel::RunSaveDialog() {
  std::string name = names_.fBmpName, askedAbout;
  const std::string extension = ExtractFileExt(name);
  if (!detail::ChooseSaveName(names_.fBmpDir, extension, false, name, true, askedAbout)) {
    return false;
  }
  name = ExtractFileName(name);
  if (names_.OverwritesAnother(name, askedAbout) && !MayOverwrite(names_.fBmpDir + name)) {
    return false;
  }
  names_.fBmpName = name;
  return true;
}

/// A host without a message box is not asked.
bool EditPdfBmpModel::MayOverwrite(const std::string& fileName) {
  return !HostPorts().confirmation ||
         Confirm(FormatText(ResourceString(rsEditOverwrite), {&fileName, 1}));
}

void EditPdfBmpModel::SaveBitmap() {
  int width = 0, height = 0;
  fBmpCutRect.SaveBitmap(GetBmpFilename(), true, width, height);
}

void EditPdfBmpModel::OKclicked() {
  const bool hasNothing = names_.fIsPDF && !fWorkBitmap;
  if (hasNothing) return;
  if (!fBmpChanged && !fBmpCutRect.GetCutRectExists()) return Close(mrOk);
  if (!RunSaveDialog()) return;
  SaveBitmap();
  Close(mrOk);
}

void EditPdfBmpModel::NaviResultPostClick() {
  Handle([&] { OKclicked(); });
}

void EditPdfBmpModel::NaviResultCancelClick() {
  if (isRendering_) isCanceled_ = true;
  Handle([&] { Close(mrCancel); });
}

void EditPdfBmpModel::NaviResultHelpClick() {
  Handle([&] { ShowHelpTopic(helpContext_); });
}

void EditPdfBmpModel::FormClose() {
  if (isRendering_) isCanceled_ = closesAfterwards_ = true;
  Handle([&] { Close(mrCancel); });
}

// Keys.

bool EditPdfBmpModel::FormKeyDown(EditKey key, bool ctrl) {
  if (isRendering_ && key == EditKey::escape) isCanceled_ = true;
  if (isHandling_) return true;
  if (fInEditCoBo) return false;
  fCtrlPressed = ctrl;
  switch (key) {
    case EditKey::enter:
      NaviResultPostClick();
      return true;
    case EditKey::escape:
      Handle([&] { Escape(); });
      return true;
    case EditKey::del:
      Handle([&] { DelCutRect(); });
      return true;
    case EditKey::h:
      if (ctrl) Handle([&] { EditSize(); });
      return ctrl;
    case EditKey::z:
      if (ctrl) Undo();
      return ctrl;
    case EditKey::other:
      break;
  }
  return false;
}

void EditPdfBmpModel::Escape() {
  if (fBmpCutRect.CancelDrag()) return;
  if (!fBmpCutRect.GetCutRectExists()) return Close(mrCancel);
  DelCutRect();
}

void EditPdfBmpModel::DelCutRect() {
  fBmpCutRect.DelCutRect();
  view_.Repaint();
}

}  // namespace rasterkit
