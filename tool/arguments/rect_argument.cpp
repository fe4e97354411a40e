#include "tool/arguments/rect_argument.h"

#include <algorithm>
#include <charconv>
#include <vector>

#include "tool/arguments/numbers.h"

namespace rasterkit::tool {
namespace {

constexpr size_t kNumbers = 4;

std::vector<std::string> PartsOf(const std::string& text) {
  std::vector<std::string> parts;
  for (size_t begin = 0; begin <= text.size();) {
    const size_t comma = std::min(text.find(',', begin), text.size());
    parts.push_back(text.substr(begin, comma - begin));
    begin = comma + 1;
  }
  return parts;
}

std::optional<double> ParsePixels(const std::string& text) {
  int number = 0;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, number);
  const bool ok = error == std::errc() && rest == end && number >= 0;
  return ok ? std::optional<double>(number) : std::nullopt;
}

}  // namespace

std::optional<RecipeCrop> ParseRect(const std::string& text) {
  const std::vector<std::string> parts = PartsOf(text);
  if (parts.size() != kNumbers) return std::nullopt;
  const bool isPercent = parts[0].ends_with('%');
  double numbers[kNumbers] = {};
  for (size_t i = 0; i < kNumbers; ++i) {
    const auto number = isPercent ? ParsePercent(parts[i]) : ParsePixels(parts[i]);
    // Percentages beyond the picture cannot be meant.
    if (!number || (isPercent && *number > 100)) return std::nullopt;
    numbers[i] = *number;
  }
  if (!(numbers[2] > 0) || !(numbers[3] > 0)) return std::nullopt;
  return RecipeCrop{isPercent ? LengthUnit::percent : LengthUnit::pixels, numbers[0], numbers[1],
                    numbers[0] + numbers[2], numbers[1] + numbers[3]};
}

std::string CheckRect(const std::string& text) {
  return ParseRect(text) ? std::string()
                         : "a rectangle is X,Y,W,H: whole numbers, X and Y at least 0, W and H at "
                           "least 1, or percent (10%,10%,80%,80%), not '" +
                               text + "'";
}

std::optional<RecipeCrop> ParseMapRect(const std::string& text) {
  const auto numbers = ParseNumbers(text);
  if (!numbers || numbers->size() != kNumbers) return std::nullopt;
  const std::vector<double>& n = *numbers;
  if (!(n[0] < n[2]) || !(n[1] < n[3])) return std::nullopt;
  return RecipeCrop{LengthUnit::map, n[0], n[3], n[2], n[1]};
}

std::string CheckMapRect(const std::string& text) {
  return ParseMapRect(text)
             ? std::string()
             : "a rectangle on the map is MINX,MINY,MAXX,MAXY, each minimum below its maximum, "
               "not '" +
                   text + "'";
}

}  // namespace rasterkit::tool
