#pragma once

#include <bit>
#include <cfloat>
#include <cstdint>

/// The grey value written straight from its rule, slow and obvious: red * 0.297 + green * 0.589 +
/// blue * 0.114 in the 80-bit extended format, cut toward zero. Twice: with the processor's own
/// extended numbers where `long double` is that format, and with whole numbers everywhere.
namespace rasterkit::reference {

__extension__ typedef unsigned __int128 Wide;

/// The extended format has 64 significant bits.
inline constexpr bool kLongDoubleIsExtended = LDBL_MANT_DIG == 64;

/// Each constant, product and sum is rounded to `long double`, in this order; `volatile` keeps
/// every step.
inline uint8_t GrayInLongDouble(uint8_t r, uint8_t g, uint8_t b) {
  const volatile long double red = r * 0.297L;
  const volatile long double green = g * 0.589L;
  const volatile long double blue = b * 0.114L;
  const volatile long double redAndGreen = red + green;
  const volatile long double sum = redAndGreen + blue;
  return static_cast<uint8_t>(sum);
}

/// `value` rounded to 64 significant bits, halves to even.
inline Wide RoundToExtended(Wide value) {
  const auto high = static_cast<uint64_t>(value >> 64);
  if (high == 0) return value;
  const int extra = 64 - std::countl_zero(high);
  const Wide unit = Wide{1} << extra;
  const Wide kept = value / unit * unit;
  const Wide rest = value - kept;
  const bool odd = (kept & unit) != 0;
  const bool up = rest > unit / 2 || (rest == unit / 2 && odd);
  return up ? kept + unit : kept;
}

/// The same in whole numbers, counted in units of 2^-67: the last bit of the smallest constant, so
/// that every value of the computation is a whole number of them.
inline uint8_t GrayInWholeNumbers(uint8_t r, uint8_t g, uint8_t b) {
  // Thousandths in units of 2^-67, rounded to 64 bits: 2^67 * n / 1000 keeps a fraction, so it is
  // rounded at the weight's own last bit (2^-65, 2^-64 and 2^-67 for the three weights).
  const auto weight = [](unsigned thousandths, int lastBit) {
    const Wide scaled = Wide{thousandths} << lastBit;
    return (2 * scaled + 1000) / 2000 << (67 - lastBit);
  };
  static const Wide redWeight = weight(297, 65);
  static const Wide greenWeight = weight(589, 64);
  static const Wide blueWeight = weight(114, 67);
  const Wide red = RoundToExtended(r * redWeight);
  const Wide green = RoundToExtended(g * greenWeight);
  const Wide blue = RoundToExtended(b * blueWeight);
  const Wide sum = RoundToExtended(RoundToExtended(red + green) + blue);
  return static_cast<uint8_t>(sum >> 67);
}

}  // namespace rasterkit::reference
