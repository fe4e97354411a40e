#include <cmath>
#include <cstdlib>

#include <rasterkit/codecs/exact_number.h>

namespace rasterkit::detail {
namespace {

/// The least double is this power of two.
constexpr int kLeastExponent = -1074;
constexpr int kWordBits = 64;

__extension__ using Wide = unsigned __int128;

}  // namespace

ExactNumber ExactOf(int64_t number) {
  const auto bits = static_cast<uint64_t>(number);
  return {number < 0, number < 0 ? ~bits + 1 : bits, 0};
}

ExactNumber ExactOf(uint64_t number) {
  return {false, number, 0};
}

ExactNumber ExactOf(double number) {
  if (number == 0) return {};
  constexpr int kFraction = 53;
  int exponent = 0;
  const double fraction = std::frexp(std::abs(number), &exponent);
  auto magnitude = static_cast<uint64_t>(std::ldexp(fraction, kFraction));
  exponent -= kFraction;
  // The least doubles have fewer bits: those that are cut are zeros.
  if (exponent < kLeastExponent) {
    magnitude >>= kLeastExponent - exponent;
    exponent = kLeastExponent;
  }
  return {number < 0, magnitude, exponent};
}

double DoubleOf(const ExactNumber& number) {
  const double size = std::ldexp(static_cast<double>(number.magnitude), number.exponent);
  return number.isNegative ? -size : size;
}

void ExactSum::Add(int factor, const ExactNumber& number) {
  const Wide product = static_cast<Wide>(std::abs(factor)) * number.magnitude;
  const auto low = static_cast<uint64_t>(product);
  const auto high = static_cast<uint64_t>(product >> kWordBits);
  const int place = number.exponent - kLeastExponent;
  const int shift = place % kWordBits;
  auto word = static_cast<size_t>(place / kWordBits);
  const auto beyond = [shift](uint64_t bits) {
    return shift == 0 ? uint64_t{0} : bits >> (kWordBits - shift);
  };
  const uint64_t parts[] = {low << shift, high << shift | beyond(low), beyond(high)};
  Words& words = (factor < 0) != number.isNegative ? negative_ : positive_;
  Wide carry = 0;
  for (size_t i = 0; word < words.size(); ++i, ++word) {
    if (i >= std::size(parts) && carry == 0) return;
    carry += words[word];
    if (i < std::size(parts)) carry += parts[i];
    words[word] = static_cast<uint64_t>(carry);
    carry >>= kWordBits;
  }
}

int ExactSum::Sign() const {
  for (size_t i = positive_.size(); i-- > 0;) {
    if (positive_[i] != negative_[i]) return positive_[i] > negative_[i] ? 1 : -1;
  }
  return 0;
}

}  // namespace rasterkit::detail
