#pragma once

#include <rasterkit/bitmaptools/rotation/rotation_driver.h>
#include <rasterkit/raster/pixel_format.h>

namespace rasterkit::detail {

/// The color that corners get when the caller leaves the choice open: near-white, which no scanner
/// or camera makes by itself, put into the target's palette where that has room; else the palette's
/// largest color number below white. Makes the target transparent in it.
TColor ChooseBackground(const RotationTask& task);

}  // namespace rasterkit::detail
