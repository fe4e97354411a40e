#pragma once

#include <rasterkit/graphics/canvas.h>

namespace rasterkit {

/// A rectangle with double-precision coordinates, y downward. Right and bottom are exclusive, so
/// that the size is their difference; it may be empty or a single point.
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
  /// Moves as far as `bounds` allow. A rectangle larger than `bounds` is aligned at their left or
  /// top.
  void MoveInRect(double dx, double dy, const RDRect& bounds);
  /// Scales by 1 + step about the fixed point (x, y): [0, 10] stretched by 0.5 about 2 is [-1, 14].
  void Stretch(double step, double x, double y);
  /// Multiplies every coordinate: scales about (0, 0).
  void Scale(double factor);
  /// Clamps each edge to `bounds`; a rectangle outside becomes a line or point on their border.
  void Intersect(const RDRect& bounds);
  /// Whether the point is inside; the edges belong to the rectangle.
  bool Contains(double x, double y) const;
  /// Scales uniformly and moves the rectangle so that it is as large as possible and centered in
  /// `bounds`. Returns the factor; a rectangle without size is only centered, factor 1.
  double FitInRect(const RDRect& bounds);
  /// Returns the rectangle with every coordinate rounded, halves to even. Coordinates are clamped
  /// to 2^30.
  TRect ToRect() const;

  friend bool operator==(const RDRect&, const RDRect&) = default;
};

/// Whether no coordinate differs by more than `tolerance`.
bool AlmostEqual(const RDRect& a, const RDRect& b, double tolerance);

}  // namespace rasterkit
