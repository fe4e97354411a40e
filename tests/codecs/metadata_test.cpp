#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/list_metadata.h>

namespace rasterkit {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::string_literals;

PictureMetadata Read(const std::string& bytes) {
  static std::vector<uint8_t> kept;
  kept.assign(bytes.begin(), bytes.end());
  return ReadMetadata(kept);
}

std::string Segment(char marker, const std::string& payload) {
  const size_t length = payload.size() + 2;
  return "\xFF"s + marker + static_cast<char>(length >> 8) + static_cast<char>(length) + payload;
}

std::string Jpeg(const std::string& segments) {
  return "\xFF\xD8"s + segments + "\xFF\xDA\0\2"s;
}

std::string Chunk(const std::string& type, const std::string& data) {
  return "\0\0"s + static_cast<char>(data.size() >> 8) + static_cast<char>(data.size()) + type +
         data + "sum!";
}

std::string Png(const std::string& chunks) {
  return "\x89PNG\r\n\x1A\n" + Chunk("IHDR", std::string(13, '\1')) + chunks;
}

std::string ExifText(const PictureMetadata& metadata) {
  return {metadata.exif.begin(), metadata.exif.end()};
}

TEST(Metadata, Jpeg_Should_ListEachKindOnceInFileOrder) {
  const std::string xmp = Segment('\xE1', "http://ns.adobe.com/xap/1.0/\0<x/>"s);
  const std::string exif = Segment('\xE1', "Exif\0\0II*\0"s);
  const PictureMetadata metadata =
      Read(Jpeg(Segment('\xE0', "JFIF\0"s) + xmp + exif + exif + Segment('\xED', "Photoshop") +
                Segment('\xFE', "words") + Segment('\xE2', "ICC_PROFILE\0\1\1"s)));
  EXPECT_THAT(metadata.kinds, ElementsAre(MetadataKind::xmp, MetadataKind::exif, MetadataKind::iptc,
                                          MetadataKind::comment, MetadataKind::profile));
  EXPECT_EQ(ExifText(metadata), "II*\0"s);
}

TEST(Metadata, Jpeg_Should_SkipFillBytesBeforeAMarker) {
  EXPECT_THAT(Read("\xFF\xD8\xFF\xFF"s + Segment('\xFE', "words") + "\xFF\xD9"s).kinds,
              ElementsAre(MetadataKind::comment));
}

TEST(Metadata, Jpeg_Should_EndTheWalkAtTheScan) {
  EXPECT_THAT(Read(Jpeg("") + Segment('\xFE', "words")).kinds, IsEmpty());
}

TEST(Metadata, Jpeg_Should_EndTheWalk_When_ALengthIsTooSmallOrTooLarge) {
  EXPECT_THAT(Read("\xFF\xD8\xFF\xFE\0\1words and more"s).kinds, IsEmpty());
  EXPECT_THAT(Read("\xFF\xD8\xFF\xE1\xFF\xFF"
                   "Exif\0\0II*\0"s)
                  .kinds,
              IsEmpty());
  EXPECT_THAT(Read("\xFF\xD8\xFF\xE1\0"s).kinds, IsEmpty());
}

TEST(Metadata, Jpeg_Should_GiveAnEmptyBlock_When_TheExifSegmentIsCutBehindItsName) {
  const PictureMetadata metadata = Read(Jpeg(Segment('\xE1', "Exif\0"s)));
  EXPECT_THAT(metadata.kinds, ElementsAre(MetadataKind::exif));
  EXPECT_TRUE(metadata.exif.empty());
}

TEST(Metadata, Png_Should_ListItsChunks) {
  const PictureMetadata metadata =
      Read(Png(Chunk("iCCP", "p") + Chunk("tEXt", "a") + Chunk("iTXt", "XML:com.adobe.xmp") +
               Chunk("IDAT", "data") + Chunk("eXIf", "MM\0*"s)));
  EXPECT_THAT(metadata.kinds, ElementsAre(MetadataKind::profile, MetadataKind::text,
                                          MetadataKind::xmp, MetadataKind::exif));
  EXPECT_EQ(ExifText(metadata), "MM\0*"s);
}

TEST(Metadata, Png_Should_EndTheWalk_When_AChunkIsLongerThanTheFile) {
  EXPECT_THAT(Read(Png("\xFF\xFF\xFF\xFFtEXtdata and more")).kinds, IsEmpty());
}

TEST(Metadata, OtherBytes_Should_HaveNone) {
  for (const std::string& bytes :
       {""s, "\xFF"s, "\xFF\xD8"s, "BM"s, "\x89PNG\r\n\x1A\n"s, "words"s})
    EXPECT_THAT(Read(bytes).kinds, IsEmpty());
}

/// A GIF file of a palette of four colors on a screen of two by two pixels.
std::string Gif(const std::string& blocks) {
  return "GIF89a\2\0\2\0\x81\0\0"s + std::string(12, '\x40') + blocks + ";";
}

std::string GifExtension(char label, const std::string& data) {
  return "!"s + label + static_cast<char>(data.size()) + data + '\0';
}

std::string GifPicture(bool hasPalette) {
  const std::string palette = hasPalette ? std::string(12, ';') : "";
  return ",\0\0\0\0\2\0\2\0"s + (hasPalette ? '\x81' : '\0') + palette + "\2\2\x84\x51\0"s;
}

TEST(Metadata, Gif_Should_ListKindsAndCountPictures) {
  const std::string animation = GifExtension('\xFF', "NETSCAPE2.0") + GifPicture(true) +
                                GifExtension('\xFE', "words") + GifPicture(false) +
                                GifExtension('\xFF', "XMP DataXMP") +
                                GifExtension('\xFF', "ICCRGBG1012") + GifPicture(true);
  const PictureMetadata metadata = Read(Gif(animation));
  EXPECT_THAT(metadata.kinds,
              ElementsAre(MetadataKind::comment, MetadataKind::xmp, MetadataKind::profile));
  EXPECT_EQ(metadata.pictures, 3);
  EXPECT_EQ(Read(Gif(GifPicture(false))).pictures, 1);
  EXPECT_EQ(Read(Gif("")).pictures, 1);
}

TEST(Metadata, Gif_Should_EndTheWalk_When_TheFileStopsMakingSense) {
  const std::string whole =
      Gif(GifPicture(true) + GifExtension('\xFE', "words") + GifPicture(true));
  for (size_t length = 0; length <= whole.size(); ++length) {
    const int pictures = Read(whole.substr(0, length)).pictures;
    EXPECT_TRUE(pictures == 1 || pictures == 2) << length;
  }
  EXPECT_EQ(Read(Gif(GifPicture(true) + "nonsense" + GifPicture(true))).pictures, 1);
}

TEST(Metadata, Png_Should_CountPicturesOfAnAnimation) {
  EXPECT_EQ(Read(Png(Chunk("acTL", "\0\0\1\2\0\0\0\0"s))).pictures, 258);
  EXPECT_EQ(Read(Png(Chunk("acTL", "\xFF\0\0\0\0\0\0\0"s))).pictures, 65535);
  EXPECT_EQ(Read(Png(Chunk("acTL", "\0\0\0\0"s))).pictures, 1);
  EXPECT_EQ(Read(Png(Chunk("acTL", "\0"s))).pictures, 1);
}

TEST(Metadata, Webp_Should_CountPicturesOfAnAnimation) {
  const auto chunk = [](const std::string& name, const std::string& data) {
    return name + static_cast<char>(data.size()) + "\0\0\0"s + data;
  };
  const std::string chunks = chunk("VP8X", std::string(10, '\0')) + chunk("ANIM", "123456") +
                             chunk("ANMF", "12") + chunk("ANMF", "1234") + chunk("XMP ", "<x/>");
  const PictureMetadata metadata =
      Read("RIFF"s + static_cast<char>(chunks.size() + 4) + "\0\0\0WEBP"s + chunks);
  EXPECT_EQ(metadata.pictures, 2);
  EXPECT_THAT(metadata.kinds, ElementsAre(MetadataKind::xmp));
}

}  // namespace
}  // namespace rasterkit
