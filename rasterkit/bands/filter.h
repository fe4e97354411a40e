#pragma once

#include <rasterkit/raster/pixel_format.h>

namespace rasterkit {

/// How new pixels are computed from old ones. `automatic`: area when shrinking, linear when
/// growing, nearest for rotation and for palettes. Palette indexes are never averaged: another
/// filter than `nearest` makes such a picture true color.
enum class Filter { automatic, nearest, linear, area };

/// What stands where a turned picture has no pixels.
struct Fill {
  enum class Kind { color, transparent, noData, edge, automatic };
  Kind kind = Kind::color;
  TColor color = clWhite;
};

/// `leftRight` exchanges left and right, `topBottom` top and bottom.
enum class MirrorAxis { leftRight, topBottom };

}  // namespace rasterkit
