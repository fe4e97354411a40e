#include "tests/reference/extended.h"

#include <cmath>
#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace rasterkit::reference {
namespace {

/// A value's parts, the same for both kinds of numbers.
struct Parts {
  bool isNegative = false;
  uint64_t bits = 0;
  int64_t exponent = 0;
  bool operator==(const Parts&) const = default;
};

Parts PartsOf(ExtendedInWholeNumbers x) {
  return {x.IsNegative(), x.Bits(), x.Exponent()};
}

[[maybe_unused]] Parts PartsOf(long double x) {
  if (x == 0) return {};
  int exponent = 0;
  const long double fraction = std::frexp(std::fabs(x), &exponent);
  return {x < 0, static_cast<uint64_t>(std::ldexp(fraction, 64)), exponent - 64};
}

Parts PartsOf(float x) {
  return PartsOf(ExtendedInWholeNumbers(x));
}
Parts PartsOf(int64_t x) {
  return PartsOf(ExtendedInWholeNumbers(x));
}

/// An operand: `bits` times 2 to the `exponent`, which is a power that doubles have.
struct Operand {
  bool isNegative;
  uint64_t bits;
  int exponent;

  template <class Number>
  Number As() const {
    const Number value = Number(bits) * Number(std::ldexp(1.0, exponent));
    return isNegative ? -value : value;
  }
};

/// Full ones, short ones, ones beside powers of two, zero.
Operand DrawOperand(std::mt19937_64& random) {
  uint64_t bits = random();
  switch (random() % 8) {
    case 0:
      bits >>= random() % 64;
      break;
    case 1:
      bits = uint64_t{1} << random() % 64;
      break;
    case 2:
      bits = (uint64_t{1} << random() % 64) - 1;
      break;
    case 3:
      bits &= ~uint64_t{0} << random() % 64;
      break;
    default:
      break;
  }
  const int range = random() % 2 == 0 ? 4 : 80;
  return {random() % 2 == 0, bits, static_cast<int>(random() % (2 * range)) - range - 40};
}

/// What the operations make of a pair of operands, one after the other.
template <class Number>
std::vector<Parts> Results(const Operand& first, const Operand& second) {
  const auto a = first.As<Number>(), b = second.As<Number>();
  std::vector<Parts> results{PartsOf(a), PartsOf(a + b), PartsOf(a - b), PartsOf(a * b),
                             PartsOf(static_cast<float>(a))};
  if (b != 0) results.push_back(PartsOf(a / b));
  const Number limit = std::ldexp(1.0, 61);
  if (a < limit && a > -limit) {
    results.push_back(PartsOf(RoundEven(a)));
    results.push_back(PartsOf(static_cast<int64_t>(a)));
  }
  for (const bool answer : {a<b, a <= b, a> b, a >= b, a == b})
    results.push_back(PartsOf(int64_t{answer}));
  return results;
}

/// Halves and what lies a last place beside them, which round in every direction.
template <class Number>
std::vector<Parts> ResultsAtHalves(uint64_t whole) {
  const Number last = Number(1) / Number(uint64_t{1} << 63);
  std::vector<Parts> results;
  for (const Number& half : {Number(whole) + Number(0.5), -(Number(whole) + Number(0.5))})
    for (const Number& beside : {half - last * whole, half, half + last * whole})
      results.push_back(PartsOf(RoundEven(beside)));
  return results;
}

class Digest {
 public:
  void Add(const std::vector<Parts>& results) {
    for (const Parts& parts : results)
      for (const uint64_t word :
           {uint64_t{parts.isNegative}, parts.bits, static_cast<uint64_t>(parts.exponent)}) {
        value_ ^= word;
        value_ *= 0x100000001B3;
        value_ ^= value_ >> 29;
      }
  }
  uint64_t Value() const { return value_; }

 private:
  uint64_t value_ = 0xCBF29CE484222325;
};

/// Made by processors that have such numbers; these make it once more at every run.
constexpr uint64_t kDigestOfTheProcessors = 516659836488532723;

TEST(ExtendedTest, InWholeNumbers_Should_EqualTheProcessorsNumbers) {
  Digest inWholeNumbers, ofTheProcessor;
  std::mt19937_64 random(80);
  for (int round = 0; round < 300000; ++round) {
    const Operand a = DrawOperand(random), b = DrawOperand(random);
    const auto results = Results<ExtendedInWholeNumbers>(a, b);
    const auto halves = ResultsAtHalves<ExtendedInWholeNumbers>(b.bits >> 20);
    inWholeNumbers.Add(results);
    inWholeNumbers.Add(halves);
    if constexpr (kLongDoubleIsExtended) {
      const auto expected = Results<long double>(a, b);
      const auto expectedHalves = ResultsAtHalves<long double>(b.bits >> 20);
      ASSERT_TRUE(results == expected) << "round " << round;
      ASSERT_TRUE(halves == expectedHalves) << "round " << round;
      ofTheProcessor.Add(expected);
      ofTheProcessor.Add(expectedHalves);
    }
  }
  EXPECT_EQ(inWholeNumbers.Value(), kDigestOfTheProcessors);
  if (kLongDoubleIsExtended) {
    EXPECT_EQ(ofTheProcessor.Value(), kDigestOfTheProcessors);
  }
}

TEST(ExtendedTest, InWholeNumbers_Should_RoundOnceAndToTheEvenNumber) {
  using Number = ExtendedInWholeNumbers;
  const uint64_t top = uint64_t{1} << 63;
  const Number half = 0.5;
  EXPECT_EQ(Number(top) + half, Number(top));
  EXPECT_EQ(Number(top + 1) + half, Number(top + 2));
  EXPECT_EQ(Number(top) + half + Number(0x1p-60), Number(top));  // twice: the first sum is even
  EXPECT_EQ(Number(top) + (half + Number(0x1p-60)), Number(top + 1));
  EXPECT_EQ(Number(~uint64_t{0}) + half, Number(top) * 2);
  const Number large = Number(top) * 0x1p65;
  EXPECT_EQ(large - Number(top), large);
  EXPECT_EQ((large - Number(top + 1)).Bits(), ~uint64_t{0});
  EXPECT_EQ((Number(1) / 3).Bits(), 0xAAAAAAAAAAAAAAABu);
  EXPECT_EQ((Number(297) / 1000).Bits(), 0x9810624DD2F1A9FCu);
  EXPECT_EQ(static_cast<int>(Number(-7) / 2), -3);
  EXPECT_EQ(RoundEven(Number(-7) / 2), -4);
  EXPECT_EQ(RoundEven(Number(5) / 2), 2);
  EXPECT_EQ(static_cast<float>(Number(16777217)), 16777216.0f);
  EXPECT_EQ(static_cast<float>(Number(16777219)), 16777220.0f);
  EXPECT_TRUE(Number(-3) < Number(-2) && Number(-1) < Number(0) && !(Number(0) < Number(0)));
}

}  // namespace
}  // namespace rasterkit::reference
