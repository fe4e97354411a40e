#pragma once

#include <rasterkit/placement/affine.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Whole pixels of a picture, from the top left corner.
struct PixelWindow {
  int left = 0, top = 0, width = 0, height = 0;
};

/// The pixels that show a rectangle of the map, from its corner with the least to that with the
/// greatest coordinates: the box around its four corners, each edge at the nearest pixel corner
/// (halves to even), at least one pixel. Throws RangeError for a rectangle without area, and for
/// one whose pixels are not all inside the picture.
RASTERKIT_EXPORT PixelWindow WindowOfMap(MapPoint least, MapPoint greatest, const Affine& position,
                                         int width, int height);

}  // namespace rasterkit
