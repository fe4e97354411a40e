#pragma once

#include <rasterkit/raster/raster.h>

namespace rasterkit::detail {

/// Paints the rows from `first` to the last white: what a picture shows where its file ends too
/// early. Indexed rasters take the entry nearest to white (the lowest of equals), 32-bit ones get
/// alpha 255.
void FillMissingRows(Raster& raster, int first);

/// The byte of which such a row consists.
uint8_t WhiteByte(const Raster& raster);

}  // namespace rasterkit::detail
