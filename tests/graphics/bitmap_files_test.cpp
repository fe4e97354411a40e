#include <filesystem>
#include <fstream>
#include <random>

#include <gtest/gtest.h>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/same_pixels.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

TEST(BitmapFiles, Stream_Should_BringEveryFormatBack) {
  std::mt19937 random(21);
  for (const TPixelFormat format : test::kEveryFormat) {
    TBitmap source = test::RandomBitmap(format, 37, 11, random);
    source.SetPixelFormat(format);
    TMemoryStream stream;
    source.SaveToStream(stream);
    EXPECT_EQ(stream.Position(), stream.Size());
    stream.SetPosition(0);
    TBitmap back;
    back.LoadFromStream(stream);
    EXPECT_TRUE(test::SameColors(source, back)) << format;
    EXPECT_FALSE(back.Modified());
  }
}

TEST(BitmapFiles, Device_Should_BeWrittenAs32Bit) {
  TBitmap source;
  source.SetSize(5, 3);
  ASSERT_EQ(source.PixelFormat(), pfDevice);
  TMemoryStream stream;
  source.SaveToStream(stream);
  stream.SetPosition(0);
  TBitmap back;
  back.LoadFromStream(stream);
  EXPECT_EQ(back.PixelFormat(), pf32bit);
  EXPECT_TRUE(test::SameColors(source, back));
}

TEST(BitmapFiles, File_Should_HoldResolutionAndProfile_And_StreamNoProfile) {
  const test::TempFolder folder;
  TBitmap source = test::GradientBitmap(pf24bit, 13, 7);
  source.SetDpi({300, 150});
  source.SetProfile(std::make_shared<const std::vector<uint8_t>>(std::vector<uint8_t>(200, 7)));
  source.SetModified(true);
  source.SaveToFile(folder / "a.bmp");
  EXPECT_FALSE(source.Modified());
  TBitmap fromFile;
  fromFile.LoadFromFile(folder / "a.bmp");
  EXPECT_NEAR(fromFile.Dpi().x, 300, 0.02);
  EXPECT_NEAR(fromFile.Dpi().y, 150, 0.02);
  ASSERT_TRUE(fromFile.Profile());
  EXPECT_EQ(*fromFile.Profile(), *source.Profile());

  TMemoryStream stream;
  source.SaveToStream(stream);
  stream.SetPosition(0);
  TBitmap fromStream;
  fromStream.LoadFromStream(stream);
  EXPECT_NEAR(fromStream.Dpi().x, 300, 0.02);
  EXPECT_FALSE(fromStream.Profile());
}

TEST(BitmapFiles, FailedLoad_Should_NameTheFileAndChangeNothing) {
  const test::TempFolder folder;
  std::ofstream(folder / "broken.bmp") << "BM, but no picture";
  TBitmap bitmap = test::GradientBitmap(pf8bit, 13, 7);
  try {
    bitmap.LoadFromFile(folder / "broken.bmp");
    FAIL() << "a broken file was loaded";
  } catch (const Error& error) {
    EXPECT_NE(std::string(error.what()).find("broken.bmp"), std::string::npos) << error.what();
  }
  EXPECT_TRUE(test::SamePixels(test::GradientBitmap(pf8bit, 13, 7), bitmap));
  EXPECT_THROW(bitmap.LoadFromFile(folder / "missing.bmp"), FileError);
  EXPECT_THROW(bitmap.LoadFromFile(folder.Path().string()), FileError) << "a folder";
}

TEST(BitmapFiles, FailedSave_Should_KeepTheOldFile) {
  const test::TempFolder folder;
  TBitmap bitmap = test::GradientBitmap(pf8bit, 13, 7);
  EXPECT_THROW(bitmap.SaveToFile(folder / "missing/a.bmp"), FileError);
  EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

}  // namespace
}  // namespace rasterkit
