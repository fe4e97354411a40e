#include <bit>
#include <cmath>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include <rasterkit/codecs/gray_steps.h>
#include <rasterkit/runtime/half.h>

#include "tests/reference/stretch_reference.h"

/// Numbers without rounding, and the gray of each.
namespace rasterkit::detail {
namespace {

using reference::GrayOfNumber;
using reference::WholeNumber;

constexpr uint32_t kSeed = 20260511;

TEST(ExactSum, Should_CompareTheGreatestAndTheLeastDouble) {
  constexpr double kGreatest = std::numeric_limits<double>::max();
  constexpr double kLeast = std::numeric_limits<double>::denorm_min();
  ExactSum sum;
  EXPECT_EQ(sum.Sign(), 0);
  sum.Add(510, ExactOf(kGreatest));
  sum.Add(-509, ExactOf(kGreatest));
  sum.Add(-1, ExactOf(kGreatest));
  EXPECT_EQ(sum.Sign(), 0);
  sum.Add(1, ExactOf(-kLeast));
  EXPECT_EQ(sum.Sign(), -1);
  sum.Add(2, ExactOf(kLeast));
  EXPECT_EQ(sum.Sign(), 1);
}

TEST(ExactSum, Should_AgreeWithWholeNumbers) {
  std::mt19937_64 random(kSeed);
  for (int i = 0; i < 20000; ++i) {
    ExactSum sum;
    WholeNumber whole = 0;
    for (int j = 0; j < 4; ++j) {
      const int factor = static_cast<int>(random() % 1021) - 510;
      const auto number = static_cast<int64_t>(random()) >> (random() % 64);
      sum.Add(factor, ExactOf(number));
      whole += WholeNumber{factor} * number;
    }
    ASSERT_EQ(sum.Sign(), whole > 0 ? 1 : whole < 0 ? -1 : 0) << "seed " << kSeed;
  }
}

TEST(ExactNumber, Should_GiveTheSameDouble) {
  std::mt19937_64 random(kSeed);
  for (int i = 0; i < 20000; ++i) {
    const auto number = std::bit_cast<double>(random());
    if (!std::isfinite(number)) continue;
    ASSERT_EQ(DoubleOf(ExactOf(number)), number);
  }
  EXPECT_EQ(DoubleOf(ExactOf(std::numeric_limits<double>::denorm_min())),
            std::numeric_limits<double>::denorm_min());
}

TEST(NumberKeys, OfHalves_Should_BeInTheOrderOfTheNumbers) {
  const KeyRange all = NumberKeys(NumberType::float16);
  std::vector<uint16_t> halves(65536);
  for (size_t i = 0; i < halves.size(); ++i) halves[i] = static_cast<uint16_t>(i);
  std::vector<uint64_t> keys(halves.size());
  LoadKeys(NumberType::float16, reinterpret_cast<const uint8_t*>(halves.data()), 2, keys.size(),
           keys.data());
  std::vector<double> numbers(65536, std::nan(""));
  for (size_t i = 0; i < keys.size(); ++i) numbers.at(keys[i]) = HalfToDouble(halves[i]);
  for (uint64_t key = 0; key < numbers.size(); ++key) {
    ASSERT_EQ(all.Has(key), !std::isnan(numbers[key])) << key;
    if (key <= all.first || key > all.last) continue;
    ASSERT_LE(numbers[key - 1], numbers[key]) << key;
  }
}

TEST(NumberKeys, OfDoubles_Should_BeInTheOrderOfTheNumbers) {
  std::mt19937_64 random(kSeed);
  const KeyRange all = NumberKeys(NumberType::float64);
  for (int i = 0; i < 50000; ++i) {
    const auto a = std::bit_cast<double>(random()), b = std::bit_cast<double>(random());
    ASSERT_EQ(all.Has(KeyOfDouble(a)), !std::isnan(a));
    if (std::isnan(a) || std::isnan(b)) continue;
    ASSERT_EQ(a < b, KeyOfDouble(a) < KeyOfDouble(b)) << a << " " << b;
  }
}

TEST(MissingKeys, Should_BeThoseOfTheNumber) {
  struct Case {
    const char* text;
    NumberType type;
    bool isKnown;
    const char* number;
  };
  const Case cases[] = {{"-9999", NumberType::int16, true, "-9999"},
                        {"-9999.0", NumberType::int16, true, "-9999"},
                        {"1e3", NumberType::uint16, true, "1000"},
                        {"-9999", NumberType::uint16, true, nullptr},
                        {"0.5", NumberType::int32, true, nullptr},
                        {"9007199254740993", NumberType::int64, true, "9007199254740993"},
                        {"18446744073709551615", NumberType::uint64, true, "18446744073709551615"},
                        {"18446744073709551616", NumberType::uint64, true, nullptr},
                        {"0.1", NumberType::float32, true, "0.1"},
                        {"-3.4e38", NumberType::float32, true, "-3.4e+38"},
                        {"-3.4028235e+38", NumberType::float32, true, "-3.4028235e+38"},
                        {"-9999", NumberType::float16, true, "-10000"},
                        {"", NumberType::float32, false, nullptr},
                        {"none", NumberType::float32, false, nullptr}};
  for (const Case& one : cases) {
    const MissingKeys missing = MissingKeysOf(one.text, one.type);
    EXPECT_EQ(missing.isKnown, one.isKnown) << one.text;
    EXPECT_FALSE(missing.isNan);
    const bool occurs = missing.keys.first <= missing.keys.last;
    ASSERT_EQ(occurs, one.number != nullptr) << one.text;
    if (!occurs) continue;
    EXPECT_EQ(TextOfKey(one.type, missing.keys.first), one.number);
  }
  EXPECT_TRUE(MissingKeysOf("nan", NumberType::float64).isNan);
  const MissingKeys zero = MissingKeysOf("0", NumberType::float32);
  EXPECT_EQ(zero.keys.last, zero.keys.first + 1) << "both zeros";
}

template <class T>
uint64_t KeyOf(NumberType type, T number) {
  uint64_t key = 0;
  LoadKeys(type, reinterpret_cast<const uint8_t*>(&number), sizeof number, 1, &key);
  return key;
}

struct Ends {
  int64_t black, white;
};

template <class T>
void ExpectEveryNumber(NumberType type, const Ends& ends) {
  const GraySteps steps(type, {ExactOf(ends.black), ExactOf(ends.white)});
  for (int64_t number = std::numeric_limits<T>::min(); number <= std::numeric_limits<T>::max();
       ++number) {
    ASSERT_EQ(steps.Of(KeyOf(type, static_cast<T>(number))),
              GrayOfNumber(number, ends.black, ends.white))
        << number << " of " << ends.black << " to " << ends.white;
  }
}

TEST(GraySteps, EveryWord_Should_HaveTheNearestGray) {
  std::vector<Ends> ranges = {{0, 65535},      {1000, 1600},   {1600, 1000},  {5, 5},
                              {65535, 65535},  {0, 255},       {0, 1},        {-32768, 32767},
                              {-70000, 90000}, {70000, 90000}, {90000, 70000}};
  std::mt19937 random(kSeed);
  for (int i = 0; i < 30; ++i) {
    ranges.push_back({static_cast<int64_t>(random() % 65536) - 10000,
                      static_cast<int64_t>(random() % 65536) - 10000});
  }
  for (const Ends& ends : ranges) {
    ExpectEveryNumber<uint16_t>(NumberType::uint16, ends);
    ExpectEveryNumber<int16_t>(NumberType::int16, ends);
    ExpectEveryNumber<int8_t>(NumberType::int8, ends);
  }
}

TEST(GraySteps, EveryHalf_Should_HaveTheNearestGray) {
  // Halves are whole in units of 2^-24.
  for (const auto& [black, white] :
       {std::pair{0.0, 1.0}, {-65504.0, 65504.0}, {0.1, -0.3}, {5.9604644775390625e-08, 3e-7}}) {
    const double unit = 0x1p-40;
    const double low = std::round(black / unit) * unit, high = std::round(white / unit) * unit;
    const GraySteps steps(NumberType::float16, {ExactOf(low), ExactOf(high)});
    for (int bits = 0; bits < 65536; ++bits) {
      const double number = HalfToDouble(static_cast<uint16_t>(bits));
      const int gray = steps.Of(KeyOf(NumberType::float16, static_cast<uint16_t>(bits)));
      if (std::isnan(number)) {
        ASSERT_EQ(gray, 255);
      } else if (std::isinf(number)) {
        ASSERT_EQ(gray, (number > 0) == (high > low) ? 255 : 0);
      } else {
        ASSERT_EQ(gray, GrayOfNumber(static_cast<WholeNumber>(number / unit),
                                     static_cast<WholeNumber>(low / unit),
                                     static_cast<WholeNumber>(high / unit)))
            << number;
      }
    }
  }
}

template <class T>
void ExpectBorders(NumberType type, std::mt19937_64& random) {
  for (int round = 0; round < 20; ++round) {
    const auto number = [&] {
      return static_cast<T>(static_cast<T>(random()) >> (random() % (8 * sizeof(T))));
    };
    const T black = number(), white = number();
    const GraySteps steps(type, {ExactOf(black), ExactOf(white)});
    for (int i = 0; i < 300; ++i) {
      // Numbers at the border of a gray, and others.
      const WholeNumber border = WholeNumber{black} + (WholeNumber{white} - WholeNumber{black}) *
                                                          (2 * (i % 256) - 1) / 510;
      for (const WholeNumber place : {border - 1, border, border + 1, WholeNumber{number()}}) {
        if (place < std::numeric_limits<T>::min() || place > std::numeric_limits<T>::max())
          continue;
        ASSERT_EQ(steps.Of(KeyOf(type, static_cast<T>(place))), GrayOfNumber(place, black, white))
            << "seed " << kSeed;
      }
    }
  }
}

TEST(GraySteps, LongWholeNumbers_Should_HaveTheNearestGray) {
  std::mt19937_64 random(kSeed);
  ExpectBorders<int64_t>(NumberType::int64, random);
  ExpectBorders<uint64_t>(NumberType::uint64, random);
}

/// Numbers that are whole in units of 2^-20.
TEST(GraySteps, FloatingNumbers_Should_HaveTheNearestGray) {
  std::mt19937_64 random(kSeed);
  const double unit = 0x1p-20;
  for (int round = 0; round < 40; ++round) {
    const auto whole = [&] { return static_cast<int64_t>(random()) >> (20 + random() % 30); };
    const int64_t black = whole(), white = whole();
    const ShownRange range{ExactOf(static_cast<double>(black) * unit),
                           ExactOf(static_cast<double>(white) * unit)};
    const GraySteps doubles(NumberType::float64, range), floats(NumberType::float32, range);
    for (int i = 0; i < 500; ++i) {
      const int64_t place = i % 2 == 0 ? whole() : black + (white - black) / 510 * (i / 2 % 511);
      const double number = static_cast<double>(place) * unit;
      ASSERT_EQ(doubles.Of(KeyOfDouble(number)), GrayOfNumber(place, black, white))
          << "seed " << kSeed;
      const auto nearest = static_cast<float>(number);
      ASSERT_EQ(floats.Of(KeyOf(NumberType::float32, nearest)),
                GrayOfNumber(static_cast<WholeNumber>(static_cast<double>(nearest) / unit), black,
                             white));
    }
  }
}

TEST(GraySteps, WholeRangeOfDoubles_Should_NotOverflow) {
  constexpr double kGreatest = std::numeric_limits<double>::max();
  const GraySteps steps(NumberType::float64, {ExactOf(-kGreatest), ExactOf(kGreatest)});
  EXPECT_EQ(steps.Of(KeyOfDouble(-kGreatest)), 0);
  EXPECT_EQ(steps.Of(KeyOfDouble(0)), 128);
  EXPECT_EQ(steps.Of(KeyOfDouble(kGreatest)), 255);
  constexpr double kLeast = std::numeric_limits<double>::denorm_min();
  const GraySteps fine(NumberType::float64, {ExactOf(0.0), ExactOf(kLeast)});
  EXPECT_EQ(fine.Of(KeyOfDouble(0)), 0);
  EXPECT_EQ(fine.Of(KeyOfDouble(kLeast)), 255);
}

}  // namespace
}  // namespace rasterkit::detail
