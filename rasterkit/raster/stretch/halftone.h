#pragma once

#include <optional>

#include <rasterkit/raster/fill.h>
#include <rasterkit/raster/raster.h>

/// Stretching with colors averaged over all source pixels that a target pixel covers.
///
/// Along an axis that shrinks, a pixel is the mean of the covered area. Along an axis that grows,
/// it is interpolated linearly between the centers of the two nearest pixels; beyond the outermost
/// centers it is the outermost pixel. Both axes together give one exact fraction, rounded to the
/// nearest integer, halves up. The picture is mirrored as in `BlitStretched`. If a side of the
/// place or the picture exceeds 2^22 pixels, the nearest pixel is taken. `source` must not be
/// `target`.
namespace rasterkit {

/// Draws the whole source as `BlitStretched` does: blended if it has a defined alpha channel, which
/// also weights the colors, else opaque. With a `key` pixels are not averaged.
RASTERKIT_EXPORT void BlitHalftone(Raster& target, const PixelRect& place, const Raster& source,
                                   std::optional<TColor> key = std::nullopt);

/// Replaces the place by the whole source. The colors of a 32-bit source are weighted by its alpha
/// (plain means if all of it is 0); a 32-bit target gets the mean alpha.
RASTERKIT_EXPORT void CopyHalftone(Raster& target, const PixelRect& place, const Raster& source);

/// A part of a picture that takes the place of the whole one.
struct HalftonePart {
  /// Sides of the whole picture.
  int width = 0, height = 0;
  /// The part's first pixel.
  int left = 0, top = 0;
};

/// Rows of the target, from `first` to `last - 1`.
struct HalftoneRows {
  int first = 0, last = 0;
};

/// The same for some rows of the target from a part of a source, which has all pixels that they
/// need. The place is that of the whole source; its sides do not exceed 2^22 pixels. Bytes after
/// the last pixel of the rows are set to 0.
RASTERKIT_EXPORT void CopyHalftone(Raster& target, const PixelRect& place, const Raster& source,
                                   const HalftonePart& part, const HalftoneRows& rows);

}  // namespace rasterkit
