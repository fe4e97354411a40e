#include <rasterkit/dialogs/editchangesize/change_size_form.h>

#include "tests/dialogs/gallery/gallery.h"

namespace rasterkit::test {
namespace {

struct Stage {
  ChangeSizeModel model{4000, 3000};
};

/// The form with what it needs; the stage is made first and goes last.
class StagedForm : private Stage, public TFormChangeSize {
 public:
  StagedForm() : TFormChangeSize(Stage::model) {}
};

const Exhibit kSize("change-size", [] { return std::make_unique<StagedForm>(); });

}  // namespace
}  // namespace rasterkit::test
