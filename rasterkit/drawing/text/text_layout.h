#pragma once

#include <vector>

#include <rasterkit/drawing/ink/drawing_state.h>
#include <rasterkit/drawing/text/font_faces.h>
#include <rasterkit/drawing/text/text_run.h>

namespace rasterkit::detail {

/// A letter in its place: on the line's coordinates, which begin at the baseline's left end, x to
/// the right along it and y downward, in logical units.
struct PlacedGlyph {
  FontFace* face = nullptr;
  unsigned long index = 0;
  PointD at;
};

/// A line of text, laid out but not yet on the page.
struct TextLine {
  std::vector<PlacedGlyph> glyphs;
  double emHeight = 0;  ///< of the em square
  double stretch = 1;   ///< letters are this much wider than designed
  double width = 0;     ///< from the first letter to behind the last one
  double drop = 0;      ///< how far the line's end lies below its beginning
  FontFace* face = nullptr;
  double ascent = 0, descent = 0;
};

/// Lays the text out with the state's font. Empty, with no face, where the system has no font.
/// `usualEmHeight` is for fonts that name no height, in logical units.
TextLine LayOutText(const TextRun& run, const LogicalFont& font, const DrawingState& state,
                    FontFaces& faces, double usualEmHeight);

/// From the line's coordinates to pixels of the recording device.
struct TextPlacement {
  Affine places;   ///< for where letters stand
  Affine letters;  ///< for the letters themselves; no translation
};

/// How a text stands on the page: turned by the font's escapement, and upright in compatible mode.
/// `reference` is the reference point on the line's coordinates, `origin` in logical units.
TextPlacement PlaceText(const LogicalFont& font, const DrawingState& state, PointD origin,
                        PointD reference);

}  // namespace rasterkit::detail
