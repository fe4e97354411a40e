#pragma once

#include <string_view>

/// Names at the start of segments, with the zeros behind them.
namespace rasterkit::detail {

inline constexpr std::string_view kExifName{"Exif\0\0", 6};
inline constexpr std::string_view kXmpName{"http://ns.adobe.com/xap/1.0/\0", 29};
inline constexpr std::string_view kExtendedXmpName{"http://ns.adobe.com/xmp/extension/\0", 35};
inline constexpr std::string_view kProfileName{"ICC_PROFILE\0", 12};
inline constexpr std::string_view kPhotoshopName{"Photoshop 3.0\0", 14};

}  // namespace rasterkit::detail
