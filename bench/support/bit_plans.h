#pragma once

#include <cstdint>
#include <random>

#include <rasterkit/raster/raster.h>

/// Plans of bits, made by rule. Black is 1.
namespace rasterkit::bench {

/// Draws into rows of bits.
class BitPen {
 public:
  explicit BitPen(Raster& raster) : raster_(raster) {}

  void Dot(int x, int y) {
    if (x < 0 || y < 0 || x >= raster_.Width() || y >= raster_.Height()) return;
    raster_.Row(y)[x / 8] |= static_cast<uint8_t>(128 >> x % 8);
  }
  /// A line from (x, y) on, `dx` and `dy` hundredths of a pixel at a time, `thick` pixels wide.
  void Line(int x, int y, int dx, int dy, int steps, int thick) {
    const bool isSteep = dy > dx || -dy > dx;
    for (int i = 0; i < steps; i++) {
      for (int side = 0; side < thick; side++) {
        Dot(x + i * dx / 100 + (isSteep ? side : 0), y + i * dy / 100 + (isSteep ? 0 : side));
      }
    }
  }

 private:
  Raster& raster_;
};

/// A plan of buildings: long lines along the axes and slanted ones, hatched areas, marks like text.
inline Raster BitPlan(int width, int height) {
  Raster raster(pf1bit, width, height);
  std::fill_n(raster.Row(0), raster.Stride() * static_cast<size_t>(height), uint8_t{0});
  std::mt19937 random(3);
  const auto below = [&](int limit) {
    return static_cast<int>(random() % static_cast<unsigned>(limit));
  };
  BitPen pen(raster);
  for (int i = 0; i < width / 24; i++) {
    const int x = below(width), y = below(height), length = 100 + below(width / 5);
    if (i % 3 == 0) {
      pen.Line(x, y, 100, 0, length, 2 + below(4));
    } else if (i % 3 == 1) {
      pen.Line(x, y, 0, 100, length, 2 + below(4));
    } else {
      pen.Line(x, y, 100, below(200) - 100, length, 2 + below(3));
    }
  }
  for (int i = 0; i < 40; i++) {
    const int x = below(width), y = below(height), size = 100 + below(width / 25);
    for (int step = 0; step < size; step += 16) pen.Line(x + step, y, 100, 100, size, 2);
  }
  // Words of strokes.
  for (int i = 0; i < width / 16; i++) {
    const int x = below(width), y = below(height), letters = 3 + below(12);
    for (int letter = 0; letter < letters; letter++) {
      for (int stroke = 0; stroke < 3; stroke++) {
        pen.Line(x + letter * 26 + below(18), y + below(10), below(100), below(2) * 100,
                 8 + below(16), 3);
      }
    }
  }
  return raster;
}

/// Each pixel black or white by chance.
inline Raster BitNoise(int width, int height) {
  Raster raster(pf1bit, width, height);
  std::mt19937 random(4);
  for (int y = 0; y < height; y++) {
    for (size_t i = 0; i < raster.Stride(); i++) raster.Row(y)[i] = static_cast<uint8_t>(random());
  }
  raster.ClearPadding();
  return raster;
}

}  // namespace rasterkit::bench
