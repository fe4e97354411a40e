#pragma once

#include <memory>
#include <optional>

#include <rasterkit/bands/stage/filter.h>
#include <rasterkit/placement/affine.h>
#include <rasterkit/raster/pixels.h>

namespace rasterkit {

/// How a second picture is laid over a picture. Near white has all channels above 250.
enum class CombineMode {
  /// All of it except pure white, or except what is transparent if it has transparency; `percent`
  /// of the picture below show through.
  key,
  /// A mix with `percent` of the picture below; near white is skipped.
  transparent,
  /// Each pixel except near white is shaded by the picture below, which is first brightened by
  /// `percent`.
  shadow,
  /// All of it except near white.
  overwrite,
  /// Only where the picture below is near white.
  intoWhite,
  /// Light parts become darker and dark parts lighter under the dark parts of it.
  watermark,
  /// Grids: its numbers, except those that mean "not measured", where the picture below shows
  /// through. Numbers stay numbers; see GridCombination.
  grid,
  /// `grid` where both pictures are grids that are placed on a map, else `key`.
  automatic
};

/// What is combined with a picture.
struct Combination {
  /// Pixels to look at (see VisiblePixels), shared because several pictures may use them.
  std::shared_ptr<const Raster> over;
  CombineMode mode = CombineMode::key;
  /// 0 to 100.
  int percent = 0;
  /// For `transparent` and `shadow`: uses the gray values of the picture below.
  bool gray = false;
  /// From pixel indexes of the picture to those of `over`; pixels outside `over` stay as they are.
  /// Nothing: `over` is stretched over the whole picture.
  std::optional<Affine> toOver;
};

/// A grid that is laid over another one by the map. Both are gray without alpha and have as many
/// bands. NaN of the upper one means "not measured" too.
struct GridCombination {
  std::shared_ptr<const Samples> over;
  /// From pixel indexes of the lower grid to those of `over`.
  Affine toOver;
  /// `linear` interpolates numbers that lie between; others take the nearest.
  Filter filter = Filter::automatic;
  /// The numbers that mean "not measured" in the lower and in the upper grid.
  std::optional<double> noData, overNoData;
};

}  // namespace rasterkit
