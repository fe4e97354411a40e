#pragma once

#include <array>
#include <cmath>
#include <cstdint>

/// A turn of a block of 8 x 8 pixels by its DCT coefficients, and the pixels that it stands for.
namespace rasterkit::reference {

/// Row by row.
using Block = std::array<int16_t, 64>;
using BlockPixels = std::array<long double, 64>;

/// The value with the opposite sign in 16 bits: -32768 is its own opposite.
inline int16_t Opposite(int16_t value) {
  return static_cast<int16_t>(static_cast<uint16_t>(65536 - static_cast<uint16_t>(value)));
}

/// The axes are exchanged first; then columns, then rows are reversed.
inline Block TurnedBlock(const Block& source, bool exchangesAxes, bool reversesColumns,
                         bool reversesRows) {
  Block turned{};
  for (size_t y = 0; y < 8; y++) {
    for (size_t x = 0; x < 8; x++) {
      int16_t value = exchangesAxes ? source[8 * x + y] : source[8 * y + x];
      if (reversesColumns && x % 2 == 1) value = Opposite(value);
      if (reversesRows && y % 2 == 1) value = Opposite(value);
      turned[8 * y + x] = value;
    }
  }
  return turned;
}

/// The pixels of a block, by the definition of the transform.
inline BlockPixels PixelsOfBlock(const Block& block) {
  const long double pi = std::acos(-1.0L);
  BlockPixels pixels{};
  for (size_t y = 0; y < 8; y++) {
    for (size_t x = 0; x < 8; x++) {
      long double sum = 0;
      for (size_t v = 0; v < 8; v++) {
        for (size_t u = 0; u < 8; u++) {
          const long double scale = (u == 0 ? std::sqrt(0.5L) : 1) * (v == 0 ? std::sqrt(0.5L) : 1);
          sum += scale * block[8 * v + u] *
                 std::cos((2 * static_cast<long double>(x) + 1) * static_cast<long double>(u) * pi /
                          16) *
                 std::cos((2 * static_cast<long double>(y) + 1) * static_cast<long double>(v) * pi /
                          16);
        }
      }
      pixels[8 * y + x] = sum / 4;
    }
  }
  return pixels;
}

}  // namespace rasterkit::reference
