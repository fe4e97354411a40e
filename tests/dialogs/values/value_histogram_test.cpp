#include <gtest/gtest.h>

#include <rasterkit/dialogs/values/value_histogram.h>
#include <rasterkit/graphics/canvas.h>

namespace rasterkit {
namespace {

TBitmap Plain(int width, int height, TColor color) {
  TBitmap bitmap;
  bitmap.ResetPixels(pf24bit, width, height);
  bitmap.Canvas().Brush.Color = color;
  bitmap.Canvas().FillRect({0, 0, width, height});
  return bitmap;
}

TEST(ValueHistogram, Should_CountLuminanceAndChannels_OfThePartsOnly) {
  TBitmap bitmap = Plain(10, 10, RGB(10, 200, 30));
  bitmap.Canvas().Brush.Color = clWhite;
  bitmap.Canvas().FillRect({5, 0, 10, 10});
  const ValueHistogram left = CountLevels(bitmap, {{0, 0, 5, 10}});
  EXPECT_EQ(left.red[10], 50u);
  EXPECT_EQ(left.green[200], 50u);
  EXPECT_EQ(left.blue[30], 50u);
  // (297 * 10 + 589 * 200 + 114 * 30) / 1000 = 124.19
  EXPECT_EQ(left.gray[124], 50u);
  EXPECT_EQ(left.gray[255], 0u);
  const ValueHistogram both = CountLevels(bitmap, {{0, 0, 5, 2}, {5, 0, 6, 2}});
  EXPECT_EQ(both.gray[124], 10u);
  EXPECT_EQ(both.gray[255], 2u);
}

TEST(ValueHistogram, Should_ReadEveryFormat) {
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf16bit, pf24bit, pf32bit}) {
    TBitmap bitmap = Plain(8, 4, clWhite);
    bitmap.SetPixelFormat(format);
    EXPECT_EQ(CountLevels(bitmap, {{0, 0, 8, 4}}).gray[255], 32u) << format;
  }
  EXPECT_EQ(CountLevels(TBitmap(), {}), ValueHistogram());
}

TEST(LevelFacts, Should_SayLeastGreatestMeanAndEnds) {
  LevelCounts counts{};
  counts[0] = 1;
  counts[100] = 2;
  counts[255] = 1;
  const LevelFacts facts = FactsOf(counts);
  EXPECT_EQ(facts.least, 0);
  EXPECT_EQ(facts.greatest, 255);
  EXPECT_EQ(facts.mean, 114);  // 455 / 4
  EXPECT_EQ(facts.blackPercent, 25);
  EXPECT_EQ(facts.whitePercent, 25);
  EXPECT_EQ(FactsOf(LevelCounts{}).greatest, 0);
  LevelCounts one{};
  one[77] = 5;
  EXPECT_EQ(FactsOf(one).least, 77);
  EXPECT_EQ(FactsOf(one).greatest, 77);
}

TEST(BarHeights, EndsThatHoldMost_Should_NotPressTheOthersDown) {
  LevelCounts counts{};
  counts[255] = 1'000'000;
  for (size_t level = 100; level < 110; ++level) counts[level] = 50;
  counts[105] = 25;
  const auto heights = BarHeights(counts);
  EXPECT_DOUBLE_EQ(heights[255], 1);
  EXPECT_DOUBLE_EQ(heights[100], 1);
  EXPECT_DOUBLE_EQ(heights[105], 0.5);
  EXPECT_DOUBLE_EQ(heights[0], 0);
}

TEST(BarHeights, OnlyEnds_Should_BeSeen) {
  LevelCounts counts{};
  counts[0] = 10;
  counts[255] = 40;
  EXPECT_DOUBLE_EQ(BarHeights(counts)[255], 1);
  EXPECT_DOUBLE_EQ(BarHeights(counts)[0], 0.25);
  EXPECT_DOUBLE_EQ(BarHeights(LevelCounts{})[0], 0);
}

}  // namespace
}  // namespace rasterkit
