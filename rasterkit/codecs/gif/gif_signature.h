#pragma once

#include <cstdint>
#include <span>

#include <rasterkit/codecs/rows/byte_marks.h>

namespace rasterkit::detail {

inline bool IsGif(std::span<const uint8_t> bytes) {
  return StartsWith(bytes, "GIF87a") || StartsWith(bytes, "GIF89a");
}

}  // namespace rasterkit::detail
