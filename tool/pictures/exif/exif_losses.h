#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace rasterkit::tool {

/// What the photo or the picture had and the file made of both has not: "xmp", "gps", "mpf" (the
/// index of further pictures in the photo's file), "app6" and the like for sections that nobody
/// here knows, "resolution" when the file no longer states that of the picture.
std::vector<std::string> LostByCopying(const std::vector<uint8_t>& photo,
                                       const std::vector<uint8_t>& picture,
                                       const std::vector<uint8_t>& result);

}  // namespace rasterkit::tool
