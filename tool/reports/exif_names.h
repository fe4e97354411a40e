#pragma once

#include <cstdint>

namespace rasterkit::tool {

/// Name of a tag in the EXIF standard, in a directory of that name (see ExifDirectory); empty for
/// uncommon tags.
const char* ExifTagName(const char* directory, uint16_t tag);

}  // namespace rasterkit::tool
