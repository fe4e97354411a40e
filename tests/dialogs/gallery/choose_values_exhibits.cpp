#include <rasterkit/dialogs/values/choose_values_form.h>

#include "samples/draw_scene.h"
#include "tests/dialogs/gallery/gallery.h"

namespace rasterkit::test {
namespace {

/// The picture and the session that a form needs.
template <class Start>
struct SessionStage {
  explicit SessionStage(const Start& start) : session(picture, start) {}
  TBitmap picture = samples::DrawScene(640, 480);
  ValueSession session;
};

/// The form with what it needs; the stage is made first and goes last.
template <class Start>
class StagedChoice : private SessionStage<Start>, public TFormChooseValues {
 public:
  explicit StagedChoice(const Start& start)
      : SessionStage<Start>(start), TFormChooseValues(SessionStage<Start>::session) {}
  ValueSession& Session() { return SessionStage<Start>::session; }
};

const Exhibit kChooseValues("choose-values", [] {
  auto form = std::make_unique<StagedChoice<AdjustColors>>(AdjustColors{});
  form->Session().Change(ValueControl::contrast, 30);
  form->Session().Change(ValueControl::red, 25);
  form->Session().Change(ValueControl::blue, -20);
  form->Session().Undo();
  return form;
});

const Exhibit kChooseThreshold("choose-threshold",
                               [] { return std::make_unique<StagedChoice<MakeMono>>(MakeMono{}); });

}  // namespace
}  // namespace rasterkit::test
