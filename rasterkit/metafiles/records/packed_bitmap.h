#pragma once

#include <cstdint>
#include <vector>

#include <rasterkit/raster/raster.h>

namespace rasterkit::detail {

/// The raster as records of metafiles hold bitmaps: header, masks, table of colours and rows,
/// without a colour profile. Throws as EncodeBmp.
std::vector<uint8_t> PackedBitmap(const Raster& raster);

}  // namespace rasterkit::detail
