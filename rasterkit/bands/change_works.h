#pragma once

#include <memory>

#include <rasterkit/bands/color_change.h>
#include <rasterkit/bands/stage/band_work.h>
#include <rasterkit/raster/raster.h>

namespace rasterkit::detail {

/// Begins a change of color for rasters of the kind of `like`, whose rows have no meaning. Throws
/// what the change throws for such a raster.
///
/// Indexed pixels: what the change makes of each index is seen on a small picture. True color: the
/// row kernels work from the source's row into that of the result; the kind of the result is seen
/// on a small picture.
std::unique_ptr<BandWork> BeginChange(const ColorChange& change, const Raster& like, Sides size);

}  // namespace rasterkit::detail
