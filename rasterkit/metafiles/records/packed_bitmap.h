#pragma once

#include <cstdint>
#include <vector>

#include <rasterkit/raster/raster.h>

namespace rasterkit::detail {

/// Encodes a raster as a bitmap for records: header, masks, color table and rows, without a color
/// profile. Throws the errors of EncodeBmp.
std::vector<uint8_t> PackedBitmap(const Raster& raster);

}  // namespace rasterkit::detail
