#pragma once

#include <rasterkit/bands/color_change.h>
#include <rasterkit/bands/stage/stage.h>
#include <rasterkit/graphics/bitmap.h>

namespace rasterkit::detail {

/// Changes the pixels of a 24-bit bitmap: brightness, contrast, sharpness, colors, in this order.
/// Every pixel changes, black and white too.
void AdjustPixels(TBitmap& pixels, const AdjustColors& values, const StageRun& run);

}  // namespace rasterkit::detail
