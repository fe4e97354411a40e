#include <atomic>
#include <utility>

#include <rasterkit/dialogs/editor/step_list.h>
#include <rasterkit/pictures/recipes/recipe_text.h>

namespace rasterkit {
namespace {

uint64_t NewState() {
  static std::atomic<uint64_t> last = 0;
  return ++last;
}

/// Turns and mirrors, as one mirror and then turns.
struct Orientation {
  bool isMirrored = false;
  int quarters = 0;

  void Turn(int count) { quarters = (quarters + count) & 3; }
  /// A mirror after turns is the mirror before them and the turns the other way round.
  void Mirror(MirrorAxis axis) {
    quarters = -quarters & 3;
    isMirrored = !isMirrored;
    if (axis == MirrorAxis::topBottom) Turn(2);
  }
  bool IsUpright() const { return !isMirrored && quarters == 0; }
};

}  // namespace

bool StepList::CanAdd() const {
  return place_ < kMostRecipeSteps;
}

void StepList::Add(const RecipeStep& step) {
  steps_.resize(place_);
  states_.resize(place_);
  steps_.push_back(step);
  states_.push_back(NewState());
  ++place_;
}

void StepList::Set(std::vector<RecipeStep> steps, size_t place) {
  steps_ = std::move(steps);
  states_.clear();
  for (size_t i = 0; i < steps_.size(); ++i) states_.push_back(NewState());
  place_ = place;
}

bool StepList::IsNothing() const {
  Orientation orientation;
  for (const RecipeStep& step : Done()) {
    if (const auto* turn = std::get_if<TurnStep>(&step)) {
      orientation.Turn(turn->quarters);
    } else if (const auto* mirror = std::get_if<MirrorStep>(&step)) {
      orientation.Mirror(mirror->axis);
    } else {
      return false;
    }
  }
  return orientation.IsUpright();
}

}  // namespace rasterkit
