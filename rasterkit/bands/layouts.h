#pragma once

#include <rasterkit/bands/color_change.h>
#include <rasterkit/bands/combine.h>
#include <rasterkit/bands/filter.h>
#include <rasterkit/bands/sides.h>
#include <rasterkit/metadata/loss.h>
#include <rasterkit/raster/pixel_layout.h>
#include <rasterkit/runtime/export.h>

/// The kinds of pixels that stages make, foretold without pixels. What depends on the pixels is
/// foretold as the case that takes more: an alpha channel where a color may be transparent, true
/// color where a palette may be full. Palettes are not foretold where colors change: the handle is
/// then that of the source.
namespace rasterkit {

/// True if a picture of this kind is decoded to a raster, false if to samples: see Pixels.
RASTERKIT_EXPORT bool IsRasterLayout(const PixelLayout& layout);

/// Adds transparency and profiles that a change drops without being asked to `losses`. The layout
/// must be one of a raster.
RASTERKIT_EXPORT PixelLayout LayoutAfter(const ColorChange& change, const PixelLayout& layout,
                                         Changes* losses = nullptr);

RASTERKIT_EXPORT PixelLayout LayoutAfterResize(const PixelLayout& layout, Sides from, Sides to,
                                               Filter filter);

/// For a rotation whose `rest` is not 0 and for affines; whole quarter turns and mirrors keep the
/// layout.
RASTERKIT_EXPORT PixelLayout LayoutAfterRotate(const PixelLayout& layout, const Resampling& how);

/// The lower picture's layout after it was combined with another picture.
RASTERKIT_EXPORT PixelLayout LayoutAfterCombine(const PixelLayout& layout, CombineMode mode,
                                                Changes* losses = nullptr);

}  // namespace rasterkit
