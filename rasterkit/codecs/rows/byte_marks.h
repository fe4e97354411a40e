#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace rasterkit::detail {

/// True if `text` stands at `offset` of the bytes, byte by byte.
inline bool HasTextAt(std::span<const uint8_t> bytes, size_t offset, std::string_view text) {
  return bytes.size() >= offset + text.size() &&
         std::equal(text.begin(), text.end(), bytes.begin() + static_cast<std::ptrdiff_t>(offset),
                    [](char a, uint8_t b) { return static_cast<uint8_t>(a) == b; });
}

inline bool StartsWith(std::span<const uint8_t> bytes, std::string_view text) {
  return HasTextAt(bytes, 0, text);
}

}  // namespace rasterkit::detail
