#include <bit>
#include <cmath>
#include <utility>

#include <rasterkit/kernels/rows/extended_sum.h>

namespace rasterkit::kernels {
namespace {

// 128 bits as two words: 32-bit hosts have no wider integer of their own.
struct Wide {
  uint64_t high = 0;
  uint64_t low = 0;
};

Wide Product(uint64_t a, uint64_t b) {
  const uint64_t aLow = a & 0xFFFFFFFF, aHigh = a >> 32;
  const uint64_t bLow = b & 0xFFFFFFFF, bHigh = b >> 32;
  const uint64_t low = aLow * bLow;
  const uint64_t cross = aHigh * bLow + (low >> 32);
  const uint64_t middle = aLow * bHigh + (cross & 0xFFFFFFFF);
  return {aHigh * bHigh + (cross >> 32) + (middle >> 32), (middle << 32) | (low & 0xFFFFFFFF)};
}

Wide ShiftLeft(Wide value, int count) {
  if (count == 0) return value;
  if (count >= 128) return {0, 0};
  if (count >= 64) return {value.low << (count - 64), 0};
  return {value.high << count | value.low >> (64 - count), value.low << count};
}

// Bits that fall out leave a mark in the lowest bit, so that later rounding knows that something
// was there.
Wide ShiftRightMarking(Wide value, int count) {
  if (count == 0) return value;
  if (count >= 128) return {0, value.high != 0 || value.low != 0};
  if (count >= 64) {
    const uint64_t lost = value.low | (count == 64 ? 0 : value.high << (128 - count));
    return {0, (count == 64 ? value.high : value.high >> (count - 64)) | (lost != 0)};
  }
  const uint64_t lost = value.low << (64 - count);
  return {value.high >> count, value.high << (64 - count) | value.low >> count | (lost != 0)};
}

bool IsLess(Wide a, Wide b) {
  return a.high != b.high ? a.high < b.high : a.low < b.low;
}

Wide Difference(Wide big, Wide small) {
  return {big.high - small.high - (big.low < small.low ? 1 : 0), big.low - small.low};
}

// (negative ? -1 : 1) * mantissa * 2^exponent; the mantissa's highest bit is set, or it is 0.
struct Extended {
  bool negative = false;
  uint64_t mantissa = 0;
  int exponent = 0;
};

// Rounds value * 2^exponent to a mantissa of 64 bits, halves to even.
Extended Rounded(bool negative, Wide value, int exponent) {
  if (value.high == 0 && value.low == 0) return {};
  const int zeros =
      value.high != 0 ? std::countl_zero(value.high) : 64 + std::countl_zero(value.low);
  value = ShiftLeft(value, zeros);
  exponent += 64 - zeros;
  constexpr uint64_t kHalf = uint64_t{1} << 63;
  const bool up = value.low > kHalf || (value.low == kHalf && (value.high & 1) != 0);
  if (up && ++value.high == 0) {
    value.high = kHalf;
    ++exponent;
  }
  return {negative, value.high, exponent};
}

Extended FromInteger(int64_t value, int exponent) {
  const uint64_t magnitude =
      value < 0 ? 0 - static_cast<uint64_t>(value) : static_cast<uint64_t>(value);
  return Rounded(value < 0, {0, magnitude}, exponent);
}

Extended FromDouble(double value) {
  int exponent = 0;
  const double fraction = std::frexp(value, &exponent);
  return FromInteger(static_cast<int64_t>(std::ldexp(fraction, 53)), exponent - 53);
}

Extended operator*(const Extended& a, const Extended& b) {
  return Rounded(a.negative != b.negative, Product(a.mantissa, b.mantissa),
                 a.exponent + b.exponent);
}

Extended operator-(Extended value) {
  value.negative = !value.negative;
  return value;
}

// The greater operand keeps 63 bits of room below it and one above; what the smaller loses is
// marked.
Extended operator+(Extended a, Extended b) {
  if (a.mantissa == 0) return b;
  if (b.mantissa == 0) return a;
  if (a.exponent < b.exponent) std::swap(a, b);
  Wide big = ShiftRightMarking({a.mantissa, 0}, 1);
  Wide small = ShiftRightMarking({b.mantissa, 0}, a.exponent - b.exponent + 1);
  const int exponent = a.exponent - 63;
  if (a.negative == b.negative) {
    const uint64_t low = big.low + small.low;
    return Rounded(a.negative, {big.high + small.high + (low < big.low ? 1 : 0), low}, exponent);
  }
  if (IsLess(big, small)) {
    std::swap(big, small);
    a.negative = !a.negative;
  }
  return Rounded(a.negative, Difference(big, small), exponent);
}

int64_t RoundToInteger(const Extended& value) {
  if (value.mantissa == 0) return 0;
  uint64_t magnitude = 0;
  if (value.exponent >= 0) {
    magnitude = value.mantissa << value.exponent;
  } else if (value.exponent >= -64) {
    const int count = -value.exponent;
    const uint64_t whole = count == 64 ? 0 : value.mantissa >> count;
    const uint64_t rest = value.mantissa << (64 - count);
    constexpr uint64_t kHalf = uint64_t{1} << 63;
    magnitude = whole + (rest > kHalf || (rest == kHalf && (whole & 1) != 0) ? 1 : 0);
  }
  const auto result = static_cast<int64_t>(magnitude);
  return value.negative ? -result : result;
}

}  // namespace

int64_t RoundExtendedSum(int64_t doubledA, double s, int64_t doubledB, double c,
                         int64_t doubledOffset) {
  const Extended first = FromInteger(doubledA, -1) * FromDouble(s);
  const Extended second = FromInteger(doubledB, -1) * FromDouble(c);
  return RoundToInteger((first + -second) + FromInteger(doubledOffset, -1));
}

}  // namespace rasterkit::kernels
