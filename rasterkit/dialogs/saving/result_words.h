#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <rasterkit/codecs/rows/form.h>
#include <rasterkit/dialogs/saving/saved_result.h>
#include <rasterkit/pictures/picture.h>
#include <rasterkit/pictures/recipes/recipe.h>
#include <rasterkit/pictures/report.h>

/// What the windows of saving say about a picture and a planned save, in the user's language.
/// Internal to this folder.
namespace rasterkit::detail {

/// "34.3 MiB".
std::string SizeWords(uint64_t bytes);

/// "4000 × 3000 pixels, 24 bits per pixel, 34.3 MiB in memory, 300 dpi".
std::string PictureWords(const Picture& picture);

/// Whether saving keeps the pixels, and why not.
std::string LosslessWords(const Picture& picture, const RecipeSave& save, const Report& report);

/// True if each pixel of the file is that of the picture.
bool KeepsPixels(const Picture& picture, const RecipeSave& save, const Report& report);

/// "Lost: opacity, resolution", or "Nothing is lost".
std::string LossWords(const Report& report);

/// A line for each loss with its reason, and the notes and warnings, as the library says them; in
/// English.
std::string LossDetails(const Report& report);

/// Quality of the usual table that is nearest to the first one of a JPEG file, 1 to 100; nothing
/// for other files.
std::optional<int> QualityOf(const Form& form);

/// Sampling of color of a JPEG file: "4:2:0", or "2 × 1"; empty for gray and other files.
std::string SamplingOf(const Form& form);

}  // namespace rasterkit::detail
