#pragma once

#include <cmath>
#include <optional>

namespace rasterkit {

/// A point; the unit depends on the caller.
struct PointD {
  double x = 0, y = 0;
  friend bool operator==(const PointD&, const PointD&) = default;
};

/// A rectangle given by two corners in any order. As an area of pixels it excludes right and
/// bottom.
struct RectD {
  double left = 0, top = 0, right = 0, bottom = 0;
  double Width() const { return right - left; }
  double Height() const { return bottom - top; }
  friend bool operator==(const RectD&, const RectD&) = default;
};

/// An affine map of the plane, for row vectors as in metafiles:
///
///     x' = m11 x + m21 y + dx
///     y' = m12 x + m22 y + dy
struct PlaneAffine {
  double m11 = 1, m12 = 0, m21 = 0, m22 = 1, dx = 0, dy = 0;

  static PlaneAffine Scaling(double x, double y) { return {x, 0, 0, y, 0, 0}; }
  static PlaneAffine Translation(double x, double y) { return {1, 0, 0, 1, x, y}; }

  PointD operator()(const PointD& p) const {
    return {m11 * p.x + m21 * p.y + dx, m12 * p.x + m22 * p.y + dy};
  }
  /// Maps a vector: applies the map without its translation.
  PointD Direction(const PointD& d) const { return {m11 * d.x + m21 * d.y, m12 * d.x + m22 * d.y}; }
  double Determinant() const { return m11 * m22 - m12 * m21; }
  /// Returns the mean scale factor: the square root of the factor by which areas grow.
  double MeanScale() const { return std::sqrt(std::abs(Determinant())); }
  /// Returns whether rectangles along the axes stay along the axes.
  bool KeepsAxes() const { return (m12 == 0 && m21 == 0) || (m11 == 0 && m22 == 0); }

  /// Returns the map that applies this map first, then `next`.
  PlaneAffine Then(const PlaneAffine& next) const {
    return {m11 * next.m11 + m12 * next.m21,         m11 * next.m12 + m12 * next.m22,
            m21 * next.m11 + m22 * next.m21,         m21 * next.m12 + m22 * next.m22,
            dx * next.m11 + dy * next.m21 + next.dx, dx * next.m12 + dy * next.m22 + next.dy};
  }
  /// Returns the inverse; nothing if the map is singular or has non-finite numbers.
  std::optional<PlaneAffine> Inverse() const {
    const double d = Determinant();
    if (d == 0 || !std::isfinite(d) || !std::isfinite(1 / d)) return std::nullopt;
    return PlaneAffine{
        m22 / d, -m12 / d, -m21 / d, m11 / d, (m21 * dy - m22 * dx) / d, (m12 * dx - m11 * dy) / d};
  }
  bool IsFinite() const {
    return std::isfinite(m11) && std::isfinite(m12) && std::isfinite(m21) && std::isfinite(m22) &&
           std::isfinite(dx) && std::isfinite(dy);
  }
  friend bool operator==(const PlaneAffine&, const PlaneAffine&) = default;
};

}  // namespace rasterkit
