#include <rasterkit/metafiles/records/utf16.h>
#include <rasterkit/runtime/utf8.h>

namespace rasterkit::detail {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsHigh(char16_t unit) {
  return unit >= 0xD800 && unit < 0xDC00;
}
bool IsLow(char16_t unit) {
  return unit >= 0xDC00 && unit < 0xE000;
}

}  // namespace

std::string Utf8FromUtf16(std::u16string_view units) {
  std::string text;
  for (size_t i = 0; i < units.size(); ++i) {
    const char16_t unit = units[i];
    if (IsHigh(unit) && i + 1 < units.size() && IsLow(units[i + 1])) {
      const char32_t high = unit - 0xD800u, low = units[++i] - 0xDC00u;
      AppendUtf8(text, 0x10000 + (high << 10) + low);
    } else {
      AppendUtf8(text, IsHigh(unit) || IsLow(unit) ? kReplacement : unit);
    }
  }
  return text;
}

std::u16string Utf16FromUtf8(std::string_view text) {
  std::u16string units;
  for (size_t i = 0; i < text.size();) {
    const Utf8Step step = NextUtf8(text, i);
    i += step.bytes;
    if (step.valid && step.codePoint > 0xFFFF) {
      const char32_t rest = step.codePoint - 0x10000;
      units.push_back(static_cast<char16_t>(0xD800 + (rest >> 10)));
      units.push_back(static_cast<char16_t>(0xDC00 + (rest & 0x3FF)));
    } else {
      units.push_back(static_cast<char16_t>(step.valid ? step.codePoint : kReplacement));
    }
  }
  return units;
}

}  // namespace rasterkit::detail
