#include <rasterkit/dialogs/execbitmap/adjust_bitmap.h>
#include <rasterkit/dialogs/execbitmap/change_values_model.h>
#include <rasterkit/dialogs/execbitmap/chg_bmp_form.h>

namespace rasterkit {

bool AdjustBitmap(TBitmap& bitmap, TChgBmpValuesRec& values) {
  ChangeValuesModel model(bitmap);
  model.Load(values);
  model.SetOperation(kOperationValues);
  model.EnterAllTasks();
  if (!ConfirmValues(model)) return false;
  model.ApplyTo(bitmap);
  model.Store(values);
  return true;
}

}  // namespace rasterkit
