#pragma once

#include <rasterkit/graphics/canvas.h>

namespace rasterkit {

/// A rectangle of double-precision coordinates, y downward. Right and bottom are where it ends, so
/// that its size is their difference; a rectangle may be empty or a single point.
struct RDRect {
  double Left = 0, Top = 0, Right = 0, Bottom = 0;

  RDRect() = default;
  RDRect(double left, double top, double right, double bottom)
      : Left(left), Top(top), Right(right), Bottom(bottom) {}
  explicit RDRect(const TRect& rect)
      : Left(rect.Left), Top(rect.Top), Right(rect.Right), Bottom(rect.Bottom) {}

  double Width() const { return Right - Left; }
  double Height() const { return Bottom - Top; }
  bool IsEmpty() const { return Width() <= 0 || Height() <= 0; }

  void Move(double dx, double dy);
  /// Moves as far as `bounds` allow. What is larger than them begins at their left or top.
  void MoveInRect(double dx, double dy, const RDRect& bounds);
  /// Scales by 1 + step about the point (x, y), which stays where it is: [0, 10] stretched by 0.5
  /// about 2 is [-1, 14].
  void Stretch(double step, double x, double y);
  /// Multiplies every coordinate: scales about (0, 0).
  void Scale(double factor);
  /// Draws each edge back into `bounds`; a rectangle outside of them ends as a line or point on
  /// their border.
  void Intersect(const RDRect& bounds);
  /// The edges belong to the rectangle.
  bool Contains(double x, double y) const;
  /// Scales uniformly and moves, so that the rectangle is as large as fits and centred in `bounds`.
  /// Returns the factor; a rectangle without any size is only centred, factor 1.
  double FitInRect(const RDRect& bounds);
  /// The integer form: every coordinate rounded, halves to even. Coordinates beyond 2^30 become
  /// 2^30.
  TRect ToRect() const;

  friend bool operator==(const RDRect&, const RDRect&) = default;
};

/// Whether no coordinate differs by more than `tolerance`.
bool AlmostEqual(const RDRect& a, const RDRect& b, double tolerance);

}  // namespace rasterkit
