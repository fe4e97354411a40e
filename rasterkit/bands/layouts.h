#pragma once

#include <rasterkit/bands/color_change.h>
#include <rasterkit/bands/combine.h>
#include <rasterkit/bands/stage/filter.h>
#include <rasterkit/bands/stage/sides.h>
#include <rasterkit/metadata/loss.h>
#include <rasterkit/raster/pixel_layout.h>
#include <rasterkit/runtime/export.h>

/// The kinds of pixels that stages make, foretold without pixels. What depends on the pixels is
/// foretold as the case that takes more: an alpha channel where a color may be transparent, true
/// color where a palette may be full. Palettes are not foretold where colors change: the handle is
/// then that of the source.
namespace rasterkit {

/// True if a Raster can hold pixels of this kind.
RASTERKIT_EXPORT bool IsRasterLayout(const PixelLayout& layout);

/// The layout must be one of a raster. Adds transparency and profiles that the change drops without
/// being asked to `losses`.
RASTERKIT_EXPORT PixelLayout LayoutAfter(const ColorChange& change, const PixelLayout& layout,
                                         Changes* losses = nullptr);

/// `isRaster` tells how the pixels are held: as a raster or as samples.
RASTERKIT_EXPORT PixelLayout LayoutAfterResize(const PixelLayout& layout, bool isRaster, Sides from,
                                               Sides to, Filter filter);

/// For a rotation whose `rest` is not 0 and for affines; whole quarter turns, mirrors and crops
/// keep the layout.
RASTERKIT_EXPORT PixelLayout LayoutAfterRotate(const PixelLayout& layout, bool isRaster,
                                               const Resampling& how);

/// The lower picture's layout after it was combined with another picture.
RASTERKIT_EXPORT PixelLayout LayoutAfterCombine(const PixelLayout& layout, CombineMode mode,
                                                Changes* losses = nullptr);

/// The lower grid's layout after another grid was laid over it. Throws UnsupportedError as
/// GridStage does.
RASTERKIT_EXPORT PixelLayout LayoutAfterGrid(const PixelLayout& layout, const PixelLayout& over,
                                             Filter filter);

}  // namespace rasterkit
