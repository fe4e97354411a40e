#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/pixels/transparency.h>
#include <rasterkit/runtime/ports.h>
#include <rasterkit/runtime/threads/thread_queue.h>

#include "tests/bitmaptools/pixels/pixel_cases.h"
#include "tests/reference/transparency.h"

namespace rasterkit {
namespace {

using test::AnyBitmap;
using test::ExpectLikeReference;
using test::kEveryNamedFormat;
using test::SameRows;

/// One row of pixels of one color.
TBitmap FlatBitmap(TPixelFormat format, int width, int height, TColor color) {
  TBitmap bitmap;
  bitmap.SetPixelFormat(pf24bit);
  bitmap.SetSize(width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      uint8_t* pixel = bitmap.ScanLine(y) + 3 * x;
      pixel[0] = static_cast<uint8_t>(color >> 16);
      pixel[1] = static_cast<uint8_t>(color >> 8);
      pixel[2] = static_cast<uint8_t>(color);
    }
  }
  bitmap.SetPixelFormat(format);
  return bitmap;
}

TEST(SetColorByGray, Should_EqualTheReference_ForEveryFormatWidthAndTarget) {
  constexpr unsigned kSeed = 2301;
  std::mt19937 random(kSeed);
  const auto byte = [&random] { return static_cast<uint8_t>(random()); };
  for (const TPixelFormat format : kEveryNamedFormat) {
    for (int width = 0; width <= 70; ++width) {
      SCOPED_TRACE(testing::Message() << format << ", width " << width << ", seed " << kSeed);
      const TBitmap before = AnyBitmap(format, width, 3, random);
      for (const int edge : {0, 1, 254, 255, -1, -1}) {
        const uint8_t t = edge < 0 ? byte() : static_cast<uint8_t>(edge);
        const uint8_t r = byte(), g = byte(), b = byte(), a = byte();
        ExpectLikeReference(
            before, [=](TBitmap& x) { reference::SetColorAbGray(x, t, r, g, b, a); },
            [=](TBitmap& x) { SetColorAbGray(&x, t, r, g, b, a); });
        ExpectLikeReference(
            before, [=](TBitmap& x) { reference::SetColorBisGray(x, t, r, g, b, a); },
            [=](TBitmap& x) { SetColorBisGray(&x, t, r, g, b, a); });
      }
    }
  }
}

TEST(SetColorByGray, Should_EqualTheReference_ForEveryThreshold) {
  constexpr unsigned kSeed = 2302;
  std::mt19937 random(kSeed);
  for (const TPixelFormat format : {pf16bit, pf24bit, pf32bit}) {
    const TBitmap before = AnyBitmap(format, 137, 5, random);
    for (int i = 0; i < 256; ++i) {
      SCOPED_TRACE(testing::Message() << format << ", threshold " << i << ", seed " << kSeed);
      const auto t = static_cast<uint8_t>(i);
      ExpectLikeReference(
          before, [=](TBitmap& x) { reference::SetColorAbGray(x, t, 1, 200, 77, 5); },
          [=](TBitmap& x) { SetColorAbGray(&x, t, 1, 200, 77, 5); });
      ExpectLikeReference(
          before, [=](TBitmap& x) { reference::SetColorBisGray(x, t, 1, 200, 77, 5); },
          [=](TBitmap& x) { SetColorBisGray(&x, t, 1, 200, 77, 5); });
    }
  }
}

TEST(SetColorAbGray, Should_RecolorPixelsAboveTheThresholdOnly) {
  TBitmap bitmap = FlatBitmap(pf24bit, 3, 1, RGB(100, 100, 100));
  SetColorAbGray(&bitmap, 100, 1, 2, 3, 4);
  EXPECT_EQ(bitmap.PixelColor(0, 0), RGB(100, 100, 100));
  SetColorAbGray(&bitmap, 99, 1, 2, 3, 4);
  EXPECT_EQ(bitmap.PixelColor(0, 0), RGB(1, 2, 3));
}

TEST(SetColorBisGray, Should_RecolorPixelsBelowTheThresholdOnly) {
  TBitmap bitmap = FlatBitmap(pf24bit, 3, 1, RGB(100, 100, 100));
  SetColorBisGray(&bitmap, 100, 1, 2, 3, 4);
  EXPECT_EQ(bitmap.PixelColor(0, 0), RGB(100, 100, 100));
  SetColorBisGray(&bitmap, 101, 1, 2, 3, 4);
  EXPECT_EQ(bitmap.PixelColor(0, 0), RGB(1, 2, 3));
}

TEST(SetColorByGray, Should_WriteAlphaTo32BitPixels) {
  TBitmap light = FlatBitmap(pf32bit, 2, 1, RGB(200, 200, 200));
  SetColorAbGray(&light, 199, 1, 2, 3, 4);
  EXPECT_EQ(light.ScanLine(0)[7], 4);
  TBitmap dark = FlatBitmap(pf32bit, 2, 1, RGB(10, 10, 10));
  SetColorBisGray(&dark, 11, 1, 2, 3, 9);
  EXPECT_EQ(dark.ScanLine(0)[7], 9);
}

TEST(SetColorByGray, Should_Take89And178AsTheirExtendedSums88And177) {
  for (const uint8_t level : {uint8_t{89}, uint8_t{178}}) {
    const auto below = static_cast<uint8_t>(level - 1);
    TBitmap bitmap = FlatBitmap(pf24bit, 70, 1, RGB(level, level, level));
    SetColorAbGray(&bitmap, below, 0, 0, 0, 0);
    EXPECT_EQ(bitmap.PixelColor(40, 0), RGB(level, level, level));
    SetColorBisGray(&bitmap, level, 0, 0, 0, 0);
    EXPECT_EQ(bitmap.PixelColor(40, 0), clBlack);
  }
}

TEST(SetColorAbGray, Should_WriteA565Word_On16Bit) {
  TBitmap bitmap = FlatBitmap(pf16bit, 3, 1, clWhite);
  SetColorAbGray(&bitmap, 254, 255, 128, 8, 77);
  EXPECT_EQ(bitmap.ScanLine(0)[0] | bitmap.ScanLine(0)[1] << 8, 31 << 11 | 32 << 5 | 1);
}

TEST(SetColorAbGray, Should_TakeOnlyFFFFAsWhite_On16Bit) {
  TBitmap bitmap = FlatBitmap(pf16bit, 2, 1, clWhite);
  bitmap.ScanLine(0)[0] = 0xFE;  // (248, 252, 240): gray 249
  SetColorAbGray(&bitmap, 249, 0, 0, 0, 0);
  EXPECT_EQ(bitmap.ScanLine(0)[0] | bitmap.ScanLine(0)[1] << 8, 0xFFFE);
  EXPECT_EQ(bitmap.PixelColor(1, 0), clBlack);
}

TEST(SetColorBisGray, Should_LeaveA16BitBitmapAlone) {
  TBitmap bitmap = FlatBitmap(pf16bit, 3, 1, clBlack);
  bitmap.SetModified(false);
  SetColorBisGray(&bitmap, 255, 255, 255, 255, 255);
  EXPECT_EQ(bitmap.PixelColor(0, 0), clBlack);
  EXPECT_FALSE(bitmap.Modified());
}

TEST(SetColorByGray, Should_LeaveOtherFormatsUnmodified) {
  std::mt19937 random(1);
  for (const TPixelFormat format : {pfDevice, pf1bit, pf4bit, pf8bit, pf15bit, pfCustom}) {
    TBitmap bitmap = AnyBitmap(format, 21, 2, random);
    SetColorAbGray(&bitmap, 0, 1, 2, 3, 4);
    SetColorBisGray(&bitmap, 255, 1, 2, 3, 4);
    EXPECT_FALSE(bitmap.Modified()) << format;
  }
}

TEST(SetColorByGray, Should_DoNothing_When_TheBitmapIsAbsent) {
  std::vector<std::string> messages;
  HostPorts().messageBox = [&](const std::string& text) { messages.push_back(text); };
  EXPECT_NO_THROW(SetColorAbGray(nullptr, 0, 0, 0, 0, 0));
  EXPECT_NO_THROW(SetColorBisGray(nullptr, 255, 0, 0, 0, 0));
  HostPorts() = Ports();
  EXPECT_EQ(messages, std::vector<std::string>());
  EXPECT_FALSE(ThreadQueue::Current().NeedsAttention()) << "a worker was started";
}

TEST(SetTransColor, Should_EqualTheReference_ForEveryFormatWidthAndTarget) {
  constexpr unsigned kSeed = 2303;
  std::mt19937 random(kSeed);
  for (const TPixelFormat format : kEveryNamedFormat) {
    for (int width = 0; width <= 70; ++width) {
      SCOPED_TRACE(testing::Message() << format << ", width " << width << ", seed " << kSeed);
      TBitmap before = AnyBitmap(format, width, 3, random);
      if (format == pf24bit && width > 0) {
        // Half of the pixels have the color of the bottom-left one, or two of its channels.
        const uint8_t* corner = before.ScanLine(2);
        for (int i = 0; i < 3 * width; ++i) {
          uint8_t* pixel = before.ScanLine(i % 3) + i / 3 * 3;
          if (random() % 2 == 0) std::copy_n(corner, 3, pixel);
          if (random() % 8 == 0 && i % 3 != 2) pixel[random() % 3] ^= 1;
        }
      }
      const auto color = static_cast<TColor>(random());
      ExpectLikeReference(
          before, [=](TBitmap& x) { reference::SetTransColor(x, color); },
          [=](TBitmap& x) { SetTransColor(x, color); });
    }
  }
}

TEST(SetTransColor, Should_ReplaceTheBottomLeftPixelToo) {
  TBitmap bitmap = FlatBitmap(pf24bit, 5, 4, RGB(9, 8, 7));
  bitmap.ScanLine(0)[3] = 1;
  SetTransColor(bitmap, RGB(250, 251, 252));
  EXPECT_EQ(bitmap.PixelColor(0, 3), RGB(250, 251, 252));
  EXPECT_EQ(bitmap.PixelColor(4, 0), RGB(250, 251, 252));
  EXPECT_EQ(bitmap.PixelColor(1, 0), RGB(9, 8, 1));
  EXPECT_TRUE(bitmap.Modified());
}

TEST(SetTransColor, Should_GiveBlack_For_ASystemColor) {
  TBitmap bitmap = FlatBitmap(pf24bit, 2, 2, clWhite);
  SetTransColor(bitmap, static_cast<TColor>(0x80FFFFFFu));
  EXPECT_EQ(bitmap.PixelColor(1, 0), clBlack);
}

TEST(SetTransColor, Should_LeaveOtherFormatsUnmodified) {
  std::mt19937 random(2);
  for (const TPixelFormat format : kEveryNamedFormat) {
    if (format == pf24bit) continue;
    TBitmap bitmap = AnyBitmap(format, 21, 2, random);
    SetTransColor(bitmap, clWhite);
    EXPECT_FALSE(bitmap.Modified()) << format;
  }
}

}  // namespace
}  // namespace rasterkit
