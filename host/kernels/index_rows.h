#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// Rows of palette indexes, changed in place; exactly `count` bytes are touched.
namespace rasterkit::kernels {

/// Which of the 256 indexes are meant.
using IndexSet = std::array<bool, 256>;

/// Each byte that is in `set` becomes `index`.
void ReplaceIndexes(uint8_t* indexes, size_t count, const IndexSet& set, uint8_t index);

/// Each byte that is `a` becomes `b`, and each that is `b` becomes `a`.
void SwapIndexes(uint8_t* indexes, size_t count, uint8_t a, uint8_t b);

/// Bytes of two 4-bit pixels: each but 0 becomes two times what `map` (numbers below 16) has for
/// its high nibble. Bytes that are 0 stay; the low nibble has no say.
void MapNibblePairs(uint8_t* pairs, size_t count, const std::array<uint8_t, 16>& map);

}  // namespace rasterkit::kernels
