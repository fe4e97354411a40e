#include <random>

#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/files/graphic_files.h>
#include <rasterkit/bitmaptools/files/graphic_types.h>
#include <rasterkit/graphics/jpeg_image.h>
#include <rasterkit/graphics/metafile.h>
#include <rasterkit/graphics/png_image.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/ports.h>
#include <rasterkit/tifftobmp/wic_bitmap.h>

#include "tests/support/same_pixels.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

using test::GradientBitmap;
using test::SamePixels;

TBitmap AsBitmap(const TGraphic& graphic) {
  TBitmap bitmap;
  bitmap.Assign(&graphic);
  return bitmap;
}

template <class T>
T PictureAs(TPixelFormat format = pf24bit) {
  T graphic;
  const TBitmap bitmap = GradientBitmap(format, 21, 14);
  graphic.Assign(&bitmap);
  return graphic;
}

class GraphicStreams : public ::testing::Test {
 protected:
  void SetUp() override {
    HostPorts().minuteOfDay = [] { return 7; };
  }
  void TearDown() override { HostPorts().minuteOfDay = nullptr; }
  std::string TempDir() const { return folder_.Path().string() + "/"; }

  test::TempFolder folder_;
  std::unique_ptr<TMemoryStream> stream_ = std::make_unique<TMemoryStream>();
};

TEST_F(GraphicStreams, TempName_Should_HoldTheMinuteWithoutSeparatorOrPadding) {
  EXPECT_EQ(detail::MakeTempGraphicName("dir", ".tif"), "dir7.tif");
  EXPECT_EQ(detail::MakeTempGraphicName("dir/", ".tif"), "dir/7.tif");
  HostPorts().minuteOfDay = [] { return 1439; };
  EXPECT_EQ(detail::MakeTempGraphicName("", ".tif"), "1439.tif");
}

TEST_F(GraphicStreams, ToStream_Should_GiveNothing_When_ThereIsNoGraphic) {
  EXPECT_EQ(GraphicToStream(nullptr, TempDir(), stream_), 0);
  EXPECT_EQ(stream_, nullptr);
}

TEST_F(GraphicStreams, ToStream_Should_WriteTheClassesFormat_And_StandAtTheEnd) {
  TBitmap bitmap = GradientBitmap(pf24bit, 21, 14);
  EXPECT_EQ(GraphicToStream(&bitmap, TempDir(), stream_), gtBmp);
  EXPECT_EQ(stream_->Position(), stream_->Size());
  EXPECT_EQ(stream_->Bytes()[0], 'B');
  TJPEGImage jpeg;
  jpeg.Assign(&bitmap);
  EXPECT_EQ(GraphicToStream(&jpeg, TempDir(), stream_), gtJpg);
  EXPECT_EQ(stream_->Position(), stream_->Size());
  EXPECT_EQ(stream_->Bytes()[0], 0xFF);
  TPngImage png;
  png.Assign(&bitmap);
  EXPECT_EQ(GraphicToStream(&png, TempDir(), stream_), gtPng);
  EXPECT_EQ(stream_->Position(), stream_->Size());
  EXPECT_EQ(stream_->Bytes()[0], 0x89);
}

TEST_F(GraphicStreams, FromStream_Should_ReadFromTheBeginning) {
  TBitmap bitmap = GradientBitmap(pf24bit, 21, 14);
  GraphicToStream(&bitmap, TempDir(), stream_);
  const auto loaded = GraphicFromStream(gtBmp, TempDir(), stream_.get());
  ASSERT_NE(loaded, nullptr);
  EXPECT_TRUE(SamePixels(bitmap, AsBitmap(*loaded)));
  TPngImage png;
  png.Assign(&bitmap);
  GraphicToStream(&png, TempDir(), stream_);
  const auto loadedPng = GraphicFromStream(gtPng, TempDir(), stream_.get());
  ASSERT_NE(dynamic_cast<TPngImage*>(loadedPng.get()), nullptr);
  EXPECT_TRUE(SamePixels(bitmap, AsBitmap(*loadedPng)));
}

TEST_F(GraphicStreams, FromStream_Should_ReadJpegUnderBothIdentifiers) {
  TJPEGImage jpeg;
  const TBitmap bitmap = GradientBitmap(pf24bit, 21, 14);
  jpeg.Assign(&bitmap);
  GraphicToStream(&jpeg, TempDir(), stream_);
  for (const int type : {gtJpg, gtJpgAlt}) {
    const auto loaded = GraphicFromStream(type, TempDir(), stream_.get());
    ASSERT_NE(loaded, nullptr) << type;
    EXPECT_EQ(GetGraphicType(loaded.get()), gtJpg);
  }
}

TEST_F(GraphicStreams, FromStream_Should_GiveNull_When_TheTypeIsUnknown) {
  TBitmap bitmap = GradientBitmap(pf24bit, 21, 14);
  GraphicToStream(&bitmap, TempDir(), stream_);
  for (const int type : {-1, 0, 5, 7, 9, 11}) {
    EXPECT_EQ(GraphicFromStream(type, TempDir(), stream_.get()), nullptr) << type;
  }
}

TEST_F(GraphicStreams, FromStream_Should_GiveNull_When_TheBytesAreWrong) {
  TBitmap bitmap = GradientBitmap(pf24bit, 21, 14);
  GraphicToStream(&bitmap, TempDir(), stream_);
  EXPECT_EQ(GraphicFromStream(gtPng, TempDir(), stream_.get()), nullptr);
  EXPECT_EQ(GraphicFromStream(gtJpg, TempDir(), stream_.get()), nullptr);
  EXPECT_EQ(GraphicFromStream(gtWmf, TempDir(), stream_.get()), nullptr);
  stream_->Clear();
  EXPECT_EQ(GraphicFromStream(gtBmp, TempDir(), stream_.get()), nullptr);
  EXPECT_EQ(GraphicFromStream(gtBmp, TempDir(), nullptr), nullptr);
}

TEST_F(GraphicStreams, TiffFromStream_Should_GoThroughAFile_And_RemoveIt) {
  TPngImage png;
  const TBitmap bitmap = GradientBitmap(pf24bit, 21, 14);
  png.Assign(&bitmap);
  GraphicToStream(&png, TempDir(), stream_);
  const auto loaded = GraphicFromStream(gtTif, TempDir(), stream_.get());
  ASSERT_NE(dynamic_cast<TWICBitmap*>(loaded.get()), nullptr) << "decoded by content";
  EXPECT_TRUE(SamePixels(bitmap, AsBitmap(*loaded)));
  EXPECT_TRUE(folder_.Names().empty());
}

TEST_F(GraphicStreams, TiffFromStream_Should_RemoveItsFile_When_LoadingFails) {
  const std::string junk = "no picture";
  stream_->Write({reinterpret_cast<const uint8_t*>(junk.data()), junk.size()});
  EXPECT_EQ(GraphicFromStream(gtTif, TempDir(), stream_.get()), nullptr);
  EXPECT_TRUE(folder_.Names().empty());
  EXPECT_EQ(GraphicFromStream(gtTif, "no/such/folder/", stream_.get()), nullptr);
}

TEST_F(GraphicStreams, TiffToStream_Should_LeaveNothing_When_SavingFails) {
  TWICBitmap bitmap;
  const TBitmap picture = GradientBitmap(pf24bit, 21, 14);
  bitmap.Assign(&picture);
  EXPECT_THROW(GraphicToStream(&bitmap, "no/such/folder/", stream_), Error);
  EXPECT_EQ(stream_, nullptr);
}

// ---- ConvertBitmap

TBitmap Noise() {
  std::mt19937 random(11);
  return test::RandomBitmap(pf24bit, 33, 19, random);
}

TEST_F(GraphicStreams, Convert_Should_ChangeTheBitmapItself_When_BitsAre1Or8Or24) {
  for (const int bits : {1, 8, 24}) {
    TBitmap bitmap = GradientBitmap(pf32bit, 21, 14);
    ConvertBitmap(bitmap, gtBmp, bits, 0);
    EXPECT_EQ(bitmap.PixelFormat(), GetPixelFormat(bits)) << bits;
  }
}

TEST_F(GraphicStreams, Convert_Should_LeaveTheBitmap_When_BitsAreAnythingElse) {
  for (const int bits : {0, 4, 15, 16, 32, -1, 48}) {
    TBitmap bitmap = GradientBitmap(pf32bit, 21, 14);
    ConvertBitmap(bitmap, gtBmp, bits, 0);
    EXPECT_EQ(bitmap.PixelFormat(), pf32bit) << bits;
  }
}

TEST_F(GraphicStreams, Convert_Should_SetQuality100_WithoutCompressing) {
  TBitmap bitmap = Noise();
  const auto graphic = ConvertBitmap(bitmap, gtJpg, 24, 100);
  const auto& jpeg = dynamic_cast<const TJPEGImage&>(*graphic);
  EXPECT_EQ(jpeg.CompressionQuality(), 100);
  EXPECT_TRUE(SamePixels(bitmap, jpeg.Bitmap())) << "no loss yet";
  EXPECT_EQ(bitmap.PixelFormat(), pf24bit);
}

TEST_F(GraphicStreams, Convert_Should_Compress_When_TheQualityIsBelow100) {
  TBitmap bitmap = Noise();
  for (const int quality : {1, 75, 99}) {
    const auto graphic = ConvertBitmap(bitmap, gtJpg, 24, quality);
    const auto& jpeg = dynamic_cast<const TJPEGImage&>(*graphic);
    EXPECT_EQ(jpeg.CompressionQuality(), quality);
    EXPECT_FALSE(SamePixels(bitmap, jpeg.Bitmap())) << quality;
  }
}

TEST_F(GraphicStreams, Convert_Should_LeaveTheDefaults_When_TheQualityIsNone) {
  TBitmap bitmap = Noise();
  for (const int quality : {0, -1, 101, 1000}) {
    const auto graphic = ConvertBitmap(bitmap, gtJpg, 24, quality);
    const auto& jpeg = dynamic_cast<const TJPEGImage&>(*graphic);
    EXPECT_EQ(jpeg.CompressionQuality(), 90);
    EXPECT_TRUE(SamePixels(bitmap, jpeg.Bitmap()));
  }
}

TEST_F(GraphicStreams, Convert_Should_SetQualityForTypeSixOnly) {
  TBitmap bitmap = Noise();
  const auto graphic = ConvertBitmap(bitmap, gtJpgAlt, 24, 50);
  EXPECT_EQ(dynamic_cast<const TJPEGImage&>(*graphic).CompressionQuality(), 90);
  EXPECT_EQ(GetGraphicType(ConvertBitmap(bitmap, gtPng, 24, 50).get()), gtPng);
}

TEST_F(GraphicStreams, Convert_Should_Throw_When_TheTypeTakesNoBitmap) {
  for (const int type : {0, 5, 11, int{gtWmf}, int{gtEmf}}) {
    TBitmap bitmap = GradientBitmap(pf24bit, 21, 14);
    EXPECT_THROW(ConvertBitmap(bitmap, type, 8, 0), UnsupportedError) << type;
    EXPECT_EQ(bitmap.PixelFormat(), pf8bit) << "the depth comes first";
  }
}

// ---- GraphicIntoBitmap

TEST_F(GraphicStreams, IntoBitmap_Should_BeBlank_When_ThereIsNoGraphic) {
  const auto bitmap = GraphicIntoBitmap(nullptr);
  EXPECT_EQ(bitmap->Width(), 10);
  EXPECT_EQ(bitmap->Height(), 10);
  EXPECT_EQ(bitmap->PixelColor(9, 9), clWhite);
}

TEST_F(GraphicStreams, IntoBitmap_Should_TakeOverThePicture) {
  const TBitmap indexed = GradientBitmap(pf8bit, 21, 14);
  EXPECT_TRUE(SamePixels(indexed, *GraphicIntoBitmap(&indexed)));
  TPngImage png;
  png.Assign(&indexed);
  const auto bitmap = GraphicIntoBitmap(&png);
  EXPECT_TRUE(SamePixels(indexed, *bitmap));
  EXPECT_FALSE(bitmap->Transparent());
}

TEST_F(GraphicStreams, IntoBitmap_Should_DrawATransparentPngOntoWhite) {
  TBitmap indexed = GradientBitmap(pf8bit, 21, 14);
  const TColor key = indexed.PixelColor(3, 2);
  indexed.SetTransparent(true);
  indexed.SetTransparentColor(key);
  TPngImage png;
  png.Assign(&indexed);
  const auto bitmap = GraphicIntoBitmap(&png);
  EXPECT_EQ(bitmap->PixelFormat(), pf24bit);
  EXPECT_EQ(bitmap->Width(), 21);
  EXPECT_EQ(bitmap->Height(), 14);
  EXPECT_TRUE(bitmap->Transparent());
  EXPECT_EQ(bitmap->TransparentColor(), key);
  for (int y = 0; y < 14; ++y) {
    for (int x = 0; x < 21; ++x) {
      const TColor color = indexed.PixelColor(x, y);
      ASSERT_EQ(bitmap->PixelColor(x, y), color == key ? clWhite : color);
    }
  }
}

}  // namespace
}  // namespace rasterkit
