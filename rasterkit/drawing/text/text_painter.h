#pragma once

#include <rasterkit/drawing/ink/painter.h>
#include <rasterkit/drawing/text/text_layout.h>

/// Painting lines of text. `placement` maps to pixels of the target.
namespace rasterkit::detail {

/// Returns the map from letters of size 1 to the target.
PlaneAffine LetterMap(const TextLine& line, const TextPlacement& placement);
/// Returns whether letters are so large that they are drawn as outlines.
bool AreLettersOutlines(const PlaneAffine& letters);
/// Returns the text's rectangle, from the highest to the lowest letter, rotated with the text.
DrawingPath TextCell(const TextLine& line, const TextPlacement& placement);
/// Returns the outlines of all letters.
DrawingPath TextOutline(const TextLine& line, const TextPlacement& placement);
/// Paints the letters, and the underline and strikeout lines of the font.
void PaintText(Painter& painter, const TextLine& line, const TextPlacement& placement,
               const LogicalFont& font, uint32_t pixel);

}  // namespace rasterkit::detail
