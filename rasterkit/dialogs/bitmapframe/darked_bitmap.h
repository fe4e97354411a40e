#pragma once

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>

namespace rasterkit {

/// The picture with everything outside a rectangle at half brightness, described by a rule instead
/// of pixels: a copy of a large picture would take seconds and double its memory, although only a
/// screenful of it is visible. Colors are read from the picture when they are needed.
class DarkedBitmap {
 public:
  /// Darkens a picture of this size outside `lit`, which is clipped to it.
  void Fill(int width, int height, const TRect& lit);
  /// Mirrors like `SwapBitmap`: the last column and the last row stay in place, and a picture with
  /// a single column or row does not change.
  void Swap(bool horizontal);

  /// Whether the pixel keeps its brightness.
  bool IsLit(int x, int y) const;
  /// Returns the kind of the row, 0 to 7; rows of one kind are lit at the same columns.
  int RowKind(int y) const;

  /// Returns the whole darkened picture, 24-bit (32-bit with its alpha from a 32-bit picture): each
  /// channel of a darkened pixel is halved, rounded down. `picture` must have the size given to
  /// `Fill`.
  TBitmap Make(const TBitmap& picture) const;

  friend bool operator==(const DarkedBitmap& a, const DarkedBitmap& b);

 private:
  bool IsLitRow(int y) const { return y >= lit_.Top && y < lit_.Bottom; }

  int width_ = 0, height_ = 0;
  TRect lit_;
  bool mirroredLeftRight_ = false, mirroredTopBottom_ = false;
};

}  // namespace rasterkit
