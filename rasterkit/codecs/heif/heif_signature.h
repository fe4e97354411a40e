#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <string_view>

#include <rasterkit/codecs/rows/byte_marks.h>

namespace rasterkit::detail {

/// True for a file whose first box says that it holds HEIC or AVIF pictures. Videos begin in the
/// same way with other names.
inline bool IsHeif(std::span<const uint8_t> bytes) {
  constexpr std::string_view kBrands[] = {"heic", "heix", "heim", "heis", "hevc",
                                          "hevx", "mif1", "msf1", "avif", "avis"};
  constexpr size_t kType = 4, kMainBrand = 8, kOthers = 16, kBrandBytes = 4;
  if (!HasTextAt(bytes, kType, "ftyp")) return false;
  const size_t stated =
      size_t{bytes[0]} << 24 | size_t{bytes[1]} << 16 | size_t{bytes[2]} << 8 | size_t{bytes[3]};
  const auto box = bytes.first(std::min(bytes.size(), stated));
  const auto hasBrand = [&](size_t at) {
    return std::any_of(std::begin(kBrands), std::end(kBrands),
                       [&](std::string_view brand) { return HasTextAt(box, at, brand); });
  };
  if (hasBrand(kMainBrand)) return true;
  for (size_t at = kOthers; at + kBrandBytes <= box.size(); at += kBrandBytes) {
    if (hasBrand(at)) return true;
  }
  return false;
}

}  // namespace rasterkit::detail
