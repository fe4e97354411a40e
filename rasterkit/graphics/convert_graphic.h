#pragma once

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/graphic.h>

namespace rasterkit::detail {

/// Converts the picture of a graphic to a new bitmap in the format that `formatFor` chooses for its
/// rows, without a second copy in the old format.
TBitmap ConvertGraphic(const TGraphic& source, TPixelFormat (*formatFor)(const Raster& rows));

}  // namespace rasterkit::detail
