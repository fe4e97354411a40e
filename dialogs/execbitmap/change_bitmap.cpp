#include <memory>
#include <utility>

#include <rasterkit/dialogs/execbitmap/change_bitmap.h>
#include <rasterkit/dialogs/execbitmap/change_values_model.h>
#include <rasterkit/dialogs/execbitmap/chg_bmp_form.h>
#include <rasterkit/host/graphics/bitmap.h>

namespace rasterkit {

bool ChangeBitmap(int32_t operation, TBitmap* bitmap, bool showDialog, TChgBmpValuesRec& values) {
  if (bitmap == nullptr) return false;
  ChangeValuesModel model(*bitmap);
  model.Load(values);
  model.SetOperation(operation);
  if (showDialog && !ConfirmValues(model)) return false;
  // The previews knew what is seen of it. A copy, so that a step that fails leaves the bitmap
  // whole.
  const std::unique_ptr<TBitmap> working = bitmap->Clone();
  model.ApplyTo(*working);
  *bitmap = std::move(*working);
  bitmap->SetModified(true);
  model.Store(values);
  return true;
}

}  // namespace rasterkit
