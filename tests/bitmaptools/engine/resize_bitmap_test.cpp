#include <cstring>
#include <random>

#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/engine/composition.h>
#include <rasterkit/runtime/errors.h>

#include "tests/reference/combine_reference.h"
#include "tests/support/same_pixels.h"
#include "tests/support/simd_targets.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

using test::SamePixels;

void CheckResize(const TBitmap& bitmap, int width, int height) {
  for (const bool keepFormat : {false, true}) {
    std::unique_ptr<TBitmap> actual = bitmap.Clone();
    ResizeBitmap(actual, width, height, keepFormat);
    ASSERT_EQ(actual->PixelFormat(), keepFormat ? bitmap.PixelFormat() : pf32bit);
    ASSERT_TRUE(
        SamePixels(reference::ResizeBitmap(bitmap, width, height, keepFormat), actual->Content()))
        << "format " << bitmap.PixelFormat() << ", " << bitmap.Width() << "x" << bitmap.Height()
        << " to " << width << "x" << height << ", keep " << keepFormat;
    ASSERT_TRUE(test::PaddingIsZero(*actual));
  }
}

TEST(ResizeBitmapTest, EveryFormatGrowingAndShrinking_EqualTheReference) {
  constexpr unsigned kSeed = 18;
  SCOPED_TRACE(testing::Message() << "seed " << kSeed);
  std::mt19937 random(kSeed);
  for (const TPixelFormat format : test::kEveryFormat) {
    const TBitmap bitmap = test::WithoutUnusedBits(test::RandomBitmap(format, 17, 11, random));
    for (const auto& [width, height] :
         {std::pair{17, 11}, std::pair{5, 4}, std::pair{40, 30}, std::pair{5, 30}, std::pair{1, 1},
          std::pair{34, 22}, std::pair{16, 12}})
      ASSERT_NO_FATAL_FAILURE(CheckResize(bitmap, width, height));
  }
}

TEST(ResizeBitmapTest, EveryWidthAndTarget_EqualTheReference) {
  test::ForEachSimdTarget([&](int64_t simd) {
    SCOPED_TRACE(hwy::TargetName(simd));
    std::mt19937 random(19);
    for (const TPixelFormat format : {pf24bit, pf32bit}) {
      for (int width = 1; width <= 70; ++width) {
        const TBitmap bitmap = test::RandomBitmap(format, width, 3, random);
        ASSERT_NO_FATAL_FAILURE(CheckResize(bitmap, 1 + static_cast<int>(random() % 70), 2));
      }
    }
  });
}

TEST(ResizeBitmapTest, UnusedBitOf15BitPixels_Should_BeZero_ForEverySize) {
  std::mt19937 random(20);
  for (const auto& [width, height] : {std::pair{17, 11}, std::pair{17, 5}, std::pair{5, 11},
                                      std::pair{40, 30}, std::pair{34, 22}, std::pair{1, 1}}) {
    std::unique_ptr<TBitmap> bitmap = test::RandomBitmap(pf15bit, 17, 11, random).Clone();
    for (int y = 0; y < 11; ++y)
      for (int x = 0; x < 17; ++x) bitmap->ScanLine(y)[2 * x + 1] |= 0x80;
    const TBitmap clean = test::WithoutUnusedBits(std::move(*bitmap->Clone()));
    ResizeBitmap(bitmap, width, height, true);
    for (int y = 0; y < height; ++y)
      for (int x = 0; x < width; ++x)
        ASSERT_EQ(bitmap->ScanLine(y)[2 * x + 1] & 0x80, 0) << width << " x " << height;
    ASSERT_TRUE(SamePixels(reference::ResizeBitmap(clean, width, height, true), bitmap->Content()));
  }
}

TEST(ResizeBitmapTest, KeepFormatFalse_Should_AlwaysGivePf32bit) {
  std::mt19937 random(3);
  for (const TPixelFormat format :
       {pfDevice, pf1bit, pf4bit, pf8bit, pf15bit, pf16bit, pf24bit, pf32bit}) {
    auto bitmap = std::make_unique<TBitmap>(
        test::RandomBitmap(format == pfDevice ? pf32bit : format, 4, 4, random));
    bitmap->SetPixelFormat(format);
    ResizeBitmap(bitmap, 3, 5, false);
    EXPECT_EQ(bitmap->PixelFormat(), pf32bit);
    EXPECT_EQ(bitmap->Width(), 3);
    EXPECT_EQ(bitmap->Height(), 5);
  }
}

TEST(ResizeBitmapTest, ShrinkingToOnePixel_Should_AverageWithHalvesUp) {
  auto bitmap = std::make_unique<TBitmap>(test::GradientBitmap(pf24bit, 2, 1));
  const uint8_t pixels[6] = {10, 0, 255, 13, 1, 254};
  std::memcpy(bitmap->ScanLine(0), pixels, 6);
  ResizeBitmap(bitmap, 1, 1, true);
  EXPECT_EQ(bitmap->PixelColor(0, 0), RGB(255, 1, 12));
}

TEST(ResizeBitmapTest, ColorsOf32Bit_Should_BeWeightedByAlpha) {
  auto bitmap = std::make_unique<TBitmap>(test::GradientBitmap(pf32bit, 2, 1));
  const uint8_t pixels[8] = {0, 0, 200, 255, 100, 100, 100, 0};
  std::memcpy(bitmap->ScanLine(0), pixels, 8);
  bitmap->SetAlphaFormat(afDefined);
  ResizeBitmap(bitmap, 1, 1, true);
  EXPECT_EQ(bitmap->PixelColor(0, 0), RGB(200, 0, 0)) << "what is clear gives no color";
  EXPECT_EQ(bitmap->ScanLine(0)[3], 128);
  EXPECT_EQ(bitmap->AlphaFormat(), afDefined);
}

TEST(ResizeBitmapTest, Palette_Should_StayWithItsIndexes) {
  std::mt19937 random(4);
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit}) {
    const TBitmap before = test::RandomBitmap(format, 6, 4, random);
    std::unique_ptr<TBitmap> bitmap = before.Clone();
    ResizeBitmap(bitmap, 12, 8, true);
    EXPECT_EQ(bitmap->Palette(), before.Palette());
    for (int y = 0; y < 8; ++y)
      for (int x = 0; x < 12; ++x)
        ASSERT_EQ(bitmap->PixelColor(x, y), before.PixelColor(x / 2, y / 2));
  }
}

TEST(ResizeBitmapTest, Transparency_Should_BeThatOfANewBitmap) {
  auto bitmap = std::make_unique<TBitmap>(test::GradientBitmap(pf24bit, 4, 4));
  bitmap->SetTransparent(true);
  bitmap->SetTransparentColor(RGB(9, 9, 9));
  const TColor corner = bitmap->PixelColor(0, 3);
  ResizeBitmap(bitmap, 4, 4, true);
  EXPECT_FALSE(bitmap->Transparent());
  EXPECT_EQ(bitmap->TransparentMode(), tmAuto);
  EXPECT_EQ(bitmap->TransparentColor(), corner);
}

TEST(ResizeBitmapTest, TransparentColor_Should_LeaveNewAreaInEveryFormat) {
  for (const TPixelFormat format : test::kEveryFormat) {
    TBitmap before = test::GradientBitmap(format, 6, 4);
    before.SetTransparent(true);
    before.SetTransparentColor(before.PixelColor(2, 1));
    for (const bool keepFormat : {false, true}) {
      std::unique_ptr<TBitmap> bitmap = before.Clone();
      ResizeBitmap(bitmap, 12, 8, keepFormat);
      for (int y = 0; y < 8; ++y) {
        for (int x = 0; x < 12; ++x) {
          const TColor color = before.PixelColor(x / 2, y / 2);
          const bool isHole = color == before.TransparentColor();
          ASSERT_EQ(bitmap->PixelColor(x, y), isHole ? clWhite : color)
              << "format " << format << ", keep " << keepFormat << ", " << x << ", " << y;
        }
      }
    }
  }
}

TEST(ResizeBitmapTest, AlphaChannel_Should_StayWhereTheBitmapIsTransparentToo) {
  TBitmap before = test::GradientBitmap(pf32bit, 4, 4);
  for (int x = 0; x < 4; ++x) before.ScanLine(1)[4 * x + 3] = static_cast<uint8_t>(60 * x);
  before.SetAlphaFormat(afDefined);
  before.SetTransparent(true);
  before.SetTransparentColor(before.PixelColor(3, 2));
  for (const bool keepFormat : {false, true}) {
    std::unique_ptr<TBitmap> bitmap = before.Clone();
    ResizeBitmap(bitmap, 4, 4, keepFormat);
    EXPECT_EQ(bitmap->AlphaFormat(), afDefined);
    for (int x = 1; x < 4; ++x) EXPECT_EQ(bitmap->ScanLine(1)[4 * x + 3], 60 * x);
    EXPECT_EQ(bitmap->PixelColor(3, 2), before.PixelColor(3, 2));
  }
}

TEST(ResizeBitmapTest, ZeroSizes_Should_GiveEmptyOrWhiteBitmaps) {
  std::unique_ptr<TBitmap> none;
  ResizeBitmap(none, 3, 3, true);
  EXPECT_EQ(none, nullptr);
  auto bitmap = std::make_unique<TBitmap>(test::GradientBitmap(pf24bit, 4, 4));
  ResizeBitmap(bitmap, 0, 7, true);
  EXPECT_TRUE(bitmap->Empty());
  ResizeBitmap(bitmap, 5, 5, true);
  ASSERT_EQ(bitmap->Width(), 5);
  for (int y = 0; y < 5; ++y)
    for (int x = 0; x < 5; ++x) EXPECT_EQ(bitmap->PixelColor(x, y), clWhite);
}

TEST(ResizeBitmapTest, BadSizes_Should_LeaveTheOldBitmap) {
  auto bitmap = std::make_unique<TBitmap>(test::GradientBitmap(pf24bit, 4, 4));
  const TBitmap* before = bitmap.get();
  EXPECT_THROW(ResizeBitmap(bitmap, -1, 4, true), RangeError);
  EXPECT_THROW(ResizeBitmap(bitmap, 2000000000, 2000000000, true), LimitError);
  EXPECT_EQ(bitmap.get(), before);
}

}  // namespace
}  // namespace rasterkit
