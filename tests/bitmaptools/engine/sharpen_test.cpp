#include <algorithm>
#include <climits>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/engine/sharpen.h>
#include <rasterkit/graphics/bitmap.h>

#include "tests/reference/change_values_reference.h"
#include "tests/support/copy_of.h"
#include "tests/support/full_run.h"
#include "tests/support/paper_pictures.h"
#include "tests/support/same_pixels.h"
#include "tests/support/simd_targets.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

using test::CopyOf;
using test::PaddingIsZero;
using test::PaperBitmap;
using test::SamePixels;

/// Half of the columns at one level, half at another.
TBitmap Edge(uint8_t left, uint8_t right) {
  TBitmap bitmap;
  bitmap.ResetPixels(pf24bit, 8, 4);
  for (int y = 0; y < 4; ++y)
    for (int x = 0; x < 8; ++x) std::fill_n(bitmap.ScanLine(y) + 3 * x, 3, x < 4 ? left : right);
  return bitmap;
}

/// Levels close to each other, so that the tolerance matters often.
TBitmap Grainy(int width, int height, std::mt19937& random) {
  TBitmap bitmap;
  bitmap.ResetPixels(pf24bit, width, height);
  const auto spread = static_cast<unsigned>(1 + random() % 7);
  for (int y = 0; y < height; ++y)
    for (int i = 0; i < 3 * width; ++i)
      bitmap.ScanLine(y)[i] = static_cast<uint8_t>(120 + random() % spread);
  return bitmap;
}

TEST(SharpenTest, Zero_Should_ChangeNothingNotEvenTheFormat) {
  for (const TPixelFormat format : test::kEveryFormat) {
    std::mt19937 random(4);
    const TBitmap original = PaperBitmap(format, 9, 5, random);
    TBitmap bitmap = CopyOf(original);
    Sharpen(&bitmap, 0);
    EXPECT_EQ(bitmap.PixelFormat(), original.PixelFormat());
    EXPECT_TRUE(SamePixels(original, bitmap));
  }
}

TEST(SharpenTest, AboveZero_Should_StrengthenAnEdgeByTwiceThePercentage) {
  TBitmap bitmap = Edge(90, 120);
  Sharpen(&bitmap, 50);
  // Three of nine are 30 away: the mean is 10 nearer to the other side.
  EXPECT_EQ(bitmap.ScanLine(1)[9], 80);
  EXPECT_EQ(bitmap.ScanLine(1)[12], 130);
  EXPECT_EQ(bitmap.ScanLine(0)[6], 90);
  EXPECT_EQ(bitmap.ScanLine(3)[15], 120);
}

TEST(SharpenTest, BelowZero_Should_SoftenAnEdge) {
  TBitmap bitmap = Edge(90, 120);
  Sharpen(&bitmap, -100);
  EXPECT_EQ(bitmap.ScanLine(1)[9], 100);
  EXPECT_EQ(bitmap.ScanLine(1)[12], 110);
  EXPECT_EQ(bitmap.ScanLine(0)[6], 90);
}

TEST(SharpenTest, LargerValues_Should_ActStronger) {
  int before = 0;
  for (const int percent : {-100, -60, -20, 20, 60, 100}) {
    TBitmap bitmap = Edge(90, 120);
    Sharpen(&bitmap, percent);
    const int step = bitmap.ScanLine(1)[12] - bitmap.ScanLine(1)[9];
    EXPECT_GT(step, before) << percent;
    before = step;
  }
}

TEST(SharpenTest, NeighborsLessThanFourLevelsAway_Should_LeaveAPixelAlone) {
  for (const int percent : {100, -100}) {
    TBitmap within = Edge(100, 103), beyond = Edge(100, 104);
    Sharpen(&within, percent);
    Sharpen(&beyond, percent);
    EXPECT_TRUE(SamePixels(Edge(100, 103), within)) << percent;
    EXPECT_NE(beyond.ScanLine(1)[9], 100) << percent;
  }
}

TEST(SharpenTest, OneChannelBeyondTheTolerance_Should_LetAllThreeMove) {
  TBitmap bitmap = Edge(100, 103);
  for (int y = 0; y < 4; ++y) bitmap.ScanLine(y)[12] = 130;
  Sharpen(&bitmap, 100);
  EXPECT_EQ(bitmap.ScanLine(1)[9], 80);
  EXPECT_EQ(bitmap.ScanLine(1)[10], 98);
  EXPECT_EQ(bitmap.ScanLine(1)[3], 100);
}

TEST(SharpenTest, PercentagesBeyondTheRange_Should_CountAsItsEnds) {
  for (const int percent : {100, -100}) {
    TBitmap expected = Edge(40, 220), actual = Edge(40, 220);
    Sharpen(&expected, percent);
    Sharpen(&actual, percent > 0 ? INT_MAX : INT_MIN);
    EXPECT_TRUE(SamePixels(expected, actual));
  }
}

TEST(SharpenTest, NullAndEmptyBitmaps_Should_StayAsTheyAre) {
  Sharpen(nullptr, 10);
  TBitmap bitmap;
  Sharpen(&bitmap, 10);
  EXPECT_EQ(bitmap.PixelFormat(), pfDevice);
}

TEST(SharpenTest, EveryFormatAndSize_Should_EqualTheReferenceOnEveryTarget) {
  const int rounds = test::IsFullRun() ? 1500 : 140;
  test::ForEachSimdTarget([&](int64_t target) {
    std::mt19937 random(77);
    for (int round = 0; round < rounds; ++round) {
      const bool isWide = round % 40 == 39;
      const int width = isWide ? 1000 + static_cast<int>(random() % 1200) : 1 + round % 70;
      const int height = 1 + static_cast<int>(random() % 7);
      const TPixelFormat format = test::kEveryFormat[random() % std::size(test::kEveryFormat)];
      const TBitmap original = round % 2 == 0 ? Grainy(width, height, random)
                                              : PaperBitmap(format, width, height, random);
      const int percent = static_cast<int>(random() % 201) - 100;
      TBitmap expected = CopyOf(original), actual = CopyOf(original);
      reference::Sharpen(expected, percent);
      Sharpen(&actual, percent);
      ASSERT_TRUE(SamePixels(expected, actual))
          << percent << " percent, " << width << " x " << height << ", format "
          << original.PixelFormat() << ", " << hwy::TargetName(target);
      ASSERT_TRUE(PaddingIsZero(actual));
    }
  });
}

}  // namespace
}  // namespace rasterkit
