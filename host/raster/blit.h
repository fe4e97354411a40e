#pragma once

#include <optional>

#include <rasterkit/host/raster/fill.h>
#include <rasterkit/host/raster/raster.h>

namespace rasterkit {

/// Draws `source` stretched into `place` of the target, clipped to the target. A target pixel takes
/// the source pixel under its centre; the picture is mirrored when right lies before left or bottom
/// above top.
///
/// A 32-bit source with a defined alpha channel is blended: channel round(s a + t (1 - a)) with a =
/// alpha / 255, and the alpha of a 32-bit target becomes round(255 a + t (1 - a)). Any other source
/// is opaque (it writes alpha 255) but for the pixels of the `key` colour, which are left out. On
/// an indexed target a colour becomes the nearest entry; between equal palettes indexes are kept.
/// `source` must not be `target`.
RASTERKIT_EXPORT void BlitStretched(Raster& target, const PixelRect& place, const Raster& source,
                                    std::optional<TColor> key = std::nullopt);

}  // namespace rasterkit
