#pragma once

#include <rasterkit/host/graphics/canvas.h>
#include <rasterkit/host/graphics/graphic.h>

namespace rasterkit::detail {

/// Draws the rows that a graphic shows, without the pixels of its transparent colour when it is
/// `Transparent` (an alpha channel that is defined is blended instead).
void DrawPicture(const TGraphic& graphic, const Raster& rows, TCanvas& canvas, const TRect& rect);

}  // namespace rasterkit::detail
