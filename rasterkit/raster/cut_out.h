#pragma once

#include <rasterkit/raster/fill.h>
#include <rasterkit/raster/raster.h>

namespace rasterkit {

/// Copies the rectangle `part` of a raster of any format into a new one, with all properties.
/// Stored pixels do not change. Throws RangeError if `part` does not lie inside the source.
RASTERKIT_EXPORT Raster CutOut(const Raster& source, const PixelRect& part);

}  // namespace rasterkit
