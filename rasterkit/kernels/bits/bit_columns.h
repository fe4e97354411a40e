#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include <rasterkit/kernels/halftone/halftone_axis.h>

/// Rows of bits are added up column by column, and the columns then tap by tap: a row costs a few
/// operations for many columns, and a tap is paid once, not once for each of its rows.
namespace rasterkit::kernels {

/// Columns after the last byte of a row whose sums are written.
inline constexpr size_t kColumnPadding = 128;

/// Rows of bits that weigh the same, at most kMostRowsOfRun, each of them once.
struct BitRun {
  const uint8_t* const* rows = nullptr;
  int count = 0;
  uint16_t weight = 1;
};
inline constexpr int kMostRowsOfRun = 255;

/// Writes the weighted number of ones of each column, up to kLargestColumnSum. `sums` has room for
/// 8 * `rowBytes` columns and kColumnPadding more.
void SumBitColumns(const BitRun* runs, size_t count, size_t rowBytes, int16_t* sums);
inline constexpr uint64_t kLargestColumnSum = 32767;

/// The weights of an axis beside one another, to be multiplied by sums of columns.
class ColumnTaps {
 public:
  /// True if the weights of the axis and the lengths of its taps fit.
  static bool Fits(const HalftoneAxis& axis);
  /// For an axis that fits.
  explicit ColumnTaps(const HalftoneAxis& axis);

  /// Writes the weighted sum of the columns of each tap, which must be less than 2^31. Writes up to
  /// kTapPadding sums more.
  void Sum(const int16_t* columns, uint32_t* sums) const;

  /// `length` weights for each of `count` taps, and the column of the first one.
  struct Table {
    const int32_t* firsts;
    const int16_t* weights;
    size_t count, length;
  };

 private:
  size_t count_;
  std::vector<int32_t> firsts_;
  /// For each tap `length_` weights, a multiple of 8; zeros follow its own.
  std::vector<int16_t> weights_;
  size_t length_ = 0;
};
inline constexpr size_t kTapPadding = 4;

/// Writes the rounded means of the grays of both bits, halves up, for sums of ones out of `total`,
/// which is 1 to 2^31 - 1.
struct BitGrays {
  uint8_t of0 = 0, of1 = 255;
};
void MeansOfOnes(const uint32_t* sums, size_t count, uint32_t total, BitGrays grays,
                 uint8_t* target);

}  // namespace rasterkit::kernels
