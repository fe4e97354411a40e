#pragma once

#include <cstdint>

#include <rasterkit/bands/flow/band_plan.h>

namespace rasterkit::detail {

/// Divides rows of a chain's result into bands: `height` rows each, or, if that is 0, so many that
/// all levels together hold about `bytes`.
BandDivision DivisionOf(const RowChain& chain, RowRange rows, int height, uint64_t bytes);

/// True if the reader keeps so large blocks that reading the next rows early is no gain: most of
/// them are unpacked already.
bool HasLargeBlocks(const RowChain& chain);

/// All rows of the result.
BandDivision DivisionOf(const RowChain& chain, int height, uint64_t bytes);

}  // namespace rasterkit::detail
