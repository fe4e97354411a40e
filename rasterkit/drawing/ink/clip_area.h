#pragma once

#include <memory>
#include <span>
#include <vector>

#include <rasterkit/drawing/ink/coverage_mask.h>
#include <rasterkit/drawing/ink/drawing_modes.h>
#include <rasterkit/drawing/ink/drawing_path.h>

namespace rasterkit::detail {

/// A part of the picture: whole pixels in rectangles, and beside them a mask where edges are soft
/// or slanted. Never changed once made, so that states share it.
class ClipArea {
 public:
  using Pointer = std::shared_ptr<const ClipArea>;

  static Pointer OfRects(std::span<const PixelRect> rects, const PixelRect& frame);
  /// What lies inside the path, cut to the frame.
  static Pointer OfPath(const DrawingPath& path, PolygonFill fill, const PixelRect& frame);
  /// What the mask covers.
  static Pointer OfMask(std::shared_ptr<const CoverageMask> mask);
  /// `current` and `other` as the mode says. Both lie in the same frame.
  static Pointer Combined(const Pointer& current, const Pointer& other, RegionMode mode);
  Pointer Moved(int dx, int dy, const PixelRect& frame) const;

  /// The pixels, each once, from top to bottom.
  const std::vector<PixelRect>& Rects() const { return rects_; }
  /// Those of them that end below `top`: rectangles lie in bands from top to bottom, and in a band
  /// from left to right.
  std::span<const PixelRect> RectsFrom(int top) const;
  /// Around all of it; may be empty.
  const PixelRect& Bounds() const { return bounds_; }
  bool HasMask() const { return mask_ != nullptr; }
  /// Takes down the coverage of a row's pixels that lie in `Rects()` to what the mask leaves.
  void Limit(int y, int left, int count, uint8_t* coverage) const;
  /// Whether the pixel lies inside, by more than half.
  bool Holds(int x, int y) const;

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
