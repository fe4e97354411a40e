#include "tool/command/color_digits.h"

#include <cctype>

namespace rasterkit::tool {

std::string CheckColor(const std::string& text) {
  bool ok = text.size() == 6;
  for (const char c : text) ok = ok && std::isxdigit(static_cast<unsigned char>(c)) != 0;
  return ok ? std::string() : "a color is six hexadecimal digits RRGGBB, not '" + text + "'";
}

TColor ColorOf(const std::string& digits) {
  const unsigned long rgb = std::stoul(digits, nullptr, 16);
  return RGB(static_cast<uint8_t>(rgb >> 16), static_cast<uint8_t>(rgb >> 8),
             static_cast<uint8_t>(rgb));
}

}  // namespace rasterkit::tool
