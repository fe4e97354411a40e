#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <rasterkit/raster/number_stretch.h>
#include <rasterkit/raster/pixels.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit::detail {

/// A small JPEG file of the picture, at most 160 pixels wide and high; numbers are shown as in the
/// whole picture.
RASTERKIT_EXPORT std::vector<uint8_t> MakeThumbnail(const Pixels& pixels, const std::string& noData,
                                                    const NumberStretch& stretch = {});

}  // namespace rasterkit::detail
