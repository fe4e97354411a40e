#include <random>

#include <gtest/gtest.h>

#include <rasterkit/graphics/jpeg_image.h>
#include <rasterkit/jpegexif/exif_writer.h>
#include <rasterkit/jpegexif/image_data.h>
#include <rasterkit/runtime/errors.h>

#include "tests/reference/exif_writer_reference.h"
#include "tests/support/exif_builder.h"

namespace rasterkit {
namespace {

using test::JpegOf;
using test::JpegSection;

const std::string kStart = "\xFF\xD8";
const std::string kApp0 = JpegSection(0xE0, std::string("JFIF\0\1\1\0\0\1\0\1\0\0", 14));
const std::string kExif =
    test::ExifSection(test::TiffWriter(test::ByteOrder::motorola)
                          .Tiff({test::TiffWriter(test::ByteOrder::motorola).Short(274, 6)}));
const std::string kIptc = JpegSection(0xED, "Photoshop 3.0");
const std::string kComment = JpegSection(0xFE, "a comment");
const std::string kProfile = JpegSection(0xE2, "ICC_PROFILE");
const std::string kDucky = JpegSection(0xEC, "Ducky");
const std::string kAdobe = JpegSection(0xEE, "Adobe");
const std::string kPicture =
    JpegSection(0xDB, "table") + JpegSection(0xDA, "scan") + "data\xFF\xD9";
const std::string kDefaultHeader("\xFF\xE0\x00\x10JFIF\x00\x01\x02\x01\x01\x2C\x01\x2C\x00\x00",
                                 18);

TSpanStream StreamOf(const std::string& bytes) {
  return TSpanStream({reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()});
}

std::string TextOf(const TMemoryStream& stream) {
  return {stream.Bytes().begin(), stream.Bytes().end()};
}

class ExifWriter : public ::testing::Test {
 protected:
  void Read(const std::string& file) {
    TSpanStream stream = StreamOf(file);
    image_.ReadJpegSections(stream);
  }
  std::string Saved() {
    TMemoryStream target;
    saved_ = image_.SaveExif(target);
    return TextOf(target);
  }
  std::string Written(const std::string& jpeg, bool withoutHeader = false) {
    TMemoryStream target;
    TSpanStream source = StreamOf(jpeg);
    image_.WriteImageToStream(source, target, withoutHeader);
    return TextOf(target);
  }

  TImageData image_;
  int32_t saved_ = -1;
};

TEST_F(ExifWriter, SaveExif_Should_WriteSectionsInItsOwnOrder) {
  Read(JpegOf({kAdobe, kComment, kIptc, kExif, kApp0, kProfile, kDucky}));
  EXPECT_EQ(Saved(), kStart + kExif + kIptc + kComment + kAdobe + kProfile + kDucky);
}

TEST_F(ExifWriter, SaveExif_Should_ReturnTheBytesBehindTheStartMarker) {
  Read(JpegOf({kAdobe, kComment, kIptc, kExif}));
  const std::string bytes = Saved();
  EXPECT_EQ(saved_, static_cast<int32_t>(bytes.size()) - 2);
}

TEST_F(ExifWriter, SaveExif_Should_DropApp0_When_ThereIsExif) {
  Read(JpegOf({kApp0, kExif}));
  EXPECT_EQ(Saved(), kStart + kExif);
  EXPECT_EQ(saved_, static_cast<int32_t>(kExif.size()));
}

TEST_F(ExifWriter, SaveExif_Should_WriteApp0_When_ThereIsNoExif) {
  Read(JpegOf({kApp0, kComment}));
  EXPECT_EQ(Saved(), kStart + kApp0 + kComment);
}

TEST_F(ExifWriter, SaveExif_Should_WriteAHeaderOf300Dpi_When_ThereIsNeitherExifNorApp0) {
  EXPECT_EQ(Saved(), kStart + kDefaultHeader);
  EXPECT_EQ(saved_, 18);
  Read(JpegOf({kComment}));
  EXPECT_EQ(Saved(), kStart + kDefaultHeader + kComment);
  EXPECT_EQ(saved_, 18 + static_cast<int32_t>(kComment.size()));
}

TEST_F(ExifWriter, SaveExif_Should_KeepWhateverTheFirstApp1Holds) {
  Read(JpegOf({kApp0, test::XmpSection()}));
  EXPECT_EQ(Saved(), kStart + test::XmpSection());
}

TEST_F(ExifWriter, SaveExif_Should_WriteFiveOthersAtMost_InTheOrderRead) {
  const std::vector<std::string> sections = {kComment, kProfile, kAdobe, kDucky,
                                             kProfile, kAdobe,   kDucky};
  Read(JpegOf(sections));
  EXPECT_EQ(Saved(),
            kStart + kDefaultHeader + kComment + kProfile + kAdobe + kDucky + kProfile + kAdobe);
}

TEST_F(ExifWriter, SaveExif_Should_WriteOnlyTheHeader_When_SectionsWereCleared) {
  Read(JpegOf({kApp0, kExif, kIptc, kComment, kProfile}));
  image_.ClearSections();
  EXPECT_EQ(Saved(), kStart + kApp0);
}

TEST_F(ExifWriter, SaveExif_Should_WriteTheSectionsOfTheCallersMaking) {
  TSection comment;
  comment.DType = kMarkerCom;
  comment.Data = std::string("\0\4hi", 4);
  image_.CommentSegment = &comment;
  EXPECT_EQ(Saved(), kStart + kDefaultHeader + JpegSection(0xFE, "hi"));
}

TEST_F(ExifWriter, SaveExif_Should_WriteAtTheStreamsPosition) {
  TMemoryStream target;
  target.Write(std::vector<uint8_t>{'a', 'b', 'c'});
  EXPECT_EQ(image_.SaveExif(target), 18);
  EXPECT_EQ(TextOf(target), "abc" + kStart + kDefaultHeader);
}

TEST_F(ExifWriter, SaveExif_Should_PassOnTheStreamsError) {
  TSpanStream readOnly = StreamOf(kStart);
  EXPECT_THROW(image_.SaveExif(readOnly), Error);
}

// ---- the encoder's metadata
// ----------------------------------------------------------------------

class Skipping : public ::testing::Test {
 protected:
  /// Rest of a file behind its metadata, with the start marker in front.
  static std::string Rest(const std::string& jpeg) {
    TSpanStream stream = StreamOf(jpeg);
    stream.SetPosition(jpeg.size() / 2);
    const uint64_t place = detail::SkipEncoderMetadata(stream);
    EXPECT_EQ(stream.Position(), place);
    EXPECT_EQ(static_cast<int64_t>(place), reference::PictureDataPlace(jpeg));
    return place < jpeg.size() ? jpeg.substr(place) : "";
  }
};

TEST_F(Skipping, Should_PassTheStartMarkerOnly_When_ThereIsNoMetadata) {
  EXPECT_EQ(Rest(kStart + kPicture), kPicture);
}

TEST_F(Skipping, Should_PassEveryKindOfMetadata_InAnyOrderAndNumber) {
  EXPECT_EQ(Rest(kStart + kApp0 + kPicture), kPicture);
  for (const std::string& section : {kExif, kProfile, kDucky, kIptc, kAdobe, kComment}) {
    EXPECT_EQ(Rest(kStart + section + kPicture), kPicture);
    EXPECT_EQ(Rest(kStart + section + section + kPicture), kPicture);
    EXPECT_EQ(Rest(kStart + kApp0 + section + kComment + section + kPicture), kPicture);
  }
  EXPECT_EQ(Rest(kStart + kApp0 + kComment + kAdobe + kIptc + kDucky + kProfile + kExif + kPicture),
            kPicture);
}

TEST_F(Skipping, Should_StopAtASecondApp0) {
  EXPECT_EQ(Rest(kStart + kApp0 + kApp0 + kComment + kPicture), kApp0 + kComment + kPicture);
}

TEST_F(Skipping, Should_StopAtAnApp0ThatIsNotTheFirstSection) {
  EXPECT_EQ(Rest(kStart + kExif + kApp0 + kPicture), kApp0 + kPicture);
}

TEST_F(Skipping, Should_StopAtEveryOtherMarker) {
  for (int marker = 0; marker < 256; ++marker) {
    const auto byte = static_cast<char>(marker);
    const bool isMetadata =
        std::string("\xE0\xE1\xE2\xEC\xED\xEE\xFE").find(byte) != std::string::npos;
    const std::string section = JpegSection(static_cast<uint8_t>(marker), "content");
    EXPECT_EQ(Rest(kStart + section + kPicture), isMetadata ? kPicture : section + kPicture)
        << marker;
  }
}

TEST_F(Skipping, Should_LeaveMetadataBehindTheFirstOtherMarker) {
  const std::string table = JpegSection(0xDB, "table");
  EXPECT_EQ(Rest(kStart + table + kComment + kPicture), table + kComment + kPicture);
}

TEST_F(Skipping, Should_StopAtFillBytes) {
  EXPECT_EQ(Rest(kStart + "\xFF" + kComment + kPicture), "\xFF" + kComment + kPicture);
}

TEST_F(Skipping, Should_EndSomewhere_When_TheFileIsCutOffOrLies) {
  EXPECT_EQ(Rest(""), "");
  EXPECT_EQ(Rest(kStart), "");
  EXPECT_EQ(Rest(kStart + "\xFF"), "\xFF");
  EXPECT_EQ(Rest(kStart + "\xFF\xE1"), "");
  EXPECT_EQ(Rest(kStart + std::string("\xFF\xE1\0", 3)), std::string("\0", 1));
  EXPECT_EQ(Rest(kStart + "\xFF\xE0\xFF\xFF" + "short"), "");
  EXPECT_EQ(Rest(kStart + std::string("\xFF\xFE\0\0\0\0data", 10)), std::string("\0\0\0\0data", 8));
}

TEST_F(Skipping, RandomFiles_Should_GoAsTheReferenceGoes) {
  const unsigned seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  const std::vector<uint8_t> markers = {0xE0, 0xE1, 0xE2, 0xEC, 0xED, 0xEE, 0xFE, 0xDB, 0xFF};
  for (int round = 0; round < 2000; ++round) {
    std::string file = kStart;
    for (unsigned n = random() % 8; n > 0; --n) {
      file += JpegSection(markers[random() % markers.size()], std::string(random() % 9, 'x'));
      if (random() % 8 == 0) file[file.size() - 1 - random() % 4] = static_cast<char>(random());
    }
    Rest(file + kPicture);
    if (::testing::Test::HasFailure()) return;
  }
}

// ---- whole files
// ---------------------------------------------------------------------------------

TEST_F(ExifWriter, WriteImage_Should_PutSavedSectionsInPlaceOfTheEncoders) {
  Read(JpegOf({kApp0, kExif, kComment}));
  const std::string encoded = kStart + kApp0 + JpegSection(0xFE, "by the encoder") + kPicture;
  EXPECT_EQ(Written(encoded), kStart + kExif + kComment + kPicture);
}

TEST_F(ExifWriter, WriteImage_Should_DropTheEncodersMetadata_When_ThereIsNoneToPutInPlace) {
  const std::string encoded = kStart + kApp0 + kComment + kAdobe + kPicture;
  EXPECT_EQ(Written(encoded), kStart + kDefaultHeader + kPicture);
}

TEST_F(ExifWriter, WriteImage_Should_WriteThePictureDataAlone_When_WithoutHeader) {
  Read(JpegOf({kExif, kComment}));
  EXPECT_EQ(Written(kStart + kApp0 + kComment + kPicture, true), kPicture);
}

TEST_F(ExifWriter, WriteImage_Should_ReadFromTheBeginning_And_WriteAtThePosition) {
  const std::string encoded = kStart + kApp0 + kPicture;
  TSpanStream source = StreamOf(encoded);
  source.SetPosition(encoded.size());
  TMemoryStream target;
  target.Write(std::vector<uint8_t>{'#'});
  image_.WriteImageToStream(source, target, true);
  EXPECT_EQ(TextOf(target), "#" + kPicture);
}

TEST_F(ExifWriter, WriteImage_Should_CopyLargePicturesWhole) {
  std::string data;
  for (int i = 0; i < 200'001; ++i) data += static_cast<char>(i * 7);
  EXPECT_EQ(Written(kStart + kApp0 + kPicture + data, true), kPicture + data);
}

TEST_F(ExifWriter, WhatIsWritten_Should_BeReadBackTheSame) {
  Read(JpegOf({kAdobe, kComment, kIptc, kExif, kProfile}));
  const std::string file = Written(kStart + kApp0 + kComment + kPicture);
  TImageData again;
  TSpanStream stream = StreamOf(file);
  ASSERT_TRUE(again.ReadJpegSections(stream));
  ASSERT_NE(again.ExifSegment, nullptr);
  EXPECT_EQ(again.ExifSegment->Data, image_.ExifSegment->Data);
  EXPECT_EQ(again.IPTCSegment->Data, image_.IPTCSegment->Data);
  EXPECT_EQ(again.CommentSegment->Data, image_.CommentSegment->Data);
  ASSERT_EQ(again.OthersCount, 2);
  EXPECT_EQ(again.OtherSegments[1]->Data, image_.OtherSegments[1]->Data);
  EXPECT_EQ(again.OtherSegments[2]->Data, image_.OtherSegments[2]->Data);
  EXPECT_EQ(again.ExifData->Rotation, 270);
  EXPECT_EQ(again.HeaderSegment, nullptr);
}

TEST_F(ExifWriter, RandomSections_Should_BeWrittenAsTheReferenceWritesThem) {
  const unsigned seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  const std::vector<std::string> kinds = {kApp0,  kExif,    kIptc,  kComment,
                                          kDucky, kProfile, kAdobe, JpegSection(0xDB, "t")};
  for (int round = 0; round < 500; ++round) {
    std::vector<std::string> sections, ofEncoder;
    for (unsigned n = random() % 9; n > 0; --n) sections.push_back(kinds[random() % kinds.size()]);
    for (unsigned n = random() % 5; n > 0; --n) ofEncoder.push_back(kinds[random() % kinds.size()]);
    TImageData image;
    const std::string file = JpegOf(sections), encoded = JpegOf(ofEncoder);
    TSpanStream stream = StreamOf(file), jpeg = StreamOf(encoded);
    image.ReadJpegSections(stream);
    TMemoryStream target;
    const bool withoutHeader = random() % 2 == 0;
    image.WriteImageToStream(jpeg, target, withoutHeader);
    ASSERT_EQ(TextOf(target), reference::WriteImageToStream(image, encoded, withoutHeader));
  }
}

}  // namespace
}  // namespace rasterkit
