#pragma once

#include <cstdint>
#include <span>

#include <rasterkit/codecs/rows/byte_marks.h>

namespace rasterkit::detail {

inline bool IsPng(std::span<const uint8_t> bytes) {
  return StartsWith(bytes, "\x89PNG\r\n\x1A\n");
}

}  // namespace rasterkit::detail
