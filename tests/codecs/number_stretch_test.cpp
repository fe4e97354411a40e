#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/picture_io.h>

#include "tests/reference/stretch_reference.h"

/// Pictures of numbers by each stretch, beside the plain rule.
namespace rasterkit::test {
namespace {

using Kind = NumberStretch::Kind;
using reference::EndsWithout;
using reference::GrayOfNumber;
using testing::ElementsAre;

constexpr uint32_t kSeed = 20260512;

NumberStretch Percent(double percent) {
  NumberStretch stretch;
  stretch.kind = Kind::percent;
  stretch.percent = percent;
  return stretch;
}

NumberStretch Fixed(double black, double white) {
  NumberStretch stretch;
  stretch.kind = Kind::fixed;
  stretch.least = black;
  stretch.greatest = white;
  return stretch;
}

NumberStretch Of(Kind kind) {
  NumberStretch stretch;
  stretch.kind = kind;
  return stretch;
}

PixelLayout Layout(NumberType type, int bands = 1, ColorModel model = ColorModel::gray) {
  PixelLayout layout;
  layout.type = type;
  layout.bits = static_cast<int>(8 * BytesOf(type));
  layout.bands = bands;
  layout.model = model;
  return layout;
}

template <class T>
Samples Made(const PixelLayout& layout, int width, int height, const std::vector<T>& numbers,
             bool inPlanes = false) {
  Samples samples(layout, width, height, inPlanes);
  const auto bands = static_cast<size_t>(layout.bands);
  const auto columns = static_cast<size_t>(width);
  for (size_t i = 0; i < numbers.size(); ++i) {
    const size_t pixel = i / bands, band = i % bands;
    const int y = static_cast<int>(pixel / columns);
    const size_t x = pixel % columns;
    uint8_t* const row = inPlanes ? samples.Row(y, static_cast<int>(band)) : samples.Row(y);
    std::memcpy(row + (inPlanes ? x : x * bands + band) * sizeof(T), &numbers[i], sizeof(T));
  }
  return samples;
}

std::vector<int> Bytes(const Raster& raster) {
  std::vector<int> bytes;
  for (int y = 0; y < raster.Height(); ++y) {
    bytes.insert(bytes.end(), raster.Row(y), raster.Row(y) + raster.RowBytes());
  }
  return bytes;
}

struct Shown {
  std::vector<int> bytes;
  Changes changes;
};

Shown Show(Samples samples, const NumberStretch& stretch, const std::string& noData = "") {
  Shown shown;
  shown.bytes = Bytes(VisiblePixels(std::move(samples), noData, shown.changes, stretch));
  return shown;
}

/// Random numbers, some of which mean "no data".
template <class T>
std::vector<T> Numbers(size_t count, T missing, std::mt19937_64& random) {
  std::vector<T> numbers;
  const uint64_t low = random() % 100, span = random() % 60;
  for (size_t i = 0; i < count; ++i) {
    const auto number = static_cast<T>(low + random() % (span + 1));
    numbers.push_back(random() % 5 == 0 ? missing : number);
  }
  return numbers;
}

template <class T>
class NumberStretches : public testing::Test {};

struct TypeNames {
  template <class T>
  static std::string GetName(int index) {
    return std::to_string(index);
  }
};

using Types =
    testing::Types<int8_t, uint16_t, int16_t, uint32_t, int32_t, uint64_t, int64_t, float, double>;
TYPED_TEST_SUITE(NumberStretches, Types, TypeNames);

template <class T>
constexpr NumberType TypeOf() {
  if constexpr (std::is_same_v<T, float>) return NumberType::float32;
  if constexpr (std::is_same_v<T, double>) return NumberType::float64;
  constexpr bool kSigned = std::is_signed_v<T>;
  switch (sizeof(T)) {
    case 1:
      return NumberType::int8;
    case 2:
      return kSigned ? NumberType::int16 : NumberType::uint16;
    case 4:
      return kSigned ? NumberType::int32 : NumberType::uint32;
    default:
      return kSigned ? NumberType::int64 : NumberType::uint64;
  }
}

TYPED_TEST(NumberStretches, EveryKind_Should_BeThatOfTheRule) {
  using T = TypeParam;
  std::mt19937_64 random(kSeed);
  constexpr T kMissing = 120;
  for (int round = 0; round < 60; ++round) {
    const int width = 1 + static_cast<int>(random() % 9),
              height = 1 + static_cast<int>(random() % 9);
    const std::vector<T> numbers =
        Numbers<T>(static_cast<size_t>(width * height), kMissing, random);
    std::vector<T> measured;
    for (const T number : numbers) {
      if (number != kMissing) measured.push_back(number);
    }
    if (measured.empty()) continue;
    const double percents[] = {0, 2, 10, 33.3, 49.9};
    for (const NumberStretch& stretch :
         {NumberStretch(), Of(Kind::minMax), Percent(percents[round % 5]), Fixed(-3, 77),
          Fixed(77, -3)}) {
      std::pair<double, double> ends{stretch.least, stretch.greatest};
      if (stretch.kind != Kind::fixed) {
        const double percent = stretch.kind == Kind::percent ? stretch.percent : 0;
        const auto [black, white] = EndsWithout(measured, percent);
        ends = {static_cast<double>(black), static_cast<double>(white)};
      }
      std::vector<int> expected;
      for (const T number : numbers) {
        expected.push_back(number == kMissing ? 255
                                              : GrayOfNumber(static_cast<int64_t>(number),
                                                             static_cast<int64_t>(ends.first),
                                                             static_cast<int64_t>(ends.second)));
      }
      const Shown shown = Show(Made(Layout(TypeOf<T>()), width, height, numbers), stretch, "120");
      ASSERT_EQ(shown.bytes, expected) << "seed " << kSeed << ", round " << round;
      const std::string note = "numbers from " + std::to_string(static_cast<int64_t>(ends.first)) +
                               " to " + std::to_string(static_cast<int64_t>(ends.second)) +
                               " are shown as black to white";
      ASSERT_THAT(shown.changes.notes, ElementsAre(note));
    }
  }
}

TEST(NumberStretch, LongNumbers_Should_BeToldApartBeyondDoubles) {
  constexpr int64_t kFar = int64_t{1} << 60;
  const Shown shown =
      Show(Made<int64_t>(Layout(NumberType::int64), 4, 1, {kFar, kFar + 1, kFar + 2, kFar + 3}), {},
           "1152921504606846979");
  EXPECT_THAT(shown.bytes, ElementsAre(0, 128, 255, 255));
  EXPECT_THAT(shown.changes.notes,
              ElementsAre("numbers from 1152921504606846976 to 1152921504606846978 are shown as "
                          "black to white"));
}

TEST(NumberStretch, Percent_Should_FindRanksOfEveryNumber) {
  // Many numbers that differ in each of their digits.
  std::mt19937_64 random(kSeed);
  for (const double percent : {0.0, 0.1, 1.0, 2.0, 25.0, 49.0}) {
    std::vector<double> numbers;
    for (int i = 0; i < 5000; ++i) {
      numbers.push_back(std::ldexp(static_cast<double>(static_cast<int64_t>(random())),
                                   static_cast<int>(random() % 80) - 120));
    }
    const auto [low, high] = EndsWithout(numbers, percent);
    Samples samples = Made(Layout(NumberType::float64), 100, 50, numbers);
    const NumberStretch found = SettledStretch(samples, "", Percent(percent));
    EXPECT_EQ(found.kind, Kind::fixed);
    EXPECT_EQ(found.least, low);
    EXPECT_EQ(found.greatest, high);
  }
}

TEST(NumberStretch, NumbersThatAreNone_Should_NotCount) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const float infinity = std::numeric_limits<float>::infinity();
  for (const NumberStretch& stretch : {Of(Kind::minMax), Percent(10)}) {
    EXPECT_THAT(
        Show(Made<float>(Layout(NumberType::float32), 6, 1, {nan, 1, 2, 3, infinity, -infinity}),
             stretch)
            .bytes,
        ElementsAre(255, 0, 128, 255, 255, 0));
  }
  const Shown empty =
      Show(Made<float>(Layout(NumberType::float32), 3, 1, {nan, nan, -9}), {}, "-9");
  EXPECT_THAT(empty.bytes, ElementsAre(255, 255, 255));
  EXPECT_THAT(empty.changes.notes,
              ElementsAre("the grid holds no number; all of it is shown white"));
}

TEST(NumberStretch, Full_Should_BeTheRangeOfTheType) {
  const auto full = Of(Kind::full);
  EXPECT_THAT(Show(Made<int16_t>(Layout(NumberType::int16), 3, 1, {-32768, 0, 32767}), full).bytes,
              ElementsAre(0, 128, 255));
  EXPECT_THAT(Show(Made<float>(Layout(NumberType::float32), 4, 1, {-1, 0.25F, 1, 300}), full).bytes,
              ElementsAre(0, 64, 255, 255));
  EXPECT_THAT(
      Show(Made<uint64_t>(Layout(NumberType::uint64), 3, 1, {0, uint64_t{1} << 63, UINT64_MAX}),
           full)
          .bytes,
      ElementsAre(0, 128, 255));
  PixelLayout twelve = Layout(NumberType::uint16);
  twelve.bits = 12;
  EXPECT_THAT(Show(Made<uint16_t>(twelve, 3, 1, {0, 2048, 4095}), full).bytes,
              ElementsAre(0, 128, 255));
}

TEST(NumberStretch, GridOfLowContrast_Should_BeVisible) {
  const Shown shown = Show(
      Made<uint16_t>(Layout(NumberType::uint16), 4, 1, {1000, 1200, 1600, 65535}), {}, "65535");
  EXPECT_THAT(shown.bytes, ElementsAre(0, 85, 255, 255));
  EXPECT_THAT(shown.changes.notes,
              ElementsAre("numbers from 1000 to 1600 are shown as black to white"));
}

TEST(NumberStretch, LeastIsWhite_Should_TurnTheRange) {
  const auto layout = Layout(NumberType::uint16, 1, ColorModel::grayWhiteIsZero);
  const std::vector<uint16_t> numbers{1000, 1200, 1600};
  EXPECT_THAT(Show(Made(layout, 3, 1, numbers), {}).bytes, ElementsAre(255, 170, 0));
  EXPECT_THAT(Show(Made(layout, 3, 1, numbers), Fixed(1000, 1600)).bytes, ElementsAre(0, 85, 255))
      << "fixed numbers say themselves which is black";
}

TEST(NumberStretch, Bytes_Should_StayAsTheyAre) {
  EXPECT_THAT(
      Show(Made<uint8_t>(Layout(NumberType::uint8), 3, 1, {10, 20, 30}), Of(Kind::minMax)).bytes,
      ElementsAre(10, 20, 30));
}

TEST(NumberStretch, Colors_Should_HaveOneRange) {
  const std::vector<uint16_t> pixels{100, 150, 200, 300, 200, 100};
  for (const bool inPlanes : {false, true}) {
    const auto made = [&] {
      return Made(Layout(NumberType::uint16, 3, ColorModel::rgb), 2, 1, pixels, inPlanes);
    };
    // Blue comes first; the rows are padded to 8 bytes.
    EXPECT_THAT(Show(made(), Of(Kind::minMax)).bytes, ElementsAre(128, 64, 0, 0, 128, 255));
    EXPECT_THAT(Show(made(), Fixed(0, 300)).bytes, ElementsAre(170, 128, 85, 85, 170, 255));
    const Shown automatic = Show(made(), {}), full = Show(made(), Of(Kind::full));
    EXPECT_THAT(automatic.bytes, ElementsAre(1, 1, 0, 0, 1, 1));
    EXPECT_EQ(automatic.bytes, full.bytes);
    EXPECT_THAT(automatic.changes.notes, testing::IsEmpty());
  }
}

TEST(NumberStretch, ColorsWithoutData_Should_NotCountAndBeWhite) {
  const auto layout = Layout(NumberType::int16, 3, ColorModel::rgb);
  EXPECT_THAT(
      Show(Made<int16_t>(layout, 3, 1, {-1, -1, -1, 0, 10, 20, -1, 20, 0}), Of(Kind::minMax), "-1")
          .bytes,
      ElementsAre(255, 255, 255, 255, 128, 0, 0, 255, 0));
}

TEST(NumberStretch, Opacity_Should_BeThatOfTheType) {
  PixelLayout layout = Layout(NumberType::uint16, 2);
  layout.alpha = AlphaKind::straight;
  // The transparent number does not count.
  const std::vector<uint16_t> pixels{100, 65535, 300, 32768, 9000, 0};
  EXPECT_THAT(Show(Made(layout, 3, 1, pixels), Of(Kind::minMax)).bytes,
              ElementsAre(0, 0, 0, 255, 255, 255, 255, 128, 255, 255, 255, 0));
  layout.alpha = AlphaKind::associated;
  const std::vector<uint16_t> divided{100, 65535, 150, 32768, 0, 0};
  const std::vector<int> shown = Show(Made(layout, 3, 1, divided), Fixed(100, 300)).bytes;
  EXPECT_EQ(shown[0], 0);
  EXPECT_EQ(shown[4], 255) << "150 of half the opacity is 300";
}

TEST(SettledStretch, Should_ShowPartsAsTheWhole) {
  std::mt19937_64 random(kSeed);
  for (int round = 0; round < 50; ++round) {
    const std::vector<uint16_t> numbers = Numbers<uint16_t>(40, 7, random);
    const std::vector<uint16_t> part(numbers.begin(), numbers.begin() + 9);
    const auto layout = Layout(NumberType::uint16, 1,
                               round % 2 == 0 ? ColorModel::gray : ColorModel::grayWhiteIsZero);
    Samples whole = Made(layout, 40, 1, numbers);
    for (const NumberStretch& stretch : {NumberStretch(), Percent(20), Fixed(3, 9)}) {
      const NumberStretch settled = SettledStretch(whole, "7", stretch);
      std::vector<int> expected = Show(whole.Clone(), stretch, "7").bytes;
      expected.resize(part.size());
      ASSERT_EQ(Show(Made(layout, 9, 1, part), settled, "7").bytes, expected)
          << "seed " << kSeed << ", round " << round;
    }
  }
}

}  // namespace
}  // namespace rasterkit::test
