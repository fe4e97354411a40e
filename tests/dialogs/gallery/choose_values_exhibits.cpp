#include <rasterkit/dialogs/values/choose_values_form.h>

#include "samples/draw_scene.h"
#include "tests/dialogs/gallery/gallery.h"

namespace rasterkit::test {
namespace {

/// The picture and the session that a form needs.
template <class Start>
struct SessionStage {
  SessionStage(const Start& start, void (*change)(ValueSession&)) : session(picture, start) {
    change(session);
  }
  TBitmap picture = samples::DrawScene(640, 480);
  ValueSession session;
};

/// The form with what it needs; the stage is made first and goes last. The values change before the
/// form counts them, so that it has all its texts when it opens.
template <class Start>
class StagedChoice : private SessionStage<Start>, public TFormChooseValues {
 public:
  explicit StagedChoice(void (*change)(ValueSession&))
      : SessionStage<Start>(Start{}, change), TFormChooseValues(SessionStage<Start>::session) {}
};

const Exhibit kChooseValues("choose-values", [] {
  return std::make_unique<StagedChoice<AdjustColors>>([](ValueSession& session) {
    session.Change(ValueControl::contrast, 30);
    session.Change(ValueControl::red, 25);
    session.Change(ValueControl::blue, -20);
    session.Undo();
  });
});

const Exhibit kChooseThreshold("choose-threshold", [] {
  return std::make_unique<StagedChoice<MakeMono>>([](ValueSession&) {});
});

}  // namespace
}  // namespace rasterkit::test
