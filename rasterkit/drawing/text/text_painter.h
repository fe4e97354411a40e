#pragma once

#include <rasterkit/drawing/ink/painter.h>
#include <rasterkit/drawing/text/text_layout.h>

/// Lines of text on the target: `placement` leads to its pixels.
namespace rasterkit::detail {

/// From letters of one unit to the target.
Affine LetterMap(const TextLine& line, const TextPlacement& placement);
/// Whether letters are so large that they are drawn as outlines.
bool AreLettersOutlines(const Affine& letters);
/// The rectangle, turned like the text, from the highest to the lowest letter.
DrawingPath TextCell(const TextLine& line, const TextPlacement& placement);
/// The outlines of all letters.
DrawingPath TextOutline(const TextLine& line, const TextPlacement& placement);
/// Letters, and the lines under or through them that the font asks for.
void PaintText(Painter& painter, const TextLine& line, const TextPlacement& placement,
               const LogicalFont& font, uint32_t pixel);

}  // namespace rasterkit::detail
