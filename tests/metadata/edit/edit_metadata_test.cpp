#include <algorithm>
#include <array>
#include <cmath>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/metadata/edit/edit_metadata.h>
#include <rasterkit/metadata/edit/exif_value_text.h>
#include <rasterkit/metadata/edit/iptc_records.h>
#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/metadata/facts_of_metadata.h>
#include <rasterkit/metadata/xmp/xmp_packet.h>
#include <rasterkit/runtime/errors.h>

#include "tests/metadata/exif_blocks.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using Id = ExifDirectoryId;

constexpr std::string_view kExif = "http://ns.adobe.com/exif/1.0/";

std::string Packet(const std::string& properties) {
  return "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><rdf:RDF "
         "xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\"><rdf:Description "
         "rdf:about=\"\" xmlns:exif=\"http://ns.adobe.com/exif/1.0/\" "
         "xmlns:photoshop=\"http://ns.adobe.com/photoshop/1.0/\" "
         "xmlns:tiff=\"http://ns.adobe.com/tiff/1.0/\" "
         "xmlns:drone=\"http://www.dji.com/drone-dji/1.0/\">" +
         properties + "</rdf:Description></rdf:RDF></x:xmpmeta>";
}

class EditMetadataTest : public testing::TestWithParam<ByteOrder> {
 protected:
  EditMetadataTest() : camera_(MakeCameraBlock(GetParam())) {
    metadata_.exif = BytesOf(camera_.bytes);
  }

  void Edit(const MetadataEdit& edit) { EditMetadata(metadata_, edit, jpeg_, changes_); }
  void Set(const std::string& tag, const std::string& value) {
    MetadataEdit edit;
    edit.set = {{tag, value}};
    Edit(edit);
  }
  std::string Refusal(const std::string& tag, const std::string& value) {
    try {
      Set(tag, value);
    } catch (const RangeError& error) {
      return error.Reason();
    }
    return {};
  }
  ExifBlock Block() const { return ExifBlock(metadata_.exif); }
  std::string ShownExif(Id directory, uint16_t tag) const {
    const auto value = Block().Get(directory, tag);
    return value ? TextOfExifValue(*value) : "";
  }
  bool HasBytes(const std::string& bytes) const {
    const std::string block(metadata_.exif.begin(), metadata_.exif.end());
    return block.find(bytes) != std::string::npos;
  }

  /// GDAL's tag with one more item.
  static TagValue Items(const std::string& name, const std::string& value) {
    std::string text = "<GDALMetadata>\n<Item name=\"" + name + "\" domain=\"EXIF\">" + value +
                       "</Item>\n<Item name=\"EXIF_Model\">cam</Item>\n</GDALMetadata>\n";
    text += '\0';
    return {42112, 2, text.size(), BytesOf(text)};
  }
  std::string ItemsText() const {
    const std::vector<uint8_t>& bytes = metadata_.tiffTags.at(0).bytes;
    return {bytes.begin(), bytes.end()};
  }

  CameraBlock camera_;
  Metadata metadata_;
  EditedPicture jpeg_{EditedPicture::Format::jpeg, 4000, 3000, false};
  Changes changes_;
};

TEST_P(EditMetadataTest, Set_Should_KeepOtherTagsAndThePlaceOfTheMakerNote) {
  auto before = AllTags(Block());
  Set("Artist", "A person with a name that needs room at the end of the block");
  auto after = AllTags(Block());
  EXPECT_EQ(ShownExif(Id::main, 315),
            "A person with a name that needs room at the end of the block");
  after.erase({Id::main, 315});
  EXPECT_EQ(before, after);
  EXPECT_EQ(std::string(metadata_.exif.begin(), metadata_.exif.end()).find(camera_.makerNote),
            camera_.makerNoteAt);
}

TEST_P(EditMetadataTest, Set_Should_TakeEveryKindOfValue) {
  struct Case {
    const char *tag, *value;
    Id directory;
    uint16_t number;
    const char* shown;
  };
  const Case cases[] = {
      {"ExposureTime", "1/125", Id::exif, 33434, "1/125"},
      {"exposuretime", "0.008", Id::exif, 33434, "1/125"},
      {"FNumber", "2.8", Id::exif, 33437, "14/5"},
      {"ISO", "400", Id::exif, 34855, "400"},
      {"ExposureCompensation", "-0.3", Id::exif, 37380, "-3/10"},
      {"CreateDate", "2019-07-04T13:05:09", Id::exif, 36868, "2019:07:04 13:05:09"},
      {"OffsetTimeOriginal", "Z", Id::exif, 36881, "+00:00"},
      {"LensInfo", "24 70 28/10 4", Id::exif, 42034, "24/1, 70/1, 28/10, 4/1"},
      {"UserComment", "words", Id::exif, 37510, "words"},
      {"EXIF:Copyright", "\xC2\xA9 me", Id::main, 33432, "\xC2\xA9 me"},
      {"GPS:MapDatum", "WGS-84", Id::gps, 18, "WGS-84"},
      {"GPSDateStamp", "2019-07-04", Id::gps, 29, "2019:07:04"},
      {"GPSTimeStamp", "13:05:09", Id::gps, 7, "13/1, 5/1, 9/1"},
      {"GPSLatitude", "48.5", Id::gps, 2, "48/1, 30/1, 0/100000"},
      {"XPTitle", "\xC3\xA4", Id::main, 40091, "228, 0, 0, 0"},
      {"Rating", "5", Id::main, 18246, "5"},
  };
  for (const Case& one : cases) {
    Set(one.tag, one.value);
    EXPECT_EQ(ShownExif(one.directory, one.number), one.shown) << one.tag;
  }
  EXPECT_FALSE(Block().IsDamaged());
}

TEST_P(EditMetadataTest, Set_Should_WriteCommentsOfAnyLanguageInTheOrderOfTheBlock) {
  Set("UserComment", "\xC3\xA4");
  const auto value = Block().Get(Id::exif, 37510);
  ASSERT_TRUE(value);
  const bool isBig = GetParam() == ByteOrder::motorola;
  const std::vector<uint8_t> letters(value->bytes.begin() + 8, value->bytes.end());
  EXPECT_EQ(letters, isBig ? std::vector<uint8_t>({0, 0xE4}) : std::vector<uint8_t>({0xE4, 0}));
}

TEST_P(EditMetadataTest, Set_Should_NameTagAndReason_When_TheValueDoesNotFit) {
  EXPECT_EQ(Refusal("Nothing", "1"), "no tag has the name \"Nothing\"");
  EXPECT_EQ(Refusal("ISO", "many"), "PhotographicSensitivity: \"many\" is no whole number");
  EXPECT_EQ(Refusal("ISO", "70000"), "PhotographicSensitivity: 70000 is outside 0 to 65535");
  EXPECT_THAT(Refusal("FNumber", "1/0"), HasSubstr("FNumber: \"1/0\" has no number above 0"));
  EXPECT_THAT(Refusal("FNumber", "-1"), HasSubstr("is below 0"));
  EXPECT_THAT(Refusal("ExposureCompensation", "-9223372036854775808/1"),
              HasSubstr("has parts larger than 2147483647"));
  EXPECT_THAT(Refusal("DateTimeOriginal", "2019-02-29T00:00:00"), HasSubstr("is no date and time"));
  EXPECT_THAT(Refusal("Orientation", "9"), HasSubstr("an orientation is 1 to 8"));
  EXPECT_THAT(Refusal("GPSLatitudeRef", "X"), HasSubstr("none of the letters N, S"));
  EXPECT_THAT(Refusal("MakerNote", "x"), HasSubstr("cannot be set"));
  EXPECT_THAT(Refusal("Artist", "\xFF"), HasSubstr("the text is no UTF-8"));
  EXPECT_THAT(Refusal("LensInfo", "24 70"), HasSubstr("4 values are needed"));
  EXPECT_THAT(Refusal("xmp:Rating", "6"), HasSubstr("a rating is -1 to 5"));
  EXPECT_THAT(Refusal("IPTC:City", std::string(33, 'x')),
              HasSubstr("has 33 bytes and may have 32"));
}

TEST_P(EditMetadataTest, Set_Should_MakeListsOfIptcAndXmp) {
  MetadataEdit edit;
  edit.set = {{"Keywords", "one"},   {"Keywords", "tw\xC3\xB6"},  {"dc:creator", "A & B"},
              {"dc:creator", "<C>"}, {"dc:description", "words"}, {"xmp:Rating", "4"}};
  Edit(edit);
  EXPECT_THAT(IptcRecords(metadata_.iptc).Texts(25), ElementsAre("one", "tw\xC3\xB6"));
  const XmpPacket packet(metadata_.xmp);
  EXPECT_THAT(packet.List("http://purl.org/dc/elements/1.1/", "creator"),
              ElementsAre("A & B", "<C>"));
  EXPECT_THAT(packet.List("http://purl.org/dc/elements/1.1/", "description"), ElementsAre("words"));
  EXPECT_EQ(packet.Get("http://ns.adobe.com/xap/1.0/", "Rating"), "4");
  edit.set = {{"Keywords", "three"}, {"xmp:Rating", "2"}};
  Edit(edit);
  EXPECT_THAT(IptcRecords(metadata_.iptc).Texts(25), ElementsAre("three"));
  EXPECT_EQ(XmpPacket(metadata_.xmp).Get("http://ns.adobe.com/xap/1.0/", "Rating"), "2");
}

TEST_P(EditMetadataTest, Set_Should_LeaveNoContradictionInXmp) {
  metadata_.xmp = Packet("<exif:FNumber>4/1</exif:FNumber><tiff:Orientation>6</tiff:Orientation>");
  MetadataEdit edit;
  edit.set = {{"FNumber", "8"}, {"Orientation", "3"}};
  Edit(edit);
  const XmpPacket packet(metadata_.xmp);
  EXPECT_FALSE(packet.Has(kExif, "FNumber"));
  EXPECT_EQ(packet.Get("http://ns.adobe.com/tiff/1.0/", "Orientation"), "3");
  EXPECT_EQ(ShownExif(Id::main, 274), "3");
}

TEST_P(EditMetadataTest, Remove_Should_TakeTagsAndGroups) {
  metadata_.xmp = Packet("<exif:FNumber>4/1</exif:FNumber>");
  metadata_.comments = {"words"};
  MetadataEdit edit;
  edit.remove = {"Make", "XMP", "Comment", "makernote"};
  Edit(edit);
  EXPECT_FALSE(Block().Has(Id::main, 271));
  EXPECT_TRUE(Block().Has(Id::main, 270));
  EXPECT_FALSE(HasBytes(camera_.makerNote));
  EXPECT_EQ(metadata_.xmp, "");
  EXPECT_TRUE(metadata_.comments.empty());
  edit.remove = {"Orientation", "XResolution"};
  EXPECT_THROW(Edit(edit), RangeError);
}

TEST_P(EditMetadataTest, Gps_Should_ReplaceThePositionEverywhere) {
  metadata_.xmp = Packet(
      "<exif:GPSLatitude>1,2.5N</exif:GPSLatitude><exif:GPSLongitude>3,4.5E</exif:GPSLongitude>"
      "<exif:GPSAltitude>7/1</exif:GPSAltitude><drone:GpsLatitude>1.1</drone:GpsLatitude>");
  Set("GPSAltitude", "100");
  Set("GPSDOP", "3");
  MetadataEdit edit;
  edit.gps = GpsPosition{-33.85678, 151.215297, std::nullopt};
  Edit(edit);
  const PhotoFacts facts = FactsOf(Block());
  ASSERT_TRUE(facts.gps);
  EXPECT_NEAR(facts.gps->latitude, -33.85678, 1e-8);
  EXPECT_NEAR(facts.gps->longitude, 151.215297, 1e-8);
  EXPECT_FALSE(facts.gps->altitude);
  EXPECT_FALSE(Block().Has(Id::gps, 11));
  EXPECT_EQ(ShownExif(Id::gps, 0), "2, 3, 0, 0");
  const XmpPacket packet(metadata_.xmp);
  EXPECT_EQ(packet.Get(kExif, "GPSLatitude"), "33,51.4068000S");
  EXPECT_FALSE(packet.Has(kExif, "GPSAltitude"));
  EXPECT_THAT(metadata_.xmp, Not(HasSubstr("GpsLatitude")));
  edit.gps = GpsPosition{91, 0, std::nullopt};
  EXPECT_THROW(Edit(edit), RangeError);
}

TEST_P(EditMetadataTest, Date_Should_BeStatedWhereverADateIs) {
  metadata_.xmp = Packet("<photoshop:DateCreated>2001-01-01</photoshop:DateCreated>");
  Set("SubSecTimeOriginal", "77");
  Set("IPTC:DateCreated", "2001-01-01");
  MetadataEdit edit;
  edit.date = "2019-07-04T13:05:09+02:00";
  Edit(edit);
  for (const auto& [directory, tag] :
       {std::pair(Id::exif, uint16_t{36867}), std::pair(Id::exif, uint16_t{36868}),
        std::pair(Id::main, uint16_t{306})}) {
    EXPECT_EQ(ShownExif(directory, tag), "2019:07:04 13:05:09") << tag;
  }
  EXPECT_FALSE(Block().Has(Id::exif, 37521));
  EXPECT_EQ(ShownExif(Id::exif, 36881), "+02:00");
  EXPECT_EQ(XmpPacket(metadata_.xmp).Get("http://ns.adobe.com/photoshop/1.0/", "DateCreated"),
            "2019-07-04T13:05:09+02:00");
  EXPECT_THAT(IptcRecords(metadata_.iptc).Texts(55), ElementsAre("20190704"));
}

// --- Strips --------------------------------------------------------------------------------------

TEST_P(EditMetadataTest, StripGps_Should_LeaveNoByteOfThePosition) {
  const TiffWriter writer(GetParam());
  const std::string latitude = writer.Rationals(2, {{48, 1}, {8, 1}, {3020, 100}}).value;
  ASSERT_TRUE(HasBytes(latitude));
  // A copy that another program has left at the end, and one in a picture of the maker note.
  for (const char byte : latitude) metadata_.exif.push_back(static_cast<uint8_t>(byte));
  metadata_.iptc = BytesOf(std::string("\x1C\2\x5A\0\4city\x1C\2\x50\0\2me", 16));
  metadata_.xmp = Packet(
      "<photoshop:City>Nowhere</photoshop:City><exif:GPSLatitude>1,2.5N</exif:GPSLatitude>"
      "<drone:GpsLongtitude>11.5</drone:GpsLongtitude><exif:FNumber>4/1</exif:FNumber>");
  metadata_.jpegSegments = {{0xE6, BytesOf(std::string("GoPro\0DEVC", 10))}, {0xE5, {1, 2}}};
  metadata_.texts.push_back({"exif:GPSLatitude", "48/1, 8/1, 30/1", "", "", false, false});
  MetadataEdit edit;
  edit.stripGps = true;
  Edit(edit);
  EXPECT_FALSE(HasBytes(latitude));
  EXPECT_FALSE(Block().Has(Id::main, 34853));
  EXPECT_FALSE(FactsOf(metadata_).gps);
  EXPECT_EQ(ShownExif(Id::main, 270), "A description");
  EXPECT_TRUE(HasBytes(camera_.makerNote));
  EXPECT_THAT(metadata_.xmp, Not(HasSubstr("Nowhere")));
  EXPECT_THAT(metadata_.xmp, Not(HasSubstr("GPS")));
  EXPECT_THAT(metadata_.xmp, Not(HasSubstr("11.5")));
  EXPECT_THAT(metadata_.xmp, HasSubstr("FNumber"));
  const IptcRecords records(metadata_.iptc);
  EXPECT_FALSE(records.Has(90));
  EXPECT_TRUE(records.Has(80));
  ASSERT_EQ(metadata_.jpegSegments.size(), 1u);
  EXPECT_EQ(metadata_.jpegSegments[0].kind, 0xE5u);
  EXPECT_TRUE(metadata_.texts.empty());
}

TEST_P(EditMetadataTest, StripGps_Should_EraseThePositionOfAPreview) {
  Set("UserComment", "Exif");
  const std::string preview = std::string("Exif\0\0", 6) + camera_.bytes;
  const TiffWriter writer(GetParam());
  const std::string longitude = writer.Rationals(4, {{11, 1}, {34, 1}, {0, 1}}).value;
  metadata_.photoshop.clear();
  metadata_.jpegSegments = {{0xE5, BytesOf("a preview " + preview)}};
  ASSERT_THAT(
      std::string(metadata_.jpegSegments[0].bytes.begin(), metadata_.jpegSegments[0].bytes.end()),
      HasSubstr(longitude));
  MetadataEdit edit;
  edit.stripGps = true;
  Edit(edit);
  ASSERT_EQ(metadata_.jpegSegments.size(), 1u);
  EXPECT_THAT(
      std::string(metadata_.jpegSegments[0].bytes.begin(), metadata_.jpegSegments[0].bytes.end()),
      Not(HasSubstr(longitude)));
}

TEST_P(EditMetadataTest, StripGps_Should_RebuildADamagedBlock) {
  const TiffWriter writer(GetParam());
  const std::string latitude = writer.Rationals(2, {{48, 1}, {8, 1}, {3020, 100}}).value;
  // Without its thumbnail the block ends early.
  metadata_.exif.resize(metadata_.exif.size() - camera_.thumbnail.size() - 20);
  ASSERT_TRUE(Block().IsDamaged());
  MetadataEdit edit;
  edit.stripGps = true;
  Edit(edit);
  EXPECT_FALSE(Block().IsDamaged());
  EXPECT_FALSE(HasBytes(latitude));
  EXPECT_EQ(ShownExif(Id::main, 270), "A description");
  EXPECT_FALSE(HasBytes(camera_.makerNote));
  EXPECT_TRUE(std::any_of(changes_.losses.begin(), changes_.losses.end(),
                          [](const Loss& loss) { return loss.kind == LossKind::makerNote; }));
}

TEST_P(EditMetadataTest, StripMakerNote_Should_LeaveNoByteOfIt) {
  MetadataEdit edit;
  edit.stripMakerNote = true;
  const auto before = AllTags(Block());
  Edit(edit);
  EXPECT_FALSE(HasBytes(camera_.makerNote));
  auto expected = before;
  expected.erase({Id::exif, 37500});
  auto after = AllTags(Block());
  // The place of the thumbnail stays, too.
  EXPECT_EQ(after, expected);
}

/// A TIFF file must have the tags, whatever they state.
TEST_P(EditMetadataTest, StripAll_Should_KeepTheAspect_When_FileIsTiff) {
  constexpr uint16_t kResolutionX = 282, kUnit = 296, kNoUnit = 1;
  ExifBlock block = Block();
  block.SetRational(Id::main, kResolutionX, 3);
  block.SetRational(Id::main, kResolutionX + 1, 2);
  block.SetWords(Id::main, kUnit, std::array{kNoUnit});
  const std::vector<uint8_t> exif = block.TakeBytes();
  MetadataEdit edit;
  edit.stripAll = true;
  for (const auto format : {EditedPicture::Format::tiff, EditedPicture::Format::jpeg}) {
    Metadata metadata;
    metadata.exif = exif;
    EditedPicture picture;
    picture.format = format;
    picture.isTurned = true;
    EditMetadata(metadata, edit, picture, changes_);
    if (format == EditedPicture::Format::jpeg) {
      EXPECT_TRUE(metadata.exif.empty());
      continue;
    }
    const ExifBlock kept(metadata.exif);
    EXPECT_EQ(kept.Get(Id::main, kResolutionX), ExifBlock(exif).Get(Id::main, kResolutionX));
    EXPECT_EQ(kept.Get(Id::main, kResolutionX + 1),
              ExifBlock(exif).Get(Id::main, kResolutionX + 1));
    EXPECT_EQ(kept.Get(Id::main, kUnit), ExifBlock(exif).Get(Id::main, kUnit));
    EXPECT_EQ(kept.All(Id::main).size(), 3u);
  }
}

TEST_P(EditMetadataTest, StripMakerNote_Should_RemoveItsCopies) {
  metadata_.xmp = Packet("<exif:MakerNote>TUFLRVI=</exif:MakerNote><exif:FNumber>4</exif:FNumber>");
  metadata_.tiffTags = {Items("EXIF_MakerNote", "note")};
  MetadataEdit edit;
  edit.stripMakerNote = true;
  Edit(edit);
  EXPECT_THAT(metadata_.xmp, Not(HasSubstr("MakerNote")));
  EXPECT_THAT(metadata_.xmp, HasSubstr("FNumber"));
  EXPECT_THAT(ItemsText(), Not(HasSubstr("MakerNote")));
  EXPECT_THAT(ItemsText(), HasSubstr("EXIF_Model"));
}

TEST_P(EditMetadataTest, StripGps_Should_RemoveItemsOfTiffFiles) {
  metadata_.tiffTags = {Items("EXIF_GPSLatitude", "(47) (21)")};
  MetadataEdit edit;
  edit.stripGps = true;
  Edit(edit);
  ASSERT_EQ(metadata_.tiffTags.size(), 1u);
  std::string expected = "<GDALMetadata>\n<Item name=\"EXIF_Model\">cam</Item>\n</GDALMetadata>\n";
  expected += '\0';
  EXPECT_EQ(ItemsText(), expected);
  EXPECT_EQ(metadata_.tiffTags[0].count, metadata_.tiffTags[0].bytes.size());
  edit.stripGps = false;
  edit.stripAll = true;
  Edit(edit);
  EXPECT_TRUE(metadata_.tiffTags.empty());
}

TEST_P(EditMetadataTest, StripGps_Should_KnowShortNamesInXmp) {
  for (const char* name : {"lat", "Lon", "lng", "GeoPoint"}) {
    const std::string tag = std::string("drone:") + name;
    metadata_.xmp = Packet("<" + tag + ">48.137</" + tag + "><drone:Lattice>1</drone:Lattice>");
    MetadataEdit edit;
    edit.stripGps = true;
    Edit(edit);
    EXPECT_THAT(metadata_.xmp, Not(HasSubstr("48.137"))) << name;
    EXPECT_THAT(metadata_.xmp, HasSubstr("Lattice"));
  }
}

TEST_P(EditMetadataTest, Set_Should_RefuseABlockThatExceedsASegment) {
  EXPECT_THAT(Refusal("ImageDescription", std::string(65600, 'd')), HasSubstr("65527"));
  metadata_.exif = BytesOf(camera_.bytes);
  // Room comes from the thumbnail.
  const size_t room = 65527 - metadata_.exif.size();
  EXPECT_EQ(Refusal("ImageDescription", std::string(room + 40, 'd')), "");
  jpeg_.format = EditedPicture::Format::tiff;
  EXPECT_EQ(Refusal("ImageDescription", std::string(65600, 'd')), "");
}

TEST_P(EditMetadataTest, Set_Should_RefuseALatitudeBeyondThePole) {
  EXPECT_THAT(Refusal("GPSLatitude", "150"), HasSubstr("90"));
  EXPECT_THAT(Refusal("GPSDestLatitude", "90 0 1"), HasSubstr("90"));
  EXPECT_EQ(Refusal("GPSLatitude", "90"), "");
  EXPECT_EQ(Refusal("GPSLongitude", "150"), "");
}

TEST_P(EditMetadataTest, StripAll_Should_KeepWhatBelongsToThePixels) {
  metadata_.profile = std::make_shared<const std::vector<uint8_t>>(40, uint8_t{3});
  metadata_.resolution = {300, 300};
  metadata_.comments = {"words"};
  metadata_.xmp = Packet("");
  MetadataEdit edit;
  edit.stripAll = true;
  Metadata turned = metadata_;
  Edit(edit);
  // Beside the orientation a JPEG file must state the resolution and where chroma lies.
  EXPECT_EQ(AllTags(Block()).size(), 5u);
  EXPECT_EQ(ShownExif(Id::main, 531), "1");
  EXPECT_FALSE(Block().Has(Id::main, 271));
  EXPECT_EQ(ShownExif(Id::main, 274), "6");
  EXPECT_NE(metadata_.profile, nullptr);
  EXPECT_EQ(metadata_.resolution, (Resolution{300, 300}));
  EXPECT_TRUE(metadata_.comments.empty() && metadata_.xmp.empty());
  edit.stripProfile = true;
  jpeg_.isTurned = true;
  EditMetadata(turned, edit, jpeg_, changes_);
  EXPECT_TRUE(turned.exif.empty());
  EXPECT_EQ(turned.profile, nullptr);
}

TEST_P(EditMetadataTest, Copy_Should_TakeThePhotosBlocks_And_KeepThoseOfThePixels) {
  auto photo = std::make_shared<Metadata>(metadata_);
  photo->xmp = Packet("<exif:FNumber>4/1</exif:FNumber>");
  photo->profile = std::make_shared<const std::vector<uint8_t>>(40, uint8_t{3});
  Metadata picture;
  picture.resolution = {150, 150};
  picture.comments = {"words"};
  picture.profile = std::make_shared<const std::vector<uint8_t>>(40, uint8_t{4});
  MetadataEdit edit;
  edit.copy = MetadataCopy{photo};
  edit.copy->keepsOrientation = true;
  EditMetadata(picture, edit, jpeg_, changes_);
  EXPECT_EQ(picture.xmp, photo->xmp);
  EXPECT_TRUE(picture.comments.empty());
  EXPECT_EQ((*picture.profile)[0], 4);
  const ExifBlock block(picture.exif);
  EXPECT_EQ(block.Number(Id::main, 274), 1u);
  EXPECT_THAT(block.Numbers(Id::main, 282), ElementsAre(150));
}

INSTANTIATE_TEST_SUITE_P(Orders, EditMetadataTest,
                         testing::Values(ByteOrder::intel, ByteOrder::motorola),
                         [](const auto& info) {
                           return info.param == ByteOrder::intel ? "Intel" : "Motorola";
                         });

}  // namespace
}  // namespace rasterkit::test
