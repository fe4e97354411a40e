#pragma once

#include <algorithm>
#include <cmath>
#include <optional>

#include <rasterkit/drawing/ink/plane_affine.h>
#include <rasterkit/raster/fill.h>

namespace rasterkit::detail {

inline bool IsEmpty(const PixelRect& box) {
  return box.right <= box.left || box.bottom <= box.top;
}

inline PixelRect Intersection(const PixelRect& a, const PixelRect& b) {
  return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
          std::min(a.bottom, b.bottom)};
}

/// Clamps to a range in which sums and differences cannot overflow.
inline int PixelNumber(double value) {
  constexpr double kLimit = 1 << 28;
  return std::isfinite(value) ? static_cast<int>(std::clamp(value, -kLimit, kLimit)) : 0;
}

/// Returns the nearest edge between pixels.
inline int NearestEdge(double value) {
  return PixelNumber(std::floor(value + 0.5));
}

inline RectD Normalized(const RectD& rect) {
  return {std::min(rect.left, rect.right), std::min(rect.top, rect.bottom),
          std::max(rect.left, rect.right), std::max(rect.top, rect.bottom)};
}

/// Returns the pixels of a rectangle whose edges are rounded.
inline PixelRect RoundedBox(const RectD& rect) {
  const RectD r = Normalized(rect);
  return {NearestEdge(r.left), NearestEdge(r.top), NearestEdge(r.right), NearestEdge(r.bottom)};
}

/// Rounds like `RoundedBox`, but to at least one pixel in each direction unless the rectangle is
/// empty: thin rectangles are drawn as lines.
inline PixelRect SeenBox(const RectD& rect) {
  const RectD r = Normalized(rect);
  PixelRect box = RoundedBox(r);
  if (box.right == box.left && r.Width() > 0) {
    box.left = PixelNumber(std::floor((r.left + r.right) / 2));
    box.right = box.left + 1;
  }
  if (box.bottom == box.top && r.Height() > 0) {
    box.top = PixelNumber(std::floor((r.top + r.bottom) / 2));
    box.bottom = box.top + 1;
  }
  return box;
}

/// Returns all pixels that a rectangle touches, extended by `margin` on every side.
inline PixelRect CoveringBox(const RectD& rect, double margin) {
  const RectD r = Normalized(rect);
  return {PixelNumber(std::floor(r.left - margin)), PixelNumber(std::floor(r.top - margin)),
          PixelNumber(std::ceil(r.right + margin)), PixelNumber(std::ceil(r.bottom + margin))};
}

/// Returns the bounding box of the mapped rectangle.
inline RectD MappedBounds(const RectD& rect, const PlaneAffine& map) {
  const PointD corners[] = {map({rect.left, rect.top}), map({rect.right, rect.top}),
                            map({rect.left, rect.bottom}), map({rect.right, rect.bottom})};
  RectD bounds{corners[0].x, corners[0].y, corners[0].x, corners[0].y};
  for (const PointD& p : corners) {
    bounds.left = std::min(bounds.left, p.x);
    bounds.top = std::min(bounds.top, p.y);
    bounds.right = std::max(bounds.right, p.x);
    bounds.bottom = std::max(bounds.bottom, p.y);
  }
  return bounds;
}

}  // namespace rasterkit::detail
