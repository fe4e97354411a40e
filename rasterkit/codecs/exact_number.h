#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include <rasterkit/runtime/export.h>

namespace rasterkit::detail {

/// A finite number of any number type without rounding: a whole magnitude times a power of two,
/// 2^-1074 to 2^971.
struct ExactNumber {
  bool isNegative = false;
  uint64_t magnitude = 0;
  int exponent = 0;
};

RASTERKIT_EXPORT ExactNumber ExactOf(int64_t number);
RASTERKIT_EXPORT ExactNumber ExactOf(uint64_t number);
/// The number must be finite.
RASTERKIT_EXPORT ExactNumber ExactOf(double number);

/// The nearest double.
RASTERKIT_EXPORT double DoubleOf(const ExactNumber& number);

/// A sum of numbers times small whole factors, without rounding: wide enough for the greatest and
/// the least double at once.
class RASTERKIT_EXPORT ExactSum {
 public:
  /// `factor` is at most 2^15 either way, and at most 2^15 numbers are added.
  void Add(int factor, const ExactNumber& number);
  /// -1, 0 or 1.
  int Sign() const;

 private:
  /// 2098 bits of doubles, 64 of a magnitude, 30 of factors and carries.
  using Words = std::array<uint64_t, 36>;

  Words positive_{}, negative_{};
};

}  // namespace rasterkit::detail
