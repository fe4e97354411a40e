#pragma once

#include <array>
#include <optional>

#include <rasterkit/raster/fill.h>
#include <rasterkit/raster/raster.h>

/// Drawing rows onto rows, from every pixel format onto every other.
///
/// A `place` on the target shows a `part` of the source (the whole of it where none is named): a
/// target pixel takes the source pixel under its center, and the picture is mirrored when right
/// lies before left or bottom above top of one of the two. Everything is clipped to the target, and
/// target pixels whose source lies outside the source stay as they are; rectangles may have any
/// numbers. A source of 32 bits counts as opaque unless its alpha is asked for; opaque drawing
/// writes alpha 255. 15- and 16-bit targets take the high bits of a color, indexed ones the
/// nearest entry; between equal formats and palettes indexes are kept. `source` must not be
/// `target`.
namespace rasterkit {

/// How opaque a blended source pixel is: `constantAlpha` / 255, times its own alpha / 255 where
/// `pixelAlpha` is set and the source is a 32-bit one.
struct Blending {
  uint8_t constantAlpha = 255;
  bool pixelAlpha = false;
};

/// Draws the whole source: blended by its alpha when it is a 32-bit one with a defined alpha
/// channel, else opaque, without the pixels of the `key` color 0x00BBGGRR.
RASTERKIT_EXPORT void BlitStretched(Raster& target, const PixelRect& place, const Raster& source,
                                    std::optional<TColor> key = std::nullopt);

/// Mixes with opacity a: each channel becomes round(s a + t (1 - a)) in whole numbers, the alpha of
/// a 32-bit target round(255 a + t (1 - a)). Pixels without any opacity leave an indexed target's
/// index alone.
RASTERKIT_EXPORT void BlitBlended(Raster& target, const PixelRect& place, const Raster& source,
                                  const PixelRect& part, const Blending& blending);

/// Opaque, but pixels of the color `key` (0x00BBGGRR, as the source's format can hold it) are left
/// out. The source's alpha is not looked at.
RASTERKIT_EXPORT void BlitKeyed(Raster& target, const PixelRect& place, const Raster& source,
                                const PixelRect& part, TColor key);

/// Replaces pixels as they are: onto 32 bits with their alpha (255 from other formats).
RASTERKIT_EXPORT void BlitCopied(Raster& target, const PixelRect& place, const Raster& source,
                                 const PixelRect& part);

/// Replaces, as `BlitCopied` does, the pixels whose centers lie in the parallelogram with the upper
/// left, upper right and lower left corner `corners` by `part`: a target pixel takes the source
/// pixel at the floor of its mapped center. The left and upper edges belong to the parallelogram.
/// Nothing is drawn where it has no area, or where a corner lies beyond 2^27 in any direction.
RASTERKIT_EXPORT void BlitParallelogram(Raster& target, const std::array<PixelPoint, 3>& corners,
                                        const Raster& source, const PixelRect& part);

}  // namespace rasterkit
