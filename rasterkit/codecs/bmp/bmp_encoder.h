#pragma once

#include <cstdint>
#include <vector>

#include <rasterkit/raster/raster.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit {

/// Whether the ICC profile of the raster is written (yes in files, no in the stream form).
enum class BmpProfile { omit, embed };

/// Writes a Windows bitmap file at the stream's position: bottom-up, uncompressed, with the oldest
/// sufficient header, which most programs read (info; v4 for defined alpha; v5 for a profile). An
/// ignored alpha byte is written as 255, the resolution as whole pixels per meter. A palette that
/// is too short for the indexes in use is filled up with black. Throws FormatError for a picture
/// without pixels, which most programs refuse, and LimitError for a file above the 4 GiB limit of
/// the format.
RASTERKIT_EXPORT void EncodeBmp(const Raster& raster, TStream& stream, BmpProfile profile);

namespace detail {

/// What a bitmap file states besides its pixels. The profile is borrowed; null for none.
struct BmpProperties {
  Resolution resolution;
  const std::vector<uint8_t>* profile = nullptr;
};

/// The same as EncodeBmp with other properties than those of the raster.
void EncodeBmpWith(const Raster& raster, const BmpProperties& properties, TStream& stream);

/// Gives what EncodeBmp writes before the first row: headers, masks and palette. Works also for a
/// picture that EncodeBmp refuses.
std::vector<uint8_t> BmpHead(const Raster& raster, BmpProfile profile);

}  // namespace detail
}  // namespace rasterkit
