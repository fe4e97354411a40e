#pragma once

#include <rasterkit/raster/fill.h>
#include <rasterkit/raster/raster.h>

namespace rasterkit {

/// A new raster with the rectangle `part` of the source, which must lie inside it. Stored pixels
/// move, none is changed, in any format; palette, resolution, profile, alpha mark and transparent
/// color come along.
RASTERKIT_EXPORT Raster CutOut(const Raster& source, const PixelRect& part);

}  // namespace rasterkit
