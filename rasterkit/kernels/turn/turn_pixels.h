#pragma once

#include <rasterkit/kernels/rows/pixel_rows.h>

namespace rasterkit::kernels {

/// A way to lay whole pixels on the axes anew: any composition of quarter turns and mirrors is one
/// of these eight. Target pixel (x, y) is first mirrored, then transposed:
///
///     u = mirrorX ? target width - 1 - x : x        source pixel = transpose ? (v, u) : (u, v)
///     v = mirrorY ? target height - 1 - y : y
struct AxisTurn {
  bool transpose = false;
  bool mirrorX = false;
  bool mirrorY = false;
  friend bool operator==(const AxisTurn&, const AxisTurn&) = default;
};

inline constexpr AxisTurn kQuarterTurnCounterClockwise{true, false, true};
inline constexpr AxisTurn kHalfTurn{false, true, true};
inline constexpr AxisTurn kQuarterTurnClockwise{true, true, false};

/// Moves every pixel of `source` to its place in `target` and zeroes the padding of the target's
/// rows. The target has the source's size, exchanged when `turn.transpose`; the two do not overlap.
/// `bitsPerPixel` is 1, 4, 8, 16, 24 or 32. The first byte of the source's packed rows begins with
/// `skipped` pixels (less than a byte) that are not part of them.
void TurnPixels(const ConstPixelRows& source, const PixelRows& target, int bitsPerPixel,
                AxisTurn turn, int skipped = 0);

/// The same from 32-bit pixels to 24-bit ones; the fourth byte is dropped.
void TurnPixels32To24(const ConstPixelRows& source, const PixelRows& target, AxisTurn turn);

}  // namespace rasterkit::kernels
