#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <string_view>

#include <rasterkit/codecs/rows/byte_marks.h>

/// Signatures of formats that are drawn, not decoded. What draws them lies above this room.
namespace rasterkit::detail {

/// A PDF header may have other bytes in front of it; viewers look for it this far.
inline constexpr size_t kPdfHeaderWindow = 1024;

/// A placeable file has a key; a plain one starts with its type, header size in words and version.
inline bool IsWmf(std::span<const uint8_t> bytes) {
  if (StartsWith(bytes, "\xD7\xCD\xC6\x9A")) return true;
  constexpr size_t kHeaderStart = 6;
  if (bytes.size() < kHeaderStart) return false;
  const auto word = [&](size_t at) { return bytes[at] | bytes[at + 1] << 8; };
  const int type = word(0), headerWords = word(2), version = word(4);
  return (type == 1 || type == 2) && headerWords == 9 && (version == 0x100 || version == 0x300);
}

inline bool IsEmf(std::span<const uint8_t> bytes) {
  using namespace std::string_view_literals;
  return StartsWith(bytes, "\1\0\0\0"sv) && HasTextAt(bytes, 40, " EMF");
}

inline bool IsPdf(std::span<const uint8_t> bytes) {
  constexpr std::string_view kMark = "%PDF-";
  const auto window = bytes.first(std::min(bytes.size(), kPdfHeaderWindow));
  return std::search(window.begin(), window.end(), kMark.begin(), kMark.end(),
                     [](uint8_t a, char b) { return a == static_cast<uint8_t>(b); }) !=
         window.end();
}

}  // namespace rasterkit::detail
