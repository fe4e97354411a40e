#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

#include <rasterkit/bands/color_change.h>
#include <rasterkit/bands/stage/band_work.h>
#include <rasterkit/bands/stage/stage.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/kernels/rows/byte_map.h>
#include <rasterkit/kernels/transfer/brighten.h>

namespace rasterkit::detail {

/// Changes rows of pixels B G R in place: every pixel, black and white too.
class RowAdjuster {
 public:
  explicit RowAdjuster(const AdjustColors& values);

  /// Brightness and contrast, in this order.
  void Brighten(uint8_t* bgr, size_t width) const;
  /// The percentages of red, green and blue.
  void Shift(uint8_t* bgr, size_t width) const;

 private:
  std::optional<kernels::ByteMap> darkening_, contrast_;
  std::optional<kernels::Brightening> brightening_;
  bool shifts_ = false;
  std::array<uint8_t, 256> reds_{}, greens_{}, blues_{};
};

/// Changes the pixels of a 24-bit bitmap: brightness, contrast, sharpness, colors, in this order.
void AdjustPixels(TBitmap& pixels, const AdjustColors& values);

/// The work of a change that sharpens: its rows need those above and below. `made` is of the
/// result's kind.
std::unique_ptr<BandWork> MakeSharpening(const Raster& like, Sides size, Raster made,
                                         const AdjustColors& values);

}  // namespace rasterkit::detail
