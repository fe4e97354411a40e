#pragma once

#include <memory>
#include <span>
#include <vector>

#include <rasterkit/drawing/ink/coverage_mask.h>
#include <rasterkit/drawing/ink/drawing_modes.h>
#include <rasterkit/drawing/ink/drawing_path.h>

namespace rasterkit::detail {

/// An area of the picture: rectangles of whole pixels, plus a mask if edges are soft or slanted.
/// Immutable, so that saved states can share it.
class ClipArea {
 public:
  using Pointer = std::shared_ptr<const ClipArea>;

  static Pointer OfRects(std::span<const PixelRect> rects, const PixelRect& frame);
  /// Returns the inside of the path, clipped to the frame.
  static Pointer OfPath(const DrawingPath& path, PolygonFill fill, const PixelRect& frame);
  /// Returns the area covered by the mask.
  static Pointer OfMask(std::shared_ptr<const CoverageMask> mask);
  /// Combines `current` and `other` by the mode. Both must have the same frame.
  static Pointer Combined(const Pointer& current, const Pointer& other, RegionMode mode);
  Pointer Moved(int dx, int dy, const PixelRect& frame) const;

  /// Returns the rectangles: they do not overlap and are sorted from top to bottom.
  const std::vector<PixelRect>& Rects() const { return rects_; }
  /// Returns the rectangles that end below `top`. Rectangles lie in bands from top to bottom, and
  /// from left to right in each band.
  std::span<const PixelRect> RectsFrom(int top) const;
  /// Returns the bounding box; may be empty.
  const PixelRect& Bounds() const { return bounds_; }
  bool HasMask() const { return mask_ != nullptr; }
  /// Multiplies the coverage of pixels in one row by the mask. The pixels must lie in `Rects()`.
  void Limit(int y, int left, int count, uint8_t* coverage) const;
  /// Returns whether more than half of the pixel lies inside.
  bool Contains(int x, int y) const;

 private:
  ClipArea() = default;
  static Pointer OfRegion(cairo_region_t* region, std::shared_ptr<const CoverageMask> mask);
  static Pointer MixedMasks(const ClipArea& a, const ClipArea& b, RegionMode mode);
  uint8_t At(int x, int y) const;
  std::span<const PixelRect> RectsOfRow(int y) const;
  void CopyCoverage(int y, int left, int count, uint8_t* coverage) const;

  std::shared_ptr<cairo_region_t> region_;
  std::vector<PixelRect> rects_;
  PixelRect bounds_;
  std::shared_ptr<const CoverageMask> mask_;
};

}  // namespace rasterkit::detail
