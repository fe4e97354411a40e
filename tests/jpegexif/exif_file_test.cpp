// Pictures that the library encodes, with the metadata of a photo.

#include <gtest/gtest.h>

#include <rasterkit/graphics/jpeg_image.h>
#include <rasterkit/jpegexif/image_data.h>
#include <rasterkit/jpegexif/photo_queries.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/exif_builder.h"
#include "tests/support/same_pixels.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

using test::JpegSection;
using test::ReadFile;

class ExifFile : public ::testing::Test {
 protected:
  ExifFile() {
    const test::TiffWriter writer(test::ByteOrder::intel);
    exif_ = test::ExifSection(writer.Tiff({writer.Short(274, 6)}));
    const std::string photo = test::JpegOf({exif_, comment_});
    TSpanStream stream({reinterpret_cast<const uint8_t*>(photo.data()), photo.size()});
    metadata_.ReadJpegSections(stream);
    const TBitmap bitmap = test::GradientBitmap(pf24bit, 37, 21);
    picture_.Assign(&bitmap);
  }

  std::string Encoded() {
    TMemoryStream stream;
    picture_.SaveToStream(stream);
    return {stream.Bytes().begin(), stream.Bytes().end()};
  }

  test::TempFolder folder_;
  std::string exif_;
  std::string comment_ = JpegSection(0xFE, "taken on site");
  TImageData metadata_;
  TJPEGImage picture_;
};

TEST_F(ExifFile, WriteExifJpeg_Should_PutTheMetadataBeforeTheEncodersTables) {
  const std::string file = folder_ / "out.jpg";
  metadata_.WriteExifJpeg(picture_, file);
  const std::string encoded = Encoded();
  ASSERT_EQ(static_cast<uint8_t>(encoded[3]), 0xE0) << "the encoder is expected to write an APP0";
  const size_t app0 =
      4 + static_cast<uint8_t>(encoded[4]) * 256u + static_cast<uint8_t>(encoded[5]);
  EXPECT_EQ(ReadFile(file), "\xFF\xD8" + exif_ + comment_ + encoded.substr(app0));
}

TEST_F(ExifFile, WriteExifJpeg_Should_GiveAFileThatLoadsTheSame_And_AnswersTheQueries) {
  const std::string file = folder_ / "out.jpg";
  metadata_.WriteExifJpeg(picture_, file);
  picture_.Compress();
  TJPEGImage loaded;
  loaded.LoadFromFile(file);
  EXPECT_TRUE(test::SamePixels(picture_.Bitmap(), loaded.Bitmap()));
  int rotation = 0;
  EXPECT_TRUE(GetJpgRotation(file, rotation));
  EXPECT_EQ(rotation, 270);
}

TEST_F(ExifFile, WriteExifJpeg_Should_DropAnEncodersComment) {
  const std::string encoded = Encoded();
  const std::string commented = encoded.substr(0, 2) + encoded.substr(2, 18) +
                                JpegSection(0xFE, "by the encoder") + encoded.substr(20);
  TSpanStream stream({reinterpret_cast<const uint8_t*>(commented.data()), commented.size()});
  TJPEGImage picture;
  picture.LoadFromStream(stream);
  const std::string file = folder_ / "out.jpg";
  metadata_.WriteExifJpeg(picture, file);
  EXPECT_EQ(ReadFile(file).find("by the encoder"), std::string::npos);
  EXPECT_NE(ReadFile(file).find("taken on site"), std::string::npos);
}

TEST_F(ExifFile, WriteExifJpeg_Should_ReplaceAnExistingFile) {
  const std::string file = folder_.Write("out.jpg", std::string(100'000, 'x'));
  metadata_.WriteExifJpeg(picture_, file);
  const std::string first = ReadFile(file);
  EXPECT_LT(first.size(), 100'000u);
  metadata_.WriteExifJpeg(picture_, file);
  EXPECT_EQ(ReadFile(file), first);
}

TEST_F(ExifFile, WriteExifJpeg_Should_LeaveTheOldFile_When_ThePictureIsEmpty) {
  const std::string file = folder_.Write("out.jpg", "old");
  TJPEGImage empty;
  try {
    metadata_.WriteExifJpeg(empty, file);
    ADD_FAILURE() << "written";
  } catch (const FormatError& error) {
    EXPECT_EQ(error.File(), file);
  }
  EXPECT_EQ(ReadFile(file), "old");
  EXPECT_EQ(folder_.Names(), std::vector<std::string>{"out.jpg"});
}

TEST_F(ExifFile, WriteExifJpeg_Should_NameTheFile_When_ItCannotBeWritten) {
  const std::string file = folder_ / "no-such-folder/out.jpg";
  try {
    metadata_.WriteExifJpeg(picture_, file);
    ADD_FAILURE() << "written";
  } catch (const FileError& error) {
    EXPECT_EQ(error.File(), file);
  }
}

TEST_F(ExifFile, WriteExifJpeg_Should_Raise_When_TheDeviceIsFull) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "no /dev/full";
  EXPECT_THROW(metadata_.WriteExifJpeg(picture_, "/dev/full"), FileError);
}

TEST_F(ExifFile, PictureOfAnObjectWithoutMetadata_Should_State300Dpi) {
  const std::string file = folder_ / "out.jpg";
  TImageData().WriteExifJpeg(picture_, file);
  const std::string header("\xFF\xD8\xFF\xE0\x00\x10JFIF\x00\x01\x02\x01\x01\x2C\x01\x2C\x00\x00",
                           20);
  EXPECT_EQ(ReadFile(file).substr(0, 20), header);
  TJPEGImage loaded;
  loaded.LoadFromFile(file);
  EXPECT_EQ(loaded.Width(), 37);
}

TEST_F(ExifFile, WriteImageToStream_Should_LeaveTheScanAsItIs) {
  const std::string encoded = Encoded();
  TSpanStream source({reinterpret_cast<const uint8_t*>(encoded.data()), encoded.size()});
  TMemoryStream target;
  metadata_.WriteImageToStream(source, target, false);
  const std::string written(target.Bytes().begin(), target.Bytes().end());
  const size_t tables = encoded.find("\xFF\xDB");
  EXPECT_EQ(written.substr(written.find("\xFF\xDB")), encoded.substr(tables));
}

}  // namespace
}  // namespace rasterkit
