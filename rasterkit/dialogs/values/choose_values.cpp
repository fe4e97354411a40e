#include <rasterkit/dialogs/execbitmap/change_values_model.h>
#include <rasterkit/dialogs/execbitmap/chg_bmp_form.h>
#include <rasterkit/dialogs/values/choose_values.h>

namespace rasterkit {

std::optional<AdjustColors> ChooseValues(const TBitmap& pixels, const AdjustColors& start,
                                         QWidget*) {
  ChangeValuesModel model(pixels, kEditorValueRules);
  TChgBmpValuesRec values;
  values.Brightness = start.brightness;
  values.Contrast = start.contrast;
  values.Sharpen = start.sharpen;
  values.Red = start.red;
  values.Green = start.green;
  values.Blue = start.blue;
  model.Load(values);
  model.SetOperation(kOperationValues);
  if (!ConfirmValues(model)) return std::nullopt;
  return std::get<AdjustColors>(StepOf(model.CurrentChange()));
}

std::optional<MakeMono> ChooseThreshold(const TBitmap& pixels, const MakeMono& start, QWidget*) {
  ChangeValuesModel model(pixels, kEditorValueRules);
  model.SetOperation(kOperationBlackAndWhite);
  if (start.threshold) model.Change(ValueControl::grayValue, *start.threshold);
  model.SetMonoColors(start.dark, start.light);
  if (!ConfirmValues(model)) return std::nullopt;
  return std::get<MakeMono>(StepOf(model.CurrentChange()));
}

}  // namespace rasterkit
