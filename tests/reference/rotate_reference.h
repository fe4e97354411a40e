#pragma once

#include <cstdint>
#include <cstdlib>

#include "tests/reference/exact_turn.h"
#include "tests/reference/extended.h"
#include "tests/support/test_rows.h"

/// Rotation as its rule reads, a pixel at a time in 80-bit arithmetic. Slow and obvious: what the
/// kernels are held against.
namespace rasterkit::reference {

inline int64_t TurnedWidth(int width, int height, Turn turn) {
  const Extended s = turn.sine, c = turn.cosine;
  return std::llabs(RoundEven(height * s)) + std::llabs(RoundEven(width * c));
}

inline int64_t TurnedHeight(int width, int height, Turn turn) {
  const Extended s = turn.sine, c = turn.cosine;
  return std::llabs(RoundEven(width * s)) + std::llabs(RoundEven(height * c));
}

/// The whole turned picture.
inline test::TestRows Rotate(const test::TestRows& source, Turn turn, uint32_t background) {
  const Extended s = turn.cosine;  // of 90 degrees minus the angle: the sine is its cosine
  const Extended c = turn.sine;
  test::TestRows target(static_cast<int>(TurnedWidth(source.width, source.height, turn)),
                        static_cast<int>(TurnedHeight(source.width, source.height, turn)),
                        source.bits);
  const float cxS = static_cast<float>(Extended(source.width) / 2);
  const float cyS = static_cast<float>(Extended(source.height) / 2);
  const float cxT = static_cast<float>(Extended(target.width) / 2);
  const float cyT = static_cast<float>(Extended(target.height) / 2);
  target.FillWith(background);
  for (int y = 0; y < target.height; ++y) {
    const Extended dy = y - Extended(cyT);
    for (int x = 0; x < target.width; ++x) {
      const Extended dx = x - Extended(cxT);
      const int64_t sx = RoundEven(dx * s - dy * c + cxS);
      if (sx < 0 || sx >= source.width) continue;
      const int64_t sy = RoundEven(dx * c + dy * s + cyS);
      if (sy < 0 || sy >= source.height) continue;
      target.SetPixel(x, y, source.Pixel(static_cast<int>(sx), static_cast<int>(sy)));
    }
  }
  return target;
}

}  // namespace rasterkit::reference
