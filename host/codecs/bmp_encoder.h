#pragma once

#include <rasterkit/host/raster/raster.h>
#include <rasterkit/host/runtime/stream.h>

namespace rasterkit {

/// Whether a bitmap file carries the raster's ICC profile (files do, the stream form does not).
enum class BmpProfile { omit, embed };

/// Writes a Windows bitmap file (bottom-up, uncompressed) at the stream's position, readable by other programs.
RASTERKIT_EXPORT void EncodeBmp(const Raster& raster, TStream& stream, BmpProfile profile);

}  // namespace rasterkit
