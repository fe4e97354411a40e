#pragma once

#include <optional>

#include <rasterkit/raster/pixel_format.h>

namespace rasterkit {

/// How new pixels are computed from old ones. `automatic`: area when shrinking, linear when
/// growing, nearest for rotation and for palettes. Palette indexes are never averaged: another
/// filter than `nearest` makes such a picture true color.
enum class Filter { automatic, nearest, linear, area };

/// What stands where a turned picture has no pixels.
struct Fill {
  enum class Kind {
    /// The color; in a palette the nearest entry.
    color,
    /// Nothing: a transparent color in a palette that has room for it, else alpha 0.
    transparent,
    /// The number that means "not measured"; an error if there is none that the pixels can hold.
    noData,
    /// The nearest pixel of the picture's edge.
    edge,
    /// Samples: "not measured" if the picture has such a number, alpha 0 if it has alpha, else the
    /// color. Rasters: alpha 0, or the color that is marked as transparent; if there is none,
    /// near-white is marked (see RotateBitmap).
    automatic,
    /// "Not measured" if the picture has such a number that its pixels hold, else the color.
    usual
  };
  Kind kind = Kind::color;
  TColor color = clWhite;
};

/// How pixels are taken from a turned picture.
struct Resampling {
  Filter filter = Filter::automatic;
  Fill fill;
  /// The number that means "not measured": it is never mixed with others.
  std::optional<double> noData;
};

/// `leftRight` exchanges left and right, `topBottom` top and bottom.
enum class MirrorAxis { leftRight, topBottom };

}  // namespace rasterkit
