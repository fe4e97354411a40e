#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include <rasterkit/raster/raster.h>

namespace rasterkit {

/// A color and its number of pixels. Channels (blue, green, red) are in quarters: 0 to 1020.
struct ColorPoint {
  std::array<int16_t, 3> channel{};
  uint64_t weight = 0;
};

constexpr ColorPoint MakeColorPoint(int red, int green, int blue, uint64_t weight) {
  return {{static_cast<int16_t>(blue * 4), static_cast<int16_t>(green * 4),
           static_cast<int16_t>(red * 4)},
          weight};
}

/// Collects the colors of a picture in a fixed order. A few colors are kept exactly, so that a
/// smooth gradient stays smooth; many become the mean colors of a grid of 32 x 32 x 32 boxes. A
/// large picture is sampled at fixed positions.
std::vector<ColorPoint> CollectColorPoints(const Raster& source);

}  // namespace rasterkit
