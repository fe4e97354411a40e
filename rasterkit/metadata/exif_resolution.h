#pragma once

#include <optional>

#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/metadata/resolution.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Tag 274 if it is 1 to 8.
RASTERKIT_EXPORT std::optional<int> OrientationOf(const ExifBlock& exif);

/// Tags 282, 283 and 296 in dots per inch; unknown without a length as unit.
RASTERKIT_EXPORT Resolution ResolutionOf(const ExifBlock& exif);

/// Sets the three tags, in the unit that the block uses. An unknown resolution becomes 72 without a
/// unit if the block states one, which the tags must. Without a change the bytes stay.
RASTERKIT_EXPORT void SetResolution(ExifBlock& exif, const Resolution& resolution);

}  // namespace rasterkit
