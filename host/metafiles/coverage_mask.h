#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include <cairo.h>

#include <rasterkit/host/raster/fill.h>

namespace rasterkit::detail {

/// How much of each pixel of a rectangle is meant, 0 to 255.
class CoverageMask {
 public:
  /// Nothing is meant yet. Throws LimitError when the picture memory budget does not hold it.
  explicit CoverageMask(const PixelRect& box);

  const PixelRect& Box() const { return box_; }
  size_t Stride() const { return stride_; }
  uint8_t* Row(int y) { return bytes_.data() + static_cast<size_t>(y - box_.top) * stride_; }
  const uint8_t* Row(int y) const {
    return bytes_.data() + static_cast<size_t>(y - box_.top) * stride_;
  }

  /// Lets `draw` paint with an opaque colour; the coordinates are those of the box.
  void Draw(const std::function<void(cairo_t*)>& draw);

 private:
  PixelRect box_;
  size_t stride_;
  std::vector<uint8_t> bytes_;
};

}  // namespace rasterkit::detail
