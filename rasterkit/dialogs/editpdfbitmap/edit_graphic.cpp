#include <rasterkit/bitmaptools/files/graphic_files.h>
#include <rasterkit/dialogs/editpdfbitmap/edit_graphic.h>
#include <rasterkit/dialogs/editpdfbitmap/form_edit_pdf_bmp.h>
#include <rasterkit/qt/host/modal_call.h>
#include <rasterkit/qt/host/pdf_page_dialog.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit {
namespace {

const bool kIsInstalled = [] {
  InstalledPdfPageDialog() = ConvertPdfPageToBmpDialog;
  return true;
}();

}  // namespace

int ConvertPdfPageToBmpDialog(const std::string& pdfFile, std::string& bmpFile) {
  if (!FileExists(pdfFile)) return -1;
  const TModalCall call;
  TFormEditPdfBmp form;
  EditPdfBmpModel& model = form.Model();
  const auto open = [&] {
    const bool isOpen = model.SetOrgFilename(pdfFile);
    model.SetBmpFilename(bmpFile);
    if (!isOpen) model.FormClose();
  };
  if (form.ShowEditor(open) != mrOk) return 0;
  bmpFile = model.GetBmpFilename();
  return 1;
}

bool EditGraphic(const std::string& dir, std::string& fileName, std::unique_ptr<TGraphic>& graphic,
                 int32_t&, int32_t&, int32_t&, int32_t&) {
  const TModalCall call;
  TFormEditPdfBmp form;
  EditPdfBmpModel& model = form.Model();
  model.SetOrgCaption(ResourceString(rsEditBitmap));
  if (fileName.empty()) {
    model.SetBmpDir(dir);
  } else {
    model.SetBmpFilename(dir + ExtractFileName(fileName));
  }
  model.SetOrgGraphic(CopyGraphic(graphic.get()));
  if (form.ShowEditor() != mrOk) return false;
  std::unique_ptr<TGraphic> edited = model.GetOrgGraphic();
  fileName = model.GetBmpFilename();
  graphic = std::move(edited);
  return true;
}

}  // namespace rasterkit
