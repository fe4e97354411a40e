#pragma once

#include <cstdint>
#include <vector>

namespace rasterkit::detail {

/// Which source pixel is taken for a center exactly between two, in a mirrored picture: `image`
/// makes it the mirror image of the plain picture, `floor` takes the pixel to the right of (or
/// below) the mapped center, as in the plain picture.
enum class MirroredTie { image, floor };

/// One axis of a stretch: `start` to `end` of the target show `partStart` to `partEnd` of the
/// source. The ends are exclusive; an end before its start mirrors. Any numbers are allowed.
struct AxisSpan {
  int start = 0, end = 0;
  int partStart = 0, partEnd = 0;
};

/// Source positions under the centers of the target positions `first`, `first + 1` and so on. Only
/// positions inside both pictures are listed.
struct AxisPositions {
  int first = 0;
  std::vector<int> positions;

  int Count() const { return static_cast<int>(positions.size()); }
  bool Empty() const { return positions.empty(); }
  /// Tells whether the source positions are consecutive, as the target positions are.
  bool IsPlainRun() const;
};

AxisPositions MapAxis(const AxisSpan& span, int targetSize, int sourceSize,
                      MirroredTie tie = MirroredTie::image);

/// a * b / c, truncated, for a <= 2 c. All must be below 2^34, c above 0.
uint64_t MultiplyDivide(uint64_t a, uint64_t b, uint64_t c);

}  // namespace rasterkit::detail
