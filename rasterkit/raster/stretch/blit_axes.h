#pragma once

#include <optional>

#include <rasterkit/raster/fill.h>
#include <rasterkit/raster/raster.h>
#include <rasterkit/raster/stretch/axis_positions.h>
#include <rasterkit/raster/stretch/target_rows.h>

/// Common parts of the drawing functions.
namespace rasterkit::detail {

struct BlitAxes {
  AxisPositions columns, rows;
};

BlitAxes MapAxes(const Raster& target, const PixelRect& place, const Raster& source,
                 const PixelRect& part, MirroredTie tie = MirroredTie::image);

/// Draws source pixel (columns[x], rows[y]) onto target pixel (x, y), for all positions of the
/// axes.
void BlitByAxes(Raster& target, const BlitAxes& axes, const Raster& source, const PixelRule& rule);

/// Tells whether an index means the same color in both: one indexed format, one palette.
bool SameIndexes(const Raster& target, const Raster& source);

/// Rule for drawing a picture: blended by a defined alpha channel, else opaque without the key
/// color.
PixelRule RuleForDrawing(const Raster& source, std::optional<TColor> key);

}  // namespace rasterkit::detail
