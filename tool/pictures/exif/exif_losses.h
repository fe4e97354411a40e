#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace rasterkit::tool {

/// Lists what the photo or the picture contains and the combined file does not: "xmp", "gps", "mpf"
/// (the index of further pictures in the photo), "app6" and so on for unknown sections,
/// "resolution" if the file does not state that of the picture.
std::vector<std::string> LostByCopying(const std::vector<uint8_t>& photo,
                                       const std::vector<uint8_t>& picture,
                                       const std::vector<uint8_t>& result);

}  // namespace rasterkit::tool
