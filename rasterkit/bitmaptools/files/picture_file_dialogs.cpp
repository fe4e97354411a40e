#include <rasterkit/bitmaptools/files/file_filters.h>
#include <rasterkit/bitmaptools/files/graphic_types.h>
#include <rasterkit/bitmaptools/files/picture_file_dialogs.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/ports.h>

namespace rasterkit {
namespace {

/// Any other value of `kind` leaves the dialog without a filter.
void SetOpenFilter(PictureFileDialog& dialog, TBitmapFilter kind, const std::string& defaultExt) {
  switch (kind) {
    case bfAll:
    case bfLoadBmp:
      dialog.Filter = GetOpenFilter(kind == bfAll);
      dialog.FilterIndex = GetOpenFilterIndex(defaultExt);
      break;
    case bfGeo:
      dialog.Filter = GetGeoOpenFilter();
      dialog.FilterIndex = GetGeoOpenFilterIndex(defaultExt);
      break;
  }
}

/// The extension of an entry of the save filter; PNG, which is lossless, for any other index.
std::string SaveExtension(int filterIndex) {
  const std::string extension = GetGraphicsExt(GetSaveFilterType(filterIndex));
  const bool isEntry = GetSaveFilterIndex(extension) == filterIndex;
  return isEntry ? extension : ".png";
}

/// 0 while the port is empty.
int ChoosePdfPage(const std::string& pdfFile, std::string& pictureFile) {
  const auto& choosePage = HostPorts().pdfPageChooser;
  return choosePage ? choosePage(pdfFile, pictureFile) : 0;
}

}  // namespace

bool BitmapOpenDialog(const std::string& initialDir, const std::string& defaultExt,
                      TBitmapFilter filter, std::string& fileName, bool keepPdf) {
  PictureFileDialog dialog;
  dialog.kind = PictureFileDialog::Kind::open;
  SetOpenFilter(dialog, filter, defaultExt);
  dialog.InitialDir = initialDir;
  dialog.FileName = fileName;
  if (!ExecutePictureFileDialog(dialog)) return false;
  if (!IsPdfName(dialog.FileName) || keepPdf) {
    fileName = dialog.FileName;
    return true;
  }
  fileName = initialDir + ChangeFileExt(ExtractFileName(dialog.FileName), ".png");
  return ChoosePdfPage(dialog.FileName, fileName) > 0;
}

bool BitmapSaveDialog(const std::string& initialDir, const std::string& defaultExt,
                      bool withMetafiles, std::string& fileName, bool changeDir) {
  std::string askedAbout;
  return detail::ChooseSaveName(initialDir, defaultExt, withMetafiles, fileName, changeDir,
                                askedAbout);
}

bool detail::ChooseSaveName(const std::string& initialDir, const std::string& defaultExt,
                            bool withMetafiles, std::string& fileName, bool changeDir,
                            std::string& askedAbout) {
  PictureFileDialog dialog;
  dialog.kind = PictureFileDialog::Kind::save;
  dialog.Filter = GetSaveFilter(withMetafiles);
  dialog.FilterIndex = GetSaveFilterIndex(defaultExt);
  dialog.InitialDir = initialDir;
  dialog.FileName = fileName;
  dialog.ofOverwritePrompt = true;
  dialog.ofNoChangeDir = !changeDir;
  if (!ExecutePictureFileDialog(dialog)) return false;
  askedAbout = dialog.FileName;
  fileName = ChangeFileExt(dialog.FileName, SaveExtension(dialog.FilterIndex));
  return true;
}

}  // namespace rasterkit
