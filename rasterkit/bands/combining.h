#pragma once

#include <functional>
#include <memory>

#include <rasterkit/bands/combine.h>
#include <rasterkit/bands/stage/band_work.h>

namespace rasterkit::detail {

/// Gives the picture or the grid that is laid over another one. Called once, when the first rows
/// are made, so that a work that is only planned reads nothing. Adds what it loses.
using SecondPicture = std::function<Raster(const StageRun&, Changes&)>;
using SecondGrid = std::function<Samples(const StageRun&, Changes&)>;

/// Begins CombineStage with a second picture that is not there yet: `combination.over` has no
/// meaning.
std::unique_ptr<BandWork> StartCombining(const Pixels& like, Sides size,
                                         const Combination& combination, SecondPicture second,
                                         const StageRun& run);

/// What is known of a second grid before it is there.
struct SecondKind {
  PixelLayout layout;
  Sides sides;
};

/// Begins GridStage likewise.
std::unique_ptr<BandWork> StartGridding(const Pixels& like, Sides size,
                                        const GridCombination& combination, const SecondKind& kind,
                                        SecondGrid second, const StageRun& run);

}  // namespace rasterkit::detail
