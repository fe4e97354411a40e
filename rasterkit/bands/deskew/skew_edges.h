#pragma once

#include <cstdint>
#include <vector>

#include <rasterkit/raster/raster.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit::detail {

/// Gray values of a picture, reduced to at most kMostSkewSide per side.
struct SkewGrays {
  int width = 0, height = 0;
  std::vector<uint8_t> grays;

  int At(int x, int y) const {
    return grays[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
  }
};

struct SkewPoint {
  int x = 0, y = 0;
  friend bool operator==(const SkewPoint&, const SkewPoint&) = default;
};

/// Places at edges that run nearly across, and nearly down.
struct SkewEdges {
  int width = 0, height = 0;
  /// Thousandths of the pixels that are like the most common gray: within an eighth of the range.
  int background = 0;
  std::vector<SkewPoint> across, down;
};

inline constexpr int kMostSkewSide = 2500;

/// The mean gray of blocks of n x n pixels, rounded down; n is the least number for which the sides
/// fit. A pixel has (77 red + 150 green + 29 blue) / 256; transparent parts are on white. Pixels
/// that fill no block do not count.
RASTERKIT_EXPORT SkewGrays SkewGraysOf(const Raster& picture);

/// Pixels that differ from the one below by at least a quarter of the picture's range, and by more
/// than twice of what they differ from the one to the right, are at an edge across; the other way
/// round at an edge down. The last row and column have none. The range leaves out the darkest and
/// the lightest 1/2000 of all pixels. Empty if it is below 24.
RASTERKIT_EXPORT SkewEdges SkewEdgesOf(const SkewGrays& grays);

}  // namespace rasterkit::detail
