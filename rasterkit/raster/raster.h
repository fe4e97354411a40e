#pragma once

#include <cstdint>
#include <optional>

#include <rasterkit/metadata/color_profile.h>
#include <rasterkit/metadata/resolution.h>
#include <rasterkit/raster/palette.h>
#include <rasterkit/raster/pixel_format.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/memory/pixel_memory.h>

namespace rasterkit {

/// Whether the fourth byte of a 32-bit pixel is alpha (`afDefined`) or has no meaning.
enum TAlphaFormat { afIgnored, afDefined };

/// What a picture carries besides its rows. Copied as a whole: a property that is added here goes
/// wherever the others go (see also `TBitmap::CarryFrom`).
struct RasterProperties {
  HPALETTE palette;
  Resolution resolution;
  ColorProfile profile;
  TAlphaFormat alphaFormat = afIgnored;
  /// The color that a file marks as transparent (a PNG's tRNS; white for a PNG with an alpha
  /// channel).
  std::optional<TColor> transparentColor;
};

/// Rows of pixels and their properties: the input and output of codecs, and the content of a
/// TBitmap.
///
/// Rows run from top to bottom, each `Stride()` bytes, with padding written as zero. Move-only; use
/// `Clone` for a copy.
class RASTERKIT_EXPORT Raster : public RasterProperties {
 public:
  Raster() = default;
  /// Allocates rows with undefined content and the format's default palette. `format` is pf1bit to
  /// pf32bit. Throws LimitError if the rows exceed the picture memory budget, RangeError for a
  /// negative size.
  Raster(TPixelFormat format, int width, int height);
  /// A raster with the format and the properties of `like` whose rows are in memory that somebody
  /// else keeps, and longer than this object.
  static Raster InMemory(uint8_t* rows, const Raster& like, int width, int height);
  /// Moves rows and properties; `other` is empty afterwards, 0 x 0.
  Raster(Raster&& other) noexcept;
  Raster& operator=(Raster&& other) noexcept;
  Raster Clone() const;
  RasterProperties& Properties() { return *this; }
  const RasterProperties& Properties() const { return *this; }
  /// Takes over all properties of `other`; the rows stay.
  void CopyProperties(const Raster& other) { Properties() = other.Properties(); }

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
  /// Color 0x00BBGGRR of a pixel, through the palette if there is one. The pixel must lie inside.
  TColor PixelColor(int x, int y) const;

 private:
  TPixelFormat format_ = pf32bit;
  int width_ = 0;
  int height_ = 0;
  size_t stride_ = 0;
  PixelMemory memory_;
};

}  // namespace rasterkit
