#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/metadata/jpeg_segments.h>

#include "tests/metadata/exif_blocks.h"

namespace rasterkit {
namespace {

using namespace test;
using namespace std::string_literals;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<int> Markers(const std::string& file) {
  static std::vector<uint8_t> kept;
  kept = BytesOf(file);
  std::vector<int> markers;
  JpegSegmentWalker walker(kept);
  while (const auto segment = walker.Next()) markers.push_back(segment->marker);
  return markers;
}

JpegSegment Segment(uint8_t marker, const std::string& payload) {
  static std::vector<uint8_t> kept;
  kept = BytesOf(payload);
  return {marker, 0, kept};
}

std::string Text(std::span<const uint8_t> bytes) {
  return {bytes.begin(), bytes.end()};
}

TEST(JpegSegmentWalkerTest, Should_WalkToTheEndOfTheImage) {
  EXPECT_THAT(Markers(JpegOf({JpegSection(0xE0, "JFIF"), JpegSection(0xFE, "")})),
              ElementsAre(0xE0, 0xFE, 0xDA, 0xD9));
}

TEST(JpegSegmentWalkerTest, Should_SkipStrayBytesFillBytesAndMarkersWithoutLength) {
  EXPECT_THAT(Markers("\xFF\xD8\1\2\3"s + JpegSection(0xE1, "a") + "\xFF\xFF\xFF" +
                      JpegSection(0xE2, "b").substr(1) + "\xFF\1\xFF\xD0\xFF\0\xFF\xD8"s +
                      JpegSection(0xE3, "c") + "\xFF\xD9"),
              ElementsAre(0xE1, 0xE2, 0xE3, 0xD9));
}

TEST(JpegSegmentWalkerTest, Should_FindLaterSegmentsBetweenTheScans) {
  const std::string file = JpegOf({}).substr(0, 2) + JpegSection(0xDA, "\1") +
                           "pixels\xFF\0\xFF\xD3more"s + JpegSection(0xC4, "tables") +
                           JpegSection(0xDA, "\2") + "pixels" + "\xFF\xD9" + "trailer";
  const std::vector<uint8_t> bytes = BytesOf(file);
  JpegSegmentWalker walker(bytes);
  std::vector<int> markers;
  while (const auto segment = walker.Next()) markers.push_back(segment->marker);
  EXPECT_THAT(markers, ElementsAre(0xDA, 0xC4, 0xDA, 0xD9));
  EXPECT_TRUE(walker.IsAtEnd());
  EXPECT_EQ(walker.Position(), file.find("trailer"));
}

TEST(JpegSegmentWalkerTest, Should_TakeALengthBelow2AsEmpty) {
  EXPECT_THAT(Markers("\xFF\xD8\xFF\xE1\0\0"s + JpegSection(0xFE, "x") + "\xFF\xD9"),
              ElementsAre(0xE1, 0xFE, 0xD9));
}

TEST(JpegSegmentWalkerTest, Should_StopAtASegmentThatIsCutOff) {
  for (const std::string& rest : {"\xFF\xE1\0\x09words"s, "\xFF\xE1\0"s, "\xFF\xE1"s}) {
    const std::vector<uint8_t> bytes = BytesOf("\xFF\xD8" + JpegSection(0xFE, "x") + rest);
    JpegSegmentWalker walker(bytes);
    EXPECT_EQ(walker.Next()->marker, 0xFE);
    EXPECT_FALSE(walker.Next().has_value());
    EXPECT_TRUE(walker.IsCut());
    EXPECT_FALSE(walker.IsAtEnd());
    EXPECT_EQ(walker.Position(), bytes.size() - rest.size());
    EXPECT_FALSE(walker.Next().has_value());
  }
}

TEST(JpegSegmentWalkerTest, Should_FindNothing_When_ItIsNoJpeg) {
  EXPECT_THAT(Markers(""), IsEmpty());
  EXPECT_THAT(Markers("\xFF"), IsEmpty());
  EXPECT_THAT(Markers("\x89PNG" + JpegSection(0xFE, "x")), IsEmpty());
}

TEST(JpegSegmentWalkerTest, Should_StayInside_When_BytesAreRandom) {
  const unsigned seed = std::random_device()();
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  std::mt19937 random(seed);
  for (int round = 0; round < 5000; ++round) {
    std::vector<uint8_t> bytes(random() % 200);
    for (uint8_t& byte : bytes) {
      byte = static_cast<uint8_t>(random() % 3 == 0 ? 0xFF : random() % 2 == 0 ? 0 : random());
    }
    size_t position = 0;
    JpegSegmentWalker walker(bytes, 0);
    while (const auto segment = walker.Next()) {
      ASSERT_GE(segment->at, position);
      ASSERT_GT(walker.Position(), segment->at);
      position = walker.Position();
      ASSERT_LE(position, bytes.size());
    }
  }
}

TEST(BlockOf, Should_RecognizeEveryBlock) {
  const std::pair<JpegSegment, JpegBlock> kCases[] = {{{0xE0, 0, {}}, JpegBlock::other},
                                                      {{0xFE, 0, {}}, JpegBlock::comment}};
  for (const auto& [segment, block] : kCases) EXPECT_EQ(BlockOf(segment), block);
  EXPECT_EQ(BlockOf(Segment(0xE0, "JFIF\0"s)), JpegBlock::jfif);
  EXPECT_EQ(BlockOf(Segment(0xE0, "JFXX\0"s)), JpegBlock::jfxx);
  EXPECT_EQ(BlockOf(Segment(0xE1, "JFIF\0"s)), JpegBlock::other);
  EXPECT_EQ(BlockOf(Segment(0xE1, "Exif\0\0"s)), JpegBlock::exif);
  EXPECT_EQ(BlockOf(Segment(0xE1, "http://ns.adobe.com/xap/1.0/\0"s)), JpegBlock::xmp);
  EXPECT_EQ(BlockOf(Segment(0xE1, "http://ns.adobe.com/xmp/extension/\0"s)),
            JpegBlock::extendedXmp);
  EXPECT_EQ(BlockOf(Segment(0xE2, "ICC_PROFILE\0"s)), JpegBlock::profile);
  EXPECT_EQ(BlockOf(Segment(0xE2, "MPF\0"s)), JpegBlock::mpf);
  EXPECT_EQ(BlockOf(Segment(0xED, "Photoshop 3.0\0"s)), JpegBlock::photoshop);
  EXPECT_EQ(BlockOf(Segment(0xED, "Photoshop"s)), JpegBlock::other);
  EXPECT_EQ(BlockOf(Segment(0xEE, "Adobe\0"s)), JpegBlock::adobe);
}

TEST(BlockBytes, Should_StandBehindTheName) {
  EXPECT_EQ(Text(BlockBytes(Segment(0xE1, "Exif\0\xFFMM"s))), "MM");
  EXPECT_EQ(Text(BlockBytes(Segment(0xE1, "Exif\0"s))), "");
  EXPECT_EQ(Text(BlockBytes(Segment(0xFE, "words"))), "words");
  EXPECT_EQ(Text(BlockBytes(Segment(0xE5, "others"))), "others");
}

TEST(ReadJfif, Should_ReadUnitAndDensity) {
  const auto header = ReadJfif(Segment(0xE0, "JFIF\0\1\2\2\0\x76\1\x2C\0\0"s));
  ASSERT_TRUE(header.has_value());
  EXPECT_EQ(header->unit, 2);
  EXPECT_EQ(header->densityX, 118);
  EXPECT_EQ(header->densityY, 300);
  EXPECT_FALSE(ReadJfif(Segment(0xE0, "JFIF\0\1\2\3\0\x76\1\x2C\0\0"s)).has_value());
  EXPECT_FALSE(ReadJfif(Segment(0xE0, "JFIF\0\1\2\2\0\x76\1"s)).has_value());
}

TEST(ReadProfilePart, Should_GiveNumberCountAndBytes) {
  const auto part = ReadProfilePart(Segment(0xE2, "ICC_PROFILE\0\2\3bytes"s));
  ASSERT_TRUE(part.has_value());
  EXPECT_EQ(part->number, 2);
  EXPECT_EQ(part->count, 3);
  EXPECT_EQ(Text(part->bytes), "bytes");
  EXPECT_FALSE(ReadProfilePart(Segment(0xE2, "ICC_PROFILE\0\2"s)).has_value());
}

TEST(ReadExtendedXmpPart, Should_GiveGuidTotalOffsetAndBytes) {
  const std::string guid(32, 'A');
  const auto part = ReadExtendedXmpPart(
      Segment(0xE1, "http://ns.adobe.com/xmp/extension/\0"s + guid + "\0\0\1\0\0\0\0\2bytes"s));
  ASSERT_TRUE(part.has_value());
  EXPECT_EQ(part->guid, guid);
  EXPECT_EQ(part->total, 256U);
  EXPECT_EQ(part->offset, 2U);
  EXPECT_EQ(Text(part->bytes), "bytes");
}

TEST(FindExif, Should_FindTheBlockBehindStrayBytes) {
  const std::string tiff = MakeCameraBlock(ByteOrder::intel).bytes;
  const std::vector<uint8_t> file =
      BytesOf("\xFF\xD8\1\2\3" + JpegOf({ExifSection(tiff)}).substr(2));
  EXPECT_EQ(Text(FindExif(file)), tiff);
  const std::vector<uint8_t> behind = BytesOf(JpegOf({}) + ExifSection(tiff));
  EXPECT_THAT(FindExif(behind), IsEmpty());
}

}  // namespace
}  // namespace rasterkit
