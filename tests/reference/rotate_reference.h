#pragma once

#include <cfloat>
#include <cmath>
#include <cstdint>

#include "tests/support/test_rows.h"

/// Rotation as its rule reads, a pixel at a time in 80-bit arithmetic. Slow and obvious: what the
/// kernels are held against.
namespace rasterkit::reference {

/// True where `long double` is the extended precision of the rule; without it there is nothing to
/// compare with.
inline constexpr bool kHasExtendedPrecision = LDBL_MANT_DIG == 64;

struct Turn {
  double sine = 0;
  double cosine = 1;
};

/// The doubles nearest to the exact sine and cosine, from a power series in quadruple precision.
inline Turn ExactTurn(float degrees) {
  __extension__ using Quad = __float128;
  const Quad radiansPerDegree =
      Quad(0x1.1df46a2529d39p-6) + Quad(0x1.5c1d8becdd291p-62) - Quad(0x1.1d937fa428858p-116);
  double rest = std::fmod(std::fabs(static_cast<double>(degrees)), 360.0);
  const int quarter = static_cast<int>(rest / 90);
  rest -= quarter * 90.0;
  const Quad angle = radiansPerDegree * Quad(rest);
  Quad sine = 0, cosine = 0, term = 1;
  for (int n = 0; n < 60; ++n) {
    const bool isNegative = n % 4 >= 2;
    (n % 2 == 0 ? cosine : sine) += isNegative ? -term : term;
    term = term * angle / Quad(n + 1);
  }
  double s = static_cast<double>(sine), c = static_cast<double>(cosine);
  for (int i = 0; i < quarter; ++i) {
    const double turned = -s;
    s = c;
    c = turned;
  }
  if (degrees < 0) s = -s;
  return {s + 0.0, c + 0.0};
}

inline int64_t TurnedWidth(int width, int height, Turn turn) {
  const long double s = turn.sine, c = turn.cosine;
  return std::llabs(std::llrintl(height * s)) + std::llabs(std::llrintl(width * c));
}

inline int64_t TurnedHeight(int width, int height, Turn turn) {
  const long double s = turn.sine, c = turn.cosine;
  return std::llabs(std::llrintl(width * s)) + std::llabs(std::llrintl(height * c));
}

/// The whole turned picture.
inline test::TestRows Rotate(const test::TestRows& source, Turn turn, uint32_t background) {
  const long double s = turn.cosine;  // of 90 degrees minus the angle: the sine is its cosine
  const long double c = turn.sine;
  test::TestRows target(static_cast<int>(TurnedWidth(source.width, source.height, turn)),
                        static_cast<int>(TurnedHeight(source.width, source.height, turn)),
                        source.bits);
  const float cxS = static_cast<float>(source.width / 2.0L);
  const float cyS = static_cast<float>(source.height / 2.0L);
  const float cxT = static_cast<float>(target.width / 2.0L);
  const float cyT = static_cast<float>(target.height / 2.0L);
  target.FillWith(background);
  for (int y = 0; y < target.height; ++y) {
    const long double dy = y - static_cast<long double>(cyT);
    for (int x = 0; x < target.width; ++x) {
      const long double dx = x - static_cast<long double>(cxT);
      const int64_t sx = std::llrintl(dx * s - dy * c + cxS);
      if (sx < 0 || sx >= source.width) continue;
      const int64_t sy = std::llrintl(dx * c + dy * s + cyS);
      if (sy < 0 || sy >= source.height) continue;
      target.SetPixel(x, y, source.Pixel(static_cast<int>(sx), static_cast<int>(sy)));
    }
  }
  return target;
}

}  // namespace rasterkit::reference
