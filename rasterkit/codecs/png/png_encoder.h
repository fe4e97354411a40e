#pragma once

#include <rasterkit/raster/raster.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit {

/// Writes a PNG file at the stream's position. 1-, 4- and 8-bit palettes stay; 15- and 16-bit
/// become 24-bit; 32-bit keeps its alpha channel if alpha is defined, else it becomes 24-bit.
/// `transparentColor` becomes tRNS. `level` is zlib's 0 to 9; -1 chooses by pixel format. Throws
/// FormatError for an empty raster.
RASTERKIT_EXPORT void EncodePng(const Raster& raster, TStream& stream, int level = -1);

}  // namespace rasterkit
