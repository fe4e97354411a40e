#include <rasterkit/dialogs/size/size_answer.h>
#include <rasterkit/pictures/recipes/apply_recipe.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/rounding.h>

namespace rasterkit {

using Field = ChangeSizeModel::Field;

namespace {

/// Halves of a pixel may come out otherwise where the numbers are not exact.
bool LeadsToSize(const RecipeResize& step, const ChangeSizeModel& model, const Picture& picture) {
  try {
    const ResizeStep pixels = PixelsOf(step, picture);
    return pixels.width == model.RoundedWidth() && pixels.height == model.RoundedHeight();
  } catch (const RangeError&) {
    return false;
  }
}

}  // namespace

void StartSize(ChangeSizeModel& model, const Picture& picture, const RecipeResize& start,
               LengthUnit remembered) {
  // At the resolution of office printers a picture without one has a plausible size on paper.
  constexpr double kUsualDpi = 300;
  const Resolution own = picture.GetMetadata().resolution;
  model.SetOwnResolution(own);
  const bool statesSize = start.width > 0 || start.height > 0;
  if (start.dpi > 0) {
    model.SetDpi(start.dpi);
  } else if (!own.IsKnown()) {
    model.SetDpi(kUsualDpi);
  }
  model.SetFilter(start.options.filter);
  model.SetUnit(statesSize ? start.unit : remembered);
  if (start.width > 0) model.FlEdChange(Field::width, start.width);
  const bool follows = start.width > 0 && Round(model.Height()) == Round(start.height);
  if (start.height > 0 && !follows) {
    if (start.width > 0) model.SetProportional(false);
    model.FlEdChange(Field::height, start.height);
  }
  model.ForgetHistory();
}

RecipeResize SizeStepOf(const ChangeSizeModel& model, const Picture& picture) {
  RecipeResize step;
  step.unit = model.Unit();
  step.options.filter = model.GetFilter();
  if (step.unit == LengthUnit::millimeters) step.dpi = model.Dpi();
  const bool isInPixels = step.unit == LengthUnit::pixels;
  step.width = isInPixels ? model.RoundedWidth() : model.Width();
  step.height = isInPixels ? model.RoundedHeight() : model.Height();
  if (!model.Proportional() || !model.FollowsLead()) return step;
  RecipeResize ofOneSide = step;
  (model.Lead() == Field::width ? ofOneSide.height : ofOneSide.width) = 0;
  return LeadsToSize(ofOneSide, model, picture) ? ofOneSide : step;
}

std::string SizeUnitName(LengthUnit unit) {
  if (unit == LengthUnit::percent) return "percent";
  return unit == LengthUnit::millimeters ? "millimeters" : "pixels";
}

LengthUnit SizeUnitOf(const std::string& name) {
  if (name == "percent") return LengthUnit::percent;
  return name == "millimeters" ? LengthUnit::millimeters : LengthUnit::pixels;
}

}  // namespace rasterkit
