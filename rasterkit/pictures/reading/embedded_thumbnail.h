#pragma once

#include <cstdint>
#include <vector>

#include <rasterkit/metadata/metadata.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// The thumbnail of the EXIF block, else that of the image resources: a JPEG file that lies as the
/// pixels are stored. Empty if there is none of that kind.
RASTERKIT_EXPORT std::vector<uint8_t> EmbeddedThumbnail(const Metadata& metadata);

}  // namespace rasterkit
