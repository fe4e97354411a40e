#pragma once

#include <rasterkit/raster/raster.h>

namespace rasterkit::detail {

/// Paints the rows from `first` to the last white: rows that a truncated file lacks. Indexed
/// rasters take the entry nearest to white (of equal ones the lowest), 32-bit ones get
/// alpha 255.
void FillMissingRows(Raster& raster, int first);

/// The byte that fills such a row.
uint8_t WhiteByte(const Raster& raster);

}  // namespace rasterkit::detail
