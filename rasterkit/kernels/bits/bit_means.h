#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include <rasterkit/kernels/bits/bit_columns.h>
#include <rasterkit/kernels/bits/bit_counts.h>
#include <rasterkit/kernels/halftone/halftone_axis.h>

namespace rasterkit::kernels {

/// Makes rows of 8-bit gray from weighted rows of bits: the exact mean of the grays of both bits,
/// halves rounded up. For one thread.
class BitMeans {
 public:
  /// `width` bits make a row, and `columns` gives their weights; both must outlive the object. The
  /// weights of the rows of a mean add up to `rowTotal`.
  BitMeans(const HalftoneAxis& columns, int width, uint32_t rowTotal, uint8_t grayOf0,
           uint8_t grayOf1);

  /// Adds a row of (width + 7) / 8 bytes, which must stay as it is until Finish.
  void Add(const uint8_t* row, uint32_t weight);
  /// Writes a gray for each tap of the columns, and begins anew.
  void Finish(uint8_t* target);

 private:
  void AddCounts();
  void AddToRuns(const uint8_t* row, uint32_t weight);
  void FinishColumns(uint8_t* target);
  void AddRunsToLongs();
  void FinishLongs(uint8_t* target);

  const HalftoneAxis& columns_;
  const uint64_t total_;
  const uint8_t grayOf0_, grayOf1_;
  /// Bits of a group if all groups are whole, else 0.
  int group_ = 0;
  size_t rowBytes_;
  /// Where columns are added up first, with the rows of a mean and the runs that they form.
  std::optional<ColumnTaps> taps_;
  bool columnsAreWeighted_ = false;
  std::vector<const uint8_t*> rows_;
  std::vector<BitRun> runs_;
  std::vector<uint32_t> runWeights_;
  std::vector<int16_t> columnSums_;
  /// A row and zeros behind it.
  std::vector<uint8_t> row_;
  /// Ones of the groups of `counted_` rows, which all weigh `weight_`.
  std::vector<uint8_t> counts_;
  int counted_ = 0;
  uint32_t weight_ = 0;
  /// One of them is used, or both where columns do not bear the weights of the rows.
  std::vector<uint32_t> sums_;
  std::vector<uint64_t> longSums_;
};

}  // namespace rasterkit::kernels
