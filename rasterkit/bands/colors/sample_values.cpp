#include <algorithm>

#include <rasterkit/bands/colors/sample_values.h>

namespace rasterkit::detail {

uint16_t HalfOf(double value) {
  constexpr int kFractionBits = 10, kLowestExponent = -24;
  constexpr double kFirstInfinite = 65520;
  const auto sign = static_cast<uint16_t>(std::signbit(value) ? 0x8000 : 0);
  if (value != value) return static_cast<uint16_t>(sign | 0x7E00);
  const double size = std::fabs(value);
  if (size == 0) return sign;
  if (size >= kFirstInfinite) return static_cast<uint16_t>(sign | 0x7C00);
  int exponent = 0;
  std::frexp(size, &exponent);
  // Steps of a half at this size; the smallest numbers have the step of the subnormal ones.
  const int step = std::max(exponent - 1 - kFractionBits, kLowestExponent);
  const auto steps = static_cast<unsigned>(std::llrint(std::ldexp(size, -step)));
  // Rounding up to the next power of two carries into the exponent.
  const auto exponentBits = static_cast<unsigned>(step - kLowestExponent) << kFractionBits;
  return static_cast<uint16_t>(sign | (exponentBits + steps));
}

}  // namespace rasterkit::detail
