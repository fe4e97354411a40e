#pragma once

#include <rasterkit/codecs/rows/imaging_frame.h>
#include <rasterkit/tifftobmp/geotiff_reader.h>

/// How a decoded frame becomes a bitmap, by its pixel format.
namespace rasterkit::detail {

enum class FrameMark {
  none,
  /// The palette is a gray ramp, not the codec's.
  gray,
  /// The bitmap is `Transparent` at first.
  alpha
};

struct BitmapTraits {
  /// Bits per pixel: 1, 4, 8, 16, 24 or 32.
  int bits;
  FrameMark mark;
  TWICFloatFormat floatFormat;
  friend bool operator==(const BitmapTraits&, const BitmapTraits&) = default;
};

BitmapTraits TraitsOf(WICPixelFormat format);

/// Traits of a frame that the codec converted to 32bppBGRA: no alpha mark, unlike an original
/// 32bppBGRA frame.
inline constexpr BitmapTraits kConvertedFrame = {32, FrameMark::none, ffNoFloat};

inline BitmapTraits TraitsOf(const ImagingFrame& frame) {
  return frame.isConverted ? kConvertedFrame : TraitsOf(frame.format);
}

}  // namespace rasterkit::detail
