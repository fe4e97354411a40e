#pragma once

#include <rasterkit/raster/raster.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit {

/// Writes a PNG file at the stream's position: 1-, 4- and 8-bit palettes stay, 15/16-bit becomes
/// 24, 32-bit has an alpha channel when it is defined and is written as 24-bit when it is not.
/// `transparentColor` becomes tRNS. `level` is zlib's 0 to 9; -1 is the default, chosen for size
/// against time.
RASTERKIT_EXPORT void EncodePng(const Raster& raster, TStream& stream, int level = -1);

}  // namespace rasterkit
