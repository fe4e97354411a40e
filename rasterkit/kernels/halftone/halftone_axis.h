#pragma once

#include <cstdint>
#include <vector>

namespace rasterkit::kernels {

/// The longest side, of picture and place, that weights are made for.
inline constexpr int64_t kLongestHalftoneSide = int64_t{1} << 22;

/// What one target position takes from the source: `count` positions from `first` on. The first one
/// weighs `firstWeight`, the last one (where there are at least two) `lastWeight`, those between
/// `HalftoneAxis::innerWeight`.
struct HalftoneTap {
  int32_t first = 0, count = 1;
  uint32_t firstWeight = 1, lastWeight = 0;
};

/// One axis of a halftone stretch: exact weights in whole numbers, made as small as they can be.
///
/// Where the picture shrinks, a target position covers size / length source positions, each of
/// which weighs as much as is covered of it. Where it grows, the center of a target position lies
/// between the centers of two source positions, which weigh the more the nearer they are; at both
/// ends the outermost position counts alone.
struct HalftoneAxis {
  std::vector<HalftoneTap> taps;
  uint32_t innerWeight = 1;
  /// Sum of the weights of each tap; at most 2^23.
  uint32_t total = 1;
  /// Whether there are more source than target positions; else a tap has at most two of them.
  bool shrinks = false;
};

/// How the weights of an axis follow from its lengths.
enum class HalftoneRule {
  /// The covered area where the picture shrinks, the two nearest positions where it grows.
  automatic,
  /// The covered area always.
  area,
  /// The two nearest positions always.
  linear
};

/// Weights for the target positions `first` to `last - 1` of a picture of `sourceSize` positions on
/// a place of `length` positions, both 1 to kLongestHalftoneSide; in reverse order if `mirrored`.
HalftoneAxis MakeHalftoneAxis(int64_t length, int64_t sourceSize, int64_t first, int64_t last,
                              bool mirrored, HalftoneRule rule = HalftoneRule::automatic);

/// A side of a picture that was made smaller by whole blocks: each position stands for `block` of
/// the `size` positions that the picture had, the one at the end for the rest.
struct ReducedSide {
  int64_t size = 1, block = 1;
  /// The position that stands for fewer is the first one.
  bool restIsFirst = false;

  int64_t Length() const { return (size + block - 1) / block; }
};

/// Weights by area for `length` target positions of such a side. Each covers size / length of the
/// positions that the picture had. Products of the numbers must not exceed 2^62, `size` not
/// kLongestHalftoneSide, and `length` not the length of the side.
HalftoneAxis MakeReducedAxis(int64_t length, const ReducedSide& side);

}  // namespace rasterkit::kernels
