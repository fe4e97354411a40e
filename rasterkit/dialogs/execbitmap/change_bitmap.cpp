#include <rasterkit/dialogs/execbitmap/change_bitmap.h>
#include <rasterkit/dialogs/execbitmap/change_values_model.h>
#include <rasterkit/dialogs/execbitmap/chg_bmp_form.h>

namespace rasterkit {

bool ChangeBitmap(int32_t operation, TBitmap* bitmap, bool showDialog, TChgBmpValuesRec& values) {
  if (bitmap == nullptr) return false;
  ChangeValuesModel model(*bitmap);
  model.Load(values);
  model.SetOperation(operation);
  if (showDialog && !ConfirmValues(model)) return false;
  model.ApplyTo(*bitmap);
  model.Store(values);
  return true;
}

}  // namespace rasterkit
