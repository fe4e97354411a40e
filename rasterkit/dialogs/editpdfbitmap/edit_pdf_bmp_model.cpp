#include <algorithm>
#include <array>
#include <exception>
#include <utility>

#include <rasterkit/bitmaptools/files/graphic_files.h>
#include <rasterkit/bitmaptools/files/graphic_types.h>
#include <rasterkit/dialogs/editpdfbitmap/edit_pdf_bmp_model.h>
#include <rasterkit/dialogs/editpdfbitmap/editor_isolation.h>
#include <rasterkit/dialogs/editpdfbitmap/resolution_setting.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/ports.h>
#include <rasterkit/runtime/threads/application.h>
#include <rasterkit/strings/format_text.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit {
namespace {

/// Returns the picture of the file. If it cannot be read, shows the reason and returns null.
std::unique_ptr<TGraphic> LoadOrTell(const std::string& name) {
  std::string reason = FormatText(ResourceString(rsEditUnreadable), std::array{name});
  try {
    if (auto graphic = detail::LoadForEditor(name)) return graphic;
  } catch (const std::exception& error) {
    reason = error.what();
  }
  ShowMessage(reason);
  return nullptr;
}

/// Returns the picture as a graphic of the type. A metafile, which cannot hold pixels, becomes a
/// PNG, as it does when it is rotated; without a type it becomes a bitmap.
std::unique_ptr<TGraphic> GraphicOfType(TBitmap& bitmap, int type) {
  if (type == gtWmf || type == gtEmf) type = gtPng;
  if (type == gtNone) type = gtBmp;
  return ConvertBitmap(bitmap, type, 0, 0);
}

}  // namespace

EditPdfBmpModel::EditPdfBmpModel(EditPdfBmpView& view, BmpCutModel& cutRect)
    : view_(view), fBmpCutRect(cutRect), controls_(view) {
  SetOrgCaption(ResourceString(rsEditConvertPdf));
  if (const auto dpi = ReadResolution()) {
    controls_.SetText(EditControl::CoBoResolution, std::to_string(*dpi));
  }
  fBmpCutRect.OnStateChanged = [this](BmpCutModel&) { CutRectChanged(); };
  CutRectChanged();
  ShowAvailability();
}

EditPdfBmpModel::~EditPdfBmpModel() {
  fBmpCutRect.OnStateChanged = nullptr;
  fBmpCutRect.SetOrgBitmap(nullptr);
}

void EditPdfBmpModel::SetOrgCaption(const std::string& caption) {
  fOrgCaption = caption;
  view_.SetCaption(caption);
}

void EditPdfBmpModel::ShowFileName() {
  view_.SetCaption(names_.Title(fOrgCaption));
}

void EditPdfBmpModel::SetBmpFilename(const std::string& name) {
  names_.SetBmpFilename(name);
  ShowFileName();
}

bool EditPdfBmpModel::SetOrgFilename(const std::string& name) {
  bool isOpen = false;
  Handle([&] { isOpen = OpenSource(name); });
  return isOpen;
}

bool EditPdfBmpModel::OpenSource(const std::string& name) {
  const bool isOpen = IsPdfName(name) ? OpenPdf(name) : OpenGraphic(name);
  if (!isOpen) return false;
  SetIsPDF(names_.fIsPDF);
  ShowFileName();
  return true;
}

bool EditPdfBmpModel::OpenGraphic(const std::string& name) {
  std::unique_ptr<TGraphic> graphic = LoadOrTell(name);
  if (!graphic && (fWorkBitmap || names_.fIsPDF)) return false;
  TakeGraphic(std::move(graphic));
  names_.fOrgFilename = name;
  view_.Repaint();
  return true;
}

bool EditPdfBmpModel::OpenPdf(const std::string& name) {
  try {
    if (!fPdfFile) fPdfFile = CreatePdfDocument();
    fPdfFile->LoadFromFile(name);
  } catch (const std::exception& error) {
    ShowMessage(error.what());
    // The document is closed now, but its pages may be needed again.
    if (names_.fIsPDF) Application.Guard([&] { fPdfFile->LoadFromFile(names_.fOrgFilename); });
    return false;
  }
  names_.fOrgFilename = name;
  names_.fIsPDF = true;
  undo_.Forget();
  // The previous page was of another document. As for every other page, its rotation is not kept.
  const int lastPage = std::max(fPdfFile->PageCount(), 1);
  if (controls_.Page() != 1) ResetForPage();
  controls_.SetPage(1, lastPage);
  ShowPageSize();
  GenerateBitmaps(true);
  return true;
}

void EditPdfBmpModel::SetOrgGraphic(std::unique_ptr<TGraphic> graphic) {
  Handle([&] { TakeGraphic(std::move(graphic)); });
}

void EditPdfBmpModel::TakeGraphic(std::unique_ptr<TGraphic> graphic) {
  std::unique_ptr<TBitmap> bitmap;
  try {
    bitmap = GraphicIntoBitmap(graphic.get());
  } catch (...) {
    // A graphic that cannot be shown is returned unchanged.
    if (!fOrgGraphic && !fWorkBitmap) fOrgGraphic = std::move(graphic);
    throw;
  }
  undo_.Forget();
  fOrgGraphic = std::move(graphic);
  names_.fIsPDF = false;
  ReplaceWorkBitmap(std::move(bitmap));
  fBmpCutRect.ForgetCutHistory();
  CheckBmpAction();
  SetIsPDF(false);
}

void EditPdfBmpModel::SetIsPDF(bool isPdf) {
  names_.fIsPDF = isPdf;
  helpContext_ = isPdf ? kHelpOfPdf : kHelpOfGraphic;
  ShowPageControls();
  ShowEditButton(!isPdf);
  for (const EditControl control : {EditControl::LabelDpiX, EditControl::CoBoResolution}) {
    controls_.SetVisible(control, isPdf);
  }
  ShowPageSize();
}

void EditPdfBmpModel::ShowPageControls() {
  const int pages = names_.fIsPDF ? fPdfFile->PageCount() : 0;
  for (const EditControl control : {EditControl::LabelPage, EditControl::SpinEditPage}) {
    controls_.SetVisible(control, pages > 1);
  }
  if (!names_.fIsPDF) return;
  controls_.SetText(EditControl::LabelPage,
                    FormatText(ResourceString(rsEditPages), std::array{std::to_string(pages)}));
  controls_.SetPage(1, std::max(pages, 1));
  // A picture of one bit may have been there before.
  for (const EditControl button :
       {EditControl::SpeedButton256Colors, EditControl::SpeedButtonGrayScale,
        EditControl::SpeedButtonBlackWhite}) {
    controls_.SetEnabled(button, true);
  }
}

/// A page of a PDF is not edited further. The cut button stays hidden in both cases.
void EditPdfBmpModel::ShowEditButton(bool shown) {
  if (controls_.Visible(EditControl::SpeedButtonEdit) == shown) return;
  controls_.SetVisible(EditControl::SpeedButtonEdit, shown);
  controls_.SetVisible(EditControl::SpeedButtonCut, false);
  view_.WidenButtonPanel(shown ? 2 : -2);
}

void EditPdfBmpModel::ChangeOrgGraphic() {
  if (!fWorkBitmap) return;
  std::unique_ptr<TGraphic> changed =
      GraphicOfType(*fWorkBitmap, GetGraphicType(fOrgGraphic.get()));
  changed->SetModified(true);
  undo_.KeepGraphic(std::exchange(fOrgGraphic, std::move(changed)), PixelBytes(*fWorkBitmap));
}

std::unique_ptr<TGraphic> EditPdfBmpModel::GetOrgGraphic() {
  const bool isCut = fBmpCutRect.GetCutRectExists();
  if (fBmpChanged || isCut) {
    undo_.Forget();
    if (isCut) TakeCutBitmap();
    ChangeOrgGraphic();
  }
  return std::move(fOrgGraphic);
}

}  // namespace rasterkit
