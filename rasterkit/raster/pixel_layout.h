#pragma once

#include <rasterkit/metadata/color_profile.h>
#include <rasterkit/raster/number_type.h>
#include <rasterkit/raster/palette.h>

namespace rasterkit {

/// What the color samples of a pixel mean.
enum class ColorModel {
  /// 0 is black; also numbers that are no colors (a grid).
  gray,
  /// The lowest number is white.
  grayWhiteIsZero,
  /// Red, green, blue.
  rgb,
  /// Index into a palette.
  palette,
  /// Cyan, magenta, yellow, black; 0 is no ink.
  cmyk,
  /// CIE L*a*b* as TIFF stores it (photometric 8): a and b are signed.
  lab,
  /// L*a*b* of ICC profiles (photometric 9) and of the ITU (10).
  iccLab,
  ituLab,
  /// Bands without a meaning as a color.
  other
};

/// How the pixels state opacity.
enum class AlphaKind {
  none,
  /// The last sample is opacity; colors are independent of it.
  straight,
  /// The last sample is opacity; colors are already multiplied by it.
  associated,
  /// One palette index or color is transparent (tRNS).
  transparentColor
};

/// The kind of pixels of a picture.
struct PixelLayout {
  NumberType type = NumberType::uint8;
  /// Bits per sample; below 8 for packed samples of type uint8.
  int bits = 8;
  /// Samples per pixel, alpha included.
  int bands = 3;
  ColorModel model = ColorModel::rgb;
  AlphaKind alpha = AlphaKind::none;
  /// Samples after the colors that are not alpha.
  int extraBands = 0;
  /// For ColorModel::palette.
  HPALETTE palette;
  ColorProfile profile;

  int BitsPerPixel() const { return bits * bands; }
};

}  // namespace rasterkit
