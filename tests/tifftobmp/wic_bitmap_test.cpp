#include <algorithm>
#include <fstream>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <rasterkit/graphics/canvas.h>
#include <rasterkit/graphics/jpeg_image.h>
#include <rasterkit/graphics/png_image.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/tifftobmp/wic_bitmap.h>

#include "tests/support/same_pixels.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

using test::GradientBitmap;
using test::SamePixels;

class WicBitmap : public ::testing::Test {
 protected:
  template <class T>
  std::string Saved(const TBitmap& bitmap) const {
    T graphic;
    graphic.Assign(&bitmap);
    graphic.SaveToFile(folder_ / "picture");
    return folder_ / "picture";
  }
  test::TempFolder folder_;
  TWICBitmap bitmap_;
};

TEST_F(WicBitmap, Load_Should_GoByContent) {
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf24bit}) {
    const TBitmap expected = GradientBitmap(format, 13, 7);
    bitmap_.LoadFromFile(Saved<TBitmap>(expected));
    EXPECT_TRUE(SamePixels(expected, bitmap_)) << "BMP " << format;
    bitmap_.LoadFromFile(Saved<TPngImage>(expected));
    EXPECT_TRUE(SamePixels(expected, bitmap_)) << "PNG " << format;
  }
  bitmap_.LoadFromFile(Saved<TJPEGImage>(GradientBitmap(pf24bit, 13, 7)));
  EXPECT_EQ(bitmap_.PixelFormat(), pf24bit);
  EXPECT_EQ(bitmap_.Width(), 13);
}

TEST_F(WicBitmap, FullyTransparentPixels_Should_BecomeOpaqueWhite) {
  TBitmap source = GradientBitmap(pf32bit, 5, 2);
  source.SetAlphaFormat(afDefined);
  const uint8_t clear[] = {1, 2, 3, 0}, faint[] = {4, 5, 6, 1};
  std::copy(clear, clear + 4, source.ScanLine(0));
  std::copy(faint, faint + 4, source.ScanLine(1));
  bitmap_.LoadFromFile(Saved<TPngImage>(source));
  ASSERT_EQ(bitmap_.PixelFormat(), pf32bit);
  EXPECT_FALSE(bitmap_.Transparent());
  const std::vector<uint8_t> first(bitmap_.ScanLine(0), bitmap_.ScanLine(0) + 4);
  EXPECT_EQ(first, (std::vector<uint8_t>{255, 255, 255, 255}));
  const std::vector<uint8_t> second(bitmap_.ScanLine(1), bitmap_.ScanLine(1) + 4);
  EXPECT_EQ(second, (std::vector<uint8_t>{4, 5, 6, 1}));
}

TEST_F(WicBitmap, KeyColor_Should_StayVisible) {
  TBitmap source = GradientBitmap(pf8bit, 5, 3);
  source.SetTransparent(true);
  source.SetTransparentColor(source.PixelColor(1, 1));
  bitmap_.LoadFromFile(Saved<TPngImage>(source));
  EXPECT_FALSE(bitmap_.Transparent());
  EXPECT_TRUE(SamePixels(source, bitmap_));
}

TEST_F(WicBitmap, Load_Should_SayInvalidImage_When_NoCodecKnowsTheBytes) {
  for (const std::string content : {"", "x", "no picture at all"}) {
    const std::string name = folder_.Write("a.tif", content);
    try {
      bitmap_.LoadFromFile(name);
      ADD_FAILURE() << "loaded";
    } catch (const FormatError& error) {
      EXPECT_EQ(error.Reason(), "Invalid image");
      EXPECT_EQ(error.File(), name);
    }
  }
}

TEST_F(WicBitmap, Load_Should_GiveTheCodecsText_When_APictureIsBroken) {
  const std::string name = folder_.Write("a.tif", "\x89PNG\r\n\x1A\nbroken");
  try {
    bitmap_.LoadFromFile(name);
    ADD_FAILURE() << "loaded";
  } catch (const FormatError& error) {
    EXPECT_NE(error.Reason(), "Invalid image");
    EXPECT_EQ(error.File(), name);
  }
}

TEST_F(WicBitmap, Load_Should_ThrowFileError_When_TheFileCannotBeOpened) {
  EXPECT_THROW(bitmap_.LoadFromFile(folder_ / "missing.tif"), FileError);
  EXPECT_THROW(bitmap_.LoadFromFile(folder_.Path().string()), FileError);
}

TEST_F(WicBitmap, Load_Should_ReadAPipe) {
  const TBitmap expected = GradientBitmap(pf24bit, 13, 7);
  const std::string content = test::ReadFile(Saved<TPngImage>(expected));
  const std::string pipe = folder_ / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  std::thread writer([&] { std::ofstream(pipe, std::ios::binary) << content; });
  EXPECT_NO_THROW(bitmap_.LoadFromFile(pipe));
  writer.join();
  EXPECT_TRUE(SamePixels(expected, bitmap_));
}

TEST_F(WicBitmap, Load_Should_KeepTheCanvas_And_CountAsUnmodified) {
  bitmap_.Canvas().Brush.Color = RGB(1, 2, 3);
  bitmap_.SetModified(true);
  bitmap_.LoadFromFile(Saved<TBitmap>(GradientBitmap(pf24bit, 13, 7)));
  EXPECT_EQ(bitmap_.Canvas().Brush.Color, RGB(1, 2, 3));
  EXPECT_FALSE(bitmap_.Modified());
  TBitmap seeThrough = GradientBitmap(pf32bit, 13, 7);
  seeThrough.SetAlphaFormat(afDefined);
  bitmap_.LoadFromFile(Saved<TPngImage>(seeThrough));
  EXPECT_FALSE(bitmap_.Modified()) << "whatever alpha made of it";
}

TEST_F(WicBitmap, Load_Should_EndAnEarlierTransparency) {
  bitmap_.SetTransparent(true);
  bitmap_.SetTransparentColor(RGB(1, 2, 3));
  bitmap_.LoadFromFile(Saved<TBitmap>(GradientBitmap(pf24bit, 13, 7)));
  EXPECT_FALSE(bitmap_.Transparent());
  EXPECT_EQ(bitmap_.TransparentMode(), tmAuto);
}

TEST_F(WicBitmap, FailedLoad_Should_LeaveTheBitmap) {
  const TBitmap expected = GradientBitmap(pf24bit, 13, 7);
  bitmap_.Assign(&expected);
  bitmap_.SetTransparent(true);
  for (const char* content : {"junk", "\x89PNG\r\n\x1A\nbroken"}) {
    EXPECT_THROW(bitmap_.LoadFromFile(folder_.Write("a.tif", content)), FormatError);
    EXPECT_TRUE(SamePixels(expected, bitmap_));
    EXPECT_TRUE(bitmap_.Transparent());
    EXPECT_TRUE(bitmap_.Modified());
  }
}

TEST_F(WicBitmap, Save_Should_WriteATiff_And_CountAsUnmodified) {
  const TBitmap expected = GradientBitmap(pf24bit, 13, 7);
  bitmap_.Assign(&expected);
  bitmap_.SetModified(true);
  bitmap_.SaveToFile(folder_ / "a.tif");
  EXPECT_FALSE(bitmap_.Modified());
  TWICBitmap loaded;
  loaded.LoadFromFile(folder_ / "a.tif");
  EXPECT_TRUE(SamePixels(expected, loaded));
}

TEST_F(WicBitmap, FailedSave_Should_LeaveTheFile) {
  const std::string name = folder_.Write("a.tif", "precious");
  bitmap_.SetModified(true);
  EXPECT_THROW(bitmap_.SaveToFile(name), FormatError) << "a bitmap without pixels";
  EXPECT_TRUE(bitmap_.Modified());
  EXPECT_EQ(test::ReadFile(name), "precious");
}

}  // namespace
}  // namespace rasterkit
