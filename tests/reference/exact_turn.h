#pragma once

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>

/// Sine and cosine of an angle in degrees, from a power series in whole numbers.
namespace rasterkit::reference {

/// A number from 0 on, below 2^32, with 288 bits behind the point.
class LongFraction {
 public:
  LongFraction() = default;

  /// From 0 on, below 2^32; bits beyond the last are cut.
  explicit LongFraction(double value) {
    for (int i = kWords - 1; i >= 0; --i) {
      const double whole = std::floor(value);
      words_[i] = static_cast<uint32_t>(whole);
      value = (value - whole) * 0x1p32;
    }
  }

  static LongFraction RadiansPerDegree() {
    LongFraction result;
    result.words_ = {0x95B7B08B, 0xA64A6428, 0xC728154D, 0xA80DAF35, 0xC805BD77,
                     0x74A42E26, 0x70762FB3, 0x94A74E45, 0x0477D1A8, 0};
    return result;
  }

  LongFraction& operator+=(const LongFraction& other) {
    uint64_t carry = 0;
    for (int i = 0; i < kWords; ++i) {
      carry += uint64_t{words_[i]} + other.words_[i];
      words_[i] = static_cast<uint32_t>(carry);
      carry >>= 32;
    }
    return *this;
  }

  /// `other` is not larger.
  LongFraction& operator-=(const LongFraction& other) {
    uint64_t borrow = 0;
    for (int i = 0; i < kWords; ++i) {
      const uint64_t difference = uint64_t{words_[i]} - other.words_[i] - borrow;
      words_[i] = static_cast<uint32_t>(difference);
      borrow = difference >> 63;
    }
    return *this;
  }

  friend LongFraction operator*(const LongFraction& a, const LongFraction& b) {
    std::array<uint32_t, 2 * kWords> product{};
    for (int i = 0; i < kWords; ++i) {
      uint64_t carry = 0;
      for (int k = 0; k < kWords; ++k) {
        carry += uint64_t{a.words_[i]} * b.words_[k] + product[i + k];
        product[i + k] = static_cast<uint32_t>(carry);
        carry >>= 32;
      }
      product[i + kWords] = static_cast<uint32_t>(carry);
    }
    LongFraction result;
    for (int i = 0; i < kWords; ++i) result.words_[i] = product[i + kWords - 1];
    return result;
  }

  friend LongFraction operator/(const LongFraction& a, uint32_t divisor) {
    LongFraction result;
    uint64_t rest = 0;
    for (int i = kWords - 1; i >= 0; --i) {
      rest = rest << 32 | a.words_[i];
      result.words_[i] = static_cast<uint32_t>(rest / divisor);
      rest %= divisor;
    }
    return result;
  }

  /// The nearest double.
  double Nearest() const {
    int top = 32 * kWords - 1;
    while (top >= 0 && !Bit(top)) --top;
    uint64_t bits = 0;
    for (int i = top; i > top - 53; --i) bits = 2 * bits + Bit(i);
    bits += Bit(top - 53);
    return std::ldexp(static_cast<double>(bits), top - 52 - 32 * (kWords - 1));
  }

 private:
  static constexpr int kWords = 10;  // the last one stands before the point

  bool Bit(int i) const { return i >= 0 && (words_[i / 32] >> (i % 32) & 1) != 0; }

  std::array<uint32_t, kWords> words_{};
};

struct Turn {
  double sine = 0;
  double cosine = 1;
};

/// The doubles nearest to the exact sine and cosine.
inline Turn ExactTurn(float degrees) {
  double rest = std::fmod(std::fabs(static_cast<double>(degrees)), 360.0);
  const int quarter = static_cast<int>(rest / 90);
  rest -= quarter * 90.0;
  const LongFraction angle = LongFraction::RadiansPerDegree() * LongFraction(rest);
  LongFraction sine, cosine, term(1);
  LongFraction subtractedFromSine, subtractedFromCosine;
  for (uint32_t n = 0; n < 80; ++n) {
    const bool isSubtracted = n % 4 >= 2;
    if (n % 2 == 0)
      (isSubtracted ? subtractedFromCosine : cosine) += term;
    else
      (isSubtracted ? subtractedFromSine : sine) += term;
    term = term * angle / (n + 1);
  }
  sine -= subtractedFromSine;
  cosine -= subtractedFromCosine;
  double s = sine.Nearest(), c = cosine.Nearest();
  for (int i = 0; i < quarter; ++i) {
    const double turned = -s;
    s = c;
    c = turned;
  }
  if (degrees < 0) s = -s;
  return {s + 0.0, c + 0.0};
}

}  // namespace rasterkit::reference
