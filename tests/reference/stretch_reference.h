#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

/// Grays of numbers by the rule itself, one number at a time.
namespace rasterkit::reference {

/// Numbers times a power of two that makes them whole.
__extension__ using WholeNumber = __int128;

/// 255 * (number - black) / (white - black), the nearest whole number, halves up, cut to a byte.
inline int GrayOfNumber(WholeNumber number, WholeNumber black, WholeNumber white) {
  if (black == white) return number > black ? 255 : 0;
  WholeNumber above = 510 * (number - black), below = 2 * (white - black);
  if (below < 0) above = -above, below = -below;
  // floor((above + below / 2) / below)
  const WholeNumber sum = above + below / 2;
  const WholeNumber floor = sum >= 0 ? sum / below : -((-sum + below - 1) / below);
  return static_cast<int>(std::clamp<WholeNumber>(floor, 0, 255));
}

/// The ends that stay when the share `percent` of all numbers is dropped on each side, rounded down
/// to a whole count.
template <class T>
std::pair<T, T> EndsWithout(std::vector<T> numbers, double percent) {
  std::sort(numbers.begin(), numbers.end());
  const auto out =
      static_cast<size_t>(std::floor(static_cast<double>(numbers.size()) * percent / 100));
  return {numbers[out], numbers[numbers.size() - 1 - out]};
}

}  // namespace rasterkit::reference
