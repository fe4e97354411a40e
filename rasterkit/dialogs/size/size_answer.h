#pragma once

#include <string>

#include <rasterkit/dialogs/editchangesize/change_size_model.h>
#include <rasterkit/pictures/picture.h>
#include <rasterkit/pictures/recipes/recipe.h>

/// The size that a user chose as a step of a recipe, and back.
namespace rasterkit {

/// Starts the model from a step. Sides of 0 follow from the other one; both 0: the size stays.
/// Sides that are not in the picture's proportion uncheck the box.
/// `remembered` is the unit where the step states no size.
void StartSize(ChangeSizeModel& model, const Picture& picture, const RecipeResize& start,
               LengthUnit remembered = LengthUnit::pixels);

/// The step that leads to the rounded size of the model. Where the box for the proportion is
/// checked, it states only the side that the user typed, so that it fits other pictures too.
RecipeResize SizeStepOf(const ChangeSizeModel& model, const Picture& picture);

/// "pixels", "percent", "millimeters": how the settings hold the unit. Pixels for other texts.
std::string SizeUnitName(LengthUnit unit);
LengthUnit SizeUnitOf(const std::string& name);

}  // namespace rasterkit
