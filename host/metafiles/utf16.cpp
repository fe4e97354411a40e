#include <rasterkit/host/metafiles/utf16.h>
#include <rasterkit/host/runtime/utf8.h>

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

}  // namespace rasterkit::detail
