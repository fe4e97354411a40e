#pragma once

#include <vector>

#include <rasterkit/drawing/ink/drawing_state.h>
#include <rasterkit/drawing/text/font_faces.h>
#include <rasterkit/drawing/text/text_run.h>

namespace rasterkit::detail {

/// A glyph with its position on the line, in logical units: the origin is the left end of the
/// baseline, x runs along it, y downward.
struct PlacedGlyph {
  FontFace* face = nullptr;
  unsigned long index = 0;
  PointD at;
};

/// A line of text, laid out but not yet placed on the page.
struct TextLine {
  std::vector<PlacedGlyph> glyphs;
  double emHeight = 0;  ///< size of the em square
  double stretch = 1;   ///< width of the letters relative to their design
  double width = 0;     ///< from the first letter to the end of the last one
  double drop = 0;      ///< how far the end of the line lies below its start
  FontFace* face = nullptr;
  double ascent = 0, descent = 0;
};

/// Lays out the text. Returns a line without a face if the system has no fonts. `usualEmHeight`, in
/// logical units, is used for fonts without a height.
TextLine LayOutText(const TextRun& run, const LogicalFont& font, const DrawingState& state,
                    FontFaces& faces, double usualEmHeight);

/// Maps from the line's coordinates to pixels of the recording device.
struct TextPlacement {
  PlaneAffine places;   ///< for the positions of letters
  PlaneAffine letters;  ///< for the letters themselves; no translation
};

/// Places a text on the page: rotated by the font's escapement, and upright in compatible mode.
/// `reference` is the reference point in the line's coordinates, `origin` is in logical units.
TextPlacement PlaceText(const LogicalFont& font, const DrawingState& state, PointD origin,
                        PointD reference);

}  // namespace rasterkit::detail
