#include <algorithm>
#include <random>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/editchangesize/change_bitmap_size.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/copy_of.h"
#include "tests/support/paper_pictures.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

using test::CopyOf;
using test::kEveryFormat;
using test::PaddingIsZero;
using test::RandomBitmap;
using test::SamePixels;

class ChangeBitmapSizeTest : public testing::TestWithParam<TPixelFormat> {
 protected:
  ChangeBitmapSizeTest() : random(63), source(RandomBitmap(GetParam(), 13, 9, random)) {}

  std::mt19937 random;
  TBitmap source;
};

TEST_P(ChangeBitmapSizeTest, Unstretched_Should_KeepThePixelsAtTheTopLeft) {
  const TBitmap before = CopyOf(source);
  for (const auto& [width, height] : {std::pair{20, 15}, {5, 4}, {20, 4}, {13, 9}}) {
    const auto resized = ChangeBitmapSize(&source, width, height, false);
    EXPECT_EQ(resized->PixelFormat(), source.PixelFormat());
    ASSERT_EQ(resized->Width(), width);
    ASSERT_EQ(resized->Height(), height);
    for (int y = 0; y < height; ++y)
      for (int x = 0; x < width; ++x) {
        if (x >= source.Width() || y >= source.Height()) continue;
        ASSERT_EQ(resized->PixelColor(x, y), source.PixelColor(x, y)) << x << ", " << y;
      }
    EXPECT_TRUE(PaddingIsZero(*resized));
  }
  EXPECT_TRUE(SamePixels(before, source));
}

TEST_P(ChangeBitmapSizeTest, Unstretched_Should_LeaveNewAreaAsInANewBitmap) {
  TBitmap fresh;
  fresh.SetPixelFormat(source.PixelFormat());
  fresh.SetPalette(source.Palette());
  fresh.SetSize(20, 15);
  const auto resized = ChangeBitmapSize(&source, 20, 15, false);
  for (int y = 0; y < 15; ++y)
    for (int x = y < 9 ? 13 : 0; x < 20; ++x)
      ASSERT_EQ(resized->PixelColor(x, y), fresh.PixelColor(x, y)) << x << ", " << y;
}

TEST_P(ChangeBitmapSizeTest, Stretched_Should_TakeTheNearestPixels) {
  const auto doubled = ChangeBitmapSize(&source, 26, 27, true);
  for (int y = 0; y < 27; ++y)
    for (int x = 0; x < 26; ++x)
      ASSERT_EQ(doubled->PixelColor(x, y), source.PixelColor(x / 2, y / 3)) << x << ", " << y;
  const auto third = ChangeBitmapSize(&source, 13, 3, true);
  for (int y = 0; y < 3; ++y)
    for (int x = 0; x < 13; ++x)
      ASSERT_EQ(third->PixelColor(x, y), source.PixelColor(x, 3 * y + 1));
}

TEST_P(ChangeBitmapSizeTest, SizesOfZero_Should_GiveAnEmptyBitmapOfTheFormat) {
  for (const bool stretch : {false, true}) {
    const auto empty = ChangeBitmapSize(&source, 0, 5, stretch);
    EXPECT_TRUE(empty->Empty());
    EXPECT_EQ(empty->PixelFormat(), source.PixelFormat());
  }
}

INSTANTIATE_TEST_SUITE_P(Formats, ChangeBitmapSizeTest, testing::ValuesIn(kEveryFormat),
                         [](const auto& info) { return "Format" + std::to_string(info.param); });

TEST(ChangeBitmapSizeTest, NegativeSizes_Should_Raise) {
  TBitmap source;
  source.SetSize(3, 3);
  EXPECT_THROW(ChangeBitmapSize(&source, -1, 3, false), RangeError);
  EXPECT_THROW(ChangeBitmapSize(&source, 3, INT32_MIN, true), RangeError);
}

TEST(ChangeBitmapSizeTest, HugeSizes_Should_RaiseAndNotTakeMemory) {
  TBitmap source;
  source.SetSize(3, 3);
  EXPECT_THROW(ChangeBitmapSize(&source, 2000000000, 2000000000, false), LimitError);
}

TEST(ChangeBitmapSizeTest, NullAndEmptyBitmaps_Should_BeSurvived) {
  EXPECT_EQ(ChangeBitmapSize(nullptr, 3, 3, true), nullptr);
  const TBitmap empty;
  for (const bool stretch : {false, true}) {
    const auto grown = ChangeBitmapSize(&empty, 4, 3, stretch);
    EXPECT_EQ(grown->PixelFormat(), pfDevice);
    EXPECT_EQ(grown->PixelColor(3, 2), clWhite);
  }
}

TEST(ChangeBitmapSizeTest, TransparentPixels_Should_BeLeftOut) {
  TBitmap source;
  source.SetPixelFormat(pf24bit);
  source.SetSize(2, 2);
  std::fill_n(source.ScanLine(1), 3, 0);
  source.SetTransparent(true);  // black, the bottom-left pixel
  EXPECT_EQ(ChangeBitmapSize(&source, 2, 2, false)->PixelColor(0, 1), clWhite);
  EXPECT_EQ(ChangeBitmapSize(&source, 4, 4, true)->PixelColor(0, 3), clWhite);
}

TEST(ChangeBitmapSizeTest, AFormatWithoutASizeOfItsOwn_Should_KeepTheRowsItIsStoredIn) {
  std::mt19937 random(8);
  TBitmap source = RandomBitmap(pf24bit, 5, 5, random);
  source.SetPixelFormat(pfCustom);
  const auto resized = ChangeBitmapSize(&source, 5, 5, false);
  EXPECT_EQ(resized->PixelFormat(), pfCustom);
  EXPECT_EQ(resized->StoredBits(), 24);
  EXPECT_TRUE(SamePixels(source.Content(), resized->Content()));
}

}  // namespace
}  // namespace rasterkit
