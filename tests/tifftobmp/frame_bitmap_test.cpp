#include <bit>
#include <cstring>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/tifftobmp/frame_bitmap.h>
#include <rasterkit/tifftobmp/wic_formats.h>

#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::detail {
namespace {

using test::GradientRaster;
using test::SamePixels;

constexpr WICPixelFormat kEveryFormat[] = {GUID_WICPixelFormatBlackWhite,
                                           GUID_WICPixelFormat1bppIndexed,
                                           GUID_WICPixelFormat4bppIndexed,
                                           GUID_WICPixelFormat8bppIndexed,
                                           GUID_WICPixelFormat24bppBGR,
                                           GUID_WICPixelFormat24bppRGB,
                                           GUID_WICPixelFormat32bppBGR,
                                           GUID_WICPixelFormat32bppBGRA,
                                           GUID_WICPixelFormat32bppGrayFloat,
                                           GUID_WICPixelFormat4bppGray,
                                           GUID_WICPixelFormat8bppGray,
                                           GUID_WICPixelFormat16bppBGR555,
                                           GUID_WICPixelFormat16bppBGR565,
                                           GUID_WICPixelFormat16bppGray,
                                           GUID_WICPixelFormat16bppGrayFixedPoint,
                                           GUID_WICPixelFormat16bppGrayHalf};

TPixelFormat StoredFormatOf(WICPixelFormat format) {
  switch (TraitsOf(format).bits) {
    case 1:
      return pf1bit;
    case 4:
      return pf4bit;
    case 8:
      return pf8bit;
    case 16:
      return pf16bit;
    case 24:
      return pf24bit;
    default:
      return pf32bit;
  }
}

/// A frame of random pixels, every alpha above 0.
ImagingFrame Frame(WICPixelFormat format, int width = 13, int height = 7) {
  std::mt19937 random(5);
  ImagingFrame frame;
  frame.format = format;
  frame.rows = test::RandomRaster(StoredFormatOf(format), width, height, random);
  if (format != GUID_WICPixelFormat32bppBGRA) return frame;
  frame.rows.alphaFormat = afDefined;
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) frame.rows.Row(y)[4 * x + 3] |= 1;
  return frame;
}

ImagingFrame Copy(const ImagingFrame& frame) {
  ImagingFrame copy;
  copy.format = frame.format;
  copy.rows = frame.rows.Clone();
  copy.isConverted = frame.isConverted;
  return copy;
}

/// Picture from a copy of the frame.
std::unique_ptr<TBitmap> PictureOf(const ImagingFrame& frame) {
  return BitmapOfFrame(Copy(frame), ReadMode::picture).bitmap;
}

bool RowsAreUnchanged(const Raster& rows, const TBitmap& bitmap) {
  for (int y = 0; y < rows.Height(); ++y) {
    if (std::memcmp(rows.Row(y), bitmap.ScanLine(y), rows.RowBytes()) != 0) return false;
  }
  return rows.Width() == bitmap.Width() && rows.Height() == bitmap.Height();
}

HPALETTE NumberedPalette(int count) {
  std::vector<tagPALETTEENTRY> entries;
  for (int i = 0; i < count; ++i) {
    entries.push_back(
        {static_cast<uint8_t>(i), static_cast<uint8_t>(255 - i), static_cast<uint8_t>(3 * i), 0});
  }
  return HPALETTE(entries);
}

class FrameBitmapOf : public testing::TestWithParam<WICPixelFormat> {};
INSTANTIATE_TEST_SUITE_P(EveryFormat, FrameBitmapOf, testing::ValuesIn(kEveryFormat),
                         [](const auto& info) { return std::to_string(info.index); });

TEST_P(FrameBitmapOf, Picture_Should_HaveTheRowsUnchanged) {
  for (const int width : {1, 2, 3, 7, 8, 9, 13, 33}) {
    const ImagingFrame frame = Frame(GetParam(), width, 5);
    const auto bitmap = PictureOf(frame);
    ASSERT_NE(bitmap, nullptr);
    EXPECT_EQ(bitmap->PixelFormat(), StoredFormatOf(GetParam()));
    EXPECT_TRUE(RowsAreUnchanged(frame.rows, *bitmap)) << width;
    EXPECT_TRUE(test::PaddingIsZero(*bitmap)) << width;
    EXPECT_FALSE(bitmap->Transparent());
    EXPECT_FALSE(bitmap->Modified());
  }
}

TEST_P(FrameBitmapOf, Raster_Should_BeReadFromNumbersOnly) {
  const TWICFloatFormat numbers = TraitsOf(GetParam()).floatFormat;
  const ImagingFrame frame = Frame(GetParam());
  const FrameBitmap read = BitmapOfFrame(Copy(frame), ReadMode::raster);
  EXPECT_EQ(read.floatFormat, numbers);
  ASSERT_EQ(read.bitmap != nullptr, numbers != ffNoFloat);
  if (numbers == ffNoFloat) return;
  EXPECT_TRUE(RowsAreUnchanged(frame.rows, *read.bitmap));
}

TEST_P(FrameBitmapOf, Picture_Should_SayHowItsPixelsAreRead) {
  EXPECT_EQ(BitmapOfFrame(Frame(GetParam()), ReadMode::picture).floatFormat,
            TraitsOf(GetParam()).floatFormat);
}

TEST_P(FrameBitmapOf, Rows_Should_MoveWithoutACopy) {
  ImagingFrame frame = Frame(GetParam());
  const uint8_t* rows = frame.rows.Row(0);
  EXPECT_EQ(BitmapOfFrame(std::move(frame), ReadMode::picture).bitmap->ScanLine(0), rows);
}

TEST_P(FrameBitmapOf, ResolutionAndProfile_Should_TravelAlong) {
  ImagingFrame frame = Frame(GetParam());
  frame.rows.resolution = {300, 150};
  frame.rows.profile = std::make_shared<std::vector<uint8_t>>(std::vector<uint8_t>{1, 2, 3});
  for (const ReadMode mode : {ReadMode::picture, ReadMode::raster}) {
    const auto bitmap = BitmapOfFrame(Copy(frame), mode).bitmap;
    if (!bitmap) continue;
    EXPECT_EQ(bitmap->Dpi(), (Resolution{300, 150}));
    EXPECT_EQ(bitmap->Profile(), frame.rows.profile);
  }
}

TEST_P(FrameBitmapOf, ColorMarkedAsTransparent_Should_StayVisible) {
  ImagingFrame frame = Frame(GetParam());
  frame.rows.transparentColor = RGB(1, 2, 3);
  const auto bitmap = PictureOf(frame);
  EXPECT_FALSE(bitmap->Transparent());
  EXPECT_EQ(bitmap->TransparentMode(), tmAuto);
  EXPECT_TRUE(RowsAreUnchanged(frame.rows, *bitmap));
}

TEST_P(FrameBitmapOf, FrameOfOtherBits_Should_BeAnInvalidImage) {
  const TPixelFormat wrong = TraitsOf(GetParam()).bits == 24 ? pf32bit : pf24bit;
  for (const ReadMode mode : {ReadMode::picture, ReadMode::raster}) {
    ImagingFrame frame;
    frame.format = GetParam();
    frame.rows = GradientRaster(wrong, 13, 7);
    if (mode == ReadMode::raster && TraitsOf(frame).floatFormat == ffNoFloat) continue;
    try {
      BitmapOfFrame(std::move(frame), mode);
      ADD_FAILURE() << "taken";
    } catch (const FormatError& error) {
      EXPECT_EQ(error.Reason(), "Invalid image");
    }
  }
}

// ---- Numbers

TEST(FrameBitmapNumbers, Floats_Should_ArriveBitForBit) {
  const float values[] = {0.0f,
                          -0.0f,
                          1.5f,
                          -9999.0f,
                          std::numeric_limits<float>::denorm_min(),
                          std::numeric_limits<float>::infinity(),
                          std::bit_cast<float>(0x7FC12345u)};
  ImagingFrame frame;
  frame.format = GUID_WICPixelFormat32bppGrayFloat;
  frame.rows = Raster(pf32bit, 7, 1);
  std::memcpy(frame.rows.Row(0), values, sizeof values);
  for (const ReadMode mode : {ReadMode::picture, ReadMode::raster}) {
    const FrameBitmap read = BitmapOfFrame(Copy(frame), mode);
    EXPECT_EQ(read.floatFormat, ffSingle);
    EXPECT_EQ(read.bitmap->PixelFormat(), pf32bit);
    EXPECT_EQ(std::memcmp(read.bitmap->ScanLine(0), values, sizeof values), 0)
        << "a float whose top byte is 0 is no transparent pixel";
  }
}

TEST(FrameBitmapNumbers, FifteenBitColors_Should_BeTakenAs16BitWords) {
  ImagingFrame frame;
  frame.format = GUID_WICPixelFormat16bppBGR555;
  frame.rows = GradientRaster(pf15bit, 13, 7);
  frame.rows.resolution = {96, 96};
  const auto bitmap = PictureOf(frame);
  EXPECT_EQ(bitmap->PixelFormat(), pf16bit);
  EXPECT_TRUE(RowsAreUnchanged(frame.rows, *bitmap));
  EXPECT_TRUE(test::PaddingIsZero(*bitmap));
  EXPECT_EQ(bitmap->Dpi(), (Resolution{96, 96}));
}

TEST(FrameBitmapNumbers, RedFirst_Should_NotBeExchanged) {
  ImagingFrame frame;
  frame.format = GUID_WICPixelFormat24bppRGB;
  frame.rows = Raster(pf24bit, 1, 1);
  const uint8_t rgb[] = {1, 2, 3};
  std::memcpy(frame.rows.Row(0), rgb, 3);
  EXPECT_EQ(PictureOf(frame)->PixelColor(0, 0), RGB(3, 2, 1));
}

// ---- Palettes

TEST(FrameBitmapPalette, IndexedFrame_Should_GetItsPaletteThroughTheBuilder) {
  const struct {
    WICPixelFormat format;
    int count, expected;
  } cases[] = {
      {GUID_WICPixelFormat1bppIndexed, 2, 2},     {GUID_WICPixelFormat1bppIndexed, 1, 1},
      {GUID_WICPixelFormat4bppIndexed, 16, 16},   {GUID_WICPixelFormat4bppIndexed, 5, 5},
      {GUID_WICPixelFormat8bppIndexed, 16, 16},   {GUID_WICPixelFormat8bppIndexed, 17, 256},
      {GUID_WICPixelFormat8bppIndexed, 255, 256}, {GUID_WICPixelFormat8bppIndexed, 256, 256}};
  for (const auto& [format, count, expected] : cases) {
    ImagingFrame frame = Frame(format);
    frame.rows.palette = NumberedPalette(count);
    const HPALETTE palette = PictureOf(frame)->Palette();
    ASSERT_EQ(palette.Count(), expected) << count;
    for (int i = 0; i < expected; ++i) {
      EXPECT_EQ(palette.Entry(i), i < count ? frame.rows.palette.Entry(i) : tagPALETTEENTRY{});
    }
  }
}

TEST(FrameBitmapPalette, IndexedFrameWithoutPalette_Should_LookLikeANewBitmap) {
  for (const WICPixelFormat format :
       {GUID_WICPixelFormat1bppIndexed, GUID_WICPixelFormat4bppIndexed,
        GUID_WICPixelFormat8bppIndexed}) {
    ImagingFrame frame = Frame(format);
    frame.rows.palette = HPALETTE();
    const auto bitmap = PictureOf(frame);
    EXPECT_EQ(bitmap->Palette(), DefaultPalette(bitmap->PixelFormat()));
  }
}

TEST(FrameBitmapPalette, GrayFrame_Should_GetARamp_WhateverTheCodecSays) {
  for (const bool hasPalette : {false, true}) {
    ImagingFrame nibbles = Frame(GUID_WICPixelFormat4bppGray);
    nibbles.rows.palette = hasPalette ? NumberedPalette(16) : HPALETTE();
    const HPALETTE sixteen = PictureOf(nibbles)->Palette();
    ASSERT_EQ(sixteen.Count(), 16);
    for (int i = 0; i < 16; ++i) EXPECT_EQ(EntryColor(sixteen.Entry(i)), i * 0x111111);
    ImagingFrame bytes = Frame(GUID_WICPixelFormat8bppGray);
    bytes.rows.palette = hasPalette ? NumberedPalette(256) : HPALETTE();
    const HPALETTE all = PictureOf(bytes)->Palette();
    ASSERT_EQ(all.Count(), 256);
    for (int i = 0; i < 256; ++i) EXPECT_EQ(EntryColor(all.Entry(i)), i * 0x10101);
  }
}

TEST(FrameBitmapPalette, BlackWhiteFrame_Should_ShowItsOnesWhite) {
  for (const bool hasPalette : {false, true}) {
    ImagingFrame frame = Frame(GUID_WICPixelFormatBlackWhite);
    frame.rows.palette = hasPalette ? NumberedPalette(2) : HPALETTE();
    frame.rows.Row(0)[0] = 0x40;
    const auto bitmap = PictureOf(frame);
    EXPECT_EQ(bitmap->Palette().Count(), 2);
    EXPECT_EQ(bitmap->PixelColor(0, 0), clBlack);
    EXPECT_EQ(bitmap->PixelColor(1, 0), clWhite);
  }
}

TEST(FrameBitmapPalette, ColorFrame_Should_HaveNone) {
  for (const WICPixelFormat format :
       {GUID_WICPixelFormat16bppGray, GUID_WICPixelFormat24bppBGR, GUID_WICPixelFormat32bppBGRA}) {
    ImagingFrame frame = Frame(format);
    frame.rows.palette = NumberedPalette(256);
    EXPECT_EQ(PictureOf(frame)->Palette().Count(), 0);
  }
}

// ---- Alpha

/// Two pixels: one of alpha 0, one of alpha 1.
ImagingFrame AlphaFrame(WICPixelFormat format) {
  ImagingFrame frame;
  frame.format = format;
  frame.rows = Raster(pf32bit, 2, 1);
  frame.rows.alphaFormat = afDefined;
  const uint8_t pixels[] = {1, 2, 3, 0, 4, 5, 6, 1};
  std::memcpy(frame.rows.Row(0), pixels, sizeof pixels);
  return frame;
}

std::vector<uint8_t> Bytes(const TBitmap& bitmap) {
  return {bitmap.ScanLine(0), bitmap.ScanLine(0) + bitmap.Content().RowBytes()};
}

TEST(FrameBitmapAlpha, ClearPixels_Should_BecomeOpaqueWhite_InPictures) {
  const auto bitmap = PictureOf(AlphaFrame(GUID_WICPixelFormat32bppBGRA));
  EXPECT_EQ(Bytes(*bitmap), (std::vector<uint8_t>{255, 255, 255, 255, 4, 5, 6, 1}));
  EXPECT_FALSE(bitmap->Transparent());
  EXPECT_EQ(bitmap->AlphaFormat(), afDefined);
}

TEST(FrameBitmapAlpha, ClearPixels_Should_KeepTheirColors_When_TheFrameWasConverted) {
  ImagingFrame frame = AlphaFrame(GUID_WICPixelFormat32bppBGRA);
  frame.isConverted = true;
  const auto bitmap = PictureOf(frame);
  EXPECT_EQ(Bytes(*bitmap), (std::vector<uint8_t>{1, 2, 3, 0, 4, 5, 6, 1}));
  EXPECT_FALSE(bitmap->Transparent());
  EXPECT_EQ(bitmap->AlphaFormat(), afDefined);
}

TEST(FrameBitmapAlpha, FourthByte_Should_MeanNothing_When_TheFormatHasNoAlpha) {
  const auto bitmap = PictureOf(AlphaFrame(GUID_WICPixelFormat32bppBGR));
  EXPECT_EQ(Bytes(*bitmap), (std::vector<uint8_t>{1, 2, 3, 0, 4, 5, 6, 1}));
}

TEST(FrameBitmapAlpha, ColorsWithAlpha_Should_GiveNoRaster) {
  EXPECT_EQ(BitmapOfFrame(AlphaFrame(GUID_WICPixelFormat32bppBGRA), ReadMode::raster).bitmap,
            nullptr);
}

}  // namespace
}  // namespace rasterkit::detail
