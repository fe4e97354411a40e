#pragma once

#include <cstddef>
#include <cstdint>

#include <rasterkit/kernels/halftone/halftone_axis.h>

/// Counting the ones of rows of bits, the first of a byte in its high bit.
namespace rasterkit::kernels {

/// Bytes behind the bits of a row that are read, and behind the counts of a row that are written.
inline constexpr size_t kBitRowPadding = 64;

/// True if groups of so many bits are counted by AddGroupCounts.
bool CountsGroupsOf(int bits);

/// Adds the number of ones of each group of `bits` bits to a byte; CountsGroupsOf(bits) must hold.
/// `rowBytes` are read, and `counts` has room for `8 * rowBytes / bits` and kBitRowPadding more.
void AddGroupCounts(const uint8_t* row, size_t rowBytes, int bits, uint8_t* counts);

/// Adds `weight` times the counts to the sums.
void AddWeighted(const uint8_t* counts, size_t count, uint32_t weight, uint32_t* sums);

/// Makes `base` + `factor` * sum of each sum, in 32 bits.
void ScaleSums(uint32_t* sums, size_t count, uint32_t base, uint32_t factor);

/// Adds `weight` times the weighted number of ones that each tap covers. The row is padded.
void AddTaps(const uint8_t* row, const HalftoneAxis& axis, uint32_t weight, uint32_t* sums);
void AddTaps(const uint8_t* row, const HalftoneAxis& axis, uint32_t weight, uint64_t* sums);

}  // namespace rasterkit::kernels
