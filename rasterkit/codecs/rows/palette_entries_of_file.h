#pragma once

#include <rasterkit/raster/raster.h>

namespace rasterkit::detail {

/// The number of palette entries that a file of an indexed raster needs, at least 1: those of the
/// palette, and black ones up to the largest index in use, because many readers refuse a file with
/// an index beyond its palette.
int PaletteEntriesOfFile(const Raster& raster);

}  // namespace rasterkit::detail
