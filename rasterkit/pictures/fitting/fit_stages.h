#pragma once

#include <functional>
#include <memory>
#include <string>

#include <rasterkit/pictures/fitting/fit_pixels.h>

/// The stages that make pixels fit a file format.
namespace rasterkit::detail {

/// The name of a format in messages.
std::string NameInLosses(PictureType type);

/// Numbers and inks become colors of 8 bits.
std::unique_ptr<Stage> ShowStage(Sides source, const PixelFit& fit);
/// Numbers of fewer bits than their type become those of the whole range, which loses nothing.
std::unique_ptr<Stage> WidenStage(Sides source, const PixelFit& fit);
/// Transparent parts become the background.
std::unique_ptr<Stage> PaintStage(Sides source, const PixelFit& fit);
/// Another format of rows: 24 bits per pixel, or 8 for a palette of grays.
std::unique_ptr<Stage> FormatStage(Sides source, PictureType type);

/// The stage, which leaves pixels alone unless `isNeeded` for their kind.
std::unique_ptr<Stage> StageWhere(Sides source, std::unique_ptr<Stage> stage,
                                  std::function<bool(const Pixels& like)> isNeeded);

}  // namespace rasterkit::detail
