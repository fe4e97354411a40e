#pragma once

#include <rasterkit/raster/raster.h>

namespace rasterkit {

/// Writes `source` with its own colors into `target`, an indexed raster of the same size, and sets
/// the target's palette. Returns false, with the target's rows undefined, if there are more colors
/// than entries; a photograph fails after a few rows.
bool MapExactColors(const Raster& source, Raster& target);

}  // namespace rasterkit
