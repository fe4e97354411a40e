#pragma once

#include <rasterkit/raster/pixels.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit::detail {

/// True if decoded pixels of this kind are a Raster, false if they are Samples.
RASTERKIT_EXPORT bool IsRasterLayout(const PixelLayout& layout);

/// A small picture of this kind with many colors. What a stage or an encoder makes of it shows what
/// it makes of a picture whose pixels are not read.
RASTERKIT_EXPORT Pixels SampleRows(const PixelLayout& layout, int width, int height);

}  // namespace rasterkit::detail
