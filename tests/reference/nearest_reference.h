#pragma once

#include <array>
#include <cstddef>
#include <vector>

/// Nearest colors as the rule reads: least sum of squared channel differences, the first among
/// equals.
namespace rasterkit::reference {

using Color3 = std::array<int, 3>;

inline size_t NearestOf(const std::vector<Color3>& colors, const Color3& color) {
  size_t best = 0;
  long bestDistance = -1;
  for (size_t i = 0; i < colors.size(); ++i) {
    long distance = 0;
    for (size_t c = 0; c < 3; ++c) {
      const long difference = colors[i][c] - color[c];
      distance += difference * difference;
    }
    if (bestDistance >= 0 && distance >= bestDistance) continue;
    best = i;
    bestDistance = distance;
  }
  return best;
}

}  // namespace rasterkit::reference
