#pragma once

#include <rasterkit/raster/raster.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit {

/// Writes an icon file with one picture: the 32-bit raster, its alpha, and a mask with ones for the
/// pixels with alpha 0. Throws FormatError for another pixel format or an empty raster, LimitError
/// above 256 x 256 pixels, which is the limit of the format.
RASTERKIT_EXPORT void EncodeIco(const Raster& raster, TStream& stream);

}  // namespace rasterkit
