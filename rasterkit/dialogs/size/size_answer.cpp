#include <rasterkit/dialogs/size/size_answer.h>

namespace rasterkit {

using Field = ChangeSizeModel::Field;

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
  if (start.width > 0 && start.height > 0) model.SetProportional(false);
  if (start.width > 0) model.FlEdChange(Field::width, start.width);
  if (start.height > 0) model.FlEdChange(Field::height, start.height);
  model.ForgetHistory();
}

RecipeResize SizeStepOf(const ChangeSizeModel& model) {
  RecipeResize step;
  step.unit = model.Unit();
  step.options.filter = model.GetFilter();
  if (step.unit == LengthUnit::millimeters) step.dpi = model.Dpi();
  const bool isInPixels = step.unit == LengthUnit::pixels;
  step.width = isInPixels ? model.RoundedWidth() : model.Width();
  step.height = isInPixels ? model.RoundedHeight() : model.Height();
  if (model.Proportional() && model.FollowsLead()) {
    (model.Lead() == Field::width ? step.height : step.width) = 0;
  }
  return step;
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
