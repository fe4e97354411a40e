#pragma once

#include <rasterkit/kernels/turn/turn_pixels.h>

namespace rasterkit::kernels {

/// As `TurnPixels`, also for pixels of any number of whole bytes: `bitsPerPixel` is 1, 4 or a
/// multiple of 8.
void TurnSamples(const ConstPixelRows& source, const PixelRows& target, int bitsPerPixel,
                 AxisTurn turn, int skipped = 0);

}  // namespace rasterkit::kernels
