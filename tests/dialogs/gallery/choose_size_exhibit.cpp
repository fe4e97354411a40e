#include <rasterkit/dialogs/size/choose_size_form.h>
#include <rasterkit/dialogs/size/size_answer.h>
#include <rasterkit/metadata/edit/metadata_edit.h>

#include "tests/dialogs/gallery/gallery.h"

namespace rasterkit::test {
namespace {

Picture Plan() {
  auto rows = std::make_unique<TBitmap>();
  rows->SetPixelFormat(pf24bit);
  rows->SetSize(400, 300);
  MetadataEdit edit;
  edit.resolution = Resolution{300, 300};
  return Picture::Of(std::move(rows)).Resize(4000, 3000).Edit(edit);
}

struct Stage {
  explicit Stage(const RecipeResize& start) { StartSize(model, picture, start); }
  Picture picture = Plan();
  ChangeSizeModel model{4000, 3000, kEditorSizeRules};
};

/// The form with what it needs; the stage is made first and goes last.
class StagedForm : private Stage, public TFormChooseSize {
 public:
  explicit StagedForm(const RecipeResize& start)
      : Stage(start), TFormChooseSize(Stage::model, Stage::picture) {}
};

const Exhibit kSize("size", [] {
  return std::make_unique<StagedForm>(RecipeResize{LengthUnit::millimeters, 210, 0, 150, {}});
});

const Exhibit kRefused("size-refused", [] {
  return std::make_unique<StagedForm>(RecipeResize{LengthUnit::pixels, 900000, 800000, 0, {}});
});

}  // namespace
}  // namespace rasterkit::test
