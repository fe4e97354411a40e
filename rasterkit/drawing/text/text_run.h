#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include <rasterkit/drawing/ink/drawing_modes.h>
#include <rasterkit/drawing/ink/plane_affine.h>

namespace rasterkit {

/// A text to draw. The spans are borrowed for the call.
struct TextRun {
  PointD origin;             ///< reference point, logical units; ignored with `updatePosition`
  uint32_t options = 0;      ///< see text_option
  std::optional<RectD> box;  ///< for `opaque` and `clipped`, logical units
  /// UTF-16 characters, or glyph indexes with `glyphIndexes`. Glyph indexes are used as they are
  /// only if the font is installed under its own name; for a replaced font they are decoded as in
  /// common western fonts, and others are skipped. Characters are in logical order; Hebrew and
  /// Arabic letters are reordered for display unless `asOrdered` is set.
  std::u16string_view text;
  /// The advance of each UTF-16 unit, logical units. If there are fewer than units, the rest uses
  /// the font's own advances.
  std::span<const double> steps;
  /// The same in the upward direction of the letters, with the option `pairs`.
  std::span<const double> verticalSteps;
};

}  // namespace rasterkit
