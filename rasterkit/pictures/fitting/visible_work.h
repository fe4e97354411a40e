#pragma once

#include <memory>
#include <string>

#include <rasterkit/bands/stage/band_work.h>
#include <rasterkit/raster/number_stretch.h>

namespace rasterkit::detail {

/// The work that makes a picture to look at of pixels of the kind of `like` (see VisiblePixels). A
/// raster stays as it is. Throws UnsupportedError for bands that are no colors.
std::unique_ptr<BandWork> MakeVisibleWork(const Pixels& like, Sides size, const std::string& noData,
                                          const NumberStretch& stretch);

}  // namespace rasterkit::detail
