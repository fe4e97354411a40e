#pragma once

#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

#include <cairo.h>

#include <rasterkit/raster/fill.h>

namespace rasterkit::detail {

/// A claim on the memory of all masks that exist, which together keep to the picture memory budget:
/// a few bytes of a file can put a mask by, and ask for the next one.
class MaskMemory {
 public:
  /// Throws LimitError when the budget does not hold it.
  explicit MaskMemory(uint64_t bytes);
  ~MaskMemory();
  MaskMemory(MaskMemory&& other) noexcept : bytes_(std::exchange(other.bytes_, 0)) {}
  MaskMemory& operator=(MaskMemory&&) = delete;

 private:
  uint64_t bytes_;
};

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
  MaskMemory memory_;
  std::vector<uint8_t> bytes_;
};

}  // namespace rasterkit::detail
