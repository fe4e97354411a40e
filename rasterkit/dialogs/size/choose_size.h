#pragma once

#include <optional>

#include <rasterkit/pictures/picture.h>
#include <rasterkit/pictures/recipes/recipe.h>
#include <rasterkit/runtime/export.h>

class QWidget;

namespace rasterkit {

/// Lets the user choose another size in pixels, percent, or millimeters at a resolution. `picture`
/// gives size, resolution and depth. Nothing if the user canceled. Throws Error if no window can be
/// shown.
RASTERKIT_EXPORT std::optional<RecipeResize> ChooseSize(const Picture& picture,
                                                        const RecipeResize& start = {},
                                                        QWidget* parent = nullptr);

}  // namespace rasterkit
