#pragma once

#include <string_view>

/// The dialog that changes the size.
namespace rasterkit {

inline constexpr std::string_view rsChangeSize = "Change Size";
inline constexpr std::string_view rsHeightHint = "New height in pixels";
inline constexpr std::string_view rsProportional = "proportional";
inline constexpr std::string_view rsProportionalHint =
    "Each number follows the other, so that the picture keeps its shape";
inline constexpr std::string_view rsWidthAndHeight = "Width / Height";
inline constexpr std::string_view rsWidthHint = "New width in pixels";

}  // namespace rasterkit
