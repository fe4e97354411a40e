#include <algorithm>

#include "tests/jpegexif/exif_fixture.h"

namespace rasterkit {
namespace {

using test::ByteOrder;
using test::ExifContent;
using test::TiffEntry;
using test::TiffWriter;

class ExifDirectory : public test::ExifInBothOrders {};
INSTANTIATE_TEST_SUITE_P(Orders, ExifDirectory,
                         ::testing::Values(ByteOrder::intel, ByteOrder::motorola), test::OrderName);

TEST_P(ExifDirectory, Orientation_Should_BecomeARotation) {
  const int expected[] = {0, 0, 0, 180, 0, 0, 270, 0, 90, 0};
  for (uint16_t orientation = 0; orientation <= 9; ++orientation) {
    EXPECT_TRUE(ReadTiff(writer_.Tiff({writer_.Short(274, orientation)})));
    EXPECT_EQ(Exif().Rotation, expected[orientation]) << orientation;
    EXPECT_EQ(image_->ErrStr, "");
  }
}

TEST_P(ExifDirectory, OrientationEntry_Should_HaveAnEmptyDisplayText) {
  ReadTiff(writer_.Tiff({writer_.Short(274, 6)}));
  ASSERT_EQ(Exif().FTagCount, 1);
  EXPECT_EQ(Entry(0).Tag, 274);
  EXPECT_EQ(Entry(0).TagType, tagExif);
  EXPECT_EQ(Entry(0).FmtType, 3);
  EXPECT_EQ(Entry(0).Inhalt, "");
  EXPECT_EQ(Entry(0).Name, "");
  EXPECT_EQ(Entry(0).RawBuff, writer_.Word(6));
  EXPECT_EQ(Entry(0).RawSize, 2);
  EXPECT_EQ(Entry(0).RawPos, 9 + 8 + 2 + 8);
}

TEST_P(ExifDirectory, OrientationEntry_Should_ShowItsNumber_When_DecodingIsOff) {
  const std::string file = test::JpegOf({test::ExifSection(writer_.Tiff({writer_.Short(274, 6)}))});
  TSpanStream stream({reinterpret_cast<const uint8_t*>(file.data()), file.size()});
  image_->ExifDecode = false;
  image_->ReadJpegSections(stream);
  EXPECT_EQ(Entry(0).Inhalt, "6");
  EXPECT_EQ(Exif().Rotation, 270);
}

TEST_P(ExifDirectory, ByteOrder_Should_ComeFromTheHeader) {
  ReadTiff(writer_.Tiff({}));
  EXPECT_EQ(image_->MotorolaOrder, GetParam() == ByteOrder::motorola);
}

TEST_P(ExifDirectory, Header_Should_BeRefused_When_ItIsNotExif) {
  ReadSection(std::string("Exig\0\0", 6) + writer_.Tiff({writer_.Short(274, 6)}));
  EXPECT_EQ(image_->ErrStr, "Incorrect Exif header");
  EXPECT_EQ(Exif().FTagCount, 0);
  ReadSection("");
  EXPECT_EQ(image_->ErrStr, "Incorrect Exif header");
  ReadSection("Exif");
  EXPECT_EQ(image_->ErrStr, "Incorrect Exif header");
}

TEST_P(ExifDirectory, SixthHeaderByte_Should_NotMatter) {
  ReadSection(std::string("Exif\0X", 6) + writer_.Tiff({writer_.Short(274, 6)}));
  EXPECT_EQ(Exif().Rotation, 270);
}

TEST_P(ExifDirectory, AlignmentMarker_Should_BeRefused_When_ItIsNeitherOrder) {
  for (const char* marker : {"IM", "MI", "ii", "XX"}) {
    ReadTiff(marker + writer_.Tiff({writer_.Short(274, 6)}).substr(2));
    EXPECT_EQ(image_->ErrStr, "Invalid Exif alignment marker");
    EXPECT_EQ(Exif().Rotation, 0);
  }
  ReadSection(std::string("Exif\0\0", 6));
  EXPECT_EQ(image_->ErrStr, "Invalid Exif alignment marker");
}

TEST_P(ExifDirectory, Magic42_Should_NotBeAskedFor) {
  std::string tiff = writer_.Tiff({writer_.Short(274, 8)});
  tiff[2] = tiff[3] = 'x';
  ReadTiff(tiff);
  EXPECT_EQ(Exif().Rotation, 90);
}

TEST_P(ExifDirectory, FirstDirectory_Should_LieBehindTheHeader_When_ItsOffsetIsZero) {
  ReadTiff(writer_.Header(0) + writer_.Directory(8, {writer_.Short(274, 3)}));
  EXPECT_EQ(Exif().Rotation, 180);
  EXPECT_EQ(image_->DirStack, "[9:17]");
}

TEST_P(ExifDirectory, FirstDirectory_Should_LieWhereItsOffsetSays) {
  ReadTiff(writer_.Header(15) + "padding" + writer_.Directory(15, {writer_.Short(274, 3)}));
  EXPECT_EQ(Exif().Rotation, 180);
  EXPECT_EQ(image_->DirStack, "[9:24]");
}

TEST_P(ExifDirectory, FirstDirectory_Should_BeEmpty_When_ItLiesOutsideTheSection) {
  ReadTiff(writer_.Header(0xFFFFFFFF) + std::string(100, '\1'));
  EXPECT_EQ(Exif().FTagCount, 0);
  EXPECT_EQ(image_->ErrStr, "");
}

TEST_P(ExifDirectory, Bound_Should_CountTheStartTwice) {
  // ExifLength is Size - 6 and OffsetBase 9: count entries fit while 2 + 12 count <= 9 + Size - 6,
  // wherever they start.
  for (const int extra : {0, 1}) {
    const std::string orientation =
        writer_.Word(274) + writer_.Word(3) + writer_.Long(1) + writer_.Word(6) + writer_.Word(0);
    const std::string tiff = writer_.Header(20) + std::string(12, 'p') +
                             writer_.Word(static_cast<uint32_t>(4 + extra)) + orientation;
    ReadTiff(tiff + std::string(5, '\0'));
    // Size is 47: four entries (50) just fit, five (62) do not, though all but the first lie
    // outside the section.
    EXPECT_EQ(image_->ErrStr, extra == 0 ? "" : "Illegally sized directory");
    EXPECT_EQ(Exif().Rotation, extra == 0 ? 270 : 0);
  }
}

TEST_P(ExifDirectory, IllegalSize_Should_LeaveEarlierEntriesInPlace) {
  const std::string gps = writer_.Word(0xFFFF);
  TiffEntry pointer = writer_.GpsPointer();
  pointer.value = writer_.Long(8 + 2 + 36 + 4);
  ReadTiff(writer_.Header() +
           writer_.Directory(8, {writer_.Short(274, 6), pointer, writer_.Short(274, 8)}) + gps);
  EXPECT_EQ(image_->ErrStr, "Illegally sized directory");
  EXPECT_EQ(Exif().Rotation, 90);
  EXPECT_EQ(Exif().FTagCount, 3);
  EXPECT_NE(image_->GPSData, nullptr);
}

TEST_P(ExifDirectory, UnknownTags_Should_BePassedOver) {
  ReadTiff(writer_.Tiff({writer_.Ascii(271, "Maker"), writer_.Ascii(272, "Model"),
                         writer_.Ascii(306, "2019:07:04 13:05:09"), writer_.Short(256, 100),
                         writer_.Short(257, 50), writer_.Short(274, 6)}));
  EXPECT_EQ(Exif().FTagCount, 1);
  EXPECT_EQ(Exif().CameraMake, "");
  EXPECT_EQ(Exif().CameraModel, "");
  EXPECT_EQ(Exif().DateTime, "");
  EXPECT_EQ(Exif().Width, 0);
  EXPECT_EQ(Exif().Height, 0);
}

TEST_P(ExifDirectory, ExifSubDirectory_Should_NotBeReached) {
  TiffEntry pointer = writer_.LongEntry(34665, 8 + 2 + 12 + 4);
  ReadTiff(writer_.Header() + writer_.Directory(8, {pointer}) +
           writer_.Directory(26, {writer_.Short(274, 6)}));
  EXPECT_EQ(Exif().FTagCount, 0);
  EXPECT_EQ(Exif().Rotation, 0);
}

TEST_P(ExifDirectory, TagZero_Should_AdmitNothing) {
  ReadTiff(writer_.Tiff({writer_.Short(0, 6), writer_.Ascii(0, "text")}));
  EXPECT_EQ(Exif().FTagCount, 0);
}

TEST_P(ExifDirectory, EmptyAndUnknownTypes_Should_BeSkipped) {
  ReadTiff(writer_.Tiff({{274, 11, 1, writer_.Long(6)},
                         {274, 12, 1, writer_.Long(6) + writer_.Long(6)},
                         {274, 0, 1, writer_.Word(6)},
                         {274, 13, 1, writer_.Long(6)},
                         {274, 0xFFFF, 1, writer_.Long(6)},
                         {274, 3, 0, writer_.Word(6)}}));
  EXPECT_EQ(Exif().FTagCount, 0);
  EXPECT_EQ(Exif().Rotation, 0);
}

TEST_P(ExifDirectory, LastOrientation_Should_Win) {
  ReadTiff(writer_.Tiff({writer_.Short(274, 6), writer_.Short(274, 3)}));
  EXPECT_EQ(Exif().Rotation, 180);
  EXPECT_EQ(Exif().FTagCount, 2);
}

TEST_P(ExifDirectory, Orientation_Should_BeReadFromAnyIntegerType) {
  ReadTiff(writer_.Tiff({writer_.LongEntry(274, 6)}));
  EXPECT_EQ(Exif().Rotation, 270);
  ReadTiff(writer_.Tiff({{274, 1, 1, "\6"}}));
  EXPECT_EQ(Exif().Rotation, 270);
  ReadTiff(writer_.Tiff({writer_.Rationals(274, {{16, 2}})}));
  EXPECT_EQ(Exif().Rotation, 90);
}

TEST_P(ExifDirectory, GetTagInfo_Should_TellPlaceAndSize) {
  const TiffEntry longValue = writer_.Rationals(34853, {{1, 2}});
  ReadTiff(writer_.Tiff({writer_.Short(274, 1),
                         longValue,
                         {274, 2, 4, "abc\0"},
                         {274, 2, 5, "abcd"},
                         {274, 12, 9, ""}}));
  TTagInfo info;
  ASSERT_TRUE(image_->GetTagInfo(image_->ExifBuff, 9, 0, 17, info));
  EXPECT_EQ(info.Tag, 274);
  EXPECT_EQ(info.FmtType, 3);
  EXPECT_EQ(info.ByteCount, 2);
  EXPECT_EQ(info.ValuePos, 17 + 2 + 8);
  ASSERT_TRUE(image_->GetTagInfo(image_->ExifBuff, 9, 1, 17, info));
  EXPECT_EQ(info.Tag, 34853);
  EXPECT_EQ(info.ByteCount, 8);
  EXPECT_EQ(info.ValuePos, 9 + 8 + 2 + 60 + 4);
  ASSERT_TRUE(image_->GetTagInfo(image_->ExifBuff, 9, 2, 17, info));
  EXPECT_EQ(info.ByteCount, 4);
  EXPECT_EQ(info.ValuePos, 17 + 2 + 24 + 8) << "four bytes lie in place";
  ASSERT_TRUE(image_->GetTagInfo(image_->ExifBuff, 9, 3, 17, info));
  EXPECT_EQ(info.ByteCount, 5) << "five lie elsewhere";
  EXPECT_NE(info.ValuePos, 17 + 2 + 36 + 8);
  EXPECT_FALSE(image_->GetTagInfo(image_->ExifBuff, 9, 4, 17, info));
}

TEST_P(ExifDirectory, GetTagInfo_Should_CountFromTheTiffHeader_When_TheValueLiesBeyondTheBuffer) {
  const std::string buff =
      writer_.Word(1) + writer_.Word(274) + writer_.Word(2) + writer_.Long(5) + writer_.Long(20);
  image_->MotorolaOrder = GetParam() == ByteOrder::motorola;
  TTagInfo info;
  ASSERT_TRUE(image_->GetTagInfo(buff + std::string(12, 'x'), 1, 0, 1, info));
  EXPECT_EQ(info.ValuePos, 21) << "26 bytes, and the value counts as ending at 26";
  ASSERT_TRUE(image_->GetTagInfo(buff + std::string(11, 'x'), 1, 0, 1, info));
  EXPECT_EQ(info.ValuePos, 29) << "one byte less";
}

TEST_P(ExifDirectory, ValueBeyondTheBuffer_Should_BeAcceptedAndReadAsZeros) {
  std::string tiff = writer_.Header() + writer_.Word(1) + writer_.Word(34853) + writer_.Word(5) +
                     writer_.Long(1) + writer_.Long(0x00FFFFFF);
  ReadTiff(tiff);
  ASSERT_EQ(Exif().FTagCount, 1);
  EXPECT_EQ(Entry(0).Inhalt, "0/0");
  EXPECT_EQ(Entry(0).RawPos, 0x00FFFFFF + 9);
  EXPECT_EQ(Entry(0).RawSize, 8);
  EXPECT_EQ(Entry(0).RawBuff, std::string(8, '\0'));
}

TEST_P(ExifDirectory, InPlaceValue_Should_KeepItsPlace_When_TheBufferEndsWithinIt) {
  const std::string tiff = writer_.Header() + writer_.Word(1) + writer_.Word(274) +
                           writer_.Word(4) + writer_.Long(1) + writer_.Long(6).substr(0, 2);
  ReadTiff(tiff);
  ASSERT_EQ(Exif().FTagCount, 1);
  EXPECT_EQ(Entry(0).RawPos, 9 + 8 + 2 + 8);
  EXPECT_EQ(Exif().Rotation, GetParam() == ByteOrder::intel ? 270 : 0);
}

TEST_P(ExifDirectory, AbsurdCount_Should_CostNoMemory) {
  ReadTiff(writer_.Tiff({{274, 5, 0xFFFFFFFF, writer_.Long(8)}}));
  ASSERT_EQ(Exif().FTagCount, 1);
  EXPECT_EQ(Entry(0).RawSize, int64_t{0xFFFFFFFF} * 8);
  EXPECT_EQ(Entry(0).RawBuff.size(), 1024u);
  // 128 values at most.
  image_->ExifDecode = false;
  const std::string text = image_->FormatNumber(Entry(0).RawBuff, 5, "", "");
  EXPECT_EQ(std::count(text.begin(), text.end(), '/'), 128);
}

TEST_P(ExifDirectory, LinkToTheNextDirectory_Should_BeTheThumbnail) {
  const std::string main = writer_.Header() + writer_.Directory(8, {writer_.Short(274, 6)}, 26);
  const std::string thumbnail =
      writer_.Directory(26, {writer_.Short(274, 8), writer_.Short(259, 6)}) + std::string(300, 't');
  ReadTiff(main + thumbnail);
  const int size = 2 + 6 + 26 + 30 + 300;
  EXPECT_EQ(Exif().ThumbStart, 26);
  EXPECT_EQ(Exif().ThumbLength, 9 + (size - 6) - 26);
  EXPECT_TRUE(Exif().HasThumbnail());
  EXPECT_EQ(image_->DirStack, "[9:17][9:35]");
  ASSERT_EQ(Exif().FTagCount, 2);
  EXPECT_EQ(Entry(1).TagType, tagThumb);
  EXPECT_EQ(Exif().Rotation, 270) << "the thumbnail's orientation is not the photo's";
  EXPECT_EQ(Exif().ThumbType, 0) << "the compression tag is not admitted";
}

TEST_P(ExifDirectory, ThumbnailDirectory_Should_BeBoundByTheThumbnailsLength) {
  // Its ExifLength is ThumbLength - 12: 22 entries (266 bytes) need a ThumbLength of 269.
  for (const int length : {268, 269}) {
    const std::string main = writer_.Header() + writer_.Directory(8, {writer_.Short(274, 6)}, 26);
    const std::string count = writer_.Word(22);
    ReadTiff(main + count + std::string(static_cast<size_t>(length) + 15 - 26 - 2, '\0'));
    EXPECT_EQ(Exif().ThumbLength, length);
    EXPECT_EQ(image_->ErrStr, length == 269 ? "" : "Illegally sized directory");
  }
}

TEST_P(ExifDirectory, ThumbnailDirectory_Should_LeadNowhere) {
  TiffEntry pointer = writer_.GpsPointer();
  pointer.value = writer_.Long(26 + 2 + 12 + 4);
  ReadTiff(writer_.Header() + writer_.Directory(8, {writer_.Short(274, 6)}, 26) +
           writer_.Directory(26, {pointer}, 26) + writer_.Directory(44, {writer_.Ascii(1, "N")}) +
           std::string(300, 't'));
  EXPECT_EQ(Exif().FTagCount, 2);
  EXPECT_EQ(Entry(1).TagType, tagThumb);
  EXPECT_EQ(image_->GPSData, nullptr);
}

TEST_P(ExifDirectory, ThumbnailLink_Should_ComeFromTheFirstMainDirectoryOnly) {
  TiffEntry pointer = writer_.GpsPointer();
  pointer.value = writer_.Long(26);
  ReadTiff(writer_.Header() + writer_.Directory(8, {pointer}, 0) +
           writer_.Directory(26, {writer_.Ascii(1, "N")}, 44) + std::string(400, '\0'));
  EXPECT_EQ(Exif().ThumbStart, 0) << "a GPS directory has no such link";
  EXPECT_FALSE(Exif().HasThumbnail());
  image_->ExifData->TiffFmt = true;
  image_->ProcessExifDir(35, 9, 400, tagExif);
  EXPECT_EQ(Exif().ThumbStart, 0) << "nor is any in a TIFF file";
  image_->ExifData->TiffFmt = false;
  image_->ProcessExifDir(35, 9, 400, tagExif);
  EXPECT_EQ(Exif().ThumbStart, 44);
  image_->ProcessExifDir(17, 9, 400, tagExif);
  EXPECT_EQ(Exif().ThumbStart, 44) << "the first one stays";
}

TEST_P(ExifDirectory, SmallThumbnail_Should_BeIgnored) {
  TExifData exif(kAllTagTypes);
  exif.ThumbStart = 22;
  exif.ThumbLength = 257;
  EXPECT_TRUE(exif.HasThumbnail());
  exif.ThumbLength = 256;
  EXPECT_FALSE(exif.HasThumbnail());
  exif.ThumbLength = 257;
  exif.ThumbStart = 21;
  EXPECT_FALSE(exif.HasThumbnail());
}

TEST_P(ExifDirectory, ThumbnailLink_Should_BeHarmless_When_ItLiesOutside) {
  for (const uint32_t link : {0xFFFFFFFFu, 0x80000000u, 0x7FFFFFFFu, 1000000u, 8u}) {
    ReadTiff(writer_.Header() + writer_.Directory(8, {writer_.Short(274, 6)}, link) +
             std::string(400, '\0'));
    EXPECT_EQ(Exif().Rotation, 270);
    EXPECT_EQ(Exif().ThumbStart, static_cast<int32_t>(link));
    EXPECT_FALSE(Exif().HasThumbnail());
  }
}

TEST_P(ExifDirectory, WantedGroups_Should_DecideWhatIsKept) {
  const std::string tiff =
      writer_.Tiff({writer_.Short(274, 6), writer_.GpsPointer()}, {writer_.Ascii(1, "N")});
  const std::string file = test::JpegOf({test::ExifSection(tiff)});
  TSpanStream stream({reinterpret_cast<const uint8_t*>(file.data()), file.size()});
  image_->FTagTypes = {tagGPS};
  image_->ReadJpegSections(stream);
  ASSERT_EQ(Exif().FTagCount, 1);
  EXPECT_EQ(Entry(0).TagType, tagGPS);
  EXPECT_EQ(Exif().Rotation, 270) << "kept or not, the values are stored";
}

TEST_P(ExifDirectory, GpsEntries_Should_ComeBeforeTheEntryThatPointsToThem) {
  ReadTiff(writer_.Tiff({writer_.GpsPointer(), writer_.Short(274, 6)},
                        {writer_.Ascii(1, "N"), writer_.Ascii(3, "E")}));
  ASSERT_EQ(Exif().FTagCount, 4);
  EXPECT_EQ(Entry(0).Tag, 1);
  EXPECT_EQ(Entry(1).Tag, 3);
  EXPECT_EQ(Entry(2).Tag, 34853);
  EXPECT_EQ(Entry(3).Tag, 274);
}

TEST_P(ExifDirectory, GpsPointer_Should_NotBeFollowed_When_ItLeadsBack) {
  TiffEntry pointer = writer_.GpsPointer();
  pointer.value = writer_.Long(8);
  ReadTiff(writer_.Header() + writer_.Directory(8, {pointer, writer_.Short(274, 6)}));
  EXPECT_EQ(image_->GPSData, nullptr);
  EXPECT_EQ(image_->DirStack, "[9:17]");
  EXPECT_EQ(Exif().FTagCount, 2);
}

TEST_P(ExifDirectory, GpsDirectory_Should_BeReadOnce_When_TwoPointersLeadToIt) {
  TiffEntry pointer = writer_.GpsPointer();
  pointer.value = writer_.Long(8 + 2 + 24 + 4);
  ReadTiff(writer_.Header() + writer_.Directory(8, {pointer, pointer}) +
           writer_.Directory(38, {writer_.Ascii(1, "S")}));
  EXPECT_EQ(Exif().FTagCount, 3);
  EXPECT_EQ(Gps().Latitude.Ref, 'S');
}

TEST_P(ExifDirectory, SecondGpsDirectory_Should_ReplaceTheFirst) {
  TiffEntry first = writer_.GpsPointer(), second = writer_.GpsPointer();
  first.value = writer_.Long(38);
  second.value = writer_.Long(38 + 18);
  ReadTiff(writer_.Header() + writer_.Directory(8, {first, second}) +
           writer_.Directory(38, {writer_.Ascii(1, "S")}) +
           writer_.Directory(56, {writer_.Ascii(3, "W")}));
  EXPECT_EQ(Gps().Latitude.Ref, '\0');
  EXPECT_EQ(Gps().Longitude.Ref, 'W');
}

TEST_P(ExifDirectory, DirStack_Should_TellVisitedDirectoriesApart) {
  EXPECT_FALSE(image_->testDirStack(17, 9));
  image_->pushDirStack(17, 9);
  image_->pushDirStack(1234, 9);
  EXPECT_EQ(image_->DirStack, "[9:17][9:1234]");
  EXPECT_TRUE(image_->testDirStack(17, 9));
  EXPECT_TRUE(image_->testDirStack(1234, 9));
  EXPECT_FALSE(image_->testDirStack(123, 9));
  EXPECT_FALSE(image_->testDirStack(234, 9));
  EXPECT_FALSE(image_->testDirStack(9, 17));
}

TEST_P(ExifDirectory, TagArray_Should_GrowByTwentyRows) {
  TExifData exif(kAllTagTypes);
  TTagEntry entry;
  for (int i = 0; i < 60; ++i) {
    entry.Tag = static_cast<uint16_t>(i);
    EXPECT_EQ(exif.AddTagToArray(entry), i);
    EXPECT_EQ(exif.MaxTag, i < 19 ? 20 : i < 39 ? 40 : i < 59 ? 60 : 80) << i;
    EXPECT_EQ(exif.FTagArray.size(), static_cast<size_t>(exif.MaxTag));
  }
  EXPECT_EQ(exif.FTagArray[37].Tag, 37);
}

TEST_P(ExifDirectory, AddTag_Should_KeepNothing_When_TheGroupIsNotWanted) {
  TExifData exif({tagGPS});
  EXPECT_EQ(exif.AddTagToArray(TTagEntry()), -1);
  EXPECT_EQ(exif.FTagCount, 0);
}

TEST_P(ExifDirectory, TagTables_Should_HoldWhatTheyAdmit) {
  EXPECT_EQ(kExifTable.size(), 3u);
  EXPECT_EQ(kGpsTable.size(), 31u);
  for (uint32_t tag = 0; tag <= 0xFFFF; ++tag) {
    const auto id = static_cast<uint16_t>(tag);
    const bool inExif = tag == 274 || tag == 34853;
    ASSERT_EQ(detail::FindTagRow(tagExif, id) != nullptr, inExif) << tag;
    ASSERT_EQ(detail::FindTagRow(tagThumb, id) != nullptr, inExif) << tag;
    ASSERT_EQ(detail::FindTagRow(tagGPS, id) != nullptr, tag <= 30) << tag;
    ASSERT_EQ(detail::FindTagRow(tagSpec, id), nullptr) << tag;
  }
  for (uint16_t tag = 0; tag <= 30; ++tag) {
    const bool calls = tag == 2 || tag == 4 || tag == 7 || tag == 20 || tag == 22;
    EXPECT_EQ(kGpsTable[tag].Tag, tag);
    EXPECT_EQ(kGpsTable[tag].CallBack != nullptr, calls) << tag;
  }
}

TEST_P(ExifDirectory, ProcessExif_Should_DoNothing_When_NothingWasRead) {
  image_->ProcessExif();
  image_->ProcessExifDir(1, 9, 100, tagExif);
  EXPECT_EQ(image_->ErrStr, "");
}

}  // namespace
}  // namespace rasterkit
