#pragma once

#include <rasterkit/dialogs/execbitmap/value_change.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>

namespace rasterkit {

/// A change computed for what is seen of a large picture only.
///
/// The result is a pf32bit bitmap of the size of `part` (which must lie inside the picture), as the
/// changed picture would be drawn on a ground of the colour `ground`: the pixels are to the byte
/// those that the change makes of the whole picture. Time and memory depend on the part, but for
/// pictures whose palette does not fit their format: of these whole rows are computed.
TBitmap DrawChangedPart(const TBitmap& picture, const TRect& part, const ValueChange& change,
                        TColor ground);

}  // namespace rasterkit
