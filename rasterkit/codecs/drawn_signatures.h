#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

/// Signatures of formats that are drawn, not decoded. What draws them lies above this room.
namespace rasterkit::detail {

/// A PDF header may have other bytes in front of it; viewers look for it this far.
inline constexpr size_t kPdfHeaderWindow = 1024;

/// The first four bytes of a placeable WMF file.
inline constexpr uint32_t kWmfPlaceableKey = 0x9AC6CDD7;

/// The signature in the header of an EMF file, " EMF".
inline constexpr uint32_t kEmfSignature = 0x464D4520;

/// True if the little-endian number stands at `offset` of the bytes.
inline bool HasLongAt(std::span<const uint8_t> bytes, size_t offset, uint32_t number) {
  if (bytes.size() < offset + 4) return false;
  const auto byte = [&](size_t at) { return uint32_t{bytes[offset + at]}; };
  return (byte(0) | byte(1) << 8 | byte(2) << 16 | byte(3) << 24) == number;
}

/// A placeable file has a key; a plain one starts with its type, header size in words and version.
inline bool IsWmf(std::span<const uint8_t> bytes) {
  if (HasLongAt(bytes, 0, kWmfPlaceableKey)) return true;
  constexpr size_t kHeaderStart = 6;
  if (bytes.size() < kHeaderStart) return false;
  const auto word = [&](size_t at) { return bytes[at] | bytes[at + 1] << 8; };
  const int type = word(0), headerWords = word(2), version = word(4);
  return (type == 1 || type == 2) && headerWords == 9 && (version == 0x100 || version == 0x300);
}

inline bool IsEmf(std::span<const uint8_t> bytes) {
  constexpr uint32_t kHeaderRecord = 1;
  constexpr size_t kSignatureOffset = 40;
  return HasLongAt(bytes, 0, kHeaderRecord) && HasLongAt(bytes, kSignatureOffset, kEmfSignature);
}

inline bool IsPdf(std::span<const uint8_t> bytes) {
  constexpr std::string_view kMark = "%PDF-";
  const auto window = bytes.first(std::min(bytes.size(), kPdfHeaderWindow));
  return std::search(window.begin(), window.end(), kMark.begin(), kMark.end(),
                     [](uint8_t a, char b) { return a == static_cast<uint8_t>(b); }) !=
         window.end();
}

}  // namespace rasterkit::detail
