#include <algorithm>
#include <cmath>
#include <exception>
#include <new>
#include <system_error>
#include <utility>

#include <rasterkit/bitmaptools/files/graphic_files.h>
#include <rasterkit/dialogs/editpdfbitmap/combo_number.h>
#include <rasterkit/dialogs/editpdfbitmap/edit_pdf_bmp_model.h>
#include <rasterkit/dialogs/editpdfbitmap/page_size_text.h>
#include <rasterkit/dialogs/editpdfbitmap/resolution_setting.h>
#include <rasterkit/qt/modal_results.h>
#include <rasterkit/runtime/error_class.h>
#include <rasterkit/runtime/ports.h>
#include <rasterkit/runtime/threads/application.h>
#include <rasterkit/strings/format_text.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit {
namespace {

/// Shows the hourglass while it lives.
class HourglassTime {
 public:
  explicit HourglassTime(EditPdfBmpView& view) : view_(view) { view_.ShowHourglass(true); }
  ~HourglassTime() { view_.ShowHourglass(false); }
  HourglassTime(const HourglassTime&) = delete;
  HourglassTime& operator=(const HourglassTime&) = delete;

 private:
  EditPdfBmpView& view_;
};

/// Whether a lower resolution would avoid the error.
bool IsShortage(const std::exception& error) {
  return dynamic_cast<const std::bad_alloc*>(&error) != nullptr ||
         dynamic_cast<const LimitError*>(&error) != nullptr ||
         dynamic_cast<const std::system_error*>(&error) != nullptr;
}

double ScaleOf(int resolution) {
  return resolution / 100.0;
}

void ShowFailure(const std::string& errorClass, const std::string& text) {
  ShowMessage(FormatText(ResourceString(rsEditPdfFailed), std::array{errorClass, text}));
}

}  // namespace

/// While it lives, controls and view know that a page is being rendered.
class EditPdfBmpModel::RenderingTime {
 public:
  explicit RenderingTime(EditPdfBmpModel& model) : model_(model) { Set(true); }
  ~RenderingTime() { Set(false); }
  RenderingTime(const RenderingTime&) = delete;
  RenderingTime& operator=(const RenderingTime&) = delete;

 private:
  void Set(bool active) {
    model_.isRendering_ = active;
    model_.controls_.SetBusy(active);
    model_.view_.ShowRendering(active);
  }

  EditPdfBmpModel& model_;
};

void EditPdfBmpModel::GenerateBitmaps(bool deleteCut) {
  const HourglassTime hourglass(view_);
  if (deleteCut) fBmpCutRect.DelCutRect();
  if (!MakeFromSource()) return;
  CheckBmpAction();
  ExecBmpSettings();
  fBmpChanged = true;
  fBmpCutRect.ForgetCutHistory();
  view_.Repaint();
}

/// Returns false if there is no picture to continue with.
bool EditPdfBmpModel::MakeFromSource() {
  if (names_.fIsPDF) return RenderPdfToBmp();
  std::unique_ptr<TBitmap> bitmap = GraphicIntoBitmap(fOrgGraphic.get());
  ReleaseWorkBitmap(PixelBytes(*bitmap));
  fWorkBitmap = std::move(bitmap);
  return true;
}

/// Keeps the bitmap for undo if memory allows.
void EditPdfBmpModel::ReleaseWorkBitmap(uint64_t bytesToCome) {
  fBmpCutRect.ReleaseBitmap();
  if (!fWorkBitmap) return undo_.Forget();
  const bool keeps = undo_.AwaitsBitmap() && MayKeep(PixelBytes(*fWorkBitmap), bytesToCome);
  if (keeps) {
    undo_.KeepBitmap(std::move(fWorkBitmap));
  } else {
    undo_.Forget();
    fWorkBitmap.reset();
  }
}

int EditPdfBmpModel::ResolutionInBox() const {
  double value = 0;
  const bool isNumber =
      ParseComboNumber(controls_.Text(EditControl::CoBoResolution), value, false) && value > 0;
  return isNumber ? static_cast<int>(value) : fResolution;
}

bool EditPdfBmpModel::RenderPdfToBmp() {
  const int resolution = ResolutionInBox();
  fPageNumber = std::clamp(controls_.Page(), 1, controls_.LastPage());
  switch (TryRender(resolution)) {
    case Rendered::done:
      fResolution = resolution;
      WriteResolution(resolution);
      return true;
    case Rendered::canceled:
      return TakeCancellation();
    case Rendered::shortage:
      return RenderAgain(resolution);
    case Rendered::failed:
      break;
  }
  ShowNothing();
  Close(mrCancel);
  return false;
}

EditPdfBmpModel::Rendered EditPdfBmpModel::TryRender(int resolution) {
  try {
    ReleaseWorkBitmap(BytesOfPage(resolution));
    return RenderPage(resolution) ? Rendered::done : Rendered::canceled;
  } catch (const std::exception& error) {
    if (IsShortage(error)) return Rendered::shortage;
    ShowFailure(ErrorClassName(error), error.what());
  } catch (...) {
    ShowFailure("unknown", "");
  }
  return Rendered::failed;
}

/// Shows the last good resolution, but tries the requested one once more: memory may have been
/// released meanwhile, as by the undo step here.
bool EditPdfBmpModel::RenderAgain(int resolution) {
  undo_.Forget();
  controls_.SetText(EditControl::CoBoResolution, std::to_string(fResolution));
  ShowPageSize();
  ShowMessage(ResourceString(rsEditNoMemory));
  fWorkBitmap.reset();
  try {
    return RenderPage(resolution) || TakeCancellation();
  } catch (const std::exception& error) {
    ShowNothing();
    ShowMessage(error.what());
    return false;
  }
}

/// Returns false if the user canceled.
bool EditPdfBmpModel::RenderPage(int resolution) {
  fWorkBitmap = RealRenderPDF(fPageNumber, resolution, PdfRotation::none);
  fWorkBitmap->SetTransparent(false);
  return !isCanceled_;
}

std::unique_ptr<TBitmap> EditPdfBmpModel::RealRenderPDF(int page, int resolution,
                                                        PdfRotation rotation) {
  auto bitmap = std::make_unique<TBitmap>();
  const RenderingTime time(*this);
  isCanceled_ = false;
  fPdfFile->ExportPage(page - 1, ScaleOf(resolution), rotation, *bitmap, [this] {
    Application.ProcessMessages();
    return !isCanceled_;
  });
  return bitmap;
}

/// Restores the previous picture if it is still in memory.
bool EditPdfBmpModel::TakeCancellation() {
  if (undo_.HasStep()) {
    TakeStepBack();
  } else {
    ShowNothing();
  }
  return false;
}

void EditPdfBmpModel::ShowNothing() {
  fBmpCutRect.SetOrgBitmap(nullptr);
  fWorkBitmap.reset();
  undo_.Forget();
  view_.Repaint();
}

uint64_t EditPdfBmpModel::BytesOfPage(int resolution) const {
  constexpr double kMost = 1e18;
  const PdfPageSize size = fPdfFile->PageSize(fPageNumber - 1);
  const double bytes = PdfPagePixels(size, ScaleOf(resolution)).Bytes();
  return static_cast<uint64_t>(std::min(bytes, kMost));
}

void EditPdfBmpModel::ShowPageSize() {
  const bool isKnown = names_.fIsPDF && fPdfFile;
  controls_.SetVisible(EditControl::LabelPageSize, isKnown);
  if (isKnown) controls_.SetText(EditControl::LabelPageSize, SizeOfPage());
}

/// Empty for a damaged page; rendering reports the error.
std::string EditPdfBmpModel::SizeOfPage() const {
  try {
    return PageSizeText(fPdfFile->PageSize(controls_.Page() - 1), ResolutionInBox());
  } catch (const Error&) {
    return "";
  }
}

void EditPdfBmpModel::ExecBmpSettings() {
  if (!fWorkBitmap) return;
  const BitmapSettings settings{controls_.Down(EditControl::SpeedButtonMirror),
                                controls_.Down(EditControl::SpeedButton256Colors),
                                controls_.Down(EditControl::SpeedButtonGrayScale),
                                controls_.Down(EditControl::SpeedButtonBlackWhite)};
  ApplySettings(settings, *fWorkBitmap);
  BmpRotate();
  fBmpCutRect.SetOrgBitmap(fWorkBitmap.get());
}

void EditPdfBmpModel::BmpRotate() {
  if (RotatePicture(fRotation, fWorkBitmap)) return;
  fRotation = 0;
  controls_.SetText(EditControl::CoBoRotation, "0");
}

void EditPdfBmpModel::CheckBmpAction() {
  if (names_.fIsPDF || !fWorkBitmap) return;
  const TPixelFormat format = fWorkBitmap->PixelFormat();
  controls_.SetEnabled(EditControl::SpeedButton256Colors, format == pf24bit || format == pf32bit);
  for (const EditControl control :
       {EditControl::SpeedButtonGrayScale, EditControl::SpeedButtonBlackWhite,
        EditControl::SpeedButtonEdit}) {
    controls_.SetEnabled(control, format != pf1bit);
  }
}

}  // namespace rasterkit
