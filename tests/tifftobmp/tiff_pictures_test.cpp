// TIFF files made here, read as pictures and as grids.

#include <bit>
#include <limits>

#include <gtest/gtest.h>

#include <rasterkit/tifftobmp/geotiff_reader.h>
#include <rasterkit/tifftobmp/wic_bitmap.h>

#include "tests/support/plain_tiff.h"
#include "tests/support/same_pixels.h"
#include "tests/support/temp_folder.h"

namespace rasterkit {
namespace {

using test::ByteOrder;
using test::NumberBytes;
using test::PlainTiff;

constexpr ByteOrder kOrders[] = {ByteOrder::intel, ByteOrder::motorola};

class TiffPictures : public testing::Test {
 protected:
  std::string Written(const PlainTiff& tiff) const {
    return folder_.Write("a.tif", test::PlainTiffBytes(tiff));
  }
  TWICBitmap Picture(const PlainTiff& tiff) const {
    TWICBitmap bitmap;
    bitmap.LoadFromFile(Written(tiff));
    EXPECT_EQ(bitmap.Width(), static_cast<int>(tiff.width));
    EXPECT_EQ(bitmap.Height(), static_cast<int>(tiff.height));
    EXPECT_EQ(bitmap.Dpi(), (Resolution{300, 150}));
    EXPECT_FALSE(bitmap.Transparent());
    EXPECT_TRUE(test::PaddingIsZero(bitmap));
    return bitmap;
  }
  void ExpectNoGrid(const PlainTiff& tiff) const {
    std::unique_ptr<TBitmap> bitmap;
    TWICFloatFormat floatFormat = ffSingle;
    EXPECT_FALSE(ReadGeoTiffIntoBitmap(Written(tiff), bitmap, floatFormat));
    EXPECT_EQ(bitmap, nullptr);
    EXPECT_EQ(floatFormat, ffNoFloat);
  }
  test::TempFolder folder_;
};

/// Rows without their padding.
std::string Rows(const TBitmap& bitmap) {
  std::string rows;
  for (int y = 0; y < bitmap.Height(); ++y) {
    rows.append(reinterpret_cast<const char*>(bitmap.ScanLine(y)), bitmap.Content().RowBytes());
  }
  return rows;
}

std::string Bytes(std::initializer_list<int> values) {
  std::string bytes;
  for (const int value : values) bytes += static_cast<char>(value);
  return bytes;
}

// ---- Grids

template <class T>
class TiffGrid : public TiffPictures {
 protected:
  void ExpectNumbers(const std::vector<T>& values, uint16_t sampleFormat, TWICFloatFormat expected,
                     TPixelFormat format) const {
    const auto width = static_cast<uint32_t>(values.size() / 2);
    for (const ByteOrder order : kOrders) {
      PlainTiff tiff{width, 2, {8 * sizeof(T)}, 1, sampleFormat, "", {}, {}, order};
      tiff.rows = NumberBytes(values, order);
      std::unique_ptr<TBitmap> bitmap;
      TWICFloatFormat floatFormat = ffNoFloat;
      ASSERT_TRUE(ReadGeoTiffIntoBitmap(Written(tiff), bitmap, floatFormat));
      EXPECT_EQ(floatFormat, expected);
      EXPECT_EQ(bitmap->PixelFormat(), format);
      EXPECT_EQ(Rows(*bitmap), NumberBytes(values, ByteOrder::intel)) << "bits arrive unchanged";
      EXPECT_EQ(Rows(Picture(tiff)), Rows(*bitmap)) << "as a picture too";
      EXPECT_EQ(bitmap->Dpi(), (Resolution{300, 150}));
    }
  }
};
using TiffFloats = TiffGrid<float>;
using TiffWords = TiffGrid<uint16_t>;

TEST_F(TiffFloats, Should_ArriveBitForBit) {
  ExpectNumbers({0.0f, -0.0f, 1.5f, -9999.0f, 3e38f, 1e-42f, std::numeric_limits<float>::infinity(),
                 std::bit_cast<float>(0x7FC12345u), 0.1f, 7.0f},
                3, ffSingle, pf32bit);
}

TEST_F(TiffWords, Unsigned_Should_ArriveAsTheyAre) {
  ExpectNumbers({0, 1, 255, 256, 0x1234, 0x7FFF, 0x8000, 0xFFFE, 0xFFFF, 42}, 1, ffWord, pf16bit);
}

TEST_F(TiffWords, Signed_Should_ArriveAsTheyAre) {
  ExpectNumbers({0, 1, 0xFFFF, 0x8000, 0x7FFF, 0xD8F1}, 2, ffSmallInt, pf16bit);
}

TEST_F(TiffWords, Halves_Should_ArriveAsTheyAre) {
  ExpectNumbers({0x0000, 0x3C00, 0xBC00, 0x7BFF, 0x7C00, 0x7E01}, 3, ffSmallInt, pf16bit);
}

// ---- Pictures

TEST_F(TiffPictures, Colors_Should_Have24Bits_And_GiveNoGrid) {
  const PlainTiff tiff{2, 1, {8, 8, 8}, 2, 1, Bytes({1, 2, 3, 4, 5, 6})};
  const TWICBitmap bitmap = Picture(tiff);
  EXPECT_EQ(bitmap.PixelFormat(), pf24bit);
  EXPECT_EQ(Rows(bitmap), Bytes({3, 2, 1, 6, 5, 4}));
  ExpectNoGrid(tiff);
}

TEST_F(TiffPictures, ClearPixels_Should_BecomeOpaqueWhite_When_AlphaHas8Bits) {
  const PlainTiff tiff{3,  1,  {8, 8, 8, 8}, 2, 1, Bytes({1, 2, 3, 0, 4, 5, 6, 1, 7, 8, 9, 255}),
                       {}, {2}};
  const TWICBitmap bitmap = Picture(tiff);
  EXPECT_EQ(bitmap.PixelFormat(), pf32bit);
  EXPECT_EQ(Rows(bitmap), Bytes({255, 255, 255, 255, 6, 5, 4, 1, 9, 8, 7, 255}));
  EXPECT_EQ(bitmap.AlphaFormat(), afDefined);
  ExpectNoGrid(tiff);
}

TEST_F(TiffPictures, ClearPixels_Should_KeepTheirColors_When_AlphaHas16Bits) {
  for (const ByteOrder order : kOrders) {
    PlainTiff tiff{2, 1, {16, 16, 16, 16}, 2, 1, "", {}, {2}, order};
    tiff.rows = NumberBytes<uint16_t>({257, 2 * 257, 3 * 257, 0, 0, 128, 129, 65535}, order);
    const TWICBitmap bitmap = Picture(tiff);
    EXPECT_EQ(bitmap.PixelFormat(), pf32bit);
    EXPECT_EQ(Rows(bitmap), Bytes({3, 2, 1, 0, 1, 0, 0, 255})) << "rounded to 8 bits";
    ExpectNoGrid(tiff);
  }
}

TEST_F(TiffPictures, Colors48_Should_Become32Bits) {
  PlainTiff tiff{1, 1, {16, 16, 16}, 2};
  tiff.rows = NumberBytes<uint16_t>({257, 2 * 257, 3 * 257}, ByteOrder::intel);
  const TWICBitmap bitmap = Picture(tiff);
  EXPECT_EQ(bitmap.PixelFormat(), pf32bit);
  EXPECT_EQ(Rows(bitmap), Bytes({3, 2, 1, 255}));
  ExpectNoGrid(tiff);
}

TEST_F(TiffPictures, PressColors_Should_Become32Bits) {
  const PlainTiff tiff{2, 1, {8, 8, 8, 8}, 5, 1, Bytes({0, 0, 0, 0, 0, 0, 0, 255})};
  const TWICBitmap bitmap = Picture(tiff);
  EXPECT_EQ(bitmap.PixelFormat(), pf32bit);
  EXPECT_EQ(Rows(bitmap), Bytes({255, 255, 255, 255, 0, 0, 0, 255}));
  ExpectNoGrid(tiff);
}

TEST_F(TiffPictures, Bits_Should_BeShownRight_InEitherPolarity) {
  for (const uint16_t blackIs : {0, 1}) {
    // The tag says which color a 0 has: 0 white, 1 black.
    const PlainTiff tiff{3, 1, {1}, blackIs, 1, Bytes({0x40})};
    const TWICBitmap bitmap = Picture(tiff);
    EXPECT_EQ(bitmap.PixelFormat(), pf1bit);
    EXPECT_EQ(bitmap.PixelColor(0, 0), blackIs == 1 ? clBlack : clWhite);
    EXPECT_EQ(bitmap.PixelColor(1, 0), blackIs == 1 ? clWhite : clBlack);
    ExpectNoGrid(tiff);
  }
}

TEST_F(TiffPictures, Grays_Should_HaveARamp) {
  const PlainTiff nibbles{3, 1, {4}, 1, 1, Bytes({0x07, 0xF0})};
  const TWICBitmap four = Picture(nibbles);
  EXPECT_EQ(four.PixelFormat(), pf4bit);
  EXPECT_EQ(four.Palette(), GrayPalette(16));
  EXPECT_EQ(four.PixelColor(1, 0), RGB(0x77, 0x77, 0x77));
  ExpectNoGrid(nibbles);
  const PlainTiff bytes{3, 1, {8}, 1, 1, Bytes({0, 100, 255})};
  const TWICBitmap eight = Picture(bytes);
  EXPECT_EQ(eight.PixelFormat(), pf8bit);
  EXPECT_TRUE(IsGrayRamp(eight.Palette()));
  EXPECT_EQ(eight.PixelColor(1, 0), RGB(100, 100, 100));
  ExpectNoGrid(bytes);
}

TEST_F(TiffPictures, Rows_Should_BeAsStored_WhateverTheOrientation) {
  for (const uint16_t orientation : {1, 2, 3, 4, 5, 6, 7, 8}) {
    PlainTiff tiff{3, 2, {8}, 1, 1, Bytes({1, 2, 3, 4, 5, 6})};
    tiff.orientation = orientation;
    EXPECT_EQ(Rows(Picture(tiff)), tiff.rows) << orientation;
  }
}

TEST_F(TiffPictures, Palette_Should_Come) {
  PlainTiff tiff{2, 1, {8}, 3, 1, Bytes({1, 255})};
  tiff.colorMap.resize(3 * 256);
  tiff.colorMap[1] = 10 * 257;
  tiff.colorMap[256 + 1] = 20 * 257;
  tiff.colorMap[512 + 1] = 30 * 257;
  tiff.colorMap[255] = 65535;
  const TWICBitmap bitmap = Picture(tiff);
  EXPECT_EQ(bitmap.PixelFormat(), pf8bit);
  EXPECT_EQ(bitmap.Palette().Count(), 256);
  EXPECT_EQ(bitmap.PixelColor(0, 0), RGB(10, 20, 30));
  EXPECT_EQ(bitmap.PixelColor(1, 0), RGB(255, 0, 0));
  ExpectNoGrid(tiff);
}

}  // namespace
}  // namespace rasterkit
