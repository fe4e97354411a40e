#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/metadata/facts_of_metadata.h>
#include <rasterkit/pictures/reading/photo_facts.h>

#include "tests/metadata/exif_blocks.h"

namespace rasterkit {
namespace {

using test::ByteOrder;
using test::MakeCameraBlock;
using testing::IsEmpty;
using Id = ExifDirectoryId;

Metadata WithExif(const std::vector<uint8_t>& exif) {
  Metadata metadata;
  metadata.exif = exif;
  return metadata;
}

std::string Packet(const std::string& attributes) {
  return "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><rdf:RDF "
         "xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\"><rdf:Description "
         "rdf:about=\"\" xmlns:exif=\"http://ns.adobe.com/exif/1.0/\" "
         "xmlns:tiff=\"http://ns.adobe.com/tiff/1.0/\" "
         "xmlns:xmp=\"http://ns.adobe.com/xap/1.0/\" " +
         attributes + "/></rdf:RDF></x:xmpmeta>";
}

TEST(FactsOf, Should_ReadThePhotographsFacts) {
  for (const ByteOrder order : {ByteOrder::intel, ByteOrder::motorola}) {
    ExifBlock block(test::BytesOf(MakeCameraBlock(order).bytes));
    block.SetText(Id::main, 272, " Model 7 ");
    const PhotoFacts facts = FactsOf(WithExif(block.Bytes()));
    EXPECT_EQ(facts.orientation, 6);
    ASSERT_TRUE(facts.gps.has_value());
    EXPECT_DOUBLE_EQ(facts.gps->latitude, 48 + 8 / 60.0 + 30.2 / 3600);
    EXPECT_DOUBLE_EQ(facts.gps->longitude, 11 + 34 / 60.0);
    EXPECT_FALSE(facts.gps->altitude.has_value());
    EXPECT_EQ(facts.date, "2020-01-02T03:04:05");
    EXPECT_EQ(facts.make, "Cam");
    EXPECT_EQ(facts.model, "Model 7");
    EXPECT_THAT(facts.warnings, IsEmpty());
  }
}

TEST(FactsOf, Should_GiveSignsToSouthWestAndBelowTheSea) {
  ExifBlock block(test::BytesOf(MakeCameraBlock(ByteOrder::intel).bytes));
  block.SetText(Id::gps, 1, "S");
  block.SetText(Id::gps, 3, "W");
  block.Set(Id::gps, {5, 1, 1, {1}});
  block.SetRational(Id::gps, 6, 12.5);
  const PhotoFacts facts = FactsOf(block);
  EXPECT_LT(facts.gps->latitude, -48);
  EXPECT_LT(facts.gps->longitude, -11);
  EXPECT_EQ(facts.gps->altitude, -12.5);
}

TEST(FactsOf, Should_GiveNoPosition_When_TheFractionsHaveNoDenominator) {
  ExifBlock block(test::BytesOf(MakeCameraBlock(ByteOrder::intel).bytes));
  block.Set(Id::gps, {2, 5, 3, std::vector<uint8_t>(24)});
  EXPECT_FALSE(FactsOf(block).gps.has_value());
}

TEST(FactsOf, Should_TakeTheNextDate_When_OneIsNoDate) {
  ExifBlock block(test::BytesOf(MakeCameraBlock(ByteOrder::intel).bytes));
  for (const char* text : {"0000:00:00 00:00:00", "    :  :     :  :  ", "2020:13:01 00:00:00",
                           "2020:01:02", "2020:01:02 24:00:00"}) {
    block.SetText(Id::exif, 36867, text);
    EXPECT_EQ(FactsOf(block).date, "2021-02-03T04:05:06") << text;
  }
  block.Remove(Id::main, 306);
  EXPECT_EQ(FactsOf(block).date, "");
}

TEST(FactsOf, Should_TakeFromXmpWhatTheBlockDoesNotState) {
  Metadata metadata;
  metadata.xmp = Packet(
      "tiff:Make=\"Maker\" tiff:Model=\"M1\" exif:GPSLatitude=\"48,8.5N\" "
      "exif:GPSLongitude=\"11,34,30W\" exif:GPSAltitude=\"125/10\" exif:GPSAltitudeRef=\"0\" "
      "xmp:CreateDate=\"2019-07-04T13:05:09.25+02:00\"");
  PhotoFacts facts = FactsOf(metadata);
  EXPECT_EQ(facts.make, "Maker");
  EXPECT_EQ(facts.model, "M1");
  EXPECT_EQ(facts.date, "2019-07-04T13:05:09");
  ASSERT_TRUE(facts.gps.has_value());
  EXPECT_DOUBLE_EQ(facts.gps->latitude, 48 + 8.5 / 60);
  EXPECT_DOUBLE_EQ(facts.gps->longitude, -(11 + 34 / 60.0 + 30 / 3600.0));
  EXPECT_EQ(facts.gps->altitude, 12.5);
  EXPECT_FALSE(facts.orientation.has_value());
  metadata.exif = test::BytesOf(MakeCameraBlock(ByteOrder::intel).bytes);
  facts = FactsOf(metadata);
  EXPECT_EQ(facts.make, "Cam");
  EXPECT_EQ(facts.model, "M1");
  EXPECT_EQ(facts.date, "2020-01-02T03:04:05");
}

TEST(FactsOf, Should_ReadNoPositionOfBrokenXmp) {
  for (const char* latitude : {"", "N", "48", "48,8.5X", "-48,8N", "48,,N", "48,8.5NN"}) {
    Metadata metadata;
    metadata.xmp = Packet("exif:GPSLongitude=\"11,34,30W\" exif:GPSLatitude=\"" +
                          std::string(latitude) + "\"");
    EXPECT_FALSE(FactsOf(metadata).gps.has_value()) << latitude;
  }
}

TEST(FactsOf, Should_SayThatTheBlockIsDamaged) {
  const std::string bytes = MakeCameraBlock(ByteOrder::intel).bytes.substr(0, 150);
  EXPECT_EQ(FactsOf(WithExif(test::BytesOf(bytes))).warnings.size(), 1U);
  EXPECT_THAT(FactsOf(Metadata{}).warnings, IsEmpty());
}

TEST(ReadPhotoFacts, Should_FindThePosition_When_StrayBytesStandBeforeExif) {
  const std::string section = test::ExifSection(MakeCameraBlock(ByteOrder::motorola).bytes);
  const std::string file = test::JpegOf({"\1\2\3", section});
  const PhotoFacts facts = ReadPhotoFacts(test::BytesOf(file));
  ASSERT_TRUE(facts.gps.has_value());
  EXPECT_NEAR(facts.gps->latitude, 48.14, 0.01);
  EXPECT_EQ(facts.orientation, 6);
  EXPECT_EQ(facts.date, "2020-01-02T03:04:05");
}

}  // namespace
}  // namespace rasterkit
