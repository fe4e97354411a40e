#pragma once

#include <string>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Extension of an image's world file, upper case with the dot: "a.tiff" and ".tif" give ".TFW".
/// Empty for types without one. `name` is a file name, or an extension with its dot.
RASTERKIT_EXPORT std::string GetWorldFileExt(const std::string& name);

}  // namespace rasterkit
