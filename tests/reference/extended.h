#pragma once

#include <bit>
#include <cfloat>
#include <cmath>
#include <compare>
#include <concepts>
#include <cstdint>
#include <type_traits>

/// Numbers of the 80-bit extended format, which the rules of many operations require: 64
/// significant bits, every result the nearest such number, of two equally near ones the even one.
namespace rasterkit::reference {

/// Whether the processor has them.
inline constexpr bool kLongDoubleIsExtended = LDBL_MANT_DIG == 64;

/// The same in whole numbers, for every processor. It has no infinities, and exponents have no
/// limits: no reference comes near them.
class ExtendedInWholeNumbers {
 public:
  constexpr ExtendedInWholeNumbers() = default;

  // Implicit, as for numbers that are built in.
  template <std::integral T>
  constexpr ExtendedInWholeNumbers(T value)
      : ExtendedInWholeNumbers(Rounded(value < 0, 0, Magnitude(value), false, 0)) {}

  ExtendedInWholeNumbers(double value) {
    int exponent = 0;
    const double fraction = std::frexp(std::fabs(value), &exponent);
    *this = Rounded(value < 0, 0, static_cast<uint64_t>(std::ldexp(fraction, 53)), false,
                    exponent - 53);
  }

  friend constexpr ExtendedInWholeNumbers operator-(ExtendedInWholeNumbers a) {
    a.isNegative_ = !a.isNegative_ && a.bits_ != 0;
    return a;
  }

  friend constexpr ExtendedInWholeNumbers operator+(ExtendedInWholeNumbers a,
                                                    ExtendedInWholeNumbers b) {
    if (a.bits_ == 0) return b;
    if (b.bits_ == 0) return a;
    if (a.exponent_ < b.exponent_ || (a.exponent_ == b.exponent_ && a.bits_ < b.bits_))
      return b + a;
    // The smaller number in units of the larger one's last bit: whole ones, 64 bits behind them,
    // and whether anything is left.
    const int down = a.exponent_ - b.exponent_;
    const uint64_t whole = down < 64 ? b.bits_ >> down : 0;
    const uint64_t part = down == 0    ? 0
                          : down < 64  ? b.bits_ << (64 - down)
                          : down < 128 ? b.bits_ >> (down - 64)
                                       : 0;
    const bool more = down > 64 && (down >= 128 || b.bits_ << (128 - down) != 0);
    if (a.isNegative_ != b.isNegative_) {
      const uint64_t low = 0 - part - more;
      const uint64_t borrowed = part != 0 || more;
      return Rounded(a.isNegative_, a.bits_ - whole - borrowed, low, more, a.exponent_ - 64);
    }
    const uint64_t high = a.bits_ + whole;
    if (high >= a.bits_) return Rounded(a.isNegative_, high, part, more, a.exponent_ - 64);
    // A carry comes of whole units only, so nothing is left and the last bit of `part` is zero.
    return Rounded(a.isNegative_, uint64_t{1} << 63 | high >> 1, high << 63 | part >> 1, false,
                   a.exponent_ - 63);
  }

  friend constexpr ExtendedInWholeNumbers operator-(ExtendedInWholeNumbers a,
                                                    ExtendedInWholeNumbers b) {
    return a + -b;
  }

  friend constexpr ExtendedInWholeNumbers operator*(ExtendedInWholeNumbers a,
                                                    ExtendedInWholeNumbers b) {
    const uint64_t a1 = a.bits_ >> 32, a0 = a.bits_ & 0xFFFFFFFF;
    const uint64_t b1 = b.bits_ >> 32, b0 = b.bits_ & 0xFFFFFFFF;
    const uint64_t first = a1 * b0 + (a0 * b0 >> 32);
    const uint64_t second = a0 * b1 + (first & 0xFFFFFFFF);
    return Rounded(a.isNegative_ != b.isNegative_, a1 * b1 + (first >> 32) + (second >> 32),
                   a.bits_ * b.bits_, false, a.exponent_ + b.exponent_);
  }

  /// `b` is not zero.
  friend constexpr ExtendedInWholeNumbers operator/(ExtendedInWholeNumbers a,
                                                    ExtendedInWholeNumbers b) {
    // Digit by digit: 64 and two more, of which the first may be zero.
    uint64_t rest = a.bits_, quotient[2] = {0, 0};
    bool isBeyond = false;
    for (int digit = 0; digit < 66; ++digit) {
      const bool isSet = isBeyond || rest >= b.bits_;
      quotient[digit / 64] |= uint64_t{isSet} << (63 - digit % 64);
      if (isSet) rest -= b.bits_;
      isBeyond = rest >> 63 != 0;
      rest <<= 1;
    }
    return Rounded(a.isNegative_ != b.isNegative_, quotient[0], quotient[1], isBeyond || rest != 0,
                   a.exponent_ - b.exponent_ - 127);
  }

  friend constexpr bool operator==(ExtendedInWholeNumbers a, ExtendedInWholeNumbers b) = default;

  friend constexpr std::strong_ordering operator<=>(ExtendedInWholeNumbers a,
                                                    ExtendedInWholeNumbers b) {
    const ExtendedInWholeNumbers difference = a - b;
    if (difference.bits_ == 0) return std::strong_ordering::equal;
    return difference.isNegative_ ? std::strong_ordering::less : std::strong_ordering::greater;
  }

  /// Cut toward zero; below 2^63.
  template <std::integral T>
  explicit constexpr operator T() const {
    const uint64_t whole = exponent_ > -64 ? bits_ >> -exponent_ : 0;
    return static_cast<T>(isNegative_ ? 0 - whole : whole);
  }

  /// The nearest single, of two equally near ones the even one. The value is 0 or neither too small
  /// nor too large for singles of 24 bits.
  explicit operator float() const {
    const uint64_t rest = bits_ & 0xFFFFFFFFFF, half = uint64_t{1} << 39;
    uint64_t kept = bits_ >> 40;
    if (rest > half || (rest == half && (kept & 1) != 0)) ++kept;
    return std::ldexp(static_cast<float>(isNegative_ ? -1 : 1) * static_cast<float>(kept),
                      exponent_ + 40);
  }

  /// The parts of which the value is made: `bits` times 2 to the `exponent`; zero has none.
  constexpr bool IsNegative() const { return isNegative_; }
  constexpr uint64_t Bits() const { return bits_; }
  constexpr int Exponent() const { return exponent_; }

 private:
  constexpr ExtendedInWholeNumbers(bool isNegative, uint64_t bits, int exponent)
      : isNegative_(isNegative), bits_(bits), exponent_(exponent) {}

  template <std::integral T>
  static constexpr uint64_t Magnitude(T value) {
    const auto bits = static_cast<uint64_t>(value);
    return value < 0 ? 0 - bits : bits;
  }

  /// `high` and `low` as one number of 128 bits, and a little more or not, times 2 to the
  /// `exponent`. With a little more, `high` has its first or second bit set.
  static constexpr ExtendedInWholeNumbers Rounded(bool isNegative, uint64_t high, uint64_t low,
                                                  bool more, int exponent) {
    if (high == 0) {
      high = low;
      low = 0;
      exponent -= 64;
    }
    if (high == 0) return {};
    if (const int zeros = std::countl_zero(high); zeros > 0) {
      high = high << zeros | low >> (64 - zeros);
      low <<= zeros;
      exponent -= zeros;
    }
    constexpr uint64_t kHalf = uint64_t{1} << 63;
    if (low > kHalf || (low == kHalf && (more || (high & 1) != 0))) {
      if (++high == 0) {
        high = kHalf;
        ++exponent;
      }
    }
    return {isNegative, high, exponent + 64};
  }

  bool isNegative_ = false;
  uint64_t bits_ = 0;  // zero or with the top bit set
  int exponent_ = 0;
};

/// What the references compute in: the processor's own format where it has it.
using Extended = std::conditional_t<kLongDoubleIsExtended, long double, ExtendedInWholeNumbers>;

/// The nearest whole number, halves to even; below 2^62.
inline int64_t RoundEven(long double x) {
  return std::llrintl(x);
}

constexpr int64_t RoundEven(ExtendedInWholeNumbers x) {
  // What is added leaves no room for a fraction.
  constexpr uint64_t kLarge = uint64_t{1} << 63;
  const auto sum = static_cast<uint64_t>(kLarge + (x.IsNegative() ? -x : x));
  const auto rounded = static_cast<int64_t>(sum - kLarge);
  return x.IsNegative() ? -rounded : rounded;
}

}  // namespace rasterkit::reference
