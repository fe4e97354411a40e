#pragma once

#include <string>

#include <rasterkit/codecs/picture_type.h>

namespace rasterkit::tool {

/// Returns the type of a file with this name: bmp, jpeg, png, tiff, or unknown if the tool cannot
/// write it.
PictureType WritableType(const std::string& file);

}  // namespace rasterkit::tool
