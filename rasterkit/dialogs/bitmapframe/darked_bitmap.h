#pragma once

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>

namespace rasterkit {

/// The picture with everything outside a rectangle at half brightness, as a rule instead of rows:
/// a copy of a large picture would cost seconds and double its memory, while what is seen of it is
/// a screenful. Colours come from the picture at the time they are asked for.
class DarkedBitmap {
 public:
  /// Darkens a picture of this size outside `lit`, which is clipped to it.
  void Fill(int width, int height, const TRect& lit);
  /// Mirrors as `SwapBitmap` does: the last column and the last row stay where they are, and a
  /// picture of a single column or row stays as it is.
  void Swap(bool horizontal);

  /// Whether the pixel keeps its brightness.
  bool IsLit(int x, int y) const;
  /// Rows of one kind, 0 to 7, are lit at the same columns.
  int RowKind(int y) const;

  /// The whole darkened picture, 24-bit (32-bit with its alpha from a 32-bit picture): each channel
  /// of an unlit pixel halved and cut. `picture` has the size that was given to `Fill`.
  TBitmap Make(const TBitmap& picture) const;

  friend bool operator==(const DarkedBitmap& a, const DarkedBitmap& b);

 private:
  bool IsLitRow(int y) const { return y >= lit_.Top && y < lit_.Bottom; }

  int width_ = 0, height_ = 0;
  TRect lit_;
  bool mirroredLeftRight_ = false, mirroredTopBottom_ = false;
};

}  // namespace rasterkit
