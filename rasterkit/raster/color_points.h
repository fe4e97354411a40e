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

/// Pixels of a picture at fixed places, few enough to be held: a grid over a large picture, all
/// pixels of a small one. Each row of the grid has another offset, so that a pattern in the picture
/// is not missed.
class ColorSample {
 public:
  ColorSample(int width, int height);

  /// True if pixels of row `y` belong to the sample. Such rows are added from top to bottom.
  bool Has(int y) const { return y >= first_ && (y - first_) % static_cast<int>(step_) == 0; }
  /// `pixels` are a whole row.
  void Add(const RGBArec* pixels);

  /// The colors in a fixed order. A few colors are kept exactly, so that a smooth gradient stays
  /// smooth; many become the mean colors of a grid of 32 x 32 x 32 boxes.
  std::vector<ColorPoint> Points() const;

 private:
  const size_t width_;
  uint32_t step_ = 1, number_ = 0;
  int first_ = 0;
  std::vector<RGBArec> pixels_;
};

/// The colors of a whole picture (see ColorSample).
std::vector<ColorPoint> CollectColorPoints(const Raster& source);

}  // namespace rasterkit
