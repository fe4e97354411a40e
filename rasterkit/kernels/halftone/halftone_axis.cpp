#include <algorithm>
#include <numeric>

#include <rasterkit/kernels/halftone/halftone_axis.h>

namespace rasterkit::kernels {
namespace {

/// A target position covers `start` to `start` + `size`, source position j covers j * length to
/// (j + 1) * length.
HalftoneTap CoveringTap(int64_t start, int64_t size, int64_t length) {
  const int64_t end = start + size;
  const int64_t first = start / length, last = (end - 1) / length;
  HalftoneTap tap;
  tap.first = static_cast<int32_t>(first);
  tap.count = static_cast<int32_t>(last - first + 1);
  tap.firstWeight = static_cast<uint32_t>(std::min((first + 1) * length, end) - start);
  tap.lastWeight = static_cast<uint32_t>(end - last * length);
  return tap;
}

/// The center of target position i lies `place` / `unit` behind the center of source position 0.
HalftoneTap InterpolatingTap(int64_t place, int64_t unit, int64_t sourceSize) {
  HalftoneTap tap;
  tap.firstWeight = static_cast<uint32_t>(unit);
  if (place <= 0) return tap;
  const int64_t first = place / unit, behind = place % unit;
  tap.first = static_cast<int32_t>(first);
  if (behind == 0 || first + 1 >= sourceSize) return tap;
  tap.count = 2;
  tap.firstWeight = static_cast<uint32_t>(unit - behind);
  tap.lastWeight = static_cast<uint32_t>(behind);
  return tap;
}

}  // namespace

HalftoneAxis MakeHalftoneAxis(int64_t length, int64_t sourceSize, int64_t first, int64_t last,
                              bool mirrored, HalftoneRule rule) {
  HalftoneAxis axis;
  axis.taps.reserve(static_cast<size_t>(last - first));
  const int64_t divisor = std::gcd(length, sourceSize);
  const int64_t size = sourceSize / divisor, place = length / divisor;
  const bool interpolates =
      rule == HalftoneRule::automatic ? place > size : rule == HalftoneRule::linear;
  // Centers are half positions apart from the corners; the halves cancel where both are odd.
  const int64_t halves = (size + place) % 2 == 0 ? 1 : 2;
  axis.shrinks = size > place;
  axis.innerWeight = static_cast<uint32_t>(interpolates ? 0 : place);
  axis.total = static_cast<uint32_t>(interpolates ? halves * place : size);
  for (int64_t target = first; target < last; ++target) {
    const int64_t i = mirrored ? length - 1 - target : target;
    axis.taps.push_back(interpolates ? InterpolatingTap(((2 * i + 1) * size - place) / (2 / halves),
                                                        halves * place, sourceSize)
                                     : CoveringTap(i * size, size, place));
  }
  return axis;
}

HalftoneAxis MakeReducedAxis(int64_t length, const ReducedSide& side) {
  // In parts of a position that the picture had, `length` of which make one.
  const int64_t rest = side.restIsFirst ? side.Length() * side.block - side.size : 0;
  const int64_t divisor = std::gcd(std::gcd(side.size, side.block * length), rest * length);
  const int64_t size = side.size / divisor, place = side.block * length / divisor;
  HalftoneAxis axis;
  axis.taps.reserve(static_cast<size_t>(length));
  axis.shrinks = size > place;
  axis.innerWeight = static_cast<uint32_t>(place);
  axis.total = static_cast<uint32_t>(size);
  for (int64_t i = 0; i < length; ++i) {
    axis.taps.push_back(CoveringTap(i * size + rest * length / divisor, size, place));
  }
  return axis;
}

}  // namespace rasterkit::kernels
