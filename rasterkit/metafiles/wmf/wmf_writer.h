#pragma once

#include <cstdint>
#include <vector>

#include <rasterkit/raster/raster.h>

namespace rasterkit::detail {

/// Returns a placeable WMF file that shows `picture` as one 24-bit bitmap, with this size in 0.01
/// mm. Throws LimitError above 32,767 pixels per side, the most that the records can state.
std::vector<uint8_t> EncodeWmf(const Raster& picture, int widthMm100, int heightMm100);

}  // namespace rasterkit::detail
