#include <gtest/gtest.h>

#include <rasterkit/jpegexif/image_data.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/exif_builder.h"

namespace rasterkit {
namespace {

using test::JpegOf;
using test::JpegSection;
using test::JpegWithOrientation;
using test::XmpSection;

const std::string kApp0 = JpegSection(0xE0, std::string("JFIF\0", 5));
const std::string kTable = JpegSection(0xDB, "table");
const std::string kExif = JpegWithOrientation(6).substr(2, 36);

class JpegSections : public ::testing::Test {
 protected:
  bool Read(const std::string& file) {
    TSpanStream stream({reinterpret_cast<const uint8_t*>(file.data()), file.size()});
    const bool result = image_.ReadJpegSections(stream);
    position_ = stream.Position();
    return result;
  }
  const TSection& Section(int index) const {
    return image_.Sections.at(static_cast<size_t>(index));
  }

  TImageData image_;
  uint64_t position_ = 0;
};

TEST_F(JpegSections, NewObject_Should_BeEmptyAndWantAllGroups) {
  EXPECT_EQ(image_.SectionCnt, 0);
  EXPECT_EQ(image_.OthersCount, 0);
  EXPECT_EQ(image_.FTagTypes, (TTagTypes{tagExif, tagGPS, tagSpec, tagThumb}));
  EXPECT_TRUE(image_.ExifDecode);
  EXPECT_FALSE(image_.UseRaw);
  EXPECT_FALSE(image_.HasMetaData());
  EXPECT_EQ(image_.ExifData, nullptr);
  EXPECT_EQ(image_.GPSData, nullptr);
  EXPECT_EQ(image_.ErrStr, "");
}

TEST_F(JpegSections, Read_Should_GiveFalse_When_TheStartMarkerIsMissing) {
  EXPECT_FALSE(Read(""));
  EXPECT_FALSE(Read("\xFF"));
  EXPECT_FALSE(Read("BM" + kExif));
  EXPECT_FALSE(Read("\xFF\xD9" + kExif));
  EXPECT_EQ(image_.SectionCnt, 0);
}

TEST_F(JpegSections, Read_Should_GiveFalse_When_NothingFollowsTheStartMarker) {
  EXPECT_FALSE(Read("\xFF\xD8"));
  EXPECT_EQ(image_.SectionCnt, 0);
}

TEST_F(JpegSections, Read_Should_KeepDataWithItsLengthBytes) {
  EXPECT_TRUE(Read(JpegOf({kApp0, JpegSection(0xFE, "hello")})));
  ASSERT_EQ(image_.SectionCnt, 3);
  EXPECT_EQ(Section(1).DType, 0xE0);
  EXPECT_EQ(Section(2).DType, 0xFE);
  EXPECT_EQ(Section(2).Size, 7);
  EXPECT_EQ(Section(2).Base, 0);
  EXPECT_EQ(Section(2).Data, std::string("\0\7hello", 7));
  EXPECT_EQ(image_.CommentSegment, &image_.Sections[2]);
  EXPECT_EQ(image_.HeaderSegment, &image_.Sections[1]);
}

TEST_F(JpegSections, Read_Should_StopBehindTheStartOfScan_And_KeepIt) {
  const std::string file = JpegOf({kApp0});
  Read(file);
  EXPECT_EQ(image_.SectionCnt, 2);
  EXPECT_EQ(Section(2).DType, 0xDA);
  EXPECT_EQ(file.substr(position_, 4), "scan");
}

TEST_F(JpegSections, Read_Should_Stop_When_TheEndMarkerComes) {
  EXPECT_FALSE(Read("\xFF\xD8" + kApp0 + JpegSection(0xD9, "x") + kExif));
  EXPECT_EQ(image_.SectionCnt, 2);
}

TEST_F(JpegSections, Read_Should_StartAtTheStreamsPosition) {
  const std::string file = "junk" + JpegWithOrientation(8);
  TSpanStream stream({reinterpret_cast<const uint8_t*>(file.data()), file.size()});
  stream.SetPosition(4);
  EXPECT_TRUE(image_.ReadJpegSections(stream));
  EXPECT_EQ(image_.ExifData->Rotation, 90);
}

TEST_F(JpegSections, LastApp0AndComment_Should_Win_But_FirstIptc) {
  EXPECT_TRUE(Read(JpegOf({kApp0, JpegSection(0xED, "iptc 1"), kApp0, JpegSection(0xED, "iptc 2"),
                           JpegSection(0xFE, "one"), JpegSection(0xFE, "two")})));
  EXPECT_EQ(image_.HeaderSegment, &image_.Sections[3]);
  EXPECT_EQ(image_.IPTCSegment, &image_.Sections[2]);
  EXPECT_EQ(image_.CommentSegment, &image_.Sections[6]);
}

TEST_F(JpegSections, FirstApp1_Should_Win_EvenWhenItIsXmp) {
  EXPECT_TRUE(Read(JpegOf({XmpSection(), kExif, kApp0})));
  EXPECT_EQ(image_.ExifSegment, &image_.Sections[1]);
  EXPECT_EQ(image_.ErrStr, "Incorrect Exif header");
  EXPECT_EQ(image_.ExifData->Rotation, 0);
}

TEST_F(JpegSections, SecondApp1_Should_BeDroppedAndItsSlotReused) {
  EXPECT_TRUE(Read(JpegOf({kExif, XmpSection(), kApp0})));
  ASSERT_EQ(image_.SectionCnt, 3);
  EXPECT_EQ(Section(1).DType, 0xE1);
  EXPECT_EQ(Section(2).DType, 0xE0);
  EXPECT_EQ(Section(3).DType, 0xDA);
  EXPECT_EQ(image_.ExifData->Rotation, 270);
}

TEST_F(JpegSections, App1AsSixthSection_Should_BeDropped) {
  const std::string comment = JpegSection(0xFE, "c");
  EXPECT_TRUE(Read(JpegOf({comment, kTable, kTable, kTable, kTable, kExif, kApp0})));
  EXPECT_EQ(image_.ExifSegment, nullptr);
  EXPECT_EQ(image_.ExifData, nullptr);
  EXPECT_EQ(image_.SectionCnt, 7);
  EXPECT_EQ(Section(6).DType, 0xE0);
}

TEST_F(JpegSections, Exif_Should_BeFoundAsFourthSection) {
  EXPECT_TRUE(Read(JpegOf({kApp0, kTable, kTable, kExif})));
  EXPECT_EQ(image_.ExifSegment, &image_.Sections[4]);
}

TEST_F(JpegSections, Exif_Should_BeMissed_When_ItIsFifthAndNothingElseWasFound) {
  EXPECT_FALSE(Read(JpegOf({kApp0, kTable, kTable, kTable, kExif})));
  EXPECT_EQ(image_.ExifSegment, nullptr);
  EXPECT_EQ(image_.SectionCnt, 5);
}

TEST_F(JpegSections, Exif_Should_BeFoundAsFifth_When_ACommentCameBefore) {
  EXPECT_TRUE(Read(JpegOf({kApp0, kTable, JpegSection(0xFE, "c"), kTable, kExif})));
  EXPECT_EQ(image_.ExifSegment, &image_.Sections[5]);
  EXPECT_EQ(image_.ExifData->Rotation, 270);
}

TEST_F(JpegSections, Read_Should_GiveTrue_When_OnlyAnOtherSegmentIsAmongTheFirstFive) {
  // An "other" segment is no metadata: the search ends at the fifth section all the same.
  EXPECT_TRUE(Read(JpegOf({JpegSection(0xE2, "icc"), kTable, kTable, kTable, kExif})));
  EXPECT_EQ(image_.ExifSegment, nullptr);
  EXPECT_FALSE(image_.HasMetaData());
}

TEST_F(JpegSections, OtherSegments_Should_KeepFileOrder) {
  EXPECT_TRUE(
      Read(JpegOf({JpegSection(0xEE, "a"), JpegSection(0xE2, "b"), JpegSection(0xEC, "c")})));
  ASSERT_EQ(image_.OthersCount, 3);
  EXPECT_EQ(image_.OtherSegments[1]->DType, 0xEE);
  EXPECT_EQ(image_.OtherSegments[2]->DType, 0xE2);
  EXPECT_EQ(image_.OtherSegments[3]->DType, 0xEC);
}

TEST_F(JpegSections, OtherSegments_Should_EndAtFive_When_TheFileHasMore) {
  std::vector<std::string> sections = {JpegSection(0xFE, "c")};
  for (int i = 0; i < 9; ++i) sections.push_back(JpegSection(0xE2, std::to_string(i)));
  EXPECT_TRUE(Read(JpegOf(sections)));
  EXPECT_EQ(image_.OthersCount, 5);
  EXPECT_EQ(image_.OtherSegments[5]->Data.back(), '4');
  EXPECT_EQ(image_.SectionCnt, 11);
}

TEST_F(JpegSections, UnnamedMarkers_Should_OnlyBeKept) {
  EXPECT_FALSE(
      Read(JpegOf({JpegSection(0xE3, "x"), JpegSection(0xC0, "y"), JpegSection(0x01, "z")})));
  EXPECT_EQ(image_.SectionCnt, 4);
  EXPECT_EQ(Section(3).DType, 0x01);
}

TEST_F(JpegSections, Read_Should_EndAtTwentySections) {
  std::vector<std::string> sections(30, kTable);
  sections[0] = JpegSection(0xFE, "c");
  sections[25] = JpegSection(0xED, "too late");
  EXPECT_TRUE(Read(JpegOf(sections)));
  EXPECT_EQ(image_.SectionCnt, 20);
  EXPECT_EQ(image_.IPTCSegment, nullptr);
}

TEST_F(JpegSections, FillBytes_Should_BeSkipped_HoweverManyThereAre) {
  EXPECT_TRUE(Read("\xFF\xD8" + std::string(100000, '\xFF') + kExif));
  EXPECT_EQ(image_.ExifData->Rotation, 270);
}

TEST_F(JpegSections, Marker_Should_NotNeedAFillByte) {
  EXPECT_TRUE(Read("\xFF\xD8" + JpegSection(0xFE, "c").substr(1) + kExif));
  ASSERT_NE(image_.CommentSegment, nullptr);
  EXPECT_EQ(image_.CommentSegment->Data, std::string("\0\3c", 3));
  EXPECT_EQ(image_.ExifData->Rotation, 270);
}

TEST_F(JpegSections, ExifSection_Should_BeDecodedAsFarAsItGoes_When_TheFileEndsWithinIt) {
  // Behind the orientation's value there is only the link to the next directory.
  EXPECT_TRUE(Read("\xFF\xD8" + kExif.substr(0, kExif.size() - 5)));
  EXPECT_EQ(image_.ExifData->Rotation, 270);
}

TEST_F(JpegSections, LengthBelowTwo_Should_EndTheReading_And_KeepNoSection) {
  for (const char length : {'\0', '\1'}) {
    TImageData image;
    const std::string file = "\xFF\xD8" + kApp0 + "\xFF\xFE" + std::string{'\0', length} + kExif;
    TSpanStream stream({reinterpret_cast<const uint8_t*>(file.data()), file.size()});
    EXPECT_FALSE(image.ReadJpegSections(stream));
    EXPECT_EQ(image.SectionCnt, 1);
    EXPECT_EQ(image.CommentSegment, nullptr);
  }
}

TEST_F(JpegSections, LengthOfTwo_Should_BeAnEmptySection) {
  EXPECT_TRUE(Read(JpegOf({JpegSection(0xFE, "")})));
  EXPECT_EQ(Section(1).Data, std::string("\0\2", 2));
}

TEST_F(JpegSections, TruncatedSection_Should_BeFilledWithZeros) {
  EXPECT_TRUE(Read(std::string("\xFF\xD8\xFF\xFE\x00\x08yes", 9)));
  ASSERT_EQ(image_.SectionCnt, 1);
  EXPECT_EQ(Section(1).Data, std::string("\0\10yes\0\0\0", 8));
}

TEST_F(JpegSections, LargestSection_Should_BeReadWhole_AcrossReads) {
  std::string content;
  for (int i = 0; i < 65533; ++i) content += static_cast<char>(i * 7 % 251);
  EXPECT_TRUE(
      Read(JpegOf({kApp0, JpegSection(0xFE, content), JpegSection(0xED, content), kTable})));
  EXPECT_EQ(Section(2).Size, 65535);
  EXPECT_EQ(Section(2).Data.substr(2), content);
  EXPECT_EQ(image_.IPTCSegment->Data.substr(2), content);
  EXPECT_EQ(Section(4).Data.substr(2), "table");
}

TEST_F(JpegSections, EveryTruncation_Should_BeSurvived) {
  const std::string file = JpegOf({kApp0, kExif, JpegSection(0xFE, "c"), JpegSection(0xE2, "i")});
  for (size_t size = 0; size <= file.size(); ++size) {
    TImageData image;
    TSpanStream stream({reinterpret_cast<const uint8_t*>(file.data()), size});
    const bool found = image.ReadJpegSections(stream);
    EXPECT_EQ(found, image.HasMetaData() || image.OthersCount > 0) << size;
    EXPECT_LE(stream.Position(), size);
  }
}

TEST_F(JpegSections, ResetInfos_Should_LeaveOthersCount_SoThatASecondFileAppends) {
  const std::string file = JpegOf({JpegSection(0xE2, "a"), kExif});
  EXPECT_TRUE(Read(file));
  image_.ErrStr = "old";
  image_.ResetInfos();
  EXPECT_EQ(image_.OthersCount, 1);
  EXPECT_FALSE(image_.HasMetaData());
  EXPECT_EQ(image_.HeaderSegment, nullptr);
  EXPECT_EQ(image_.ExifData, nullptr);
  EXPECT_EQ(image_.ExifBuff, "");
  EXPECT_EQ(image_.DirStack, "");
  EXPECT_EQ(image_.ErrStr, "");
  EXPECT_TRUE(Read(file));
  EXPECT_EQ(image_.OthersCount, 2);
}

TEST_F(JpegSections, ResetInfos_Should_ForgetIptcAndPosition) {
  const test::TiffWriter writer(test::ByteOrder::intel);
  const std::string gps = writer.Tiff({writer.GpsPointer()}, {writer.Ascii(1, "N")});
  EXPECT_TRUE(Read(JpegOf({JpegSection(0xED, "i"), test::ExifSection(gps)})));
  EXPECT_NE(image_.GPSData, nullptr);
  image_.ResetInfos();
  EXPECT_EQ(image_.IPTCSegment, nullptr);
  EXPECT_EQ(image_.GPSData, nullptr);
}

TEST_F(JpegSections, SecondRead_Should_FillTheSectionsAnew) {
  EXPECT_TRUE(Read(JpegOf({JpegSection(0xFE, "first"), kApp0, kTable})));
  EXPECT_TRUE(Read(JpegOf({JpegSection(0xFE, "2nd")})));
  EXPECT_EQ(image_.SectionCnt, 2);
  EXPECT_EQ(Section(1).Data, std::string("\0\0052nd", 5));
}

TEST_F(JpegSections, MetaData_Should_BeAnExifOrAnIptcOrACommentSection) {
  for (const std::string& section : {kExif, JpegSection(0xED, "i"), JpegSection(0xFE, "c")}) {
    TImageData image;
    const std::string file = JpegOf({section});
    TSpanStream stream({reinterpret_cast<const uint8_t*>(file.data()), file.size()});
    EXPECT_TRUE(image.ReadJpegSections(stream));
    EXPECT_TRUE(image.HasMetaData());
  }
}

TEST_F(JpegSections, ClearSections_Should_LeaveHeaderSectionsAndValues) {
  EXPECT_TRUE(Read(JpegOf({kApp0, kExif, JpegSection(0xE2, "a")})));
  image_.ClearSections();
  EXPECT_FALSE(image_.HasMetaData());
  EXPECT_EQ(image_.OthersCount, 0);
  EXPECT_EQ(image_.HeaderSegment, &image_.Sections[1]);
  EXPECT_EQ(image_.SectionCnt, 4);
  EXPECT_NE(image_.ExifData, nullptr);
}

TEST_F(JpegSections, GetComment_Should_JoinAllPartsInOrder) {
  EXPECT_TRUE(Read(JpegOf({JpegSection(0xFE, "note"), JpegSection(0xED, "a{b~z\x80!"), kExif,
                           JpegSection(0xE2, "i\1")})));
  image_.ExifData->Comments = "exif";
  EXPECT_EQ(image_.GetComment(), std::string("\0\6note\rexif\rabz!\r\0\4i\1", 21));
}

TEST_F(JpegSections, GetComment_Should_BeUtf8_When_PartsAreNot) {
  // A length byte above 127 says nothing about the text behind it.
  const std::string note(130, 'n');
  EXPECT_TRUE(Read(JpegOf({JpegSection(0xFE, note + "\xC3\xA4"), JpegSection(0xE2, "\xE4")})));
  EXPECT_EQ(image_.GetComment(),
            std::string("\0\xC2\x86", 3) + note + "\xC3\xA4\r" + std::string("\0\3\xC3\xA4", 4));
}

TEST_F(JpegSections, GetComment_Should_TakeAllPrintableIptcBytes_AlsoOfTheLength) {
  const std::string content = " z" + std::string(61, '\1');
  EXPECT_TRUE(Read(JpegOf({JpegSection(0xED, content)})));
  EXPECT_EQ(image_.GetComment(), "A z") << "65 bytes, and 65 is an A";
}

TEST_F(JpegSections, GetComment_Should_BeEmpty_When_ThereIsNone) {
  EXPECT_EQ(image_.GetComment(), "");
  EXPECT_TRUE(Read(JpegOf({kExif})));
  EXPECT_EQ(image_.GetComment(), "");
}

TEST_F(JpegSections, GetComment_Should_KeepTheSeparator_When_TheExifCommentIsEmpty) {
  EXPECT_TRUE(Read(JpegOf({JpegSection(0xFE, "c"), kExif})));
  EXPECT_EQ(image_.GetComment(), std::string("\0\3c\r", 4));
}

}  // namespace
}  // namespace rasterkit
