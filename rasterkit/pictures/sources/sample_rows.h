#pragma once

#include <rasterkit/raster/pixels.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit::detail {

/// A small picture of this kind with many colors. What a stage or an encoder makes of it shows what
/// it makes of a picture whose pixels are not read.
RASTERKIT_EXPORT Pixels SampleRows(const PixelLayout& layout, bool isRaster, int width, int height);

}  // namespace rasterkit::detail
