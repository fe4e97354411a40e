#include <rasterkit/bitmaptools/files/file_filters.h>
#include <rasterkit/dialogs/savedlgbitmap/save_bitmap_dlg_ext.h>
#include <rasterkit/dialogs/savedlgbitmap/save_graphics_dlg.h>
#include <rasterkit/qt/host/modal_call.h>

namespace rasterkit {
namespace {

/// Common part of both routines before the window is shown.
void Prepare(TSaveGraphicsDlg& dialog, const std::string& dir, int32_t type, bool withMetafiles,
             const std::string& fileName) {
  dialog.SetAcceptWithoutChecks(fileName.empty());
  dialog.OnFilterChange = [&dialog] { dialog.FilterChange(); };
  dialog.SetFilter(GetSaveFilter(withMetafiles));
  dialog.SetInitialDir(dir);
  dialog.SetFileName(fileName);
  dialog.SetFilterIndex(SaveGraphicsModel::FirstFilterIndex(fileName, type));
}

/// Shows the window and stores a confirmed result.
bool Confirmed(TSaveGraphicsDlg& dialog, TrecSaveBitmap& rec, std::string& fileName) {
  if (dialog.ShowModal() != mrOk) return false;
  rec = dialog.Model().Result(dialog.GetFilterIndex());
  fileName = SaveGraphicsModel::ResultName(dialog.GetFileName(), rec.BitmapFormat);
  return true;
}

}  // namespace

bool SaveBitmapDlgExt(const std::string& dir, TrecSaveBitmap& rec, bool withMetafiles,
                      bool showResolution, bool showPixelSize, bool confirmOverwrite, float sizeA,
                      float sizeB, std::string& fileName) {
  const TModalCall call;
  TSaveGraphicsDlg dialog(rec);
  dialog.SetChoice({showResolution, showPixelSize, sizeA, sizeB});
  dialog.SetConfirmOverwrite(confirmOverwrite);
  dialog.SetOnOptionsClick([&dialog] { dialog.OptionsClick(); });
  Prepare(dialog, dir, rec.BitmapFormat, withMetafiles, fileName);
  if (withMetafiles) dialog.FilterChange();
  return Confirmed(dialog, rec, fileName);
}

bool SaveBitmapDlgExt(const std::string& dir, TrecSaveBitmap& rec, int& width, int& height,
                      std::string& fileName) {
  const TModalCall call;
  TSaveGraphicsDlg dialog(rec);
  dialog.Model().Width = width;
  dialog.Model().Height = height;
  dialog.SetConfirmOverwrite(!fileName.empty());
  dialog.SetOnOptionsClick([&dialog] { dialog.BmpSizeClick(); });
  Prepare(dialog, dir, rec.BitmapFormat, false, fileName);
  if (!Confirmed(dialog, rec, fileName)) return false;
  width = dialog.Model().Width;
  height = dialog.Model().Height;
  return true;
}

}  // namespace rasterkit
