#pragma once

#include <cstdint>
#include <vector>

#include <rasterkit/raster/raster.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit {

/// Whether a bitmap file carries the raster's ICC profile (files do, the stream form does not).
enum class BmpProfile { omit, embed };

/// Writes a Windows bitmap file at the stream's position, for other programs to read: bottom-up,
/// uncompressed, with the oldest header that says all there is to say (info; v4 for defined alpha;
/// v5 for a profile). An ignored alpha byte is written as 255, resolution as whole pixels per
/// metre. Throws FormatError for a picture without pixels (no reader takes such a file),
/// LimitError for one beyond the 4 GiB that the format can state.
RASTERKIT_EXPORT void EncodeBmp(const Raster& raster, TStream& stream, BmpProfile profile);

namespace detail {

/// What EncodeBmp writes before the first row: headers, masks and palette. Also of a picture that
/// it would refuse.
std::vector<uint8_t> BmpHead(const Raster& raster, BmpProfile profile);

}  // namespace detail
}  // namespace rasterkit
