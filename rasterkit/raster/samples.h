#pragma once

#include <cstddef>
#include <cstdint>

#include <rasterkit/metadata/resolution.h>
#include <rasterkit/raster/pixel_layout.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/memory/pixel_memory.h>

namespace rasterkit {

/// Rows of numbers as a file has them, of any number type and with any number of bands: what a
/// Raster cannot hold without a loss. Samples of fewer than 8 bits are stored one per byte.
///
/// The samples of a pixel stand together (B1 G1 ...), or each band has rows of its own (planes).
/// Rows run from top to bottom without padding between pixels. Move-only.
class RASTERKIT_EXPORT Samples {
 public:
  Samples() = default;
  /// Allocates rows with undefined content. Throws LimitError beyond the memory budget, RangeError
  /// for sides or bands below 1.
  Samples(const PixelLayout& layout, int width, int height, bool inPlanes = false);
  /// Samples of the kind of `like` whose rows are in memory that somebody else keeps, and longer
  /// than this object.
  static Samples InMemory(uint8_t* rows, const Samples& like, int width, int height);
  Samples(Samples&&) noexcept;
  Samples& operator=(Samples&&) noexcept;
  Samples Clone() const;

  const PixelLayout& Layout() const { return layout_; }
  PixelLayout& Layout() { return layout_; }
  int Width() const { return width_; }
  int Height() const { return height_; }
  /// 1 unless in planes.
  int Planes() const { return planes_; }
  /// Bytes from one pixel to the next within a row.
  size_t PixelBytes() const {
    return BytesOf(layout_.type) * static_cast<size_t>(layout_.bands / planes_);
  }
  size_t Stride() const { return static_cast<size_t>(width_) * PixelBytes(); }
  uint8_t* Row(int y, int plane = 0) { return memory_.Data() + Offset(y, plane); }
  const uint8_t* Row(int y, int plane = 0) const { return memory_.Data() + Offset(y, plane); }

  Resolution resolution;

 private:
  size_t Offset(int y, int plane) const {
    return (static_cast<size_t>(plane) * static_cast<size_t>(height_) + static_cast<size_t>(y)) *
           Stride();
  }

  PixelLayout layout_;
  int width_ = 0, height_ = 0, planes_ = 1;
  PixelMemory memory_;
};

}  // namespace rasterkit
