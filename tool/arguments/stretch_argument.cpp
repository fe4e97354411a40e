#include "tool/arguments/stretch_argument.h"

#include <cmath>
#include <vector>

#include "tool/arguments/numbers.h"

namespace rasterkit::tool {
namespace {

using Kind = NumberStretch::Kind;

std::optional<NumberStretch> ParsePercent(const std::vector<double>& numbers) {
  constexpr double kEnd = 50;
  if (numbers.size() != 1 || !(numbers[0] >= 0 && numbers[0] < kEnd)) return std::nullopt;
  NumberStretch stretch;
  stretch.kind = Kind::percent;
  stretch.percent = numbers[0];
  return stretch;
}

std::optional<NumberStretch> ParseFixed(const std::vector<double>& numbers) {
  const bool isRange = numbers.size() == 2 && std::isfinite(numbers[0]) &&
                       std::isfinite(numbers[1]) && numbers[0] != numbers[1];
  if (!isRange) return std::nullopt;
  NumberStretch stretch;
  stretch.kind = Kind::fixed;
  stretch.least = numbers[0];
  stretch.greatest = numbers[1];
  return stretch;
}

}  // namespace

std::optional<NumberStretch> ParseStretch(const std::string& text) {
  NumberStretch stretch;
  stretch.kind = text == "full" ? Kind::full : Kind::minMax;
  if (text == "full" || text == "minmax") return stretch;
  const size_t end = text.find_first_of(" :");
  if (end == std::string::npos) return std::nullopt;
  const auto numbers = ParseNumbers(text.substr(end + 1));
  if (!numbers) return std::nullopt;
  const std::string word = text.substr(0, end);
  if (word == "percent") return ParsePercent(*numbers);
  return word == "fixed" ? ParseFixed(*numbers) : std::nullopt;
}

std::string CheckStretch(const std::string& text) {
  if (ParseStretch(text)) return {};
  return "a stretch is minmax, percent P (0 to less than 50), fixed A,B (two different numbers) or "
         "full, not '" +
         text + "'";
}

}  // namespace rasterkit::tool
