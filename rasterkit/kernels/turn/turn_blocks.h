#pragma once

#include <cstddef>
#include <cstdint>

namespace rasterkit::kernels {

/// Coefficients of a block, row by row: 8 vertical frequencies of 8 horizontal ones.
inline constexpr size_t kBlockSide = 8, kBlockCoefficients = kBlockSide * kBlockSide;

/// One of the eight orientations: the axes are exchanged first, then columns and rows of the result
/// are reversed.
struct BlockTurn {
  bool exchangesAxes = false, reversesColumns = false, reversesRows = false;
};

/// Turns the pixels of `count` blocks by their DCT coefficients: exchanged axes transpose a block,
/// reversed columns or rows change the sign of the odd horizontal or vertical frequencies. -32768,
/// which has no opposite, stays. The target blocks follow one another and overlap no source block.
void TurnBlocks(const int16_t* const* sources, size_t count, BlockTurn turn, int16_t* target);

}  // namespace rasterkit::kernels
