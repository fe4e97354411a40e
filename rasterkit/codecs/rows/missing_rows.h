#pragma once

#include <rasterkit/raster/raster.h>

namespace rasterkit::detail {

/// Paints the rows from `first` to the last white: rows that a truncated file lacks. Indexed
/// rasters take the entry nearest to white (of equal ones the lowest), 32-bit ones get
/// alpha 255.
void FillMissingRows(Raster& raster, int first);

/// Sets the rows from `first` to `end` - 1, with their padding, to 0. Many rows take no memory
/// until they are written.
void ClearRows(Raster& raster, int first, int end);

/// The byte that fills a missing row.
uint8_t WhiteByte(const Raster& raster);

}  // namespace rasterkit::detail
