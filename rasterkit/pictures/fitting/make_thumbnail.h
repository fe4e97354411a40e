#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <rasterkit/raster/pixels.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit::detail {

/// A small JPEG file of the picture, at most 160 pixels wide and high.
RASTERKIT_EXPORT std::vector<uint8_t> MakeThumbnail(const Pixels& pixels,
                                                    const std::string& noData);

}  // namespace rasterkit::detail
