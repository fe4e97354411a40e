#pragma once

#include <cstdint>

namespace rasterkit::tool {

/// What the EXIF standard calls a tag, in a directory of that name (see ExifDirectory); empty for
/// tags that are no everyday ones.
const char* ExifTagName(const char* directory, uint16_t tag);

}  // namespace rasterkit::tool
