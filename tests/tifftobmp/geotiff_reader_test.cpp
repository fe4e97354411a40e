#include <gtest/gtest.h>

#include <rasterkit/graphics/jpeg_image.h>
#include <rasterkit/graphics/png_image.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/tifftobmp/geotiff_reader.h>

#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

using test::GradientBitmap;

class GeoTiffReader : public testing::Test {
 protected:
  template <class T>
  std::string Saved(TPixelFormat format) const {
    T graphic;
    const TBitmap bitmap = GradientBitmap(format, 13, 7);
    graphic.Assign(&bitmap);
    graphic.SaveToFile(folder_ / "a.tif");
    return folder_ / "a.tif";
  }
  void ExpectColors(const std::string& fileName) {
    bitmap_ = std::make_unique<TBitmap>(GradientBitmap(pf24bit, 3, 2));
    floatFormat_ = ffWord;
    EXPECT_FALSE(ReadGeoTiffIntoBitmap(fileName, bitmap_, floatFormat_));
    EXPECT_EQ(bitmap_, nullptr);
    EXPECT_EQ(floatFormat_, ffNoFloat);
  }
  template <class T>
  std::string ReasonFor(const std::string& fileName) {
    bitmap_ = std::make_unique<TBitmap>(GradientBitmap(pf24bit, 3, 2));
    floatFormat_ = ffWord;
    std::string reason = "read";
    try {
      ReadGeoTiffIntoBitmap(fileName, bitmap_, floatFormat_);
    } catch (const T& error) {
      EXPECT_EQ(error.File(), fileName);
      reason = error.Reason();
    }
    EXPECT_EQ(bitmap_, nullptr);
    EXPECT_EQ(floatFormat_, ffNoFloat);
    return reason;
  }
  test::TempFolder folder_;
  std::unique_ptr<TBitmap> bitmap_;
  TWICFloatFormat floatFormat_ = ffNoFloat;
};

TEST_F(GeoTiffReader, Colors_Should_GiveFalse) {
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf24bit, pf32bit}) {
    ExpectColors(Saved<TBitmap>(format));
    ExpectColors(Saved<TPngImage>(format));
  }
  ExpectColors(Saved<TJPEGImage>(pf24bit));
}

TEST_F(GeoTiffReader, UnknownBytes_Should_BeAnInvalidImage) {
  EXPECT_EQ(ReasonFor<FormatError>(folder_.Write("a.tif", "no picture")), "Invalid image");
  EXPECT_EQ(ReasonFor<FormatError>(folder_.Write("a.tif", std::string_view())), "Invalid image");
}

TEST_F(GeoTiffReader, BrokenPicture_Should_GiveTheCodecsText) {
  const std::string reason =
      ReasonFor<FormatError>(folder_.Write("a.tif", "\x89PNG\r\n\x1A\nbroken"));
  EXPECT_NE(reason, "read");
  EXPECT_NE(reason, "Invalid image");
}

TEST_F(GeoTiffReader, FileThatCannotBeOpened_Should_ThrowFileError) {
  EXPECT_NE(ReasonFor<FileError>(folder_ / "missing.tif"), "read");
  EXPECT_NE(ReasonFor<FileError>(folder_.Path().string()), "read");
}

}  // namespace
}  // namespace rasterkit
