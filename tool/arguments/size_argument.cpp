#include "tool/arguments/size_argument.h"

#include <algorithm>
#include <cmath>

#include "tool/arguments/numbers.h"

namespace rasterkit::tool {
namespace {

constexpr int kLargestSide = 1000000;

int Part(int side, double percent) {
  const double exact = std::nearbyint(side * percent / 100);
  return static_cast<int>(std::min<double>(std::max(exact, 1.0), kLargestSide));
}

}  // namespace

PictureSize SizeArgument::For(int width, int height) const {
  if (percentX == 0) return pixels.For(width, height);
  return {Part(width, percentX), Part(height, percentY)};
}

std::optional<SizeArgument> ParseSizeArgument(const std::string& text) {
  if (const auto pixels = ParseSize(text)) return SizeArgument{*pixels};
  const size_t cross = std::min(text.find('x'), text.size());
  const auto x = ParsePercent(text.substr(0, cross));
  const auto y = cross == text.size() ? x : ParsePercent(text.substr(cross + 1));
  const bool ok = x && y && *x > 0 && *y > 0;
  return ok ? std::optional(SizeArgument{{}, *x, *y}) : std::nullopt;
}

std::string CheckSize(const std::string& text) {
  return ParseSize(text)
             ? std::string()
             : "a size is WxH, Wx or xH in pixels (800x600, 800x, x600), each from 1 to 1000000, "
               "not '" +
                   text + "'";
}

std::string CheckSizeOrPercent(const std::string& text) {
  return ParseSizeArgument(text)
             ? std::string()
             : "a size is WxH, Wx or xH in pixels (800x600, 800x, x600), each from 1 to 1000000, "
               "or percent (50%, 50%x25%), not '" +
                   text + "'";
}

}  // namespace rasterkit::tool
