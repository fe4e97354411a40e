#pragma once

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/runtime/export.h>

/// Exact rotation by quarter turns, and mirroring, in any pixel format. Format, palette, profile
/// and alpha mark stay; the resolutions of x and y are exchanged with the sides. Transparent pixels
/// stay transparent: an automatic transparent color, which would change with the corner pixel,
/// becomes fixed.
namespace rasterkit {

/// Operation that makes a picture upright. The values are those of the EXIF orientation tag; the
/// letter shows the stored picture.
///
///     1        2        3        4        5          6          7          8
///     XXXXXX   XXXXXX       XX   XX       XXXXXXXXXX XX                 XX XXXXXXXXXX
///     XX           XX       XX   XX       XX  XX     XX  XX         XX  XX     XX  XX
///     XXXX       XXXX     XXXX   XXXX     XX         XXXXXXXXXX XXXXXXXXXX         XX
///     XX           XX       XX   XX
///     XX           XX   XXXXXX   XXXXXX
enum class Orientation {
  Upright = 1,
  FlipHorizontally = 2,
  Rotate180 = 3,
  FlipVertically = 4,
  Rotate90ClockwiseThenFlipHorizontally = 5,
  Rotate90Clockwise = 6,
  Rotate90ClockwiseThenFlipVertically = 7,
  Rotate90CounterClockwise = 8,
};

/// Makes a picture with the EXIF orientation `orientation` upright. No-op for values outside 1
/// to 8. Throws LimitError, with the bitmap unchanged, if there is not enough memory for the turned
/// copy.
RASTERKIT_EXPORT void Reorient(TBitmap& bitmap, int orientation);

/// Makes a picture upright by a named operation.
RASTERKIT_EXPORT void Reorient(TBitmap& bitmap, Orientation orientation);

/// Turns by `quarters` quarter turns counter-clockwise (negative: clockwise), modulo 4.
RASTERKIT_EXPORT void TurnQuarters(TBitmap& bitmap, int quarters);

}  // namespace rasterkit
