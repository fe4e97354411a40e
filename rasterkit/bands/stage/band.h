#pragma once

#include <rasterkit/raster/pixels.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Rows `first` to `first + count - 1`.
struct RowRange {
  int first = 0, count = 0;
  friend bool operator==(const RowRange&, const RowRange&) = default;
};

/// A part of a picture: its place in pixels from the top left corner, and its size.
struct BandRect {
  int left = 0, top = 0, width = 0, height = 0;
  friend bool operator==(const BandRect&, const BandRect&) = default;
};

/// Pixels of a part of a picture. Without a place: the whole picture, or its first rows.
struct Band {
  Pixels pixels;
  int left = 0, top = 0;

  BandRect Rect() const { return {left, top, WidthOf(pixels), HeightOf(pixels)}; }
};

/// Copies a part of a picture to the place (`left`, `top`) of another one of the same kind. Bits
/// beside the part stay as they are in the target; bytes after the last pixel of its rows are set
/// to 0 where the part reaches the right edge.
RASTERKIT_EXPORT void CopyPart(const Pixels& source, const BandRect& part, Pixels& target, int left,
                               int top);

/// A copy of a part of a band. `rect` is a place in the picture and must lie inside of the band.
RASTERKIT_EXPORT Band CutBand(const Band& band, const BandRect& rect);

}  // namespace rasterkit
