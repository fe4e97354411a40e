// What the boxes of a file say is read without decoding its pixels.

#include <algorithm>
#include <cstring>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/jp2/jp2_picture.h>
#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/runtime/errors.h>

#include "tests/codecs/jp2/jp2_files.h"
#include "tests/support/profiles.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr uint32_t kSrgb = 16;

PictureHeader HeaderOf(const ByteList& file) {
  TSpanStream stream(file);
  return ReadJp2Header(stream);
}

ByteList Plain(const ByteList& headerBoxes, const ByteList& others = {}) {
  static const ByteList codestream = EncodeCodestream({});
  return FileOfJp2(codestream, Join({ColorBox(kSrgb), headerBoxes}), others);
}

/// A fraction of dots per meter with a power of ten, vertical and horizontal.
ByteList ResolutionBox(std::string_view type, int vertical, int horizontal, int exponent) {
  const auto power = static_cast<uint8_t>(exponent);
  return BoxOfJp2(type, Join({BigEndian16(vertical),
                              BigEndian16(1),
                              BigEndian16(horizontal),
                              BigEndian16(1),
                              {power, power}}));
}

TEST(ReadJp2Header, Sizes_Should_BeKnown_When_PixelsAreMissing) {
  CodestreamOfJp2 picture;
  picture.width = 300;
  picture.height = 70;
  picture.left = 9;
  ByteList file = EncodeCodestream(picture);
  file.resize(200);
  const PictureHeader header = HeaderOf(file);
  EXPECT_EQ(header.width, 300);
  EXPECT_EQ(header.height, 70);
  EXPECT_EQ(header.layout.bands, 3);
}

TEST(ReadJp2Header, Resolution_Should_BeThatOfTheScan) {
  const ByteList shown = ResolutionBox("resd", 3937, 3937, 0);
  const ByteList scanned = ResolutionBox("resc", 11811, 23622, 0);
  const auto resolution = [](const ByteList& box) {
    return HeaderOf(Plain(BoxOfJp2("res ", box))).metadata.resolution;
  };
  EXPECT_EQ(resolution(shown), (Resolution{100, 100}));
  EXPECT_EQ(resolution(Join({shown, scanned})), (Resolution{600, 300}));
  EXPECT_EQ(resolution(Join({scanned, shown})), (Resolution{600, 300}));
  EXPECT_EQ(resolution(ResolutionBox("resc", 3937, 3937, -1)), (Resolution{10, 10}));
}

TEST(ReadJp2Header, Resolution_Should_BeIgnored_When_ItIsInvalid) {
  for (const ByteList& box :
       {ResolutionBox("resc", 0, 100, 0), ResolutionBox("resc", 100, 100, 127),
        BoxOfJp2("resc",
                 Join({BigEndian16(1), BigEndian16(0), BigEndian16(1), BigEndian16(0), {0, 0}}))}) {
    const PictureHeader header = HeaderOf(Plain(BoxOfJp2("res ", box)));
    EXPECT_FALSE(header.metadata.resolution.IsKnown());
    EXPECT_THAT(header.warnings, ElementsAre(HasSubstr("the resolution is invalid")));
  }
}

TEST(ReadJp2Header, Profile_Should_BeKept_When_ItFits) {
  const ByteList profile = *RgbProfile();
  EXPECT_EQ(*HeaderOf(Plain(ProfileBox(profile))).metadata.profile, profile);
  const PictureHeader header = HeaderOf(Plain(ProfileBox({1, 2, 3, 4, 5})));
  EXPECT_EQ(header.metadata.profile, nullptr);
  EXPECT_THAT(header.warnings, ElementsAre(HasSubstr("color profile")));
}

/// A TIFF file with a pixel size and a tie point.
ByteList GeoTiff() {
  ExifBlock block;
  const auto doubles = [](uint16_t tag, const std::vector<double>& numbers) {
    TagValue value{tag, 12, numbers.size(), {}};
    value.bytes.resize(8 * numbers.size());
    std::memcpy(value.bytes.data(), numbers.data(), value.bytes.size());
    return value;
  };
  block.SetLong(ExifDirectoryId::main, 256, 1);
  block.Set(ExifDirectoryId::main, doubles(33550, {0.5, 0.5, 0}));
  block.Set(ExifDirectoryId::main, doubles(33922, {0, 0, 0, 500000, 5600000, 0}));
  return block.Bytes();
}

TEST(ReadJp2Header, Position_Should_BeThatOfItsBox) {
  const PictureHeader header = HeaderOf(Plain({}, UuidBox(kGeoTiffUuid, GeoTiff())));
  ASSERT_EQ(header.positionTags.size(), 2u);
  EXPECT_EQ(header.positionTags[0].tag, 33550);
  EXPECT_EQ(header.positionTags[1].tag, 33922);
  EXPECT_EQ(header.positionTags[1].count, 6u);
  EXPECT_THAT(header.warnings, IsEmpty());
}

ByteList Gml() {
  const std::string_view label = "gml.data";
  return BoxOfJp2("asoc", BoxOfJp2("lbl ", ByteList(label.begin(), label.end())));
}

TEST(ReadJp2Header, Gml_Should_BeNamed_When_NothingElseStatesThePosition) {
  EXPECT_THAT(HeaderOf(Plain({}, Gml())).warnings, ElementsAre(HasSubstr("GML")));
  const ByteList both = Join({Gml(), UuidBox(kGeoTiffUuid, GeoTiff())});
  EXPECT_THAT(HeaderOf(Plain({}, both)).warnings, IsEmpty());
}

TEST(ReadJp2Header, Metadata_Should_BeRead) {
  ExifBlock exif;
  exif.SetWords(ExifDirectoryId::main, 274, std::array<uint16_t, 1>{6});
  const std::string_view xmp = "<x:xmpmeta xmlns:x='adobe:ns:meta/'/>";
  const ByteList iptc = {0x1C, 2, 5, 0, 1, 'a'};
  const ByteList others =
      Join({UuidBox(kExifUuid, exif.Bytes()), UuidBox(kXmpUuid, ByteList(xmp.begin(), xmp.end())),
            UuidBox(kIptcUuid, iptc)});
  const PictureHeader header = HeaderOf(Plain({}, others));
  EXPECT_EQ(header.metadata.exif, exif.Bytes());
  EXPECT_EQ(header.metadata.xmp, xmp);
  EXPECT_EQ(header.metadata.iptc, iptc);
  EXPECT_EQ(header.orientation, 6);
}

TEST(ReadJp2Header, Comments_Should_BeThoseOfPeople) {
  CodestreamOfJp2 picture;
  picture.comment = "sheet 12";
  EXPECT_THAT(HeaderOf(EncodeCodestream(picture)).metadata.comments, ElementsAre("sheet 12"));
  picture.comment = "Created by OpenJPEG version 2.5.0";
  EXPECT_THAT(HeaderOf(EncodeCodestream(picture)).metadata.comments, IsEmpty());
}

TEST(ReadJp2Header, OtherBoxes_Should_BeNamed) {
  const ByteList others = Join({BoxOfJp2("xml ", {'<', 'a', '/', '>'}),
                                UuidBox("00112233445566778899aabbccddeeff", {1, 2, 3})});
  EXPECT_THAT(HeaderOf(Plain({}, others)).hiddenOthers,
              ElementsAre("XML data of 4 bytes", "a private box of 3 bytes"));
}

TEST(ReadJp2Header, FurtherCodestreams_Should_BeCounted) {
  const ByteList second = BoxOfJp2("jp2c", EncodeCodestream({}));
  EXPECT_EQ(HeaderOf(Join({Plain({}), second, second})).frames, 3);
}

TEST(ReadJp2Header, Fragments_Should_BeRefused) {
  const ByteList file = FileOfJp2(EncodeCodestream({}), ColorBox(kSrgb));
  ByteList fragments(file.begin(), file.end());
  const std::string_view name = "jp2c";
  const auto at = std::search(fragments.begin(), fragments.end(), name.begin(), name.end());
  std::copy_n("ftbl", 4, at);
  EXPECT_THROW(HeaderOf(fragments), UnsupportedError);
}

}  // namespace
}  // namespace rasterkit::test
