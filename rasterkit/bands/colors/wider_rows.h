#pragma once

#include <rasterkit/raster/pixels.h>

/// Rows that get room for something more; the pixels show the same.
namespace rasterkit::detail {

/// Copies indexes to 4 or 8 bits; the palette stays as it is.
Raster Widened(const Raster& raster, TPixelFormat format);

/// True if an indexed raster of at most 8 bits can have one more palette entry.
bool FitsOneMoreEntry(const Raster& raster);
/// Widens the indexes if the palette is full.
void MakeRoomForEntry(Raster& raster);

/// Copies samples with one more band at the end, straight alpha that is opaque everywhere.
Samples WithAlphaBand(const Samples& samples);

}  // namespace rasterkit::detail
