#pragma once

#include <charconv>
#include <optional>
#include <string>

#include <fmt/format.h>

#include <rasterkit/raster/pixel_format.h>

namespace rasterkit::detail {

/// "#RRGGBB" in capitals.
inline std::string TextOfColor(TColor color) {
  const auto number = static_cast<uint32_t>(color);
  return fmt::format("#{:02X}{:02X}{:02X}", number & 0xFF, number >> 8 & 0xFF, number >> 16 & 0xFF);
}

/// Reads "#RRGGBB" in any case of letters.
inline std::optional<TColor> ColorOfText(const std::string& text) {
  constexpr size_t kLength = 7;
  constexpr int kHexadecimal = 16;
  if (text.size() != kLength || text[0] != '#') return std::nullopt;
  uint32_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data() + 1, end, number, kHexadecimal);
  if (error != std::errc() || rest != end) return std::nullopt;
  return RGB(static_cast<uint8_t>(number >> 16), static_cast<uint8_t>(number >> 8),
             static_cast<uint8_t>(number));
}

}  // namespace rasterkit::detail
