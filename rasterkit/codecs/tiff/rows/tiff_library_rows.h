#pragma once

#include <rasterkit/codecs/tiff/rows/tiff_picture.h>

namespace rasterkit::detail {

/// Reads a picture by libtiff's own conversion to RGBA, a row of strips or tiles at a time, into
/// 24-bit B G R or 32-bit B G R A. Rows are as stored, regardless of the orientation tag. Throws
/// UnsupportedError if the library cannot convert such pixels.
TiffOutcome ReadTiffByLibrary(TiffHandle& handle, const TiffLayout& layout,
                              const TiffTarget& target);

}  // namespace rasterkit::detail
