#pragma once

#include <cstdint>
#include <span>

#include <rasterkit/raster/raster.h>

namespace rasterkit::detail {

/// The kind of pixels that an ICC profile describes.
enum class ProfileSpace { gray, rgb, cmyk };

/// True if `profile` has the header of an ICC profile for pixels of that kind. A profile of another
/// kind (a press profile of converted CMYK, an RGB profile of pixels that became gray) must not be
/// written: other programs would apply it or refuse the file.
bool ProfileFits(std::span<const uint8_t> profile, ProfileSpace space);

/// The same for the profile of a raster; false if there is none.
bool ProfileFits(const ColorProfile& profile, ProfileSpace space);

}  // namespace rasterkit::detail
