#pragma once

#include <cstdint>

#include <rasterkit/kernels/turn/degrees.h>

namespace rasterkit::kernels {

struct Size {
  int64_t width = 0;
  int64_t height = 0;
};

/// The bounding box of a turned picture: |Round(H sin)| + |Round(W cos)| by |Round(W sin)| +
/// |Round(H cos)|.
Size RotatedSize(int width, int height, const SineCosine& turn);

/// The parts of both pictures that the rows of a call are: the place of their first pixel. The part
/// of the source has all pixels that the part of the target shows.
struct RotationParts {
  int sourceLeft = 0, sourceTop = 0;
  int targetLeft = 0, targetTop = 0;
};

/// Which source pixel a target pixel shows when a picture is turned counter-clockwise (rows counted
/// downward) about its center, nearest pixel:
///
///     column = Round(dx * cos - dy * sin + source width / 2)      dx = x - target width / 2
///     row    = Round(dx * sin + dy * cos + source height / 2)     dy = y - target height / 2
///
/// in extended precision, halves to even, the four centers in single precision. Both are monotone
/// along a target row, as every step of the sum is: the pixels with a source are one run.
class RotationMapping {
 public:
  RotationMapping(const SineCosine& turn, int sourceWidth, int sourceHeight, int targetWidth,
                  int targetHeight);

  int SourceWidth() const { return sourceWidth_; }
  int SourceHeight() const { return sourceHeight_; }
  int TargetWidth() const { return targetWidth_; }
  int TargetHeight() const { return targetHeight_; }
  double Sine() const { return sine_; }
  double Cosine() const { return cosine_; }

  /// The exact column and row, which may lie outside the source.
  int64_t SourceColumn(int x, int y) const;
  int64_t SourceRow(int x, int y) const;

  /// The same sums before rounding, in double arithmetic: within `DoubleError()` of the exact
  /// values.
  double ColumnEstimate(int x, int y) const;
  double RowEstimate(int x, int y) const;
  double DoubleError() const { return doubleError_; }

  /// Target columns `first` to `last - 1` of a row: those whose source pixel exists. Empty when
  /// `first == last`.
  struct Run {
    int first = 0;
    int last = 0;
  };
  Run InsideRun(int y) const;
  /// The same for row `y` of a part of the target that is `width` pixels wide; all counted from the
  /// part's first pixel.
  Run InsideRun(int y, const RotationParts& parts, int width) const;

 private:
  double sine_, cosine_;
  int sourceWidth_, sourceHeight_, targetWidth_, targetHeight_;
  // Twice the centers: whole numbers, also where single precision has cut them.
  int64_t doubledSourceX_, doubledSourceY_, doubledTargetX_, doubledTargetY_;
  double doubleError_;
};

}  // namespace rasterkit::kernels
