#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/jpegexif/image_data.h>
#include <rasterkit/jpegexif/photo_queries.h>
#include <rasterkit/jpegexif/raw_orientation.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/exif_builder.h"

namespace rasterkit {
namespace {

using test::ByteOrder;
using test::JpegOf;
using test::JpegSection;
using test::JpegWithOrientation;

class PhotoQueries : public ::testing::Test {
 protected:
  void SetUp() override {
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    name_ = ::testing::TempDir() + "photo_" + info->name() + ".jpg";
  }
  void TearDown() override { std::filesystem::remove(name_); }
  void Write(const std::string& bytes) const {
    std::ofstream(name_, std::ios::binary)
        .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  }

  std::string name_;
};

TEST_F(PhotoQueries, Rotation_Should_FollowThePlainTurnsOnly) {
  const int expected[] = {0, 0, 0, 180, 0, 0, 270, 0, 90};
  for (const ByteOrder order : {ByteOrder::intel, ByteOrder::motorola}) {
    for (int orientation = 1; orientation <= 8; ++orientation) {
      Write(JpegWithOrientation(orientation, order));
      int rotation = -1;
      EXPECT_EQ(GetJpgRotation(name_, rotation), expected[orientation] != 0) << orientation;
      EXPECT_EQ(rotation, expected[orientation]) << orientation;
      EXPECT_EQ(ReadRawOrientation(name_), orientation);
    }
  }
}

TEST_F(PhotoQueries, Rotation_Should_BeFalseAndZero_When_TheFileIsNoJpeg) {
  for (const std::string bytes : {"", "BM", "\xFF", "\x89PNG\r\n\x1A\n"}) {
    Write(bytes);
    int rotation = 77;
    EXPECT_FALSE(GetJpgRotation(name_, rotation));
    EXPECT_EQ(rotation, 0);
    EXPECT_EQ(ReadRawOrientation(name_), std::nullopt);
  }
}

TEST_F(PhotoQueries, Rotation_Should_BeFalse_When_ThereIsNoExif) {
  Write(JpegOf({JpegSection(0xFE, "only a comment")}));
  int rotation = 77;
  EXPECT_FALSE(GetJpgRotation(name_, rotation));
  EXPECT_EQ(rotation, 0);
}

TEST_F(PhotoQueries, Queries_Should_ThrowFileError_When_TheFileCannotBeOpened) {
  int rotation = 77;
  TDateTime date = 77;
  EXPECT_THROW(GetJpgRotation("no/such/file.jpg", rotation), FileError);
  EXPECT_EQ(rotation, 0);
  EXPECT_THROW(GetJpgDate("no/such/file.jpg", date), FileError);
  EXPECT_EQ(date, 0);
  EXPECT_THROW(GetJpgRotation(::testing::TempDir(), rotation), FileError);
  EXPECT_THROW(ReadRawOrientation("no/such/file.jpg"), FileError);
}

TEST_F(PhotoQueries, Rotation_Should_ThrowConversionError_When_AGpsPositionIsTooShort) {
  const test::TiffWriter writer(ByteOrder::intel);
  Write(JpegOf({test::ExifSection(
      writer.Tiff({writer.Short(274, 6), writer.GpsPointer()}, {writer.Rationals(2, {{1, 1}})}))}));
  int rotation = 77;
  try {
    GetJpgRotation(name_, rotation);
    FAIL() << "no error";
  } catch (const ConversionError& error) {
    EXPECT_EQ(error.File(), name_);
  }
  EXPECT_EQ(ReadRawOrientation(name_), 6);
}

TEST_F(PhotoQueries, ReadJpegFile_Should_ForgetTheFileBefore) {
  TImageData image;
  Write(JpegWithOrientation(6));
  EXPECT_TRUE(image.ReadJpegFile(name_));
  EXPECT_EQ(image.ExifData->Rotation, 270);
  Write(JpegOf({JpegSection(0xFE, "c")}));
  EXPECT_TRUE(image.ReadJpegFile(name_));
  EXPECT_EQ(image.ExifData, nullptr);
  EXPECT_EQ(image.ExifSegment, nullptr);
}

TEST_F(PhotoQueries, ReadJpegFile_Should_ForgetTheFileBefore_When_TheNextCannotBeOpened) {
  TImageData image;
  Write(JpegWithOrientation(6));
  EXPECT_TRUE(image.ReadJpegFile(name_));
  EXPECT_THROW(image.ReadJpegFile("no/such/file.jpg"), FileError);
  EXPECT_EQ(image.ExifData, nullptr);
}

TEST_F(PhotoQueries, Date_Should_BeFalse_When_ThereIsNoExif) {
  TDateTime date = 77;
  Write(JpegOf({}));
  EXPECT_FALSE(GetJpgDate(name_, date));
  EXPECT_EQ(date, 0);
  Write(JpegOf({JpegSection(0xFE, "c")}));
  EXPECT_FALSE(GetJpgDate(name_, date));
}

TEST_F(PhotoQueries, Date_Should_Throw_ForEveryPhotoWithExifData) {
  const test::TiffWriter writer(ByteOrder::motorola);
  TDateTime date = 77;
  Write(JpegOf({test::ExifSection(writer.Tiff({writer.Ascii(306, "2019:07:04 13:05:09")}))}));
  EXPECT_THROW(GetJpgDate(name_, date), ConversionError);
  EXPECT_EQ(date, 0);
  Write(JpegOf({test::XmpSection()}));
  EXPECT_THROW(GetJpgDate(name_, date), ConversionError);
}

TEST_F(PhotoQueries, DateText_Should_BecomeAMoment) {
  EXPECT_EQ(ParseExifDateTime("2019:07:04 13:05:09"),
            EncodeDate(2019, 7, 4) + EncodeTime(13, 5, 9, 0));
  EXPECT_EQ(EncodeDate(2019, 7, 4), 43650);
  EXPECT_EQ(ParseExifDateTime("1899:12:29 06:00:00"), -1.25);
  EXPECT_EQ(ParseExifDateTime("2019:7:4 0:0:0"), 43650);
}

TEST_F(PhotoQueries, DateText_Should_BeRefused_When_ItDoesNotFit) {
  for (const char* text :
       {"", " ", "2019:07:04", "2019:07:04 ", "2019-07-04 13:05:09", "2019:07:04T13:05:09",
        "2019:07:04 13:05", "2019:07:04 13:05:09:10", "2019:02:29 00:00:00", "2019:07:04 24:00:00",
        "0000:00:00 00:00:00", "    :  :     :  :  ", "2019:07:04  13:05:xx"}) {
    EXPECT_THROW(ParseExifDateTime(text), ConversionError) << text;
  }
}

}  // namespace
}  // namespace rasterkit
