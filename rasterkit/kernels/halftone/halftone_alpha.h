#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include <rasterkit/kernels/halftone/halftone_axis.h>
#include <rasterkit/kernels/halftone/halftone_rows.h>

/// Means of B G R A pixels, the colors weighted by alpha; exact, halves rounded up. Rows are added
/// up first, then columns, and each sum is divided once.
namespace rasterkit::kernels {

/// Four sums for each pixel: the three colors times alpha, the alpha.
inline constexpr size_t kOpacitySums = 4;

/// For each of `width` pixels of the rows the weighted sums. The weights of one target row add up
/// to no more than AlphaColumns::Fit allows.
void SumAlphaRows(const WeightedRows& rows, size_t width, int32_t* sums);

/// The taps of the columns with weights in floating point, where they are exact.
struct AlphaColumns {
  struct Tap {
    int32_t first, count;
    float firstWeight, lastWeight;
  };
  std::vector<Tap> taps;
  float innerWeight = 0;
  /// The weights of all source pixels of a target pixel together.
  uint64_t total = 1;

  /// Whether the sums of rows and columns with these totals are small enough for MeansByAlpha.
  static bool Fit(uint32_t rowsTotal, uint32_t columnsTotal);
  /// For totals that fit.
  AlphaColumns(const HalftoneAxis& columns, uint32_t rowsTotal);
};

/// Target pixels B G R A, one for each tap: alpha is the mean, colors are means weighted by alpha.
/// Where there is no alpha at all they become 0; the indexes of those pixels are put into
/// `transparent`, which has room for all, and their number is returned.
size_t MeansByAlpha(const int32_t* sums, const AlphaColumns& columns, uint8_t* target,
                    uint32_t* transparent);

/// Seven sums for each pixel: the three colors times alpha, the alpha, the three colors.
inline constexpr size_t kAlphaSums = 7;

/// The same in whole numbers for all totals: adds a row of pixels, `weight` times, to the sums. The
/// weights of one target row add up to at most 2^23.
void AddWeightedPixels32(const uint8_t* pixels, size_t width, uint32_t weight, uint64_t* sums);

/// Target pixels from rows whose weights add up to `rowsTotal`; where there is no alpha at all the
/// colors are plain means.
void MeanRow32(const uint64_t* sums, const HalftoneAxis& columns, uint32_t rowsTotal,
               uint8_t* target);

}  // namespace rasterkit::kernels
