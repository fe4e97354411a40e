#pragma once

#include <cstdint>
#include <vector>

#include <rasterkit/raster/raster.h>

namespace rasterkit::detail {

/// A placeable Windows metafile that shows `picture`, one bitmap of 24 bits, at this size in
/// 0.01 mm. Throws LimitError for a picture of more than 32,767 pixels a side, which the records
/// cannot state.
std::vector<uint8_t> WmfOfPicture(const Raster& picture, int widthMm100, int heightMm100);

}  // namespace rasterkit::detail
