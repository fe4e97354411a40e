#pragma once

#include <optional>

#include <rasterkit/raster/fill.h>
#include <rasterkit/raster/raster.h>

/// Stretching with a color for each target pixel that is made of all source pixels it covers.
///
/// Along an axis where the picture shrinks, the mean of the covered area is taken; where it grows,
/// it is interpolated linearly between the centers of the two nearest pixels, and beyond the
/// outermost centers the outermost pixel stands. Both axes together give one exact fraction, which
/// is rounded to the nearest whole number, halves up. The picture is mirrored as in
/// `BlitStretched`. A place or a picture with a side of more than 2^22 pixels is stretched plain,
/// to the nearest pixel. `source` must not be `target`.
namespace rasterkit {

/// Draws the whole source as `BlitStretched` does: blended when it has a defined alpha channel, by
/// which the colors are weighted too, else opaque. With a `key` pixels are not averaged.
RASTERKIT_EXPORT void BlitHalftone(Raster& target, const PixelRect& place, const Raster& source,
                                   std::optional<TColor> key = std::nullopt);

/// Replaces the place by the whole source. The colors of a 32-bit source are weighted by its
/// alpha, plain means where all of it is 0; onto 32 bits the mean alpha comes along.
RASTERKIT_EXPORT void CopyHalftone(Raster& target, const PixelRect& place, const Raster& source);

}  // namespace rasterkit
