#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include <rasterkit/kernels/halftone/halftone_axis.h>

/// Weighted means of rows of B G R pixels, exact in whole numbers, halves rounded up. A mean is a
/// sum of weighted rows, then of weighted columns, divided once at the end; how large the sums can
/// get decides how wide they are kept. Nothing may overlap.
namespace rasterkit::kernels {

/// Sums are read and written, and rows that grow are read, up to this many elements beyond their
/// end.
inline constexpr size_t kHalftonePadding = 32;

/// Rounded division by a total in words: exact for all sums of bytes whose weights add up to it.
struct WordDivisor {
  uint16_t half = 0;
  uint16_t factor = 0;
  int shift = 0;

  /// Whether the sums of this total fit words and have such a divisor.
  static bool Fits(uint64_t total);
  /// For a total that fits.
  static WordDivisor For(uint64_t total);
};

/// Rows of bytes, each with a weight.
struct WeightedRows {
  const uint8_t* data = nullptr;
  size_t stride = 0;
  const uint32_t* weights = nullptr;
  int count = 0;
  /// Whether they are added to sums that are there.
  bool adds = false;
};

/// For each of `bytes` columns the weighted sum of the rows.
void SumRows(const WeightedRows& rows, size_t bytes, uint16_t* sums);
void SumRows(const WeightedRows& rows, size_t bytes, uint32_t* sums);

/// For each tap the weighted sum of three-column pixels. The sums are padded.
void SumColumns(const uint16_t* columns, const HalftoneAxis& axis, uint16_t* sums);
void SumColumns(const uint32_t* columns, const HalftoneAxis& axis, uint32_t* sums);

/// Sums to bytes. `total` is at least 2, and 255.5 times as much fits 32 bits.
void DivideSums(const uint16_t* sums, size_t count, const WordDivisor& divisor, uint8_t* target);
void DivideSums(const uint32_t* sums, size_t count, uint32_t total, uint8_t* target);

/// The same for sums of columns that exceed 32 bits: taps and division in one.
void MeansOfColumns(const uint32_t* columns, const HalftoneAxis& axis, uint64_t total,
                    uint8_t* target);

}  // namespace rasterkit::kernels
