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

/// A stage with a condition.
struct FitPart {
  std::unique_ptr<Stage> stage;
  /// Of the kind of pixels; others are left alone.
  std::function<bool(const Pixels& like)> isNeeded;
};

/// The stage, which adds its losses to `lost` in place of those of the other stages.
std::unique_ptr<Stage> StageOf(Sides source, FitPart part, std::shared_ptr<Changes> lost);

}  // namespace rasterkit::detail
