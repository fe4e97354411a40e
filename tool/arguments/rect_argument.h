#pragma once

#include <optional>
#include <string>

#include <rasterkit/pictures/steps.h>

namespace rasterkit::tool {

/// A rectangle as typed: left, top, width, height, all in pixels or all in percent of the picture.
struct RectArgument {
  double left = 0, top = 0, width = 0, height = 0;
  bool isPercent = false;

  /// The rectangle in a picture of width x height. With percent, each edge goes to the nearest
  /// pixel corner (halves to even), and at least one pixel stays. It may reach out of the picture.
  CropStep For(int width, int height) const;
};

/// Parses "X,Y,W,H", each a whole number, or each a percentage ("10%,10%,80%,80%").
std::optional<RectArgument> ParseRect(const std::string& text);

/// Check of options that are rectangles. Says what is wrong, or returns an empty string.
std::string CheckRect(const std::string& text);

/// Parses "MINX,MINY,MAXX,MAXY" in map units; each minimum is below its maximum.
std::optional<MapRect> ParseMapRect(const std::string& text);

std::string CheckMapRect(const std::string& text);

}  // namespace rasterkit::tool
