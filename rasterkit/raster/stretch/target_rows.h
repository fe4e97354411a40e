#pragma once

#include <memory>

#include <rasterkit/kernels/mix/blend_pixels.h>
#include <rasterkit/raster/raster.h>

namespace rasterkit::detail {

/// What a drawn pixel does to the one that is there.
struct PixelRule {
  enum class Kind {
    copy,    ///< replaces it, alpha included
    opaque,  ///< replaces it; the alpha of a 32-bit target becomes 255
    keyed,   ///< opaque, but pixels of the key color are left out
    blend    ///< is mixed in
  };
  Kind kind = Kind::opaque;
  kernels::Opacity opacity;
  /// Its alpha is not looked at.
  RGBArec key{};
};

/// The color of a key 0x00BBGGRR as pixels of this format can hold it.
RGBArec KeyPixel(TColor key, TPixelFormat format);

/// Draws rows of 32-bit pixels into a raster of any format. On an indexed raster a color becomes
/// the nearest entry; a pixel that is left out or has no opacity keeps its index.
class TargetRows {
 public:
  virtual ~TargetRows() = default;
  /// Draws `count` pixels, which are no part of the target, from column `left` of row `y` on; all
  /// of them lie inside.
  virtual void Write(int y, int left, int count, const RGBArec* pixels) = 0;
};

/// The target must outlive what is made.
std::unique_ptr<TargetRows> MakeTargetRows(Raster& target, const PixelRule& rule);

}  // namespace rasterkit::detail
