#include <rasterkit/dialogs/savedlgbitmap/edit_graphics_paras.h>
#include <rasterkit/dialogs/savedlgbitmap/save_graphics_dlg.h>

namespace rasterkit {

TSaveGraphicsDlg::TSaveGraphicsDlg(const TrecSaveBitmap& rec, QWidget* parent)
    : TFormSaveDlgExt(parent), model_(rec) {}

void TSaveGraphicsDlg::FilterChange() {
  model_.FilterChange(GetFilterIndex());
  SetDefaultExt(model_.DefaultExt());
  SetOptionsEnabled(model_.HasOptions());
}

void TSaveGraphicsDlg::OptionsClick() {
  EditGraphicsParas(model_.RecordForOptions(), false, choice_.showResolution, choice_.showPixelSize,
                    false, choice_.sizeA, choice_.sizeB);
}

void TSaveGraphicsDlg::BmpSizeClick() {
  EditGraphicsParasPixels(model_.RecordForOptions(), model_.Width, model_.Height);
}

}  // namespace rasterkit
