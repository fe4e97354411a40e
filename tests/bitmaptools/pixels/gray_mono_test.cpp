#include "tests/reference/gray_mono.h"

#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/pixels/color.h>
#include <rasterkit/bitmaptools/pixels/gray_mono.h>
#include <rasterkit/bitmaptools/pixels/palette_tools.h>
#include <rasterkit/runtime/ports.h>
#include <rasterkit/runtime/threads/thread_queue.h>

#include "tests/bitmaptools/pixels/pixel_cases.h"

namespace rasterkit {
namespace {

using test::AnyBitmap;
using test::ExpectLikeReference;
using test::kEveryNamedFormat;
using test::PaletteBitmap;
using test::SameRows;

constexpr int32_t kLeast = std::numeric_limits<int32_t>::min();
constexpr int32_t kMost = std::numeric_limits<int32_t>::max();

TEST(ColorBmpTo1Bit, Should_EqualTheReference_ForEveryFormatWidthAndTarget) {
  constexpr unsigned kSeed = 2320;
  std::mt19937 random(kSeed);
  for (const TPixelFormat format : kEveryNamedFormat) {
    for (int width = 0; width <= 70; ++width) {
      SCOPED_TRACE(testing::Message() << format << ", width " << width << ", seed " << kSeed);
      const TBitmap before = AnyBitmap(format, width, 3, random);
      const int thresholds[] = {kLeast, 0,   1,   static_cast<int>(random() % 256),
                                255,    256, 257, kMost};
      for (const int t : thresholds) {
        ExpectLikeReference(
            before, [=](TBitmap& x) { reference::ColorBmpTo1Bit(x, t, 1, 2, 3, 4, 5, 6); },
            [=](TBitmap& x) { ColorBmpTo1Bit(&x, t, 1, 2, 3, 4, 5, 6); });
      }
    }
  }
}

TEST(ColorBmpTo1Bit, Should_EqualTheReference_ForEveryThreshold) {
  constexpr unsigned kSeed = 2321;
  std::mt19937 random(kSeed);
  for (const TPixelFormat format : {pf8bit, pf16bit, pf24bit, pf32bit}) {
    const TBitmap before = AnyBitmap(format, 137, 5, random);
    for (int t = -1; t <= 256; ++t) {
      SCOPED_TRACE(testing::Message() << format << ", threshold " << t << ", seed " << kSeed);
      ExpectLikeReference(
          before, [=](TBitmap& x) { reference::ColorBmpTo1Bit(x, t, 1, 2, 3, 4, 5, 6); },
          [=](TBitmap& x) { ColorBmpTo1Bit(&x, t, 1, 2, 3, 4, 5, 6); });
    }
  }
}

TEST(ColorBmpTo1Bit, Should_TakeTheLowBytesOfTheColors) {
  std::mt19937 random(1);
  TBitmap bitmap = AnyBitmap(pf24bit, 3, 2, random);
  ColorBmpTo1Bit(&bitmap, 7, 257, -1, 1000, 255, 256, 0x12345678);
  ASSERT_EQ(bitmap.Palette().Count(), 2);
  EXPECT_EQ(bitmap.Palette().Entry(0), (tagPALETTEENTRY{1, 255, 232, 0}));
  EXPECT_EQ(bitmap.Palette().Entry(1), (tagPALETTEENTRY{255, 0, 0x78, 0}));
}

TEST(ColorBmpTo1Bit, Should_GiveTheSecondColorOnly_At0AndBelow_TheFirstOnly_Above255) {
  std::mt19937 random(2);
  const TBitmap before = AnyBitmap(pf24bit, 16, 2, random);
  for (const int t : {kLeast, -1, 0, 256, kMost}) {
    const std::unique_ptr<TBitmap> bitmap = before.Clone();
    ColorBmpToSW(bitmap.get(), t);
    for (int x = 0; x < 16; ++x)
      EXPECT_EQ(bitmap->PixelColor(x, 1), t <= 0 ? clWhite : clBlack) << t;
  }
}

TEST(ColorBmpToSW, Should_SetTheSixUnusedBits_OfARowOfTenPixels) {
  TBitmap bitmap = test::GradientBitmap(pf24bit, 10, 2);
  std::memset(bitmap.ScanLine(0), 0, 30);
  std::memset(bitmap.ScanLine(0) + 27, 200, 3);
  ColorBmpToSW(&bitmap, 128);
  EXPECT_EQ(bitmap.PixelFormat(), pf1bit);
  EXPECT_EQ(bitmap.ScanLine(0)[0], 0x00);
  EXPECT_EQ(bitmap.ScanLine(0)[1], 0x7F);
  EXPECT_EQ(bitmap.ScanLine(0)[2], 0);
  EXPECT_EQ(bitmap.Palette(), DefaultPalette(pf1bit));
}

TEST(ColorBmpToSW, Should_KeepWhatElseTheBitmapHas) {
  for (const TPixelFormat format : kEveryNamedFormat) {
    std::mt19937 random(3);
    TBitmap bitmap = AnyBitmap(format, 9, 2, random);
    bitmap.SetTransparent(true);
    bitmap.SetTransparentColor(RGB(1, 2, 3));
    bitmap.SetDpi({300, 200});
    bitmap.SetModified(false);
    ColorBmpToSW(&bitmap, 128);
    EXPECT_TRUE(bitmap.Transparent());
    EXPECT_EQ(bitmap.TransparentMode(), tmFixed);
    EXPECT_EQ(bitmap.TransparentColor(), RGB(1, 2, 3));
    EXPECT_EQ(bitmap.Dpi(), (Resolution{300, 200}));
    EXPECT_TRUE(bitmap.Modified());
  }
}

TEST(BitmapToGray, Should_EqualTheReference_ForEveryFormatWidthAndTarget) {
  constexpr unsigned kSeed = 2322;
  std::mt19937 random(kSeed);
  for (const TPixelFormat format : kEveryNamedFormat) {
    for (int width = 0; width <= 70; ++width) {
      SCOPED_TRACE(testing::Message() << format << ", width " << width << ", seed " << kSeed);
      const TBitmap before = AnyBitmap(format, width, 3, random);
      for (const bool keep : {false, true}) {
        ExpectLikeReference(
            before, [=](TBitmap& x) { reference::BitmapToGray(x, keep); },
            [=](TBitmap& x) { BitmapToGray(&x, keep); });
      }
    }
  }
}

TEST(BitmapToGray, Should_EqualTheReference_ForPalettesOfEverySize) {
  constexpr unsigned kSeed = 2323;
  std::mt19937 random(kSeed);
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit}) {
    for (const int count : {0, 1, 2, 3, 15, 16, 17, 100, 255, 256}) {
      for (const int width : {0, 1, 7, 40}) {
        SCOPED_TRACE(testing::Message() << format << ", " << count << " entries, width " << width
                                        << ", seed " << kSeed);
        ExpectLikeReference(
            PaletteBitmap(format, width, 3, count, random),
            [](TBitmap& x) { reference::BitmapToGray(x, true); },
            [](TBitmap& x) { BitmapToGray(&x, true); });
      }
    }
  }
}

TEST(BitmapToGray, Should_KeepIndexes_OfAPaletteOf256) {
  std::mt19937 random(4);
  TBitmap bitmap = AnyBitmap(pf8bit, 31, 3, random);
  const std::unique_ptr<TBitmap> before = bitmap.Clone();
  BitmapToGray(&bitmap, false);
  for (int i = 0; i < 256; ++i) {
    const tagPALETTEENTRY old = before->Palette().Entry(i);
    const uint8_t gray = GrayValue(old.peRed, old.peGreen, old.peBlue);
    ASSERT_EQ(bitmap.Palette().Entry(i), (tagPALETTEENTRY{gray, gray, gray, old.peFlags}));
  }
  bitmap.SetPalette(before->Palette());
  EXPECT_TRUE(SameRows(*before, bitmap));
}

TEST(BitmapToGray, Should_StayInPlace_When_TrueColorIsKept_On24Bit) {
  std::mt19937 random(5);
  TBitmap bitmap = AnyBitmap(pf24bit, 300, 2, random);
  const std::unique_ptr<TBitmap> before = bitmap.Clone();
  const uint8_t* row = bitmap.ScanLine(0);
  BitmapToGray(&bitmap, true);
  EXPECT_EQ(bitmap.PixelFormat(), pf24bit);
  EXPECT_EQ(bitmap.ScanLine(0), row);
  EXPECT_TRUE(bitmap.Modified());
  for (int x = 0; x < 300; ++x) {
    const uint8_t gray = GrayValue(before->PixelColor(x, 1));
    ASSERT_EQ(bitmap.PixelColor(x, 1), RGB(gray, gray, gray)) << x;
  }
}

TEST(BitmapToGray, Should_Become8Bit_When_TrueColorIsKept_On32Bit) {
  std::mt19937 random(6);
  TBitmap bitmap = AnyBitmap(pf32bit, 30, 2, random);
  bitmap.SetAlphaFormat(afDefined);
  bitmap.SetDpi({96, 97});
  BitmapToGray(&bitmap, true);
  EXPECT_EQ(bitmap.PixelFormat(), pf8bit);
  EXPECT_TRUE(IsGrayRamp(bitmap.Palette()));
  EXPECT_EQ(bitmap.AlphaFormat(), afIgnored);
  EXPECT_EQ(bitmap.Dpi(), (Resolution{96, 97}));
}

TEST(BitmapToGray, Should_Have256Grays_When_AnOddPaletteWasThere) {
  TBitmap bitmap;
  bitmap.ResetPixels(pf8bit, 2, 1);
  const tagPALETTEENTRY colors[3] = {{}, {200, 200, 200, 0}, {255, 255, 255, 0}};
  bitmap.SetPalette(HPALETTE(colors));
  bitmap.ScanLine(0)[0] = 1;
  bitmap.ScanLine(0)[1] = 2;
  BitmapToGray(&bitmap, false);
  EXPECT_TRUE(IsGrayRamp(bitmap.Palette()));
  EXPECT_EQ(bitmap.PixelColor(0, 0), RGB(200, 200, 200));
  EXPECT_EQ(bitmap.PixelColor(1, 0), clWhite);
}

TEST(GrayMono, Should_DoNothing_When_TheBitmapIsAbsent) {
  std::vector<std::string> messages;
  HostPorts().messageBox = [&](const std::string& text) { messages.push_back(text); };
  EXPECT_NO_THROW(ColorBmpTo1Bit(nullptr, 1, 2, 3, 4, 5, 6, 7));
  EXPECT_NO_THROW(ColorBmpToSW(nullptr, 1));
  EXPECT_NO_THROW(BitmapToGray(nullptr, true));
  HostPorts() = Ports();
  EXPECT_EQ(messages, std::vector<std::string>());
  EXPECT_FALSE(ThreadQueue::Current().NeedsAttention()) << "a worker was started";
}

}  // namespace
}  // namespace rasterkit
