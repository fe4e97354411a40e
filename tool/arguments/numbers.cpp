#include "tool/arguments/numbers.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace rasterkit::tool {

std::optional<double> ParseNumber(const std::string& text) {
  const char* begin = text.data();
  const char* const end = begin + text.size();
  const bool hasPlus = text.size() > 1 && text[0] == '+' && text[1] != '-';
  if (hasPlus) ++begin;
  double value = 0;
  const auto [rest, error] = std::from_chars(begin, end, value);
  if (error != std::errc() || rest != end || !std::isfinite(value)) return std::nullopt;
  return value;
}

std::optional<std::vector<double>> ParseNumbers(const std::string& text) {
  std::vector<double> numbers;
  for (size_t begin = 0; begin <= text.size();) {
    const size_t comma = std::min(text.find(',', begin), text.size());
    const auto number = ParseNumber(text.substr(begin, comma - begin));
    if (!number) return std::nullopt;
    numbers.push_back(*number);
    begin = comma + 1;
  }
  return numbers;
}

std::optional<double> ParsePercent(const std::string& text) {
  // A picture of one pixel grows to the largest one.
  constexpr double kMost = 1e8;
  if (!text.ends_with('%')) return std::nullopt;
  const auto number = ParseNumber(text.substr(0, text.size() - 1));
  return number && *number >= 0 && *number <= kMost ? number : std::nullopt;
}

}  // namespace rasterkit::tool
