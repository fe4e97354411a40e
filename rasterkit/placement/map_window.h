#pragma once

#include <optional>

#include <rasterkit/placement/affine.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Whole pixels of a picture, from the top left corner.
struct PixelWindow {
  int left = 0, top = 0, width = 0, height = 0;
};

/// A stretch along one side of a picture, in pixels from the edge of the first one.
struct PixelSpan {
  double first = 0, last = 0;
};

/// Whole pixels along one side.
struct PixelRun {
  int first = 0, count = 0;
};

/// The whole pixels of a span, whose ends are finite and rise: each end at the nearest pixel edge,
/// halves to even, and at least one pixel. Nothing if they are not all inside `size` pixels.
RASTERKIT_EXPORT std::optional<PixelRun> WholePixelsOf(const PixelSpan& span, int size);

/// The box around a rectangle of the map, in pixels.
struct MapSpans {
  PixelSpan columns, rows;
};

/// Throws RangeError for a rectangle without area and for a position that cannot be inverted.
RASTERKIT_EXPORT MapSpans SpansOfMap(MapPoint least, MapPoint greatest, const Affine& position);

/// The pixels that show a rectangle of the map, from its corner with the least to that with the
/// greatest coordinates: the box around its four corners, each edge at the nearest pixel corner
/// (halves to even), at least one pixel. Throws RangeError for a rectangle without area, and for
/// one whose pixels are not all inside the picture.
RASTERKIT_EXPORT PixelWindow WindowOfMap(MapPoint least, MapPoint greatest, const Affine& position,
                                         int width, int height);

}  // namespace rasterkit
