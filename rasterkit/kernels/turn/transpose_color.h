#pragma once

#include <rasterkit/kernels/turn/turn_pixels.h>

namespace rasterkit::kernels {

/// The part of a transposing turn of 24- or 32-bit pixels that goes by whole vectors: fills the
/// target's first rows and columns and says how many of each; the rest is the caller's. The target
/// has 24 bits where the source has, 24 or 32 bits from a 32-bit source. `turn.transpose` is set.
struct TransposedPart {
  int columns = 0;
  int rows = 0;
};
TransposedPart TransposeColor(const ConstPixelRows& source, const PixelRows& target, int sourceBits,
                              int targetBits, AxisTurn turn);

/// Mirrors a row of 24-bit pixels by vectors as far as they go; returns how many target pixels are
/// done.
int MirrorColorRow(const uint8_t* source, uint8_t* target, int width);

}  // namespace rasterkit::kernels
