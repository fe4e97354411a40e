#pragma once

#include <random>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/raster/raster.h>

/// Generated pictures in every format. Use odd and unequal sizes.
namespace rasterkit::test {

inline constexpr TPixelFormat kEveryFormat[] = {pf1bit,  pf4bit,  pf8bit, pf15bit,
                                                pf16bit, pf24bit, pf32bit};

/// Channels and indexes rise with x and y, so that a shifted, mirrored or swapped picture differs.
/// Indexed pictures have the format's default palette, 32-bit ones an alpha that falls with x.
Raster GradientRaster(TPixelFormat format, int width, int height);

/// Every bit random (with a random palette of 2, 16 or 256 entries); the padding is zero.
Raster RandomRaster(TPixelFormat format, int width, int height, std::mt19937& random);

/// Every pixel one of `colors` random colors; pf24bit or pf32bit.
Raster FewColorsRaster(TPixelFormat format, int width, int height, int colors,
                       std::mt19937& random);

/// 8-bit with the gray ramp, values that rise with x and y.
Raster GrayRaster(int width, int height);

HPALETTE RandomPalette(int count, std::mt19937& random);

inline TBitmap GradientBitmap(TPixelFormat format, int width, int height) {
  return TBitmap(GradientRaster(format, width, height));
}
inline TBitmap RandomBitmap(TPixelFormat format, int width, int height, std::mt19937& random) {
  return TBitmap(RandomRaster(format, width, height, random));
}

/// The picture with the top bit of 15-bit pixels cleared: drawing need not keep it.
inline TBitmap WithoutUnusedBits(TBitmap bitmap) {
  if (bitmap.PixelFormat() != pf15bit) return bitmap;
  for (int y = 0; y < bitmap.Height(); ++y)
    for (int x = 0; x < bitmap.Width(); ++x) bitmap.ScanLine(y)[2 * x + 1] &= 0x7F;
  return bitmap;
}

}  // namespace rasterkit::test
