#include <algorithm>
#include <charconv>
#include <cmath>

#include <rasterkit/pictures/reading/picture_size.h>

namespace rasterkit {
namespace {

bool IsSide(int side) {
  return side >= 1 && side <= kLargestSide;
}

/// Returns 0 for an empty text.
std::optional<int> ParseSide(const std::string& text) {
  if (text.empty()) return 0;
  int side = 0;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, side);
  const bool ok = error == std::errc() && rest == end && IsSide(side);
  return ok ? std::optional<int>(side) : std::nullopt;
}

int Proportional(int side, int other, int newOther) {
  const double exact = static_cast<double>(side) * newOther / other;
  return std::clamp(static_cast<int>(std::min<double>(std::round(exact), kLargestSide)), 1,
                    kLargestSide);
}

}  // namespace

PictureSize PictureSize::For(int oldWidth, int oldHeight) const {
  if (width == 0) return {Proportional(oldWidth, oldHeight, height), height};
  if (height == 0) return {width, Proportional(oldHeight, oldWidth, width)};
  return *this;
}

PictureSize PictureSize::Around(int columns, int rows) const {
  const int64_t most = width > 0 ? width : columns, highest = height > 0 ? height : rows;
  if (columns <= most && rows <= highest) return {columns, rows};
  const auto scaled = [](int64_t side, int64_t to, int64_t from) {
    return std::max(1, static_cast<int>((2 * side * to + from) / (2 * from)));
  };
  const bool isWide = columns * highest >= rows * most;
  return isWide ? PictureSize{static_cast<int>(most), scaled(rows, most, columns)}
                : PictureSize{scaled(columns, highest, rows), static_cast<int>(highest)};
}

bool PictureSize::IsPossible() const {
  return IsSide(width) && IsSide(height);
}

std::optional<PictureSize> ParseSize(const std::string& text) {
  const size_t cross = text.find('x');
  if (cross == std::string::npos) return std::nullopt;
  const auto width = ParseSide(text.substr(0, cross));
  const auto height = ParseSide(text.substr(cross + 1));
  if (!width || !height || (*width == 0 && *height == 0)) return std::nullopt;
  return PictureSize{*width, *height};
}

}  // namespace rasterkit
