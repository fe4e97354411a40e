#pragma once

#include <cstdint>

#include <rasterkit/bands/flow/band_plan.h>

namespace rasterkit::detail {

/// Divides rows of a chain's result into bands: `height` rows each, or, if that is 0, so many that
/// all levels together hold about `bytes`.
BandDivision DivisionOf(const RowChain& chain, RowRange rows, int height, uint64_t bytes);

/// All rows of the result.
BandDivision DivisionOf(const RowChain& chain, int height, uint64_t bytes);

}  // namespace rasterkit::detail
