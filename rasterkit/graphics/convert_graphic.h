#pragma once

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/graphic.h>

namespace rasterkit::detail {

/// What a graphic shows, as a new bitmap in the format that `formatFor` chooses for its rows. The
/// rows are converted on the way: there is never a second copy in the old format.
TBitmap ConvertGraphic(const TGraphic& source, TPixelFormat (*formatFor)(const Raster& rows));

}  // namespace rasterkit::detail
