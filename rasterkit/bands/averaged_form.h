#pragma once

#include <rasterkit/bands/stage/filter.h>
#include <rasterkit/bands/stage/sides.h>
#include <rasterkit/raster/pixels.h>

/// Formats whose pixels can be averaged.
namespace rasterkit::detail {

/// What a resampling makes of the pixels it gets.
enum class AveragedForm {
  /// They stay as they are and are taken whole.
  none,
  /// 8-bit gray ramp.
  gray,
  /// 24-bit.
  color,
  /// 32-bit with an alpha channel.
  colorAndAlpha,
  /// Samples of their own layout.
  samples
};

/// The form for a picture that is resized. `Filter::automatic` takes pixels of palettes whole, and
/// 64-bit numbers too; every filter takes pixels whole where a side is longer than 2^22. Throws
/// UnsupportedError for a filter that would average 64-bit numbers.
AveragedForm FormForResize(const PixelLayout& layout, bool isRaster, Sides from, Sides to,
                           Filter filter);
/// The form for a picture that is turned: `automatic` takes nearest pixels.
AveragedForm FormForTurn(const PixelLayout& layout, bool isRaster, Filter filter);

/// The layout that the form makes of a raster's.
PixelLayout LayoutOfForm(const PixelLayout& layout, AveragedForm form);
/// Converts a raster to the form.
void BringToForm(Raster& raster, AveragedForm form);

}  // namespace rasterkit::detail
