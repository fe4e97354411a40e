#pragma once

#include <rasterkit/pictures/steps.h>
#include <rasterkit/placement/affine.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit::detail {

/// The rectangle of pixels that shows a part of the map: the box around its four corners, each edge
/// at the nearest pixel corner (halves to even), at least one pixel. Throws RangeError for a
/// rectangle without area, one that does not meet the picture, and one beyond its edges by more
/// than half a pixel.
RASTERKIT_EXPORT CropStep CropOfMap(const MapRect& rect, const Affine& position, int width,
                                    int height);

}  // namespace rasterkit::detail
