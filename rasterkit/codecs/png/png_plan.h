#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include <png.h>

#include <rasterkit/codecs/rows/form.h>
#include <rasterkit/raster/pixels.h>

namespace rasterkit::detail {

/// How pixels go to a PNG file.
struct PngPlan {
  PngForm form;
  std::vector<png_color> palette;
  /// Opacities of the first entries, of a palette with more than one transparent color.
  std::vector<png_byte> opacities;
  /// Transformations that the library does: B G R to R G B, words to big-endian, dropping the
  /// fourth byte.
  bool isBlueFirst = false, hasNativeWords = false, dropsFourth = false;
  /// The palette gets black entries up to the largest index that a pixel has.
  bool followsIndexes = false;
  /// Gives a row of pixels of the kind that the plan was made for; it is valid until the next call.
  std::function<const uint8_t*(const Pixels& rows, int y)> row;
};

/// Chooses the form: the wanted one where the pixels allow it, else the nearest. Throws
/// UnsupportedError for pixels that no PNG file can hold.
PngPlan PlanPng(const Pixels& pixels, const std::optional<PngForm>& wanted);

/// The same for pixels of the kind of `like`, whose rows have no meaning and which are `width`
/// wide. Nothing if the form depends on the pixels.
std::optional<PngPlan> PlanPngRows(const Pixels& like, int width,
                                   const std::optional<PngForm>& wanted);

}  // namespace rasterkit::detail
