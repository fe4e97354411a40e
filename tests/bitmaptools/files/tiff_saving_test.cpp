// TIFF files written by the conversions of graphics between files, streams and classes.

#include <filesystem>

#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/files/graphic_files.h>
#include <rasterkit/bitmaptools/files/graphic_types.h>
#include <rasterkit/bitmaptools/files/windows_bitmap.h>
#include <rasterkit/graphics/jpeg_image.h>
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

template <class T>
std::unique_ptr<TGraphic> PictureAs(TPixelFormat format = pf24bit) {
  auto graphic = std::make_unique<T>();
  const TBitmap bitmap = GradientBitmap(format, 21, 14);
  graphic->Assign(&bitmap);
  return graphic;
}

TBitmap AsBitmap(const TGraphic& graphic) {
  TBitmap bitmap;
  bitmap.Assign(&graphic);
  return bitmap;
}

bool IsTiff(const std::string& bytes) {
  return bytes.starts_with(std::string_view("II*\0", 4));
}

class TiffSaving : public testing::Test {
 protected:
  void SetUp() override {
    HostPorts().minuteOfDay = [] { return 7; };
  }
  void TearDown() override { HostPorts().minuteOfDay = nullptr; }

  std::string TempDir() const { return folder_.Path().string() + "/"; }
  void ExpectTiff(const std::string& name, const TBitmap& expected) const {
    EXPECT_TRUE(IsTiff(test::ReadFile(folder_ / name))) << name;
    const auto loaded = LoadGraphic(folder_ / name);
    ASSERT_NE(dynamic_cast<TWICBitmap*>(loaded.get()), nullptr) << name;
    EXPECT_TRUE(SamePixels(expected, AsBitmap(*loaded))) << name;
  }
  /// Puts a folder that is not empty in place of the temporary file.
  void BlockTemporaryFile() const { std::filesystem::create_directories(folder_ / "7.tif/full"); }

  test::TempFolder folder_;
  std::unique_ptr<TMemoryStream> stream_;
};

// ---- SaveGraphic

TEST_F(TiffSaving, SaveGraphic_Should_ConvertEveryRasterKindIntoATiffGraphic) {
  std::unique_ptr<TGraphic> (*const makers[])(TPixelFormat) = {PictureAs<TBitmap>,
                                                               PictureAs<TPngImage>};
  for (const auto make : makers) {
    std::unique_ptr<TGraphic> graphic = make(pf24bit);
    SaveGraphic(folder_ / "a.tif", graphic);
    ASSERT_NE(dynamic_cast<TWICBitmap*>(graphic.get()), nullptr);
    EXPECT_TRUE(SamePixels(GradientBitmap(pf24bit, 21, 14), AsBitmap(*graphic)));
    ExpectTiff("a.tif", GradientBitmap(pf24bit, 21, 14));
  }
  std::unique_ptr<TGraphic> jpeg = PictureAs<TJPEGImage>();
  SaveGraphic(folder_ / "a.tiff", jpeg);
  EXPECT_EQ(GetGraphicType(jpeg.get()), gtTif);
  EXPECT_TRUE(IsTiff(test::ReadFile(folder_ / "a.tiff")));
}

TEST_F(TiffSaving, SaveGraphic_Should_KeepATiffGraphic) {
  std::unique_ptr<TGraphic> graphic = PictureAs<TWICBitmap>();
  const TGraphic* before = graphic.get();
  SaveGraphic(folder_ / "a.TIF", graphic);
  EXPECT_EQ(graphic.get(), before);
  ExpectTiff("a.TIF", GradientBitmap(pf24bit, 21, 14));
}

TEST_F(TiffSaving, FailedSaveGraphic_Should_LeaveTheOldGraphic) {
  std::unique_ptr<TGraphic> graphic = PictureAs<TBitmap>();
  const TGraphic* before = graphic.get();
  EXPECT_THROW(SaveGraphic(folder_ / "no/such/a.tif", graphic), FileError);
  EXPECT_EQ(graphic.get(), before);
  EXPECT_TRUE(SamePixels(GradientBitmap(pf24bit, 21, 14), AsBitmap(*graphic)));
  folder_.Write("a.tif", "precious");
  std::unique_ptr<TGraphic> empty = std::make_unique<TBitmap>();
  before = empty.get();
  EXPECT_THROW(SaveGraphic(folder_ / "a.tif", empty), Error);
  EXPECT_EQ(empty.get(), before);
  EXPECT_EQ(test::ReadFile(folder_ / "a.tif"), "precious");
  EXPECT_EQ(folder_.Names(), std::vector<std::string>{"a.tif"});
}

// ---- Streams

TEST_F(TiffSaving, ToStream_Should_GiveTheFilesBytesFromTheBeginning) {
  const auto graphic = PictureAs<TWICBitmap>();
  EXPECT_EQ(GraphicToStream(graphic.get(), TempDir(), stream_), gtTif);
  ASSERT_NE(stream_, nullptr);
  EXPECT_EQ(stream_->Position(), 0u);
  EXPECT_TRUE(folder_.Names().empty()) << "the temporary file is gone";
  graphic->SaveToFile(folder_ / "a.tif");
  const auto bytes = stream_->Bytes();
  EXPECT_EQ(test::ReadFile(folder_ / "a.tif"), std::string(bytes.begin(), bytes.end()));
}

TEST_F(TiffSaving, Streams_Should_CarryEveryFormat) {
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf24bit}) {
    const auto graphic = PictureAs<TWICBitmap>(format);
    GraphicToStream(graphic.get(), TempDir(), stream_);
    const auto loaded = GraphicFromStream(gtTif, TempDir(), stream_.get());
    ASSERT_NE(dynamic_cast<TWICBitmap*>(loaded.get()), nullptr) << format;
    EXPECT_TRUE(SamePixels(AsBitmap(*graphic), AsBitmap(*loaded))) << format;
    EXPECT_TRUE(folder_.Names().empty());
  }
}

TEST_F(TiffSaving, Streams_Should_ReplaceAndRemoveAnOldTemporaryFile) {
  folder_.Write("7.tif", "old");
  const auto graphic = PictureAs<TWICBitmap>();
  GraphicToStream(graphic.get(), TempDir(), stream_);
  EXPECT_TRUE(folder_.Names().empty());
  folder_.Write("7.tif", "old");
  EXPECT_NE(GraphicFromStream(gtTif, TempDir(), stream_.get()), nullptr);
  EXPECT_TRUE(folder_.Names().empty());
}

TEST_F(TiffSaving, ToStream_Should_LeaveNoStream_When_SavingFails) {
  const auto graphic = PictureAs<TWICBitmap>();
  stream_ = std::make_unique<TMemoryStream>();
  EXPECT_THROW(GraphicToStream(graphic.get(), "no/such/folder/", stream_), FileError);
  EXPECT_EQ(stream_, nullptr);
  BlockTemporaryFile();
  EXPECT_THROW(GraphicToStream(graphic.get(), TempDir(), stream_), FileError);
  EXPECT_EQ(stream_, nullptr);
  EXPECT_EQ(folder_.Names(), std::vector<std::string>{"7.tif"}) << "not even a part of one";
}

TEST_F(TiffSaving, FromStream_Should_GiveNull_When_TheTemporaryFileCannotBeWritten) {
  const auto graphic = PictureAs<TWICBitmap>();
  GraphicToStream(graphic.get(), TempDir(), stream_);
  BlockTemporaryFile();
  EXPECT_EQ(GraphicFromStream(gtTif, TempDir(), stream_.get()), nullptr);
}

// ---- Other routines

TEST_F(TiffSaving, ConvertedBitmap_Should_BeSavedAsATiff) {
  TBitmap bitmap = GradientBitmap(pf24bit, 21, 14);
  const auto graphic = ConvertBitmap(bitmap, gtTif, 8, 75);
  ASSERT_EQ(GetGraphicType(graphic.get()), gtTif);
  EXPECT_EQ(bitmap.PixelFormat(), pf8bit);
  graphic->SaveToFile(folder_ / "a.tif");
  ExpectTiff("a.tif", bitmap);
}

TEST_F(TiffSaving, CopyAndRotatedGraphic_Should_BeSavedAsATiff) {
  std::unique_ptr<TGraphic> graphic = PictureAs<TWICBitmap>();
  const auto copy = CopyGraphic(graphic.get());
  copy->SaveToFile(folder_ / "copy.tif");
  ExpectTiff("copy.tif", GradientBitmap(pf24bit, 21, 14));
  RotateGraphic(90, graphic, clBlack);
  ASSERT_EQ(GetGraphicType(graphic.get()), gtTif);
  graphic->SaveToFile(folder_ / "turned.tif");
  ExpectTiff("turned.tif", AsBitmap(*graphic));
}

TEST_F(TiffSaving, SaveWindowsBitmap_Should_WriteATiff_And_LeaveTheBitmap) {
  for (const TPixelFormat format : test::kEveryFormat) {
    const TBitmap bitmap = GradientBitmap(format, 21, 14);
    const auto before = bitmap.Clone();
    SaveWindowsBitmap(bitmap, 0, 0, folder_ / "a.tif");
    EXPECT_TRUE(IsTiff(test::ReadFile(folder_ / "a.tif"))) << format;
    EXPECT_TRUE(SamePixels(*before, bitmap)) << format;
    EXPECT_EQ(bitmap.PixelFormat(), format) << "words become colors in the file only";
  }
}

TEST_F(TiffSaving, SaveWindowsBitmap_Should_GiveATiffTheDepthOfTheBits) {
  const TBitmap bitmap = GradientBitmap(pf24bit, 21, 14);
  for (const auto& [bits, format] : {std::pair{1, pf1bit},
                                     {4, pf4bit},
                                     {8, pf8bit},
                                     {15, pf24bit},
                                     {24, pf24bit},
                                     // Without an alpha channel nothing is left of the fourth byte.
                                     {32, pf24bit}}) {
    SaveWindowsBitmap(bitmap, bits, 0, folder_ / "a.tif");
    TWICBitmap loaded;
    loaded.LoadFromFile(folder_ / "a.tif");
    EXPECT_EQ(loaded.PixelFormat(), format) << bits;
  }
}

TEST_F(TiffSaving, SaveWindowsBitmap_Should_LeaveTheFile_When_TheTiffFails) {
  folder_.Write("a.tif", "precious");
  EXPECT_THROW(SaveWindowsBitmap(TBitmap(), 0, 0, folder_ / "a.tif"), Error);
  EXPECT_EQ(test::ReadFile(folder_ / "a.tif"), "precious");
  EXPECT_THROW(SaveWindowsBitmap(GradientBitmap(pf24bit, 5, 3), 0, 0, "no/such/a.tif"), FileError);
}

}  // namespace
}  // namespace rasterkit
