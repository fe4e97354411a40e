#include <algorithm>
#include <charconv>
#include <cwctype>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/text.h>
#include <rasterkit/runtime/utf8.h>

namespace rasterkit {
namespace {

char UpperAscii(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

char LowerAscii(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

}  // namespace

std::string UpperCase(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(), UpperAscii);
  return result;
}

std::string LowerCase(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(), LowerAscii);
  return result;
}

std::string AnsiUpperCase(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (size_t position = 0; position < text.size();) {
    const detail::Utf8Step step = detail::NextUtf8(text, position);
    if (step.valid) {
      detail::AppendUtf8(result, std::towupper(static_cast<wint_t>(step.codePoint)));
    } else {
      result += text[position];
    }
    position += step.bytes;
  }
  return result;
}

int CompareText(std::string_view a, std::string_view b) {
  const size_t common = std::min(a.size(), b.size());
  for (size_t i = 0; i < common; ++i) {
    const int difference =
        static_cast<unsigned char>(UpperAscii(a[i])) - static_cast<unsigned char>(UpperAscii(b[i]));
    if (difference != 0) return difference;
  }
  if (a.size() == b.size()) return 0;
  return a.size() < b.size() ? -1 : 1;
}

std::string Trim(std::string_view text) {
  const auto isBlank = [](char c) { return static_cast<unsigned char>(c) <= 32; };
  const auto first = std::find_if_not(text.begin(), text.end(), isBlank);
  const auto last = std::find_if_not(text.rbegin(), std::make_reverse_iterator(first), isBlank);
  return {first, last.base()};
}

int32_t StrToInt(std::string_view text) {
  const std::string trimmed = Trim(text);
  std::string_view digits = trimmed;
  // from_chars knows a minus but no plus, and "+-1" must not slip through.
  if (digits.size() > 1 && digits[0] == '+' && digits[1] != '-') digits.remove_prefix(1);
  int32_t value = 0;
  const char* end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, value);
  if (error != std::errc() || stop != end) {
    throw ConversionError("\"" + std::string(text) + "\" is not a whole number");
  }
  return value;
}

std::string Utf8OfBytes(std::string_view bytes) {
  bool isUtf8 = true;
  for (size_t position = 0; position < bytes.size() && isUtf8;) {
    const detail::Utf8Step step = detail::NextUtf8(bytes, position);
    isUtf8 = step.valid;
    position += step.bytes;
  }
  if (isUtf8) return std::string(bytes);
  std::string text;
  text.reserve(bytes.size() + bytes.size() / 2);
  for (const char byte : bytes) detail::AppendUtf8(text, static_cast<unsigned char>(byte));
  return text;
}

size_t Utf16Length(std::string_view text) {
  size_t units = 0;
  for (size_t position = 0; position < text.size();) {
    const detail::Utf8Step step = detail::NextUtf8(text, position);
    units += step.Utf16Units();
    position += step.bytes;
  }
  return units;
}

std::string Utf16Substring(std::string_view text, size_t first, size_t count) {
  std::string result;
  size_t unit = 0;
  for (size_t position = 0; position < text.size();) {
    const detail::Utf8Step step = detail::NextUtf8(text, position);
    const size_t nextUnit = unit + step.Utf16Units();
    if (unit >= first) {
      if (nextUnit - first > count) break;
      result += text.substr(position, step.bytes);
    }
    unit = nextUnit;
    position += step.bytes;
  }
  return result;
}

}  // namespace rasterkit
