#pragma once

#include <rasterkit/raster/raster.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit {

/// Writes an icon file with one picture: the 32-bit raster, its alpha, and a mask whose ones are
/// the pixels without any. Throws FormatError for another format or an empty raster, LimitError
/// beyond 256 x 256 pixels, which is what the format can state.
RASTERKIT_EXPORT void EncodeIco(const Raster& raster, TStream& stream);

}  // namespace rasterkit
