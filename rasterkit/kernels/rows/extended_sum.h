#pragma once

#include <cstdint>

namespace rasterkit::kernels {

/// `Round(a * s - b * c + offset)` as a floating-point unit with a 64-bit mantissa computes it:
/// each of the four steps is rounded to 64 bits, halves to even, and the sum is rounded to an
/// integer, halves to even. Integer arithmetic only, so it is the same on processors without such a
/// unit.
///
/// `doubledA` and `doubledB` are 2 a and 2 b (centers lie on half pixels), at most 2^40 in absolute
/// value; `s` and `c` are 0 or at least 2^-60 and at most 2^32 in absolute value, and no product
/// exceeds 2^41; `doubledOffset` is twice the offset, as above.
int64_t RoundExtendedSum(int64_t doubledA, double s, int64_t doubledB, double c,
                         int64_t doubledOffset);

}  // namespace rasterkit::kernels
