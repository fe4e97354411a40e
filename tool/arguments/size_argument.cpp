#include "tool/arguments/size_argument.h"

#include <algorithm>

#include "tool/arguments/numbers.h"

namespace rasterkit::tool {
std::optional<RecipeResize> ParseResize(const std::string& text) {
  RecipeResize resize;
  if (const auto pixels = ParseSize(text)) {
    resize.width = pixels->width;
    resize.height = pixels->height;
    return resize;
  }
  const size_t cross = std::min(text.find('x'), text.size());
  const auto x = ParsePercent(text.substr(0, cross));
  const auto y = cross == text.size() ? x : ParsePercent(text.substr(cross + 1));
  if (!x || !y || !(*x > 0) || !(*y > 0)) return std::nullopt;
  resize.unit = LengthUnit::percent;
  resize.width = *x;
  resize.height = *y;
  return resize;
}

std::string CheckSize(const std::string& text) {
  return ParseSize(text)
             ? std::string()
             : "a size is WxH, Wx or xH in pixels (800x600, 800x, x600), each from 1 to 1000000, "
               "not '" +
                   text + "'";
}

std::string CheckSizeOrPercent(const std::string& text) {
  return ParseResize(text)
             ? std::string()
             : "a size is WxH, Wx or xH in pixels (800x600, 800x, x600), each from 1 to 1000000, "
               "or percent (50%, 50%x25%), not '" +
                   text + "'";
}

}  // namespace rasterkit::tool
