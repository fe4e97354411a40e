#pragma once

#include <rasterkit/dialogs/execbitmap/value_change.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>

namespace rasterkit {

/// Applies a change only to the visible part of a large picture.
///
/// Returns a pf32bit bitmap of the size of `part` (which must be inside the picture), as the
/// changed picture would be drawn on the background color `ground`: byte-identical to a change of
/// the whole picture. Time and memory depend on the part, except for pictures whose palette does
/// not fit their format: whole rows are computed then.
TBitmap DrawChangedPart(const TBitmap& picture, const TRect& part, const ValueChange& change,
                        TColor ground);

}  // namespace rasterkit
