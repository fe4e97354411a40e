#include <algorithm>
#include <cstring>
#include <random>

#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/engine/composition.h>
#include <rasterkit/graphics/icon.h>

#include "tests/reference/icon_reference.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

using test::SamePixels;

uint8_t AlphaAt(const TIcon& icon, int x, int y) {
  return icon.ColorBitmap().ScanLine(y)[4 * x + 3];
}

TEST(CopyBitmapToIconTest, EveryFormatAndWidth_EqualTheReference) {
  constexpr unsigned kSeed = 21;
  SCOPED_TRACE(testing::Message() << "seed " << kSeed);
  std::mt19937 random(kSeed);
  for (const TPixelFormat format : test::kEveryFormat) {
    for (int width = 1; width <= 70; ++width) {
      TBitmap bitmap = test::RandomBitmap(format, width, 3, random);
      for (const bool half : {false, true}) {
        if (half && width < 2) continue;
        TIcon icon;
        CopyBitmapToIcon(&bitmap, icon, half);
        ASSERT_TRUE(SamePixels(reference::IconColors(bitmap, half), icon.ColorBitmap()))
            << "format " << format << ", width " << width << ", half " << half;
      }
    }
  }
}

TEST(CopyBitmapToIconTest, LeftHalfOfAStrip_Should_GiveASquareIconWithItsTopLeftColorClear) {
  TBitmap strip = test::GradientBitmap(pf24bit, 64, 32);
  for (int y = 0; y < 32; ++y)
    for (int x = 0; x < 64; ++x)
      if ((x + y) % 3 == 0) std::memcpy(strip.ScanLine(y) + 3 * x, strip.ScanLine(0), 3);
  const TColor key = strip.PixelColor(0, 0);
  TIcon icon;
  CopyBitmapToIcon(&strip, icon, true);
  ASSERT_EQ(icon.Width(), 32);
  ASSERT_EQ(icon.Height(), 32);
  const std::unique_ptr<TBitmap> mask = icon.MaskBitmap();
  for (int y = 0; y < 32; ++y) {
    for (int x = 0; x < 32; ++x) {
      const bool isKey = strip.PixelColor(x, y) == key;
      ASSERT_EQ(AlphaAt(icon, x, y), isKey ? 0 : 255) << x << ", " << y;
      ASSERT_EQ(icon.ColorBitmap().PixelColor(x, y), isKey ? clWhite : strip.PixelColor(x, y));
      ASSERT_EQ(mask->PixelColor(x, y), isKey ? clWhite : clBlack);
    }
  }
}

TEST(CopyBitmapToIconTest, OddWidth_Should_LoseItsMiddleInTheHalf) {
  TBitmap bitmap = test::GradientBitmap(pf24bit, 7, 2);
  TIcon icon;
  CopyBitmapToIcon(&bitmap, icon, true);
  EXPECT_EQ(icon.Width(), 3);
}

TEST(CopyBitmapToIconTest, OneColor_Should_GiveAnIconThatShowsNothing) {
  TBitmap bitmap = test::GradientBitmap(pf24bit, 4, 4);
  for (int y = 0; y < 4; ++y) std::fill_n(bitmap.ScanLine(y), 12, uint8_t{90});
  TIcon icon;
  CopyBitmapToIcon(&bitmap, icon, false);
  for (int y = 0; y < 4; ++y)
    for (int x = 0; x < 4; ++x) ASSERT_EQ(AlphaAt(icon, x, y), 0);
}

TEST(CopyBitmapToIconTest, Icon_Should_SurviveItsFile) {
  std::mt19937 random(4);
  TBitmap bitmap(test::FewColorsRaster(pf24bit, 48, 48, 5, random));
  TIcon icon, loaded;
  CopyBitmapToIcon(&bitmap, icon, false);
  TMemoryStream stream;
  icon.SaveToStream(stream);
  stream.SetPosition(0);
  loaded.LoadFromStream(stream);
  EXPECT_TRUE(SamePixels(icon.ColorBitmap(), loaded.ColorBitmap()));
}

TEST(CopyBitmapToIconTest, Bitmap_Should_StayAsItIs) {
  TBitmap bitmap = test::GradientBitmap(pf24bit, 8, 8);
  const std::unique_ptr<TBitmap> before = bitmap.Clone();
  TIcon icon;
  CopyBitmapToIcon(&bitmap, icon, false);
  EXPECT_TRUE(SamePixels(*before, bitmap));
}

TEST(CopyBitmapToIconTest, TransparentBitmap_Should_LeaveWhatItDoesNotShowWhite) {
  TBitmap bitmap = test::GradientBitmap(pf24bit, 2, 2);
  std::fill_n(bitmap.ScanLine(0), 6, uint8_t{50});
  std::fill_n(bitmap.ScanLine(1), 6, uint8_t{120});
  bitmap.SetTransparent(true);
  TIcon icon;
  CopyBitmapToIcon(&bitmap, icon, false);
  EXPECT_EQ(AlphaAt(icon, 0, 0), 0) << "the key";
  EXPECT_EQ(AlphaAt(icon, 0, 1), 255);
  EXPECT_EQ(icon.ColorBitmap().PixelColor(0, 1), clWhite) << "not drawn: the new bitmap's color";
}

TEST(CopyBitmapToIconTest, NullAndZeroSizes_Should_LeaveTheIcon) {
  TBitmap bitmap = test::GradientBitmap(pf24bit, 8, 8), empty;
  TBitmap narrow = test::GradientBitmap(pf24bit, 1, 8);
  TIcon icon;
  CopyBitmapToIcon(&bitmap, icon, false);
  CopyBitmapToIcon(nullptr, icon, false);
  CopyBitmapToIcon(&empty, icon, false);
  CopyBitmapToIcon(&narrow, icon, true);
  EXPECT_EQ(icon.Width(), 8);
}

}  // namespace
}  // namespace rasterkit
