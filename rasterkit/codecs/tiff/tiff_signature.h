#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include <rasterkit/codecs/rows/byte_marks.h>

namespace rasterkit::detail {

/// Both byte orders, classic TIFF (42) and BigTIFF (43).
inline bool IsTiff(std::span<const uint8_t> bytes) {
  using namespace std::string_view_literals;
  return StartsWith(bytes, "II*\0"sv) || StartsWith(bytes, "MM\0*"sv) ||
         StartsWith(bytes, "II+\0"sv) || StartsWith(bytes, "MM\0+"sv);
}

}  // namespace rasterkit::detail
