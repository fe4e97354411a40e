#pragma once

#include <functional>
#include <string>

#include <rasterkit/pictures/picture.h>
#include <rasterkit/pictures/recipes/recipe.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Tells for a part of a picture whether a crop to it keeps the compressed pixels of its JPEG file
/// when it is saved as `file`; an empty function for pictures of other kinds. Never throws.
RASTERKIT_EXPORT std::function<bool(const CropStep& part)> LosslessCropOf(const Picture& picture,
                                                                          const std::string& file,
                                                                          const RecipeSave& save);

}  // namespace rasterkit
