#pragma once

#include <rasterkit/bitmaptools/rotation/rotation_driver.h>
#include <rasterkit/raster/pixel_format.h>

namespace rasterkit::detail {

/// Chooses the color of the corners for the automatic background: near-white, which scanners and
/// cameras do not produce, added to the target's palette if that is not full; else the palette's
/// largest color number below white. Makes the target transparent in it.
TColor ChooseBackground(const RotationTask& task);

}  // namespace rasterkit::detail
