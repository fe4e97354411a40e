#pragma once

#include <rasterkit/kernels/turn/turn_pixels.h>

namespace rasterkit::kernels {

/// `TurnPixels` of 1-bit pictures with `turn.transpose`, by blocks of bits; the padding of the
/// target's rows is left alone but for the bits after the last pixel, which become 0. False, with
/// nothing done, where the processor has no vectors.
bool TransposeBits(const ConstPixelRows& source, const PixelRows& target, AxisTurn turn,
                   int skipped = 0);

}  // namespace rasterkit::kernels
