#include <rasterkit/dialogs/savedlgbitmap/edit_graphics_paras.h>
#include <rasterkit/dialogs/savedlgbitmap/form_graphics_paras.h>
#include <rasterkit/qt/host/modal_call.h>

namespace rasterkit {

bool EditGraphicsParas(TrecSaveBitmap& rec, bool showType, bool showResolution, bool showPixelSize,
                       bool showHelp, float sizeA, float sizeB) {
  const TModalCall call;
  TFormGraphicsParas form;
  GraphicsParasModel& model = form.Model();
  if (!showHelp) form.HideHelp();
  if (!showType) model.HideGroup(ParasGroup::type);
  if (!showResolution) model.HideGroup(ParasGroup::resolution);
  if (!showPixelSize) model.HideGroup(ParasGroup::pixelSize);
  model.SetSizeMM(sizeA, sizeB);
  model.SetSaveOptions(rec);
  if (form.ShowModal() != mrOk) return false;
  rec = model.GetSaveOptions();
  return true;
}

bool EditGraphicsParasPixels(TrecSaveBitmap& rec, int& width, int& height) {
  const TModalCall call;
  TFormGraphicsParas form;
  GraphicsParasModel& model = form.Model();
  model.HideGroup(ParasGroup::resolution);
  model.HideGroup(ParasGroup::millimeters);
  model.SetBmpSize(width, height);
  model.SetSaveOptions(rec);
  if (form.ShowModal() != mrOk) return false;
  rec = model.GetSaveOptions();
  width = model.RoundedWidth();
  height = model.RoundedHeight();
  return true;
}

}  // namespace rasterkit
