#include <rasterkit/dialogs/crop/choose_crop_form.h>

#include "samples/draw_scene.h"
#include "tests/dialogs/gallery/gallery.h"

namespace rasterkit::test {
namespace {

/// A sheet of a map: half a meter on the ground for each pixel.
CropFacts SheetFacts(const TBitmap& sheet) {
  CropFacts facts;
  facts.width = sheet.Width();
  facts.height = sheet.Height();
  facts.resolution = {300, 300};
  facts.affine = Affine{0.5, 0, 0, -0.5, 412345.25, 5654320.75};
  facts.mapUnit = MapUnitNamed("m");
  return facts;
}

/// The picture that a form needs; it is made first and goes last.
struct Stage {
  TBitmap picture = samples::DrawScene(1600, 1200);
};

class StagedForm : private Stage, public TFormChooseCrop {
 public:
  explicit StagedForm(const ChooseCropOptions& options)
      : TFormChooseCrop(Stage::picture, SheetFacts(Stage::picture), options,
                        TRect{400, 250, 1240, 844}, {}) {}
};

ChooseCropOptions Options() {
  ChooseCropOptions options;
  options.start = RecipeCrop{LengthUnit::pixels, 400, 250, 1240, 844};
  options.isLossless = [](const CropStep& part) { return part.left % 16 == 0; };
  return options;
}

const Exhibit kChooseCrop("choose-crop", [] {
  auto form = std::make_unique<StagedForm>(Options());
  form->Model().ChooseUnit(LengthUnit::map);
  form->Model().SetGuide(CropGuide::thirds);
  form->ShowAll();
  return form;
});

/// With every row that some choice shows.
const Exhibit kChooseCropAtScale("choose-crop-at-scale", [] {
  auto form = std::make_unique<StagedForm>(Options());
  form->Model().ChooseRatio({.kind = RatioKind::paper, .paper = 3, .scale = 1000});
  form->ShowAll();
  return form;
});

}  // namespace
}  // namespace rasterkit::test
