#include <gtest/gtest.h>

#include <rasterkit/jpegexif/raw_orientation.h>

#include "tests/support/exif_builder.h"
#include "tests/support/pipe_stream.h"

namespace rasterkit {
namespace {

using test::ByteOrder;
using test::ExifSection;
using test::JpegOf;
using test::JpegSection;
using test::TiffWriter;

std::optional<int> Orientation(const std::string& file) {
  TSpanStream stream({reinterpret_cast<const uint8_t*>(file.data()), file.size()});
  return ReadRawOrientation(stream);
}

const TiffWriter kIntel(ByteOrder::intel);
const TiffWriter kMotorola(ByteOrder::motorola);
const std::string kSix = ExifSection(kIntel.Tiff({kIntel.Short(274, 6)}));

TEST(RawOrientation, Walk_Should_PassXmp) {
  EXPECT_EQ(Orientation(JpegOf({test::XmpSection(), kSix})), 6);
}

TEST(RawOrientation, Walk_Should_PassManyAndLargeSections) {
  std::vector<std::string> sections(50, JpegSection(0xE2, std::string(65533, '\xFF')));
  sections.push_back(kSix);
  EXPECT_EQ(Orientation(JpegOf(sections)), 6);
}

TEST(RawOrientation, Walk_Should_StopAtTheStartOfScan) {
  EXPECT_EQ(Orientation("\xFF\xD8" + JpegSection(0xDA, "scan") + kSix), std::nullopt);
  EXPECT_EQ(Orientation("\xFF\xD8\xFF\xD9" + kSix), std::nullopt);
}

TEST(RawOrientation, Walk_Should_PassJunkBetweenSections) {
  const std::string start = "\xFF\xD8";
  EXPECT_EQ(Orientation(start + std::string("\0\1junk\xFF\xFF\xFF", 9) + kSix.substr(1)), 6);
  EXPECT_EQ(Orientation(start + std::string("\xFF\0", 2) + kSix), 6);
  EXPECT_EQ(Orientation(start + "\xFF\xD0\xFF\x01" + kSix), 6) << "markers without a length";
  EXPECT_EQ(Orientation(start + std::string("\xFF\xFE\0\1", 4) + kSix), 6)
      << "an impossible length";
}

TEST(RawOrientation, Walk_Should_PassWhatOnlyLooksLikeExif) {
  const std::string tiff = kIntel.Tiff({kIntel.Short(274, 3)});
  EXPECT_EQ(Orientation(JpegOf({JpegSection(0xE1, "Other\1" + tiff), kSix})), 6);
  EXPECT_EQ(Orientation(JpegOf({JpegSection(0xE2, test::ExifContent(tiff)), kSix})), 6);
}

TEST(RawOrientation, Walk_Should_ReadThroughWhatCannotBeSkipped) {
  const std::string file = JpegOf({JpegSection(0xE2, std::string(65533, 'i')), kSix});
  test::PipeStream pipe(std::vector<uint8_t>(file.begin(), file.end()));
  EXPECT_EQ(ReadRawOrientation(pipe), 6);
}

TEST(RawOrientation, Walk_Should_GoOn_When_AnExifSectionStatesNone) {
  EXPECT_EQ(Orientation(JpegOf({ExifSection(kIntel.Tiff({})), kSix})), 6);
  EXPECT_EQ(Orientation(JpegOf({ExifSection("XX"), kSix})), 6);
  EXPECT_EQ(Orientation(JpegOf({ExifSection(kIntel.Tiff({kIntel.Short(274, 0)})), kSix})), 6);
}

TEST(RawOrientation, Value_Should_BeFromOneToEight) {
  for (int value = 0; value <= 300; ++value) {
    const bool isValid = value >= 1 && value <= 8;
    const std::optional<int> expected = isValid ? std::optional<int>(value) : std::nullopt;
    EXPECT_EQ(Orientation(test::JpegWithOrientation(value, ByteOrder::motorola)), expected)
        << value;
  }
}

TEST(RawOrientation, Value_Should_BeReadFromAnyIntegerType) {
  EXPECT_EQ(Orientation(JpegOf({ExifSection(kMotorola.Tiff({kMotorola.LongEntry(274, 5)}))})), 5);
  EXPECT_EQ(Orientation(JpegOf({ExifSection(kMotorola.Tiff({{274, 1, 1, "\7"}}))})), 7);
  EXPECT_EQ(Orientation(JpegOf({ExifSection(kMotorola.Tiff({{274, 6, 1, "\5"}}))})), 5);
  EXPECT_EQ(Orientation(JpegOf({ExifSection(kMotorola.Tiff({{274, 9, 1, kMotorola.Long(4)}}))})),
            4);
  EXPECT_EQ(Orientation(JpegOf({ExifSection(kMotorola.Tiff({{274, 8, 1, kMotorola.Word(2)}}))})),
            2);
}

TEST(RawOrientation, Directory_Should_LieBehindTheHeader_When_ItsOffsetIsZero) {
  const std::string tiff = kIntel.Header(0) + kIntel.Directory(8, {kIntel.Short(274, 3)});
  EXPECT_EQ(Orientation(JpegOf({ExifSection(tiff)})), 3);
}

TEST(RawOrientation, Directory_Should_BeReadAsFarAsItGoes_When_ItsCountLies) {
  std::string tiff = kIntel.Tiff({kIntel.Short(274, 3)});
  tiff[8] = tiff[9] = '\xFF';
  EXPECT_EQ(Orientation(JpegOf({ExifSection(tiff)})), 3);
}

TEST(RawOrientation, GpsShortage_Should_NotMatter) {
  const std::string tiff =
      kIntel.Tiff({kIntel.Short(274, 8), kIntel.GpsPointer()}, {kIntel.Rationals(2, {{1, 1}})});
  EXPECT_EQ(Orientation(JpegOf({ExifSection(tiff)})), 8);
}

TEST(RawOrientation, EveryTruncation_Should_BeSurvived) {
  const std::string file = JpegOf({test::XmpSection(), kSix});
  for (size_t size = 0; size <= file.size(); ++size) Orientation(file.substr(0, size));
  EXPECT_EQ(Orientation(file.substr(0, 2 + 46 + 4 + 6 + 8 + 2 + 9)), 6)
      << "cut after the value's low byte";
}

}  // namespace
}  // namespace rasterkit
