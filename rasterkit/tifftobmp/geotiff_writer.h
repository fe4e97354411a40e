#pragma once

#include <string>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit {

/// Writes the bitmap as a TIFF file with one picture, atomically; an existing file is replaced.
///
/// `rgbaData` tells that the rows of a 32-bit bitmap hold R G B A instead of B G R A; the file is
/// then written uncompressed, with an alpha channel. Use it for 32-bit bitmaps only. A 15- or
/// 16-bit bitmap becomes 24-bit, and stays so.
///
/// `scaleX` and `scaleY` are the size of a pixel in map units. If both are above 0.01 (if `scaleX`
/// is NaN, only `scaleY` counts), the file gets the tags model pixel scale (33550) and model tie
/// point (33922), which ties raster point (0, 0) to the map point `x0`, `y0`. The numbers are
/// stored as given.
///
/// Throws FileError if the file cannot be written, FormatError for a bitmap without pixels.
RASTERKIT_EXPORT void WriteBitmapToTiff(TBitmap& bitmap, const std::string& fileName, bool rgbaData,
                                        double x0, double y0, double scaleX, double scaleY);

/// Writes the same bytes to a stream.
RASTERKIT_EXPORT void WriteBitmapToTiff(TBitmap& bitmap, TStream& stream, bool rgbaData, double x0,
                                        double y0, double scaleX, double scaleY);

}  // namespace rasterkit
