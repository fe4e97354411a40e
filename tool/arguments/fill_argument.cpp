#include "tool/arguments/fill_argument.h"

#include "tool/arguments/color_argument.h"

namespace rasterkit::tool {

std::optional<Fill> ParseFill(const std::string& text) {
  if (text == "transparent") return Fill{Fill::Kind::transparent, clWhite};
  if (text == "nodata") return Fill{Fill::Kind::noData, clWhite};
  if (text == "edge") return Fill{Fill::Kind::edge, clWhite};
  if (text == "auto") return Fill{Fill::Kind::automatic, clWhite};
  const auto color = ParseColor(text);
  return color ? std::optional(Fill{Fill::Kind::color, *color}) : std::nullopt;
}

Filter FilterOf(const std::string& name) {
  if (name == "nearest") return Filter::nearest;
  if (name == "linear") return Filter::linear;
  return name == "area" ? Filter::area : Filter::automatic;
}

}  // namespace rasterkit::tool
