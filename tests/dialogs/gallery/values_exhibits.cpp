#include <rasterkit/dialogs/execbitmap/change_values_model.h>
#include <rasterkit/dialogs/execbitmap/chg_bmp_form.h>

#include "samples/draw_scene.h"
#include "tests/dialogs/gallery/gallery.h"

namespace rasterkit::test {
namespace {

/// The picture and the model that a form needs.
struct Stage {
  explicit Stage(int32_t operation) { model.SetOperation(operation); }
  TBitmap picture = samples::DrawScene(640, 480);
  ChangeValuesModel model{picture};
};

/// The form with what it needs; the stage is made first and goes last.
class StagedForm : private Stage, public TFormChgBmp {
 public:
  explicit StagedForm(int32_t operation) : Stage(operation), TFormChgBmp(Stage::model) {}
  ChangeValuesModel& Model() { return Stage::model; }
};

const Exhibit kValues("change-values", [] {
  auto form = std::make_unique<StagedForm>(kOperationValues);
  form->Model().Change(ValueControl::contrast, 30);
  form->Model().Change(ValueControl::sharpen, 40);
  form->Model().Change(ValueControl::red, 25);
  form->Model().Change(ValueControl::blue, -20);
  return form;
});

const Exhibit kGrayValue("select-gray-value",
                         [] { return std::make_unique<StagedForm>(kOperationBlackAndWhite); });

}  // namespace
}  // namespace rasterkit::test
