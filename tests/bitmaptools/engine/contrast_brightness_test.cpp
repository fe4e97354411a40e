#include <algorithm>
#include <atomic>
#include <climits>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/engine/contrast_brightness.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/runtime/errors.h>

#include "tests/reference/contrast_brightness_reference.h"
#include "tests/support/full_run.h"
#include "tests/support/paper_pictures.h"
#include "tests/support/same_pixels.h"
#include "tests/support/simd_targets.h"

namespace rasterkit {
namespace {

using test::PaddingIsZero;
using test::PaperBitmap;
using test::SamePixels;

TBitmap OnePixel(uint8_t r, uint8_t g, uint8_t b) {
  TBitmap bitmap;
  bitmap.ResetPixels(pf24bit, 1, 4);
  for (int y = 0; y < 4; ++y) {
    const uint8_t bytes[4] = {b, g, r, 0};
    std::copy_n(bytes, 4, bitmap.ScanLine(y));
  }
  return bitmap;
}

using Routine = void (*)(TBitmap*, int32_t, int32_t, TProgressEvent);

TColor After(Routine routine, uint8_t r, uint8_t g, uint8_t b, int32_t value, int32_t threads) {
  TBitmap bitmap = OnePixel(r, g, b);
  routine(&bitmap, value, threads, nullptr);
  EXPECT_EQ(bitmap.PixelColor(0, 0), bitmap.PixelColor(0, 3));
  return bitmap.PixelColor(0, 0);
}

TEST(KontrastTest, ZeroIsTheIdentityThatStillConvertsTo24Bit) {
  std::mt19937 random(4);
  TBitmap bitmap = PaperBitmap(pf32bit, 9, 5, random);
  TBitmap expected;
  expected.Assign(&bitmap);
  expected.SetPixelFormat(pf24bit);
  Kontrast(&bitmap, 0, 1, nullptr);
  EXPECT_TRUE(SamePixels(expected, bitmap));
}

TEST(KontrastTest, At100TheDistanceFrom128Doubles) {
  EXPECT_EQ(After(Kontrast, 0, 128, 200, 100, 1), RGB(0, 128, 255));
}

TEST(KontrastTest, BelowMinus100ContrastIsInverted) {
  EXPECT_EQ(After(Kontrast, 1, 128, 228, -200, 1), RGB(255, 128, 28));
}

TEST(KontrastTest, HalvesGoToTheEvenNumber) {
  // 3 * 1.5 = 4.5, 1 * 1.5 = 1.5, -3 * 1.5 = -4.5.
  EXPECT_EQ(After(Kontrast, 131, 129, 125, 50, 1), RGB(132, 130, 124));
}

TEST(KontrastTest, BlackAndWhiteAreSparedByTheSingleThreadAlone) {
  EXPECT_EQ(After(Kontrast, 0, 0, 0, -50, 1), RGB(0, 0, 0));
  EXPECT_EQ(After(Kontrast, 254, 255, 255, -50, 1), RGB(254, 255, 255));
  EXPECT_NE(After(Kontrast, 253, 255, 255, -50, 1), RGB(253, 255, 255));
  EXPECT_NE(After(Kontrast, 255, 254, 255, -50, 1), RGB(255, 254, 255));
  EXPECT_EQ(After(Kontrast, 0, 0, 0, -50, 2), RGB(64, 64, 64));
  EXPECT_EQ(After(Kontrast, 254, 255, 255, -50, 2), RGB(191, 192, 192));
}

TEST(HelligkeitTest, At100DarkColorsBecomeWhite) {
  EXPECT_EQ(After(Helligkeit, 10, 20, 30, 100, 1), RGB(255, 255, 255));
}

TEST(HelligkeitTest, AtMinus50HalvesGoToTheEvenNumber) {
  EXPECT_EQ(After(Helligkeit, 101, 100, 99, -50, 1), RGB(50, 50, 50));
}

TEST(HelligkeitTest, BlackAndWhiteAreSparedByTheSingleThreadAlone) {
  EXPECT_EQ(After(Helligkeit, 254, 255, 255, -50, 1), RGB(254, 255, 255));
  EXPECT_EQ(After(Helligkeit, 0, 0, 0, 50, 1), RGB(0, 0, 0));
  EXPECT_EQ(After(Helligkeit, 254, 255, 255, -50, 2), RGB(127, 128, 128));
  EXPECT_EQ(After(Helligkeit, 0, 0, 0, 50, 2), RGB(127, 127, 127));
}

TEST(HelligkeitTest, ZeroAndValuesOutOfRangeDoNotEvenConvert) {
  for (int32_t value : {0, 101, -101, INT_MAX, INT_MIN})
    for (int threads : {0, 1, 2}) {
      std::mt19937 random(4);
      TBitmap bitmap = PaperBitmap(pf32bit, 9, 5, random);
      Helligkeit(&bitmap, value, threads, nullptr);
      EXPECT_EQ(bitmap.PixelFormat(), pf32bit);
    }
}

TEST(ContrastBrightnessTest, NullAndEmptyBitmapsStayAsTheyAre) {
  Kontrast(nullptr, 10, 1, nullptr);
  Helligkeit(nullptr, 10, 0, nullptr);
  for (int threads : {0, 1, 3}) {
    TBitmap bitmap;
    Kontrast(&bitmap, 10, threads, nullptr);
    Helligkeit(&bitmap, 10, threads, nullptr);
    EXPECT_EQ(bitmap.PixelFormat(), pfDevice);
    EXPECT_EQ(bitmap.Width(), 0);
  }
}

TEST(ContrastBrightnessTest, ThreadCountsBelowOneFailAfterTheConversion) {
  for (Routine routine : {Kontrast, Helligkeit}) {
    std::mt19937 random(4);
    for (int threads : {0, -1, INT_MIN}) {
      TBitmap bitmap = PaperBitmap(pf32bit, 9, 5, random);
      EXPECT_THROW(routine(&bitmap, 10, threads, nullptr), DivisionByZeroError);
      EXPECT_EQ(bitmap.PixelFormat(), pf24bit);
    }
    TBitmap indexed = PaperBitmap(pf4bit, 9, 5, random);
    EXPECT_NO_THROW(routine(&indexed, 10, 0, nullptr));
  }
}

TEST(ContrastBrightnessTest, FarTooManyThreadsAreCutToAQuarterOfTheRowsAndSpareNothing) {
  for (int threads : {1000, INT_MAX}) {
    EXPECT_EQ(After(Kontrast, 0, 0, 0, -50, threads), RGB(64, 64, 64));
    EXPECT_EQ(After(Helligkeit, 0, 0, 0, 50, threads), RGB(127, 127, 127));
  }
}

TEST(ContrastBrightnessTest, WorkersReportZeroPercentFrom1001RowsOn) {
  for (int rows : {1000, 1001}) {
    TBitmap bitmap;
    bitmap.SetPixelFormat(pf24bit);
    bitmap.SetSize(2, rows);
    std::atomic<int> calls{0}, others{0};
    const auto count = [&](float percent) { ++(percent == 0 ? calls : others); };
    Helligkeit(&bitmap, -10, 3, count);
    EXPECT_EQ(calls >= 3, rows == 1001);
    Kontrast(&bitmap, -10, 1, count);
    EXPECT_EQ(others, 0);
  }
}

int32_t SomeValue(std::mt19937& random) {
  constexpr int32_t kEdges[] = {-100, -99, -75, -50, -25, -1,   0,    1,      25,      50,     75,
                                99,   100, 101, 150, 300, -101, -300, 100000, INT_MAX, INT_MIN};
  const uint32_t which = random() % 42;
  if (which < std::size(kEdges)) return kEdges[which];
  return static_cast<int32_t>(random() % 201) - 100;
}

class ContrastBrightnessFormatTest : public testing::TestWithParam<TPixelFormat> {};

TEST_P(ContrastBrightnessFormatTest, EqualsTheReferenceWithOneToSevenThreadsAndWidthsUpTo70) {
  const int rounds = test::IsFullRun() ? 5000 : 210;
  test::ForEachSimdTarget([&](int64_t target) {
    std::mt19937 random(500 + static_cast<unsigned>(GetParam()));
    for (int round = 0; round < rounds; ++round) {
      const bool isLarge = round % 100 == 99;
      const int width = isLarge ? 1000 + static_cast<int>(random() % 900) : 1 + round % 70;
      const int height = 2 + static_cast<int>(random() % 12);
      const int32_t value = SomeValue(random);
      const int threads = 1 + static_cast<int>(random() % 7);
      const TBitmap original =
          PaperBitmap(GetParam(), width, height, random, round % 3 == 0 ? 6 : 1);
      for (bool isContrast : {false, true}) {
        TBitmap expected, actual;
        expected.Assign(&original);
        actual.Assign(&original);
        if (isContrast) {
          reference::Kontrast(expected, value, threads);
          Kontrast(&actual, value, threads, nullptr);
        } else {
          reference::Helligkeit(expected, value, threads);
          Helligkeit(&actual, value, threads, nullptr);
        }
        ASSERT_TRUE(SamePixels(expected, actual))
            << (isContrast ? "contrast " : "brightness ") << value << ", " << width << " x "
            << height << ", " << threads << " threads, " << hwy::TargetName(target);
        ASSERT_TRUE(PaddingIsZero(actual));
      }
    }
  });
}

INSTANTIATE_TEST_SUITE_P(Formats, ContrastBrightnessFormatTest,
                         testing::ValuesIn(test::kEveryFormat),
                         [](const auto& info) { return "Format" + std::to_string(info.param); });

}  // namespace
}  // namespace rasterkit
