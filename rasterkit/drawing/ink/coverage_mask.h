#pragma once

#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

#include <cairo.h>

#include <rasterkit/raster/fill.h>

namespace rasterkit::detail {

/// Counts the memory of all existing masks against the picture memory budget: a hostile file can
/// keep many masks alive (SaveDC) at a few bytes each.
class MaskMemory {
 public:
  /// Throws LimitError if the picture memory budget is exceeded.
  explicit MaskMemory(uint64_t bytes);
  ~MaskMemory();
  MaskMemory(MaskMemory&& other) noexcept : bytes_(std::exchange(other.bytes_, 0)) {}
  MaskMemory& operator=(MaskMemory&&) = delete;

 private:
  uint64_t bytes_;
};

/// The coverage of each pixel of a rectangle, 0 to 255.
class CoverageMask {
 public:
  /// Creates a mask of zeros. Throws LimitError if the picture memory budget is exceeded.
  explicit CoverageMask(const PixelRect& box);

  const PixelRect& Box() const { return box_; }
  size_t Stride() const { return stride_; }
  uint8_t* Row(int y) { return bytes_.data() + static_cast<size_t>(y - box_.top) * stride_; }
  const uint8_t* Row(int y) const {
    return bytes_.data() + static_cast<size_t>(y - box_.top) * stride_;
  }

  /// Calls `draw` to paint coverage with an opaque color, in the coordinates of the box.
  void Draw(const std::function<void(cairo_t*)>& draw);

 private:
  PixelRect box_;
  size_t stride_;
  MaskMemory memory_;
  std::vector<uint8_t> bytes_;
};

}  // namespace rasterkit::detail
