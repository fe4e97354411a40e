#pragma once

#include <memory>
#include <optional>

#include <rasterkit/bands/band_rows.h>
#include <rasterkit/placement/affine.h>

namespace rasterkit::detail {

/// What linear interpolation takes from beyond the source's edge.
struct LinearTask {
  Affine toOld;
  /// The fill's number of each band, all together, with signs as in the source.
  const uint8_t* fill = nullptr;
  /// Takes the nearest pixel of the edge instead of the fill.
  bool isClamped = false;
  std::optional<double> noData;
};

/// Makes pixels of row `y` of a turned picture: each pixel is interpolated between the four source
/// pixels around the place that `toOld` leads to, whose distances are cut to 1/65536.
///
/// 8- and 16-bit unsigned numbers are exact fractions, halves rounded up; others sums of doubles.
/// Colors with straight alpha are weighted by it. A number is `noData` where the nearest one is;
/// elsewhere those that are do not count.
class LinearRows {
 public:
  virtual ~LinearRows() = default;
  /// `width` pixels from column `left` on, all bands together, signs moved as BandRows moves them.
  virtual void Make(int y, int left, int width, uint8_t* target) const = 0;
};

/// The source and the task must outlive the result, which any number of threads may use.
std::unique_ptr<LinearRows> MakeLinearRows(const BandRows& source, const LinearTask& task);

}  // namespace rasterkit::detail
