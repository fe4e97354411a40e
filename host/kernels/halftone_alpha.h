#pragma once

#include <cstddef>
#include <cstdint>

#include <rasterkit/host/kernels/halftone_axis.h>

/// Means of B G R A pixels, the colours weighted by alpha; exact, halves rounded up.
namespace rasterkit::kernels {

/// Seven sums for each pixel: the three colours times alpha, the alpha, the three colours.
inline constexpr size_t kAlphaSums = 7;

/// Adds a row of pixels, `weight` times, to the sums. The weights of one target row add up to at
/// most 2^23.
void AddWeightedPixels32(const uint8_t* pixels, size_t width, uint32_t weight, uint64_t* sums);

/// Target pixels B G R A, one for each tap, from rows whose weights add up to `rowsTotal`: alpha is
/// the mean, colours are means weighted by alpha; where there is none at all they are plain means.
void MeanRow32(const uint64_t* sums, const HalftoneAxis& columns, uint32_t rowsTotal,
               uint8_t* target);

}  // namespace rasterkit::kernels
