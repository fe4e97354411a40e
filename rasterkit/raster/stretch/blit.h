#pragma once

#include <array>
#include <optional>

#include <rasterkit/raster/fill.h>
#include <rasterkit/raster/raster.h>

/// Drawing rasters onto rasters, from every pixel format onto every other.
///
/// A `place` on the target shows a `part` of the source (all of it by default): a target pixel
/// takes the source pixel under its center. The picture is mirrored if right lies before left or
/// bottom above top in one of the two rectangles, which may have any numbers. Drawing is clipped to
/// the target; target pixels whose source pixel does not exist stay as they are. The alpha of a
/// 32-bit source is used only where stated; opaque drawing writes alpha 255. 15- and 16-bit targets
/// get the high bits of a color, indexed targets the nearest entry; between equal formats and
/// palettes indexes are kept. `source` must not be `target`.
namespace rasterkit {

/// How opaque a blended source pixel is: `constantAlpha` / 255, times its own alpha / 255 if
/// `pixelAlpha` is set and the source is 32-bit.
struct Blending {
  uint8_t constantAlpha = 255;
  bool pixelAlpha = false;
};

/// Draws the whole source. A 32-bit source with a defined alpha channel is blended by it; any other
/// is opaque, without the pixels of the `key` color 0x00BBGGRR.
RASTERKIT_EXPORT void BlitStretched(Raster& target, const PixelRect& place, const Raster& source,
                                    std::optional<TColor> key = std::nullopt);

/// Mixes with opacity a: each channel becomes round(s a + t (1 - a)) in integers, the alpha of a
/// 32-bit target round(255 a + t (1 - a)). Pixels of opacity 0 do not change the index of an
/// indexed target.
RASTERKIT_EXPORT void BlitBlended(Raster& target, const PixelRect& place, const Raster& source,
                                  const PixelRect& part, const Blending& blending);

/// Draws opaque, without pixels of the color `key` (0x00BBGGRR, as precisely as the source's format
/// can hold it). Ignores the alpha of the source.
RASTERKIT_EXPORT void BlitKeyed(Raster& target, const PixelRect& place, const Raster& source,
                                const PixelRect& part, TColor key);

/// Replaces pixels. A 32-bit target gets the source's alpha, or 255 from other formats.
RASTERKIT_EXPORT void BlitCopied(Raster& target, const PixelRect& place, const Raster& source,
                                 const PixelRect& part);

/// Replaces, as `BlitCopied` does, the pixels whose centers lie in the parallelogram with the upper
/// left, upper right and lower left corner `corners` by `part`: a target pixel takes the source
/// pixel at the floor of its mapped center. The left and upper edges belong to the parallelogram.
/// No-op if it has no area or a corner lies beyond 2^27 in any direction.
RASTERKIT_EXPORT void BlitParallelogram(Raster& target, const std::array<PixelPoint, 3>& corners,
                                        const Raster& source, const PixelRect& part);

}  // namespace rasterkit
