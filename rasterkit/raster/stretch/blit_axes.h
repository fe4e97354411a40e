#pragma once

#include <optional>

#include <rasterkit/raster/fill.h>
#include <rasterkit/raster/raster.h>
#include <rasterkit/raster/stretch/axis_positions.h>
#include <rasterkit/raster/stretch/target_rows.h>

/// What the ways of drawing have in common.
namespace rasterkit::detail {

struct BlitAxes {
  AxisPositions columns, rows;
};

BlitAxes MapAxes(const Raster& target, const PixelRect& place, const Raster& source,
                 const PixelRect& part, MirroredTie tie = MirroredTie::image);

/// Draws source pixel (columns[x], rows[y]) onto target pixel (x, y), for all that the axes name.
void BlitByAxes(Raster& target, const BlitAxes& axes, const Raster& source, const PixelRule& rule);

/// Whether an index means the same color in both: one indexed format, one palette.
bool SameIndexes(const Raster& target, const Raster& source);

/// Blended by a defined alpha channel, else opaque, without the key where there is one.
PixelRule RuleForDrawing(const Raster& source, std::optional<TColor> key);

}  // namespace rasterkit::detail
