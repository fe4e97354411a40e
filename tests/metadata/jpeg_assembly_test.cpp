#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/metadata/exif_resolution.h>
#include <rasterkit/metadata/image_resources.h>
#include <rasterkit/metadata/jpeg_assembly.h>
#include <rasterkit/metadata/jpeg_segments.h>
#include <rasterkit/metadata/md5.h>

#include "tests/metadata/exif_blocks.h"

namespace rasterkit {
namespace {

using namespace std::string_literals;
using test::ByteOrder;
using test::CameraBlock;
using testing::ElementsAre;
using testing::IsEmpty;

/// The written segments, read back from the bytes of a file.
class Written {
 public:
  explicit Written(const Metadata& metadata, bool withJfif = true) {
    bytes_ = {0xFF, 0xD8};
    for (const NewJpegSegment& segment : AssembleJpegSegments(metadata, withJfif, changes)) {
      const std::vector<uint8_t> bytes = BytesOf(segment);
      bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
    }
    bytes_.push_back(0xFF);
    bytes_.push_back(0xD9);
    JpegSegmentWalker walker(bytes_);
    while (const auto segment = walker.Next()) {
      if (segment->marker != 0xD9) segments.push_back(*segment);
    }
    EXPECT_TRUE(walker.IsAtEnd());
  }

  std::vector<JpegBlock> Blocks() const {
    std::vector<JpegBlock> blocks;
    for (const JpegSegment& segment : segments) blocks.push_back(BlockOf(segment));
    return blocks;
  }
  /// The contents of a block's segments, joined.
  std::string Content(JpegBlock block) const {
    std::string content;
    for (const JpegSegment& segment : segments) {
      if (BlockOf(segment) != block) continue;
      const auto bytes = BlockBytes(segment);
      content.append(bytes.begin(), bytes.end());
    }
    return content;
  }
  std::vector<LossKind> Losses() const {
    std::vector<LossKind> kinds;
    for (const Loss& loss : changes.losses) kinds.push_back(loss.kind);
    return kinds;
  }

  std::vector<JpegSegment> segments;
  Changes changes;

 private:
  std::vector<uint8_t> bytes_;
};

const std::string kPacket =
    "<?xpacket begin=\"\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?><x:xmpmeta xmlns:x=\"adobe:ns:meta/\">"
    "<rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\"><rdf:Description "
    "xmlns:xmpNote=\"http://ns.adobe.com/xmp/note/\" "
    "xmpNote:HasExtendedXMP=\"0123456789ABCDEF0123456789abcdef\"/></rdf:RDF></x:xmpmeta>";

TEST(AssembleJpegSegments, Should_OrderTheBlocks) {
  Metadata metadata;
  metadata.exif = test::BytesOf(test::MakeCameraBlock(ByteOrder::intel).bytes);
  metadata.xmp = kPacket;
  metadata.extendedXmp = "<more/>";
  metadata.profile = std::make_shared<std::vector<uint8_t>>(3000, uint8_t{7});
  metadata.iptc = test::BytesOf("\x1C\2\5\0\4name"s);
  metadata.jpegSegments = {{0xE7, test::BytesOf("other")}};
  metadata.comments = {"words"};
  metadata.texts = {{"Author", "Somebody", "", "", false, false},
                    {"Comment", "more words", "", "", false, false}};
  const Written written(metadata);
  EXPECT_THAT(written.Blocks(),
              ElementsAre(JpegBlock::jfif, JpegBlock::exif, JpegBlock::xmp, JpegBlock::extendedXmp,
                          JpegBlock::profile, JpegBlock::photoshop, JpegBlock::other,
                          JpegBlock::comment, JpegBlock::comment, JpegBlock::comment));
  EXPECT_EQ(written.Content(JpegBlock::comment), "wordsAuthor: Somebodymore words");
  EXPECT_EQ(test::BytesOf(written.Content(JpegBlock::exif)), metadata.exif);
  EXPECT_THAT(written.Losses(), IsEmpty());
}

TEST(AssembleJpegSegments, Should_WriteNothing_When_ThereIsNothing) {
  EXPECT_THAT(Written(Metadata{}, false).segments, IsEmpty());
  EXPECT_THAT(Written(Metadata{}, true).Blocks(), ElementsAre(JpegBlock::jfif));
}

TEST(AssembleJpegSegments, Should_StateTheResolutionInTheUnitThatIsExact) {
  const auto header = [](Resolution resolution) {
    Metadata metadata;
    metadata.resolution = resolution;
    const Written written(metadata);
    const JfifHeader jfif = *ReadJfif(written.segments.at(0));
    return std::tuple(jfif.unit, jfif.densityX, jfif.densityY, written.changes.notes.size());
  };
  EXPECT_EQ(header({300, 150}), std::tuple(1, 300, 150, 0U));
  EXPECT_EQ(header({304.8, 2.54 * 118}), std::tuple(2, 120, 118, 0U));
  EXPECT_EQ(header({72.4, 72.6}), std::tuple(1, 72, 73, 1U));
  EXPECT_EQ(header({0.01, 0.01}), std::tuple(1, 1, 1, 1U));
  EXPECT_EQ(header({}), std::tuple(0, 1, 1, 0U));
}

TEST(AssembleJpegSegments, Should_PutTheResolutionIntoExif_When_ThereIsNoJfif) {
  Metadata metadata;
  metadata.resolution = {300, 200};
  const Written written(metadata, false);
  EXPECT_THAT(written.Blocks(), ElementsAre(JpegBlock::exif));
  const ExifBlock block(test::BytesOf(written.Content(JpegBlock::exif)));
  EXPECT_EQ(ResolutionOf(block), metadata.resolution);
}

TEST(AssembleJpegSegments, Should_DropTheThumbnailOfALargeExifBlock) {
  ExifBlock block(test::BytesOf(test::MakeCameraBlock(ByteOrder::intel).bytes));
  block.SetThumbnail(test::BytesOf(test::JpegThumbnail(65000, 't')));
  Metadata metadata;
  metadata.exif = block.Bytes();
  const Written fits(metadata);
  EXPECT_EQ(metadata.exif.size() <= 65527, fits.Losses().empty());
  block.SetThumbnail(test::BytesOf(test::JpegThumbnail(66000, 't')));
  metadata.exif = block.Bytes();
  const Written written(metadata);
  EXPECT_THAT(written.Losses(), ElementsAre(LossKind::thumbnail));
  const ExifBlock read(test::BytesOf(written.Content(JpegBlock::exif)));
  EXPECT_FALSE(read.IsDamaged());
  EXPECT_FALSE(read.HasThumbnail());
  EXPECT_EQ(read.Text(ExifDirectoryId::main, 270), "A description");
}

TEST(AssembleJpegSegments, Should_UseTheRoomOfTheThumbnail) {
  ExifBlock block(test::BytesOf(test::MakeCameraBlock(ByteOrder::intel).bytes));
  block.SetThumbnail(test::BytesOf(test::JpegThumbnail(60000, 't')));
  const std::string text(7000, 'd');
  block.SetText(ExifDirectoryId::main, 270, text);
  Metadata metadata;
  metadata.exif = block.Bytes();
  ASSERT_GT(metadata.exif.size(), 65527U);
  const Written written(metadata);
  EXPECT_THAT(written.Losses(), ElementsAre(LossKind::thumbnail));
  const ExifBlock read(test::BytesOf(written.Content(JpegBlock::exif)));
  EXPECT_FALSE(read.IsDamaged());
  EXPECT_EQ(read.Text(ExifDirectoryId::main, 270), text);
}

TEST(AssembleJpegSegments, Should_LoseAnExifBlock_When_ItIsLargeWithoutThumbnail) {
  Metadata metadata;
  ExifBlock block;
  block.SetText(ExifDirectoryId::main, 270, std::string(65527 - 8 - 2 - 12 - 4 - 1, 'x'));
  metadata.exif = block.Bytes();
  ASSERT_EQ(metadata.exif.size(), 65527U);
  EXPECT_THAT(Written(metadata).Losses(), IsEmpty());
  // Bytes that nothing uses are dropped.
  metadata.exif.push_back(0);
  EXPECT_THAT(Written(metadata).Losses(), IsEmpty());
  metadata.exif.pop_back();
  ExifBlock larger(metadata.exif);
  larger.SetText(ExifDirectoryId::main, 270, std::string(65527, 'x'));
  metadata.exif = larger.Bytes();
  EXPECT_THAT(Written(metadata).Losses(), ElementsAre(LossKind::exif));
}

TEST(AssembleJpegSegments, Should_WriteExtendedXmpWholeWithItsDigest) {
  Metadata metadata;
  metadata.xmp = kPacket;
  for (size_t i = 0; i < 150000; ++i) metadata.extendedXmp += static_cast<char>('a' + i % 26);
  const Written written(metadata);
  const std::string guid = detail::Md5Text(test::BytesOf(metadata.extendedXmp));
  EXPECT_NE(written.Content(JpegBlock::xmp).find("HasExtendedXMP=\"" + guid + "\""),
            std::string::npos);
  EXPECT_EQ(written.Content(JpegBlock::xmp).size(), kPacket.size());
  std::string joined;
  for (const JpegSegment& segment : written.segments) {
    const auto part = ReadExtendedXmpPart(segment);
    if (!part) continue;
    EXPECT_EQ(part->guid, guid);
    EXPECT_EQ(part->total, metadata.extendedXmp.size());
    EXPECT_EQ(part->offset, joined.size());
    joined.append(part->bytes.begin(), part->bytes.end());
  }
  EXPECT_EQ(joined, metadata.extendedXmp);
}

TEST(AssembleJpegSegments, Should_DropThePaddingOfALargePacket) {
  Metadata metadata;
  metadata.xmp = kPacket + std::string(70000, ' ') + "<?xpacket end=\"w\"?>";
  const Written written(metadata);
  EXPECT_EQ(written.Content(JpegBlock::xmp), kPacket + "\n<?xpacket end=\"w\"?>");
  EXPECT_THAT(written.Losses(), IsEmpty());
}

TEST(AssembleJpegSegments, Should_ExtendALargePacket) {
  Metadata metadata;
  metadata.xmp = "<x:xmpmeta>" + std::string(70000, 'x') + "</x:xmpmeta>";
  const Written written(metadata);
  const std::string guid = detail::Md5Text(test::BytesOf(metadata.xmp));
  EXPECT_NE(written.Content(JpegBlock::xmp).find(guid), std::string::npos);
  EXPECT_EQ(written.segments.size(), 4U);
  EXPECT_THAT(written.Losses(), IsEmpty());
}

TEST(AssembleJpegSegments, Should_LoseExtendedXmp_When_ThePacketDoesNotNameIt) {
  Metadata metadata;
  metadata.xmp = "<x:xmpmeta/>";
  metadata.extendedXmp = "<more/>";
  EXPECT_THAT(Written(metadata).Losses(), ElementsAre(LossKind::xmp));
}

TEST(AssembleJpegSegments, Should_CutProfilesIntoPieces) {
  for (const size_t size : {size_t{1}, size_t{65519}, size_t{65520}, size_t{200000}}) {
    Metadata metadata;
    std::vector<uint8_t> profile(size);
    for (size_t i = 0; i < size; ++i) profile[i] = static_cast<uint8_t>(i % 251);
    metadata.profile = std::make_shared<std::vector<uint8_t>>(profile);
    const Written written(metadata);
    std::vector<uint8_t> joined;
    int number = 0;
    for (const JpegSegment& segment : written.segments) {
      const auto part = ReadProfilePart(segment);
      if (!part) continue;
      EXPECT_EQ(part->number, ++number);
      EXPECT_EQ(part->count, static_cast<int>((size + 65518) / 65519));
      joined.insert(joined.end(), part->bytes.begin(), part->bytes.end());
    }
    EXPECT_EQ(joined, profile);
  }
  Metadata metadata;
  metadata.profile = std::make_shared<std::vector<uint8_t>>(size_t{65519} * 255 + 1);
  EXPECT_THAT(Written(metadata).Losses(), ElementsAre(LossKind::profile));
}

TEST(AssembleJpegSegments, Should_CutImageResourcesIntoPieces) {
  Metadata metadata;
  ImageResources resources;
  resources.Set(4000, std::vector<uint8_t>(100000, 5));
  metadata.photoshop = resources.Bytes();
  const Written written(metadata);
  EXPECT_THAT(written.Blocks(),
              ElementsAre(JpegBlock::jfif, JpegBlock::photoshop, JpegBlock::photoshop));
  EXPECT_EQ(test::BytesOf(written.Content(JpegBlock::photoshop)), metadata.photoshop);
}

TEST(AssembleJpegSegments, Should_NameWhatHasNoPlace) {
  Metadata metadata;
  metadata.tiffTags = {{42112, 2, 2, {'x', 0}}};
  metadata.pngChunks = {{0x74455874, {}}};
  const Written written(metadata);
  EXPECT_THAT(written.Losses(), ElementsAre(LossKind::otherBlock, LossKind::otherBlock));
  EXPECT_EQ(written.changes.losses[0].what, "TIFF tag 42112");
  EXPECT_EQ(written.changes.losses[1].what, "PNG chunk tEXt");
}

TEST(AssembleJpegSegments, Should_NameAllTagsInOneLoss) {
  Metadata metadata;
  metadata.tiffTags = {{65000, 2, 2, {'x', 0}}, {42112, 2, 2, {'x', 0}}};
  const Written written(metadata);
  ASSERT_EQ(written.changes.losses.size(), 1U);
  EXPECT_EQ(written.changes.losses[0].what, "TIFF tags 42112, 65000");
  for (uint16_t tag = 1; tag <= 40; ++tag) metadata.tiffTags.push_back({tag, 2, 2, {'x', 0}});
  EXPECT_THAT(Written(metadata).changes.losses[0].what, testing::EndsWith("11, 12 and 30 more"));
}

TEST(AssembleJpegSegments, Should_OnlyNoteChunksThatHelpPrograms) {
  Metadata metadata;
  metadata.pngChunks = {{0x624B4744, {0, 1}},
                        {0x74494D45, {7, 0xE8, 1, 2, 3, 4, 5}},
                        {0x68495354, {0, 1}},
                        {0x73424954, {5}},
                        {0x73524742, {0}}};
  const Written written(metadata);
  EXPECT_THAT(written.Losses(), IsEmpty());
  EXPECT_THAT(written.changes.notes,
              ElementsAre(testing::HasSubstr("bKGD"), testing::HasSubstr("tIME"),
                          testing::HasSubstr("hIST"), testing::HasSubstr("sBIT")));
}

TEST(AssembleJpegSegments, Should_ShowOnlyPrintableLettersOfChunks) {
  Metadata metadata;
  metadata.pngChunks = {{0x611B0A64, {}}};
  const Written written(metadata);
  ASSERT_EQ(written.changes.losses.size(), 1U);
  EXPECT_EQ(written.changes.losses[0].what, "PNG chunk a??d");
}

/// The standard requires the tag, in each block of a JPEG file.
TEST(AssembleJpegSegments, Should_StateThePlaceOfChroma_When_TheResolutionNeedsABlock) {
  Metadata metadata;
  metadata.resolution = {300, 300};
  const Written written(metadata, false);
  const std::string exif = written.Content(JpegBlock::exif);
  const ExifBlock block({exif.begin(), exif.end()});
  EXPECT_EQ(ResolutionOf(block), (Resolution{300, 300}));
  constexpr uint16_t kPositioning = 531;
  EXPECT_TRUE(block.Has(ExifDirectoryId::main, kPositioning));
}

}  // namespace
}  // namespace rasterkit
