#pragma once

#include <rasterkit/codecs/rows/imaging_frame.h>
#include <rasterkit/tifftobmp/geotiff_reader.h>

/// What becomes of a decoded frame in a bitmap, by its pixel format.
namespace rasterkit::detail {

enum class FrameMark {
  none,
  /// The palette is a gray ramp, not the codec's.
  gray,
  /// The bitmap is transparent at first.
  alpha
};

struct BitmapTraits {
  /// Bits a pixel: 1, 4, 8, 16, 24 or 32.
  int bits;
  FrameMark mark;
  TWICFloatFormat floatFormat;
  friend bool operator==(const BitmapTraits&, const BitmapTraits&) = default;
};

BitmapTraits TraitsOf(WICPixelFormat format);

/// What holds for a frame that the codec had to convert to 32bppBGRA: no alpha mark, unlike a frame
/// that is 32bppBGRA by itself.
inline constexpr BitmapTraits kConvertedFrame = {32, FrameMark::none, ffNoFloat};

inline BitmapTraits TraitsOf(const ImagingFrame& frame) {
  return frame.isConverted ? kConvertedFrame : TraitsOf(frame.format);
}

}  // namespace rasterkit::detail
