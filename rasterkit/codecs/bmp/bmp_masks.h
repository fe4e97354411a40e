#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include <rasterkit/codecs/bmp/bmp_format.h>

namespace rasterkit::detail {

/// Extracts one channel of a stored pixel and scales it to 0 to 255: round(value * 255 / highest
/// value).
class BmpChannel {
 public:
  /// `mask` is one run of bits within the pixel's `pixelBits`, or 0 for a channel that is always 0.
  /// Throws FormatError for a mask with gaps or beyond the pixel.
  BmpChannel(uint32_t mask, int pixelBits);

  uint8_t Of(uint32_t pixel) const {
    const uint32_t value = (pixel & mask_) >> shift_;
    return scaled_.empty() ? Scale(value) : scaled_[value];
  }

 private:
  uint8_t Scale(uint32_t value) const;

  uint32_t mask_;
  int shift_;
  /// All scaled values, except for channels too wide for a table.
  std::vector<uint8_t> scaled_;
};

/// Converts rows of 16-, 24- or 32-bit pixels with any masks to pf24bit, or pf32bit with alpha.
class BmpMaskedRows {
 public:
  /// Throws FormatError as BmpChannel does, and if no color has a mask.
  BmpMaskedRows(const BmpMasks& masks, int pixelBits);

  /// `target` has 3 bytes per pixel, B G R.
  void To24(const uint8_t* source, uint8_t* target, size_t width) const;
  /// `target` has 4 bytes per pixel, B G R A; alpha is 255 without an alpha mask.
  void To32(const uint8_t* source, uint8_t* target, size_t width) const;

 private:
  uint32_t Pixel(const uint8_t* source) const;

  int pixelBytes_;
  bool hasAlpha_;
  BmpChannel red_, green_, blue_, alpha_;
};

}  // namespace rasterkit::detail
