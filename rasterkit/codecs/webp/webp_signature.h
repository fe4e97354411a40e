#pragma once

#include <cstdint>
#include <span>

#include <rasterkit/codecs/rows/byte_marks.h>

namespace rasterkit::detail {

inline bool IsWebp(std::span<const uint8_t> bytes) {
  return StartsWith(bytes, "RIFF") && HasTextAt(bytes, 8, "WEBP");
}

}  // namespace rasterkit::detail
