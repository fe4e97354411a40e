#pragma once

#include <cstddef>
#include <cstdint>

#include <rasterkit/host/kernels/halftone_axis.h>

/// Weighted means of rows of pixels, exact in whole numbers, halves rounded up: first the rows that
/// a target row covers are added up column by column, then the columns that a target pixel covers.
/// Nothing may overlap.
namespace rasterkit::kernels {

/// sums[i] += weight * bytes[i]. The weights of one target row add up to at most 2^23.
void AddWeightedBytes(const uint8_t* bytes, size_t count, uint32_t weight, uint32_t* sums);

/// Target pixels B G R, one for each tap, from sums of B G R columns whose weights add up to
/// `rowsTotal`.
void MeanRow24(const uint32_t* sums, const HalftoneAxis& columns, uint32_t rowsTotal,
               uint8_t* target);

/// Seven sums for each pixel B G R A: the three colours times alpha, the alpha, the three colours.
inline constexpr size_t kAlphaSums = 7;
void AddWeightedPixels32(const uint8_t* pixels, size_t width, uint32_t weight, uint64_t* sums);

/// Target pixels B G R A from such sums: alpha is the mean, colours are means weighted by alpha;
/// where there is none at all they are plain means.
void MeanRow32(const uint64_t* sums, const HalftoneAxis& columns, uint32_t rowsTotal,
               uint8_t* target);

}  // namespace rasterkit::kernels
