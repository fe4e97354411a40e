#pragma once

#include <memory>
#include <optional>

#include <rasterkit/bands/band_rows.h>
#include <rasterkit/kernels/halftone/halftone_axis.h>

namespace rasterkit::detail {

struct MeanAxes {
  kernels::HalftoneAxis columns, rows;
};

/// Makes rows of weighted means.
///
/// 8- and 16-bit unsigned numbers: the exact fraction, rounded to the nearest number, halves up, as
/// CopyHalftone rounds. Others: sums of doubles in the order of the rows and columns, rounded to
/// the type, halves up for whole numbers. Colors with straight alpha are weighted by it (plain
/// means where all of it is 0). Without straight alpha, samples that are `noData` are skipped; a
/// mean of none is `noData`.
class MeanRows {
 public:
  virtual ~MeanRows() = default;
  /// Makes target row `y`: one pixel, all bands together, for each tap of the columns.
  virtual void Make(int y, uint8_t* target) = 0;
};

/// The source and the axes must outlive the result. One object for each thread.
std::unique_ptr<MeanRows> MakeMeanRows(const BandRows& source, const MeanAxes& axes,
                                       std::optional<double> noData);

}  // namespace rasterkit::detail
