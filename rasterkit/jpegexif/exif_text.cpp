#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <system_error>

#include <rasterkit/jpegexif/exif_text.h>
#include <rasterkit/runtime/text.h>

namespace rasterkit {
namespace {

constexpr int kMaxPrecision = 100;

size_t Find(std::string_view s, std::string_view sub) {
  return sub.empty() ? std::string_view::npos : s.find(sub);
}

std::string NumberText(double value, std::chars_format format, int precision) {
  // The longest double has 309 digits before its point.
  std::array<char, 320 + kMaxPrecision> text;
  const int digits = std::min(precision, kMaxPrecision);
  const auto result = std::to_chars(text.data(), text.data() + text.size(), value, format, digits);
  return result.ec == std::errc() ? std::string(text.data(), result.ptr) : std::string();
}

/// Converts by the letter of a directive; empty for an unknown letter.
std::string ByLetter(char letter, int precision, double value) {
  const int digits = precision < 0 ? (letter == 'd' ? 0 : 6) : precision;
  switch (letter) {
    case 'd':
      return NumberText(std::trunc(value), std::chars_format::fixed, 0);
    case 'f':
      return NumberText(value, std::chars_format::fixed, digits);
    case 'e':
      return NumberText(value, std::chars_format::scientific, digits);
    case 'g':
      return NumberText(value, std::chars_format::general, digits);
    default:
      return {};
  }
}

}  // namespace

std::string StrBefore(std::string_view s, std::string_view sub) {
  return std::string(s.substr(0, Find(s, sub)));
}

std::string StrAfter(std::string_view s, std::string_view sub) {
  if (sub.empty()) return std::string(s);
  const size_t place = Find(s, sub);
  return place == std::string_view::npos ? std::string()
                                         : std::string(s.substr(place + sub.size()));
}

int StrCount(std::string_view s, std::string_view sub) {
  int count = 0;
  for (size_t place = Find(s, sub); place != std::string_view::npos; place = Find(s, sub)) {
    s.remove_prefix(place + sub.size());
    ++count;
  }
  return count;
}

std::string StrNth(std::string_view s, std::string_view sub, int n) {
  for (int i = 1; i < n && !s.empty() && !sub.empty(); ++i) {
    const size_t place = Find(s, sub);
    s.remove_prefix(place == std::string_view::npos ? s.size() : place + sub.size());
  }
  return StrBefore(s, sub);
}

double GetIrrational(std::string_view s) {
  std::string fraction = Trim(s);
  double whole = 0;
  if (fraction.find(' ') != std::string::npos) {
    whole = StrToInt(StrBefore(fraction, " "));
    fraction = StrAfter(fraction, " ");
  }
  const double numerator = StrToInt(StrBefore(fraction, "/"));
  const double denominator = StrToInt(StrAfter(fraction, "/"));
  return denominator == 0 ? 0 : (whole * denominator + numerator) / denominator;
}

std::string DecodeField(std::string_view code, std::string_view value) {
  std::string key(cDecodeSep);
  key.append(Trim(value)).append(":");
  std::string list(cDecodeSep);
  list.append(code).append(cDecodeSep);
  return StrBefore(StrAfter(list, key), cDecodeSep);
}

std::string detail::FixedText(double value, int decimals) {
  return NumberText(value, std::chars_format::fixed, decimals);
}

std::string detail::NumberInTemplate(std::string_view pattern, double value) {
  std::string text;
  bool isPlaced = false;
  for (size_t i = 0; i < pattern.size(); ++i) {
    if (pattern[i] != '%' || i + 1 == pattern.size()) {
      text += pattern[i];
      continue;
    }
    if (pattern[i + 1] == '%') {
      text += pattern[++i];
      continue;
    }
    const size_t letter = pattern.find_first_not_of("0123456789.", i + 1);
    if (letter == std::string_view::npos) return text.append(pattern.substr(i));
    const std::string_view size = pattern.substr(i + 1, letter - i - 1);
    int precision = -1;
    if (const size_t point = size.find('.'); point != std::string_view::npos) {
      precision = 0;
      const auto read =
          std::from_chars(size.data() + point + 1, size.data() + size.size(), precision);
      if (read.ec == std::errc::result_out_of_range) precision = kMaxPrecision;
    }
    const std::string number = isPlaced ? "" : ByLetter(pattern[letter], precision, value);
    text += number.empty() ? pattern.substr(i, letter - i + 1) : std::string_view(number);
    isPlaced = isPlaced || !number.empty();
    i = letter;
  }
  return text;
}

}  // namespace rasterkit
