#pragma once

#include <string_view>

/// The windows in which people choose values of colors and the threshold of black and white.
namespace rasterkit {

inline constexpr std::string_view rsReset = "Reset";

}  // namespace rasterkit
