#pragma once

#include <cstdint>
#include <vector>

namespace rasterkit::detail {

/// Which way a center that falls exactly between two source pixels goes when the picture is
/// mirrored: `image` makes the mirrored picture the mirror image of the plain one, `floor` takes
/// the pixel to the right of (or below) the mapped center, as in the plain one.
enum class MirroredTie { image, floor };

/// One axis of a stretch. `start` to `end` on the target (the end lies outside; before the start it
/// mirrors) show `partStart` to `partEnd` of the source likewise. Any numbers are allowed.
struct AxisSpan {
  int start = 0, end = 0;
  int partStart = 0, partEnd = 0;
};

/// For the target positions `first`, `first + 1` and so on: the source position under each center.
/// Only positions inside both pictures are there.
struct AxisPositions {
  int first = 0;
  std::vector<int> positions;

  int Count() const { return static_cast<int>(positions.size()); }
  bool Empty() const { return positions.empty(); }
  /// Whether the source positions follow one another like the target positions.
  bool IsPlainRun() const;
};

AxisPositions MapAxis(const AxisSpan& span, int targetSize, int sourceSize,
                      MirroredTie tie = MirroredTie::image);

/// a * b / c cut, for a <= 2 c. All below 2^34, c above 0.
uint64_t MultiplyDivide(uint64_t a, uint64_t b, uint64_t c);

}  // namespace rasterkit::detail
