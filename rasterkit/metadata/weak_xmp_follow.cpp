#include <rasterkit/metadata/follow_pixels.h>

// Stand-in that yields to the function of xmp_follow.cpp where that is linked.

namespace rasterkit {

__attribute__((weak)) void FollowPixelsInXmp(std::string& xmp, std::string& extended,
                                             const PixelChange& change, Changes& changes);

__attribute__((weak)) void FollowPixelsInXmp(std::string&, std::string&, const PixelChange&,
                                             Changes&) {}

}  // namespace rasterkit
