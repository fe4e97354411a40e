#pragma once

#include <cstdint>
#include <span>

#include <rasterkit/raster/raster.h>

namespace rasterkit::detail {

/// Kind of pixels that an ICC profile describes.
enum class ProfileSpace { gray, rgb };

/// True when `profile` is an ICC profile by its header and describes pixels of that kind. A profile
/// of another kind (a press profile beside converted CMYK, an RGB profile beside pixels that became
/// grey) must not be handed on: readers would take it at its word or refuse the file.
bool ProfileFits(std::span<const uint8_t> profile, ProfileSpace space);

/// The same for a raster's profile; false when there is none.
bool ProfileFits(const ColorProfile& profile, ProfileSpace space);

}  // namespace rasterkit::detail
