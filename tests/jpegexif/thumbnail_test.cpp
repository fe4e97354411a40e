#include <random>

#include <gtest/gtest.h>

#include <rasterkit/graphics/jpeg_image.h>
#include <rasterkit/runtime/errors.h>

#include "tests/jpegexif/exif_fixture.h"
#include "tests/reference/exif_writer_reference.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"
#include "tests/support/thumbnail_exif.h"

namespace rasterkit {
namespace {

using test::ExifWithThumbnail;

const std::string kEnd = "\xFF\xD9";
const std::string kFiller(300, 'f');

/// A small JPEG as cameras embed it: its tables begin right after the start marker.
std::string RealThumbnail() {
  TJPEGImage image;
  const TBitmap bitmap = test::GradientBitmap(pf24bit, 33, 19);
  image.Assign(&bitmap);
  TMemoryStream stream;
  image.SaveToStream(stream);
  const std::string bytes(stream.Bytes().begin(), stream.Bytes().end());
  return "\xFF\xD8" + bytes.substr(bytes.find("\xFF\xDB"));
}

class Thumbnail : public test::ExifFixture {
 protected:
  void ReadWith(const std::string& thumbnail, const std::string& behind = "") {
    exif_ = ExifWithThumbnail(thumbnail, test::ByteOrder::intel, behind);
    ASSERT_TRUE(ReadSection(exif_.content));
    ASSERT_TRUE(Exif().HasThumbnail());
    ASSERT_EQ(Exif().ThumbStart, static_cast<int32_t>(exif_.directory));
  }
  /// Extracted bytes, compared with the reference.
  std::string Buffer() const {
    const std::string buffer = image_->ExtractThumbnailBuffer();
    EXPECT_EQ(buffer, reference::ExtractThumbnailBuffer(*image_));
    return buffer;
  }

  test::ThumbnailExif exif_;
};

TEST_F(Thumbnail, Buffer_Should_BeThePicture_When_ItBeginsWithAQuantizationTable) {
  const std::string picture = "\xFF\xD8\xFF\xDB" + kFiller + kEnd;
  ReadWith(picture);
  EXPECT_EQ(Buffer(), picture);
}

TEST_F(Thumbnail, Buffer_Should_BeThePicture_When_ItBeginsWithAHuffmanTable) {
  const std::string picture = "\xFF\xD8\xFF\xC4" + kFiller + kEnd;
  ReadWith(picture);
  EXPECT_EQ(Buffer(), picture);
}

TEST_F(Thumbnail, Buffer_Should_PreferAQuantizationTable_WhereverItStands) {
  const std::string first = "\xFF\xD8\xFF\xC4" + kFiller;
  ReadWith(first + "\xFF\xD8\xFF\xDB" + "q" + kEnd);
  EXPECT_EQ(Buffer(), "\xFF\xD8\xFF\xDBq" + kEnd);
}

TEST_F(Thumbnail, Buffer_Should_KeepOneByteBehindTheEndMarker) {
  const std::string picture = "\xFF\xD8\xFF\xDB" + kFiller + kEnd;
  ReadWith(picture, "xyz");
  EXPECT_EQ(Buffer(), picture + "x");
}

TEST_F(Thumbnail, Buffer_Should_EndAtTheFirstEndMarker) {
  ReadWith("\xFF\xD8\xFF\xDB" + std::string("short") + kEnd + kFiller + kEnd);
  EXPECT_EQ(Buffer(), "\xFF\xD8\xFF\xDBshort" + kEnd + "f");
}

TEST_F(Thumbnail, Buffer_Should_OverlookEndMarkersBeforeThePicture) {
  const std::string picture = "\xFF\xD8\xFF\xDB" + kFiller + kEnd;
  ReadWith(kEnd + "lead" + kEnd + picture);
  EXPECT_EQ(Buffer(), picture);
}

TEST_F(Thumbnail, Buffer_Should_KeepEverything_When_ThereIsNoEndMarker) {
  ReadWith("\xFF\xD8\xFF\xDB" + kFiller, "tail");
  EXPECT_EQ(Buffer(), "\xFF\xD8\xFF\xDB" + kFiller + "tail");
}

TEST_F(Thumbnail, Buffer_Should_BeEmpty_When_NoTableFollowsAStartMarker) {
  ReadWith("\xFF\xD8\xFF\xE0" + kFiller + kEnd);
  EXPECT_EQ(Buffer(), "");
  ReadWith("\xFF\xD8\xFF\xE1" + kFiller + kEnd);
  EXPECT_EQ(Buffer(), "");
  ReadWith("\xFF\xDB" + kFiller + kEnd);
  EXPECT_EQ(Buffer(), "");
}

TEST_F(Thumbnail, Buffer_Should_BeEmpty_When_ThereIsNoThumbnail) {
  EXPECT_EQ(Buffer(), "");
  ReadSection(test::ExifContent(test::TiffWriter(test::ByteOrder::intel).Tiff({})));
  EXPECT_EQ(Buffer(), "");
}

TEST_F(Thumbnail, Buffer_Should_BeEmpty_When_TheThumbnailIsTooSmall) {
  // 42 bytes of directory, the picture's bytes, and 3 that the length counts beyond the section.
  const auto pictureOf = [](size_t length) {
    return ("\xFF\xD8\xFF\xDB" + kFiller).substr(0, length);
  };
  const size_t others = 42 + 3;
  ASSERT_TRUE(ReadSection(ExifWithThumbnail(pictureOf(256 - others - 6)).content));
  const int32_t length = Exif().ThumbLength;
  ASSERT_TRUE(ReadSection(ExifWithThumbnail(pictureOf(256 - others - 6 + 256 - length)).content));
  EXPECT_EQ(Exif().ThumbLength, 256);
  EXPECT_EQ(Buffer(), "");
  ASSERT_TRUE(ReadSection(ExifWithThumbnail(pictureOf(256 - others - 6 + 257 - length)).content));
  EXPECT_EQ(Exif().ThumbLength, 257);
  EXPECT_NE(Buffer(), "");
}

TEST_F(Thumbnail, Buffer_Should_StayInside_When_FieldsPointBehindTheSection) {
  ReadWith("\xFF\xD8\xFF\xDB" + kFiller + kEnd);
  image_->ExifData->ThumbStart = 1'000'000;
  EXPECT_EQ(Buffer(), "");
  image_->ExifData->ThumbStart = static_cast<int32_t>(image_->ExifBuff.size());
  EXPECT_EQ(Buffer(), "");
}

TEST_F(Thumbnail, RandomAreas_Should_GoAsTheReferenceGoes) {
  const unsigned seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  const std::vector<std::string> pieces = {"\xFF", "\xD8", "\xFF\xD8\xFF", "\xDB",
                                           "\xC4", "\xD9", "\xFF\xD9",     "f"};
  for (int round = 0; round < 300; ++round) {
    std::string picture = std::string(300, 'f');
    for (unsigned n = random() % 20; n > 0; --n) picture += pieces[random() % pieces.size()];
    ReadWith(picture);
    Buffer();
    if (HasFailure()) return;
  }
}

// ---- as a picture
// --------------------------------------------------------------------------------

TEST_F(Thumbnail, Picture_Should_BeAbsent_AsTheTagTablesLeaveItsCompressionUnknown) {
  ReadWith(RealThumbnail());
  EXPECT_EQ(Exif().ThumbType, 0);
  EXPECT_EQ(image_->ExtractThumbnailJPeg(), nullptr);
}

TEST_F(Thumbnail, Picture_Should_BeLoaded_When_TheCompressionIsJpeg) {
  const std::string thumbnail = RealThumbnail();
  ReadWith(thumbnail, "behind");
  image_->ExifData->ThumbType = 6;
  const std::unique_ptr<TJPEGImage> picture = image_->ExtractThumbnailJPeg();
  ASSERT_NE(picture, nullptr);
  TSpanStream stream({reinterpret_cast<const uint8_t*>(thumbnail.data()), thumbnail.size()});
  TJPEGImage expected;
  expected.LoadFromStream(stream);
  EXPECT_TRUE(test::SamePixels(expected.Bitmap(), picture->Bitmap()));
  EXPECT_EQ(picture->Width(), 33);
  EXPECT_EQ(picture->Height(), 19);
}

TEST_F(Thumbnail, Picture_Should_BeAbsent_ForEveryOtherCompression) {
  ReadWith(RealThumbnail());
  for (const int type : {-6, 0, 1, 5, 7, 65542}) {
    image_->ExifData->ThumbType = type;
    EXPECT_EQ(image_->ExtractThumbnailJPeg(), nullptr) << type;
  }
}

TEST_F(Thumbnail, Picture_Should_BeAbsent_When_ThereIsNoneOrItsBufferIsEmpty) {
  EXPECT_EQ(image_->ExtractThumbnailJPeg(), nullptr);
  ReadWith("\xFF\xD8\xFF\xE0" + kFiller + kEnd);
  image_->ExifData->ThumbType = 6;
  EXPECT_EQ(image_->ExtractThumbnailJPeg(), nullptr);
  ReadWith(RealThumbnail());
  image_->ExifData->ThumbType = 6;
  image_->ExifData->ThumbLength = 256;
  EXPECT_EQ(image_->ExtractThumbnailJPeg(), nullptr);
}

TEST_F(Thumbnail, Picture_Should_Raise_When_ItsBytesAreNoJpeg) {
  ReadWith("\xFF\xD8\xFF\xDB" + kFiller + kEnd);
  image_->ExifData->ThumbType = 6;
  EXPECT_THROW(image_->ExtractThumbnailJPeg(), FormatError);
}

// ---- removed
// -------------------------------------------------------------------------------------

TEST_F(Thumbnail, Remove_Should_CutTheSectionSixBytesBeforeTheStatedStart) {
  ReadWith("\xFF\xD8\xFF\xDB" + kFiller + kEnd);
  const std::string before = image_->ExifSegment->Data;
  const auto length = static_cast<size_t>(Exif().ThumbStart) - 6;
  image_->RemoveThumbnail();
  const std::string& data = image_->ExifSegment->Data;
  EXPECT_EQ(data.size(), length);
  EXPECT_EQ(image_->ExifSegment->Size, static_cast<int32_t>(length));
  EXPECT_EQ(static_cast<uint8_t>(data[0]), length / 256);
  EXPECT_EQ(static_cast<uint8_t>(data[1]), length % 256);
  EXPECT_EQ(data.substr(2), before.substr(2, length - 2));
  // The directory begins at byte ThumbStart + 8 of the section.
  EXPECT_EQ(static_cast<size_t>(Exif().ThumbStart) + 8 - length, 14u);
}

TEST_F(Thumbnail, Remove_Should_WriteBothLengthBytes_When_TheCutLiesFarBehind) {
  const test::TiffWriter writer(test::ByteOrder::motorola);
  const std::vector<test::TiffEntry> main = {writer.Short(274, 8),
                                             writer.Bytes(37500, std::string(1000, 'm'), 7)};
  const auto place = static_cast<uint32_t>(8 + writer.Directory(8, main).size());
  ReadSection(test::ExifContent(writer.Header() + writer.Directory(8, main, place) +
                                writer.Directory(place, {}) + kFiller));
  ASSERT_TRUE(Exif().HasThumbnail());
  image_->RemoveThumbnail();
  const int32_t length = static_cast<int32_t>(place) - 6;
  EXPECT_GT(length, 256);
  EXPECT_EQ(image_->GetInt(image_->ExifSegment->Data.substr(0, 2)), length);
  EXPECT_EQ(image_->ExifSegment->Size, length);
}

TEST_F(Thumbnail, Remove_Should_LeaveTheLinkInTheMainDirectory) {
  ReadWith("\xFF\xD8\xFF\xDB" + kFiller + kEnd);
  const int64_t link = 9 + 8 + 2 + 2 * 12;
  image_->RemoveThumbnail();
  EXPECT_EQ(image_->Get32s(image_->ExifSegment->Data, link), Exif().ThumbStart);
}

TEST_F(Thumbnail, Remove_Should_LeaveNoThumbnailInWhatIsWritten) {
  ReadWith("\xFF\xD8\xFF\xDB" + kFiller + kEnd);
  image_->RemoveThumbnail();
  TMemoryStream file;
  image_->SaveExif(file);
  file.SetPosition(0);
  TImageData again;
  ASSERT_TRUE(again.ReadJpegSections(file));
  EXPECT_FALSE(again.ExifData->HasThumbnail());
  EXPECT_EQ(again.ExtractThumbnailBuffer(), "");
  EXPECT_EQ(again.ExifData->Rotation, 270);
}

TEST_F(Thumbnail, Remove_Should_KeepWhatWasReadAtHand) {
  const std::string picture = "\xFF\xD8\xFF\xDB" + kFiller + kEnd;
  ReadWith(picture);
  image_->RemoveThumbnail();
  EXPECT_EQ(Buffer(), picture);
}

TEST_F(Thumbnail, Remove_Should_ChangeNothing_When_DoneTwice) {
  ReadWith("\xFF\xD8\xFF\xDB" + kFiller + kEnd);
  image_->RemoveThumbnail();
  const std::string once = image_->ExifSegment->Data;
  image_->RemoveThumbnail();
  EXPECT_EQ(image_->ExifSegment->Data, once);
}

TEST_F(Thumbnail, Remove_Should_ChangeNothing_When_ThereIsNoThumbnail) {
  image_->RemoveThumbnail();
  EXPECT_EQ(image_->ExifSegment, nullptr);
  const std::string content =
      test::ExifContent(test::TiffWriter(test::ByteOrder::intel)
                            .Tiff({test::TiffWriter(test::ByteOrder::intel).Short(274, 3)}));
  ReadSection(content);
  const std::string before = image_->ExifSegment->Data;
  image_->RemoveThumbnail();
  EXPECT_EQ(image_->ExifSegment->Data, before);
  EXPECT_EQ(image_->ExifSegment->Size, static_cast<int32_t>(before.size()));
}

TEST_F(Thumbnail, Remove_Should_ChangeNothing_When_FieldsPointBehindTheSection) {
  ReadWith("\xFF\xD8\xFF\xDB" + kFiller + kEnd);
  const std::string before = image_->ExifSegment->Data;
  image_->ExifData->ThumbStart = static_cast<int32_t>(before.size()) + 7;
  image_->RemoveThumbnail();
  EXPECT_EQ(image_->ExifSegment->Data, before);
  EXPECT_EQ(image_->ExifSegment->Size, static_cast<int32_t>(before.size()));
}

TEST_F(Thumbnail, Remove_Should_ChangeNothing_When_SectionsWereCleared) {
  ReadWith("\xFF\xD8\xFF\xDB" + kFiller + kEnd);
  const std::string before = image_->Sections[1].Data;
  image_->ClearSections();
  image_->RemoveThumbnail();
  EXPECT_EQ(image_->Sections[1].Data, before);
}

}  // namespace
}  // namespace rasterkit
