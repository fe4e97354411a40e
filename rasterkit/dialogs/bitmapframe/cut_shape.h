#pragma once

#include <rasterkit/dialogs/bitmapframe/mark_rects.h>
#include <rasterkit/dialogs/bitmapframe/rd_rect.h>
#include <rasterkit/graphics/canvas.h>

namespace rasterkit {

/// What the sides of a cut must be, in pixels of the bitmap. 0 stands for any.
struct CutShape {
  /// Width divided by height.
  double ratio = 0;
  /// A size that drags do not change.
  int width = 0, height = 0;

  bool IsFixed() const { return width > 0 && height > 0; }
  friend bool operator==(const CutShape&, const CutShape&) = default;
};

/// A drag in pixels of the bitmap.
struct CutDrag {
  EDragObjectType object = doNone;
  /// The cut at the start; the place of the press for a new one.
  TRect start;
  /// Where the mouse was pressed, and where it is.
  double fromX = 0, fromY = 0, toX = 0, toY = 0;
  CutShape shape;
  bool fromCenter = false;
  /// Distance within which edges jump to the edges and the middle of the bitmap.
  double snap = 0;
  int bitmapWidth = 0, bitmapHeight = 0;
};

/// Returns the cut that a drag leads to: whole pixels, inside the bitmap, at least one pixel, in
/// the shape as far as whole pixels and the bitmap allow.
TRect DraggedCut(const CutDrag& drag);

/// Returns the cut in another shape about the same center: of about the same area, or of the fixed
/// size, inside the bitmap. Without a cut (no area) the largest one in the middle of the bitmap.
TRect ReshapedCut(const TRect& cut, const CutShape& shape, int bitmapWidth, int bitmapHeight);

/// Returns the cut whose right and bottom edges were moved, in the shape: the height follows the
/// width unless `dx` is 0. Down to one pixel and inside the bitmap.
TRect ResizedCut(const TRect& cut, int dx, int dy, const CutShape& shape, int bitmapWidth,
                 int bitmapHeight);

}  // namespace rasterkit
