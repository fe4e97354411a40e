#include "tool/arguments/rect_argument.h"

#include <algorithm>
#include <charconv>
#include <cmath>
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

struct Range {
  int first = 0, count = 0;
};

/// Edges at percentages of a side, moved to pixel corners.
Range RangeOf(double from, double part, int side) {
  const auto corner = [side](double percent) { return std::nearbyint(percent * side / 100); };
  const double begin = corner(from), end = corner(from + part);
  if (end > begin) return {static_cast<int>(begin), static_cast<int>(end - begin)};
  // Less than a pixel: the one that holds the middle.
  const double middle = std::floor((from + part / 2) * side / 100);
  return {static_cast<int>(std::clamp<double>(middle, 0, std::max(side - 1, 0))), 1};
}

}  // namespace

CropStep RectArgument::For(int pictureWidth, int pictureHeight) const {
  if (!isPercent) {
    return {static_cast<int>(left), static_cast<int>(top), static_cast<int>(width),
            static_cast<int>(height)};
  }
  const Range x = RangeOf(left, width, pictureWidth), y = RangeOf(top, height, pictureHeight);
  return {x.first, y.first, x.count, y.count};
}

std::optional<RectArgument> ParseRect(const std::string& text) {
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
  return RectArgument{numbers[0], numbers[1], numbers[2], numbers[3], isPercent};
}

std::string CheckRect(const std::string& text) {
  return ParseRect(text) ? std::string()
                         : "a rectangle is X,Y,W,H: whole numbers, X and Y at least 0, W and H at "
                           "least 1, or percent (10%,10%,80%,80%), not '" +
                               text + "'";
}

std::optional<MapRect> ParseMapRect(const std::string& text) {
  const auto numbers = ParseNumbers(text);
  if (!numbers || numbers->size() != kNumbers) return std::nullopt;
  const std::vector<double>& n = *numbers;
  if (!(n[0] < n[2]) || !(n[1] < n[3])) return std::nullopt;
  return MapRect{n[0], n[1], n[2], n[3]};
}

std::string CheckMapRect(const std::string& text) {
  return ParseMapRect(text)
             ? std::string()
             : "a rectangle on the map is MINX,MINY,MAXX,MAXY, each minimum below its maximum, "
               "not '" +
                   text + "'";
}

}  // namespace rasterkit::tool
