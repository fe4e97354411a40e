#pragma once

#include <memory>

#include <rasterkit/codecs/rows/imaging_frame.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/tifftobmp/geotiff_reader.h>

/// The one way from a decoded frame to a bitmap, for pictures and for grids.
namespace rasterkit::detail {

enum class ReadMode {
  /// Any frame becomes a bitmap; pixels that an alpha mark makes wholly transparent become white.
  picture,
  /// Frames of colors give nothing, grids of numbers a bitmap with the numbers as they are.
  raster
};

struct FrameBitmap {
  /// Null when raster mode found no numbers.
  std::unique_ptr<TBitmap> bitmap;
  /// How its pixels are to be read.
  TWICFloatFormat floatFormat = ffNoFloat;
};

/// The rows of the frame move over as they are, with resolution, profile and whether alpha is
/// defined. Indexed frames get their palette through `CreateColorPalette` (none: the one of a new
/// bitmap), gray ones a ramp. Throws FormatError("Invalid image") when rows and pixel format of the
/// frame disagree.
FrameBitmap BitmapOfFrame(ImagingFrame frame, ReadMode mode);

}  // namespace rasterkit::detail
