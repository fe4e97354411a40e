#pragma once

#include <cstdint>
#include <span>

#include <rasterkit/codecs/bmp/bmp_format.h>
#include <rasterkit/codecs/rows/byte_marks.h>

namespace rasterkit::detail {

/// Many texts start with "BM", so the header size and the depth must be valid too.
inline bool IsBmp(std::span<const uint8_t> bytes) {
  if (!StartsWith(bytes, "BM") || bytes.size() < kBmpFileHeaderBytes + 4) return false;
  const uint32_t headerBytes = BmpLong(bytes, kBmpFileHeaderBytes);
  if (!IsBmpHeaderSize(headerBytes)) return false;
  constexpr size_t kCoreHeaderBits = 10, kMostBits = 32;
  const size_t depth = kBmpFileHeaderBytes +
                       (headerBytes == kBmpCoreHeader ? kCoreHeaderBits : size_t{bmp_field::kBits});
  return bytes.size() < depth + 2 || BmpWord(bytes, depth) <= kMostBits;
}

}  // namespace rasterkit::detail
