#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include <rasterkit/drawing/ink/affine.h>
#include <rasterkit/drawing/ink/drawing_modes.h>

namespace rasterkit {

/// What a text is drawn from. Spans are borrowed for the call.
struct TextRun {
  PointD origin;         ///< reference point, logical units; not looked at with `updatePosition`
  uint32_t options = 0;  ///< see text_option
  std::optional<RectD> box;  ///< for `opaque` and `clipped`, logical units
  /// Characters in UTF-16, or numbers of glyphs with `glyphIndexes`: those count only in a font
  /// that is there under its own name; of a font that was replaced they are taken for what they
  /// mean in common western fonts, and left out beyond that.
  /// Characters are in the order they are read in; Hebrew and Arabic ones are put into that in
  /// which they are seen, unless an option says that they are.
  std::u16string_view text;
  /// From each unit of the text to the next, logical units; with fewer than the text has units, the
  /// font's own steps are taken for the rest.
  std::span<const double> steps;
  /// The same in the direction in which letters stand up, with the option `pairs`.
  std::span<const double> verticalSteps;
};

}  // namespace rasterkit
