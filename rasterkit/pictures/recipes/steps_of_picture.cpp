#include <utility>

#include <rasterkit/pictures/recipes/steps_of_picture.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

/// A kind of step without a function here does not compile.
class StepTranslator {
 public:
  StepTranslator(const SlotNaming& slotOf, std::vector<RecipeStep>& made)
      : slotOf_(slotOf), made_(made) {}

  void operator()(const TurnStep& step) const {
    constexpr int kTurn = 4;
    made_.emplace_back(TurnStep{step.quarters % kTurn});
  }
  void operator()(const MirrorStep& step) const { made_.emplace_back(step); }
  void operator()(const RotateStep& step) const { made_.emplace_back(step); }
  void operator()(const NorthUpStep& step) const { made_.emplace_back(step); }

  void operator()(const CropStep& step) const {
    RecipeCrop crop;
    crop.left = step.left;
    crop.top = step.top;
    crop.right = static_cast<double>(step.left) + step.width;
    crop.bottom = static_cast<double>(step.top) + step.height;
    made_.emplace_back(crop);
  }

  void operator()(const ResizeStep& step) const {
    RecipeResize resize;
    resize.width = step.width;
    resize.height = step.height;
    resize.options = step.options;
    made_.emplace_back(resize);
  }

  void operator()(const ChangeStep& step) const {
    if (std::holds_alternative<UsePalette>(step.change)) {
      made_.emplace_back(RecipePalette{Slot(step)});
    } else {
      made_.emplace_back(step);
    }
  }

  void operator()(const CombineStep& step) const {
    RecipeCombine combine;
    combine.slot = Slot(step);
    combine.options = step.options;
    combine.stretch = StretchOf(*step.other);
    made_.emplace_back(combine);
  }

  void operator()(const PixelsStep&) const {
    throw UnsupportedError(
        "a recipe holds no pixels: pixels of a window or a program cannot be "
        "made from another picture");
  }

  void operator()(const PlaceStep& step) const { made_.emplace_back(step); }

  void operator()(const EditStep& step) const {
    if (!step.edit.copy) {
      made_.emplace_back(step);
      return;
    }
    // The parts of one edit are made in this order.
    MetadataEdit before = step.edit, after = step.edit;
    before.copy.reset();
    before.remove.clear();
    before.set.clear();
    before.gps.reset();
    before.date.reset();
    after.stripAll = after.stripProfile = after.stripGps = false;
    after.stripThumbnail = after.stripMakerNote = false;
    after.resolution.reset();
    after.copy.reset();
    if (!before.IsEmpty()) made_.emplace_back(EditStep{before});
    made_.emplace_back(CopyOf(*step.edit.copy, Slot(step)));
    if (!after.IsEmpty()) made_.emplace_back(EditStep{after});
  }

  void operator()(const StretchStep& step) const { made_.emplace_back(step); }

 private:
  std::string Slot(const Step& step) const {
    if (!slotOf_)
      throw UnsupportedError("the step needs a second picture, and its slot has no name");
    return slotOf_(step);
  }

  static RecipeCopy CopyOf(const MetadataCopy& copy, std::string slot) {
    return {std::move(slot),    copy.takesExif,    copy.takesXmp,        copy.takesIptc,
            copy.takesComments, copy.takesProfile, copy.keepsOrientation};
  }

  /// A picture that fills a slot later has the steps of its own orientation alone.
  static std::optional<NumberStretch> StretchOf(const Picture& other) {
    const std::vector<Step>& steps = other.Steps();
    const size_t first = other.OrientationSteps();
    if (steps.size() == first) return std::nullopt;
    const auto* const stretch = std::get_if<StretchStep>(&steps.back());
    if (stretch != nullptr && steps.size() == first + 1) return stretch->stretch;
    throw UnsupportedError("the second picture has steps of its own, which no recipe holds");
  }

  const SlotNaming& slotOf_;
  std::vector<RecipeStep>& made_;
};

}  // namespace

std::vector<RecipeStep> RecipeStepsOf(std::span<const Step> steps, const SlotNaming& slotOf) {
  std::vector<RecipeStep> made;
  for (const Step& step : steps) std::visit(StepTranslator(slotOf, made), step);
  return made;
}

std::vector<RecipeStep> RecipeStepsOf(const Picture& picture, const SlotNaming& slotOf) {
  return RecipeStepsOf(std::span(picture.Steps()).subspan(picture.OrientationSteps()), slotOf);
}

}  // namespace rasterkit
