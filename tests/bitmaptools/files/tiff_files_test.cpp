// TIFF files in the conversions of graphics between files, streams and classes.

#include <cstring>

#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/files/graphic_files.h>
#include <rasterkit/bitmaptools/files/graphic_types.h>
#include <rasterkit/bitmaptools/files/load_via_wic.h>
#include <rasterkit/bitmaptools/files/windows_bitmap.h>
#include <rasterkit/graphics/jpeg_image.h>
#include <rasterkit/graphics/png_image.h>
#include <rasterkit/tifftobmp/wic_bitmap.h>

#include "tests/support/plain_tiff.h"
#include "tests/support/same_pixels.h"
#include "tests/support/temp_folder.h"

namespace rasterkit {
namespace {

using test::SamePixels;

constexpr int kWidth = 5, kHeight = 3;

/// Picture of `ColorTiff`.
TBitmap Expected() {
  TBitmap bitmap;
  bitmap.ResetPixels(pf24bit, kWidth, kHeight);
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      const RGBrec color = {static_cast<uint8_t>(y), static_cast<uint8_t>(10 * x), 200};
      reinterpret_cast<RGBrec*>(bitmap.ScanLine(y))[x] = color;
    }
  }
  return bitmap;
}

std::string ColorTiff(uint16_t orientation = 1) {
  test::PlainTiff tiff{kWidth, kHeight, {8, 8, 8}, 2};
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      tiff.rows += static_cast<char>(200);
      tiff.rows += static_cast<char>(10 * x);
      tiff.rows += static_cast<char>(y);
    }
  }
  tiff.orientation = orientation;
  return test::PlainTiffBytes(tiff);
}

TBitmap AsBitmap(const TGraphic& graphic) {
  TBitmap bitmap;
  bitmap.Assign(&graphic);
  return bitmap;
}

class TiffFiles : public testing::Test {
 protected:
  std::string TempDir() const { return folder_.Path().string() + "/"; }
  test::TempFolder folder_;
};

TEST_F(TiffFiles, LoadGraphic_Should_GiveATiffGraphic) {
  for (const char* name : {"a.tif", "a.TIFF", "a.tfw"}) {
    const auto graphic = LoadGraphic(folder_.Write(name, ColorTiff()));
    ASSERT_NE(dynamic_cast<TWICBitmap*>(graphic.get()), nullptr) << name;
    EXPECT_TRUE(SamePixels(Expected(), AsBitmap(*graphic))) << name;
  }
}

TEST_F(TiffFiles, LoadGraphic_Should_NotTurnATiff) {
  const auto graphic = LoadGraphic(folder_.Write("a.tif", ColorTiff(6)));
  ASSERT_NE(graphic, nullptr);
  EXPECT_TRUE(SamePixels(Expected(), AsBitmap(*graphic)));
}

TEST_F(TiffFiles, LoadGraphic_Should_ReadATiffUnderAnyRasterExtension) {
  const auto png = LoadGraphic(folder_.Write("a.png", ColorTiff()));
  ASSERT_NE(dynamic_cast<TPngImage*>(png.get()), nullptr);
  EXPECT_TRUE(SamePixels(Expected(), AsBitmap(*png)));
  const auto bmp = LoadGraphic(folder_.Write("a.bmp", ColorTiff()));
  ASSERT_EQ(GetGraphicType(bmp.get()), gtBmp);
  EXPECT_TRUE(SamePixels(Expected(), AsBitmap(*bmp)));
  EXPECT_NE(dynamic_cast<TJPEGImage*>(LoadGraphic(folder_.Write("a.jpg", ColorTiff())).get()),
            nullptr);
}

TEST_F(TiffFiles, LoadGraphic_Should_GiveNull_When_TheTiffIsCut) {
  EXPECT_EQ(LoadGraphic(folder_.Write("a.tif", ColorTiff().substr(0, 20))), nullptr);
}

TEST_F(TiffFiles, LoadViaWic_Should_GiveAPlainBitmap) {
  const auto graphic = LoadViaWic(folder_.Write("a.tif", ColorTiff()));
  ASSERT_EQ(GetGraphicType(graphic.get()), gtBmp);
  EXPECT_TRUE(SamePixels(Expected(), AsBitmap(*graphic)));
}

TEST_F(TiffFiles, GraphicFromStream_Should_ReadATiff_And_RemoveItsFile) {
  const std::string bytes = ColorTiff();
  TMemoryStream stream({bytes.begin(), bytes.end()});
  stream.SetPosition(5);
  const auto graphic = GraphicFromStream(gtTif, TempDir(), &stream);
  ASSERT_NE(dynamic_cast<TWICBitmap*>(graphic.get()), nullptr);
  EXPECT_TRUE(SamePixels(Expected(), AsBitmap(*graphic)));
  EXPECT_TRUE(folder_.Names().empty());
}

TEST_F(TiffFiles, GraphicFromStream_Should_RemoveItsFile_When_TheTiffIsCut) {
  const std::string bytes = ColorTiff().substr(0, 20);
  TMemoryStream stream({bytes.begin(), bytes.end()});
  EXPECT_EQ(GraphicFromStream(gtTif, TempDir(), &stream), nullptr);
  EXPECT_TRUE(folder_.Names().empty());
}

TEST_F(TiffFiles, LoadWindowsBitmap_Should_ReadATiffUnturned) {
  std::unique_ptr<TBitmap> bitmap;
  ASSERT_TRUE(LoadWindowsBitmap(folder_.Write("a.tiff", ColorTiff(6)), 0, bitmap));
  EXPECT_TRUE(SamePixels(Expected(), *bitmap));
  ASSERT_TRUE(LoadWindowsBitmap(folder_.Write("a.tiff", ColorTiff(6)), 90, bitmap));
  EXPECT_EQ(bitmap->Width(), kHeight);
  EXPECT_FALSE(LoadWindowsBitmap(folder_.Write("a.tif", ColorTiff().substr(0, 20)), 0, bitmap));
  EXPECT_EQ(bitmap, nullptr);
}

TEST_F(TiffFiles, LoadWindowsBitmap_Should_KeepTheNumbersOfAGrid) {
  test::PlainTiff tiff{3, 1, {16}, 1, 1};
  tiff.rows = test::NumberBytes<uint16_t>({1, 2, 0xABCD}, test::ByteOrder::intel);
  std::unique_ptr<TBitmap> bitmap;
  ASSERT_TRUE(LoadWindowsBitmap(folder_.Write("a.tif", test::PlainTiffBytes(tiff)), 0, bitmap));
  EXPECT_EQ(bitmap->PixelFormat(), pf16bit);
  EXPECT_EQ(std::memcmp(bitmap->ScanLine(0), tiff.rows.data(), 6), 0);
}

}  // namespace
}  // namespace rasterkit
