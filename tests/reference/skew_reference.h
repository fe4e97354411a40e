#pragma once

#include <cmath>
#include <cstdint>
#include <map>
#include <utility>
#include <vector>

#include <rasterkit/raster/raster.h>

/// The search for a scan's angle, written straight from its rules.
namespace rasterkit::reference {

/// Gray of a block of n x n pixels whose colors are given by PixelColor.
inline int SkewGray(const Raster& picture, int block, int x, int y) {
  int sum = 0;
  for (int i = 0; i < block; ++i) {
    for (int j = 0; j < block; ++j) {
      const TColor color = picture.PixelColor(x * block + j, y * block + i);
      const auto red = static_cast<int>(color & 255), green = static_cast<int>(color >> 8 & 255),
                 blue = static_cast<int>(color >> 16 & 255);
      sum += (77 * red + 150 * green + 29 * blue) / 256;
    }
  }
  return sum / (block * block);
}

using PointList = std::vector<std::pair<int, int>>;

/// The sum of squared differences of neighboring counts of floor(place / bin).
inline uint64_t SkewScoreOf(const PointList& points, bool isAcross, int slope, int bin) {
  std::map<long, long> counts;
  for (const auto& [x, y] : points) {
    const long double lean = static_cast<long double>(slope) / 65536;
    const long double place = isAcross ? y - x * lean : x + y * lean;
    ++counts[static_cast<long>(std::floor(place / bin))];
  }
  uint64_t score = 0;
  for (const auto& [place, count] : counts) {
    const auto next = counts.find(place + 1);
    const long difference = (next == counts.end() ? 0 : next->second) - count;
    score += static_cast<uint64_t>(difference * difference);
    if (counts.count(place - 1) == 0) score += static_cast<uint64_t>(count * count);
  }
  return score;
}

}  // namespace rasterkit::reference
