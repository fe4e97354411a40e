#pragma once

#include <cstdint>
#include <span>

#include <rasterkit/codecs/rows/byte_marks.h>

namespace rasterkit::detail {

inline bool IsJpeg(std::span<const uint8_t> bytes) {
  return StartsWith(bytes, "\xFF\xD8\xFF");
}

}  // namespace rasterkit::detail
