#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include <rasterkit/raster/palette.h>
#include <rasterkit/raster/pixel_format.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/memory/pixel_memory.h>

namespace rasterkit {

/// Dots per inch in both directions; 0 where a file states none.
struct Resolution {
  double x = 0, y = 0;
  bool IsKnown() const { return x > 0 && y > 0; }
  friend bool operator==(const Resolution&, const Resolution&) = default;
};

/// An ICC profile's bytes, shared and never changed.
using ColorProfile = std::shared_ptr<const std::vector<uint8_t>>;

/// Whether the fourth byte of a 32-bit pixel means something.
enum TAlphaFormat { afIgnored, afDefined };

/// Rows of pixels and what belongs to them: what codecs deliver and take, and what a TBitmap is
/// made of.
///
/// Rows run from top to bottom, each `Stride()` bytes, with padding written as zero. Move-only;
/// copies are spelled out with `Clone`.
class RASTERKIT_EXPORT Raster {
 public:
  Raster() = default;
  /// Rows with undefined content and the format's default palette. `format` is pf1bit to pf32bit.
  /// Throws LimitError when the rows exceed the picture memory budget, RangeError for a negative
  /// size.
  Raster(TPixelFormat format, int width, int height);
  /// The raster moved from is empty, 0 x 0.
  Raster(Raster&& other) noexcept;
  Raster& operator=(Raster&& other) noexcept;
  Raster Clone() const;
  /// Palette, resolution, profile, alpha mark and transparent color of `other`; the rows stay.
  void CopyProperties(const Raster& other);

  TPixelFormat Format() const { return format_; }
  int Width() const { return width_; }
  int Height() const { return height_; }
  size_t Stride() const { return stride_; }
  /// Bytes of a row without its padding.
  size_t RowBytes() const {
    return (static_cast<size_t>(width_) * StoredBitsPerPixel(format_) + 7) / 8;
  }
  uint8_t* Row(int y) { return memory_.Data() + static_cast<size_t>(y) * stride_; }
  const uint8_t* Row(int y) const { return memory_.Data() + static_cast<size_t>(y) * stride_; }
  /// Zeroes the bits and bytes between the last pixel and the end of each row.
  void ClearPadding();
  /// The color 0x00BBGGRR of the pixel, through the palette where there is one; it must lie
  /// inside.
  TColor PixelColor(int x, int y) const;

  HPALETTE palette;
  Resolution resolution;
  ColorProfile profile;
  TAlphaFormat alphaFormat = afIgnored;
  /// The color that a file marks as transparent (a PNG's tRNS, white for one with an alpha
  /// channel).
  std::optional<TColor> transparentColor;

 private:
  TPixelFormat format_ = pf32bit;
  int width_ = 0;
  int height_ = 0;
  size_t stride_ = 0;
  PixelMemory memory_;
};

}  // namespace rasterkit
