#pragma once

#include <memory>

#include <rasterkit/codecs/rows/imaging_frame.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/tifftobmp/geotiff_reader.h>

/// Conversion of a decoded frame to a bitmap, for pictures and for grids.
namespace rasterkit::detail {

enum class ReadMode {
  /// Any frame becomes a bitmap; pixels of alpha 0 become white if the frame has an alpha mark.
  picture,
  /// A frame of colors gives no bitmap, a grid a bitmap with its numbers unchanged.
  raster
};

struct FrameBitmap {
  /// Null if raster mode found no numbers.
  std::unique_ptr<TBitmap> bitmap;
  /// How to interpret its pixels.
  TWICFloatFormat floatFormat = ffNoFloat;
};

/// Moves the rows of the frame into a bitmap, with resolution, profile and alpha mark. An indexed
/// frame gets its palette through `CreateColorPalette` (that of a new bitmap if it has none), a
/// gray one gets a ramp. Throws FormatError("Invalid image") if rows and pixel format of the frame
/// do not match.
FrameBitmap BitmapOfFrame(ImagingFrame frame, ReadMode mode);

}  // namespace rasterkit::detail
