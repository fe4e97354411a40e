#pragma once

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/runtime/export.h>

/// Whole-pixel turns and mirrors of any pixel format: nothing is interpolated, lost or added.
/// Format, palette, profile and alpha mark stay; a resolution is exchanged with the sides. What was
/// transparent stays transparent: an automatic transparent color, which would follow another
/// corner pixel, becomes the fixed one it was.
namespace rasterkit {

/// What makes a picture upright, named by composition. The values are those of the EXIF orientation
/// tag; the letter shows how the stored picture lies.
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

/// Makes a picture upright that lies as the EXIF orientation `orientation` says. Other values than
/// 1 to 8 say nothing and change nothing. Throws LimitError when there is no memory for the turned
/// copy; the bitmap is then as it was.
RASTERKIT_EXPORT void Reorient(TBitmap& bitmap, int orientation);

/// The same by name.
RASTERKIT_EXPORT void Reorient(TBitmap& bitmap, Orientation orientation);

/// Turns by `quarters` quarter turns counter-clockwise (negative: clockwise); any number is taken
/// modulo 4.
RASTERKIT_EXPORT void TurnQuarters(TBitmap& bitmap, int quarters);

}  // namespace rasterkit
