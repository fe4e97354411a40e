#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include <rasterkit/codecs/tiff/tiff_handle.h>

namespace rasterkit::detail {

/// Converts YCbCr samples by the coefficients and the reference levels of a file, as libtiff does.
class YcbcrColors {
 public:
  /// Throws FormatError for invalid coefficients or levels, std::bad_alloc.
  explicit YcbcrColors(const TiffHandle& handle);

  /// Writes `width` pixels B G R; each sample of Cb and Cr is used for `step` pixels.
  void ToBgr(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, size_t step, size_t width,
             uint8_t* target) const;

 private:
  struct Free {
    void operator()(TIFFYCbCrToRGB* tables) const { _TIFFfree(tables); }
  };
  std::unique_ptr<TIFFYCbCrToRGB, Free> tables_;
};

}  // namespace rasterkit::detail
