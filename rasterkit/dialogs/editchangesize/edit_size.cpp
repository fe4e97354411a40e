#include <rasterkit/dialogs/editchangesize/change_size_form.h>
#include <rasterkit/dialogs/editchangesize/edit_size.h>
#include <rasterkit/qt/host/modal_call.h>

namespace rasterkit {

bool EditSize(int32_t& width, int32_t& height, bool& proportional) {
  ChangeSizeModel model(width, height);
  const TModalCall call;
  TFormChangeSize form(model);
  if (form.ShowModal() != mrOk) return false;
  width = model.RoundedWidth();
  height = model.RoundedHeight();
  proportional = model.Proportional();
  return true;
}

}  // namespace rasterkit
