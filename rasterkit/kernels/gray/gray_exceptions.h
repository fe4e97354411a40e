#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace rasterkit::kernels {

/// One bit for each (red, green), bit `green & 31` of word `red * 8 + green / 32`: set when the
/// extended sum of the gray value lies just below the whole number that the exact sum is.
///
/// Exact sums are whole where 297 r + 589 g + 114 b is a multiple of 1000. For given red and green
/// at most one blue is such a case: 114 b takes the same remainder only every 500 blues, and there
/// are 256. So blue is no part of the index.
extern const std::array<uint32_t, 2048> kGrayIsOneLess;

/// For a color whose exact sum is whole: true when its gray value is one less than that sum.
inline bool GrayIsOneLess(uint8_t r, uint8_t g) {
  return (kGrayIsOneLess[r * 8u + g / 32u] >> (g % 32u)) & 1u;
}

/// The colors, 0x00RRGGBB, whose exact sum is 1000 times `level` while their gray value is one
/// less than that: seven at most, for many levels none. Any level is allowed.
std::span<const uint32_t> GrayExceptionsOf(int level);

}  // namespace rasterkit::kernels
