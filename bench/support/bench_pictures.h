#pragma once

#include <algorithm>
#include <cstdint>
#include <random>

#include <rasterkit/raster/raster.h>

/// Pictures to measure codecs with, made by rule: the same bytes on every machine.
namespace rasterkit::bench {

/// Like a photograph: soft light, round shapes with edges, texture that grows and fades, sensor
/// noise. pf24bit.
inline Raster PhotoLike(int width, int height) {
  Raster raster(pf24bit, width, height);
  std::mt19937 random(1);
  struct Shape {
    int x, y, radius, color[3];
  };
  Shape shapes[40];
  for (Shape& shape : shapes) {
    shape = {static_cast<int>(random() % static_cast<unsigned>(width)),
             static_cast<int>(random() % static_cast<unsigned>(height)),
             width / 40 + static_cast<int>(random() % static_cast<unsigned>(width / 8)),
             {static_cast<int>(random() % 160), static_cast<int>(random() % 160),
              static_cast<int>(random() % 160)}};
  }
  uint32_t noise = 12345;
  for (int y = 0; y < height; y++) {
    uint8_t* row = raster.Row(y);
    for (int x = 0; x < width; x++) {
      int color[3] = {60 + 120 * y / height, 80 + 100 * x / width, 200 - 120 * y / height};
      for (const Shape& shape : shapes) {
        const int64_t dx = x - shape.x, dy = y - shape.y;
        if (dx * dx + dy * dy > int64_t{shape.radius} * shape.radius) continue;
        for (int c = 0; c < 3; c++)
          color[c] = (color[c] + 3 * shape.color[c]) / 4 + static_cast<int>(dx * 30 / shape.radius);
      }
      const int texture = ((x * 7 ^ y * 13) & 31) * x / width / 2;
      for (int c = 0; c < 3; c++) {
        noise = noise * 1664525u + 1013904223u;
        const int value = color[c] + texture + static_cast<int>(noise >> 30) +
                          static_cast<int>(noise >> 28 & 3) - 3;
        row[3 * x + c] = static_cast<uint8_t>(std::clamp(value, 0, 255));
      }
    }
  }
  raster.ClearPadding();
  return raster;
}

/// Like a plan: thin dark and colored lines, hatches and filled areas on white. pf24bit.
inline Raster PlanLike(int width, int height) {
  Raster raster(pf24bit, width, height);
  for (int y = 0; y < height; y++) std::fill_n(raster.Row(y), raster.Stride(), uint8_t{255});
  std::mt19937 random(2);
  const auto below = [&](int limit) {
    return static_cast<int>(random() % static_cast<unsigned>(limit));
  };
  const auto dot = [&](int x, int y, const uint8_t* color) {
    if (x >= 0 && x < width && y >= 0 && y < height) std::copy_n(color, 3, raster.Row(y) + 3 * x);
  };
  constexpr uint8_t kColors[][3] = {
      {0, 0, 0}, {0, 0, 0}, {40, 40, 200}, {180, 90, 20}, {60, 140, 60}};
  for (int line = 0; line < width / 3; line++) {
    const uint8_t* color = kColors[below(5)];
    const int x0 = below(width), y0 = below(height), length = 20 + below(width / 6);
    const int slope = line % 3 == 0 ? below(200) - 100 : 0;
    const bool upright = line % 2 == 0;
    for (int i = 0; i < length; i++) {
      const int side = i * slope / 100;
      for (int thick = 0; thick < 2; thick++)
        dot(x0 + (upright ? side + thick : i), y0 + (upright ? i : side + thick), color);
    }
  }
  for (int area = 0; area < 60; area++) {
    const uint8_t fill[3] = {static_cast<uint8_t>(200 + below(50)),
                             static_cast<uint8_t>(200 + below(50)), 230};
    const int x0 = below(width), y0 = below(height), w = below(width / 10) + 1,
              h = below(height / 10) + 1;
    for (int y = y0; y < y0 + h; y++) {
      for (int x = x0; x < x0 + w; x++) {
        if (area % 2 == 0 || (x + y) % 12 < 2) dot(x, y, fill);
      }
    }
  }
  raster.ClearPadding();
  return raster;
}

}  // namespace rasterkit::bench
