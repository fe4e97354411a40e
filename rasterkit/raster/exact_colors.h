#pragma once

#include <rasterkit/raster/raster.h>

namespace rasterkit {

/// Writes `source` with its own colors into `target`, an indexed raster of the same size, when
/// they are no more than the palette's entries; sets the target's palette. False, with the target's
/// rows undefined, when there are more: a photograph is known for one after a few rows.
bool MapExactColors(const Raster& source, Raster& target);

}  // namespace rasterkit
