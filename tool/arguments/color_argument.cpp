#include "tool/arguments/color_argument.h"

#include <algorithm>
#include <charconv>
#include <vector>

#include <fmt/format.h>

#include <rasterkit/runtime/text.h>

#include "tool/arguments/near_word.h"

namespace rasterkit::tool {
namespace {

struct NamedColor {
  const char* name;
  uint32_t rgb;
};

/// The values that style sheets of web pages give these names.
constexpr NamedColor kColors[] = {
    {"black", 0x000000},  {"gray", 0x808080},    {"silver", 0xC0C0C0}, {"white", 0xFFFFFF},
    {"red", 0xFF0000},    {"maroon", 0x800000},  {"brown", 0xA52A2A},  {"orange", 0xFFA500},
    {"gold", 0xFFD700},   {"yellow", 0xFFFF00},  {"olive", 0x808000},  {"lime", 0x00FF00},
    {"green", 0x008000},  {"teal", 0x008080},    {"cyan", 0x00FFFF},   {"skyblue", 0x87CEEB},
    {"blue", 0x0000FF},   {"navy", 0x000080},    {"indigo", 0x4B0082}, {"violet", 0xEE82EE},
    {"purple", 0x800080}, {"magenta", 0xFF00FF}, {"pink", 0xFFC0CB},   {"beige", 0xF5F5DC},
    {"ivory", 0xFFFFF0},
};

/// Other spellings.
constexpr NamedColor kSynonyms[] = {{"grey", 0x808080}, {"aqua", 0x00FFFF}, {"fuchsia", 0xFF00FF}};

TColor ColorOfNumber(uint32_t rgb) {
  return RGB(static_cast<uint8_t>(rgb >> 16), static_cast<uint8_t>(rgb >> 8),
             static_cast<uint8_t>(rgb));
}

std::optional<TColor> ColorOfDigits(std::string_view digits) {
  constexpr size_t kDigits = 6;
  uint32_t rgb = 0;
  const char* const end = digits.data() + digits.size();
  const auto [rest, error] = std::from_chars(digits.data(), end, rgb, 16);
  const bool ok = digits.size() == kDigits && error == std::errc() && rest == end;
  return ok ? std::optional(ColorOfNumber(rgb)) : std::nullopt;
}

}  // namespace

std::optional<TColor> ParseColor(const std::string& text) {
  const bool hasMark = text.starts_with('#');
  if (const auto color = ColorOfDigits(std::string_view(text).substr(hasMark ? 1 : 0))) {
    return color;
  }
  const std::string upper = UpperCase(text);
  const auto is = [&](const NamedColor& color) { return UpperCase(color.name) == upper; };
  const auto* const named = std::find_if(std::begin(kColors), std::end(kColors), is);
  if (named != std::end(kColors)) return ColorOfNumber(named->rgb);
  const auto* const other = std::find_if(std::begin(kSynonyms), std::end(kSynonyms), is);
  if (other != std::end(kSynonyms)) return ColorOfNumber(other->rgb);
  return std::nullopt;
}

std::string CheckColor(const std::string& text) {
  if (ParseColor(text)) return {};
  std::vector<std::string> names;
  for (const NamedColor& color : kColors) names.emplace_back(color.name);
  return "a color is RRGGBB or #RRGGBB in hexadecimal digits or a name, not '" + text + "'" +
         DidYouMean(text, names);
}

TColor ColorOf(const std::string& text) {
  return ParseColor(text).value();
}

std::string DigitsOf(TColor color) {
  constexpr int kByte = 0xFF;
  const int red = color & kByte, green = (color >> 8) & kByte, blue = (color >> 16) & kByte;
  return fmt::format("{:02X}{:02X}{:02X}", red, green, blue);
}

std::string ColorNames() {
  std::string names;
  for (const NamedColor& color : kColors) {
    names += (names.empty() ? "" : ", ") + std::string(color.name);
  }
  return names;
}

}  // namespace rasterkit::tool
