#pragma once

#include <memory>

#include <rasterkit/kernels/mix/blend_pixels.h>
#include <rasterkit/raster/raster.h>

namespace rasterkit::detail {

/// How a drawn pixel changes a target pixel.
struct PixelRule {
  enum class Kind {
    copy,    ///< replaces it, alpha included
    opaque,  ///< replaces it; the alpha of a 32-bit target becomes 255
    keyed,   ///< opaque, but pixels of the key color are skipped
    blend    ///< is mixed in
  };
  Kind kind = Kind::opaque;
  kernels::Opacity opacity;
  /// Its alpha is ignored.
  RGBArec key{};
};

/// Key color 0x00BBGGRR as precisely as pixels of this format can hold it.
RGBArec KeyPixel(TColor key, TPixelFormat format);

/// Draws rows of 32-bit pixels into a raster of any format. On an indexed raster a color becomes
/// the nearest entry; a pixel that is skipped or has opacity 0 keeps its index.
class TargetRows {
 public:
  virtual ~TargetRows() = default;
  /// Draws `count` pixels into row `y` from column `left` on. All lie inside the target, and
  /// `pixels` must not be part of it.
  virtual void Write(int y, int left, int count, const RGBArec* pixels) = 0;
};

/// Makes rows that draw by `rule`. The target must outlive them.
std::unique_ptr<TargetRows> MakeTargetRows(Raster& target, const PixelRule& rule);

}  // namespace rasterkit::detail
