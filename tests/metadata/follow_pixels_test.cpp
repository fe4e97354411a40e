#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/metadata/exif_resolution.h>
#include <rasterkit/metadata/follow_pixels.h>
#include <rasterkit/metadata/image_resources.h>
#include <rasterkit/metadata/md5.h>

#include "tests/metadata/exif_blocks.h"

namespace rasterkit {
namespace {

using namespace std::string_literals;
using test::ByteOrder;
using test::CameraBlock;
using test::JpegThumbnail;
using test::MakeCameraBlock;
using testing::ElementsAre;
using testing::IsEmpty;
using Id = ExifDirectoryId;

constexpr int kWidth = 4000, kHeight = 3000;

PixelChange Change(int width, int height, const std::array<double, 6>& toNew) {
  PixelChange change;
  change.oldWidth = kWidth;
  change.oldHeight = kHeight;
  change.width = width;
  change.height = height;
  change.toNew = toNew;
  change.pixelsChanged = change.placesChanged = true;
  change.resolution = {300, 300};
  return change;
}

/// x' = height - y, y' = x.
PixelChange QuarterTurnClockwise() {
  return Change(kHeight, kWidth, {0, -1, kHeight, 1, 0, 0});
}

PixelChange Crop(int x, int y, int width, int height) {
  return Change(width, height, {1, 0, -1.0 * x, 0, 1, -1.0 * y});
}

PixelChange Scale(double factor) {
  return Change(static_cast<int>(kWidth * factor), static_cast<int>(kHeight * factor),
                {factor, 0, 0, 0, factor, 0});
}

struct Followed {
  ExifBlock exif;
  Metadata metadata;
  Changes changes;

  std::vector<LossKind> Losses() const {
    std::vector<LossKind> kinds;
    for (const Loss& loss : changes.losses) kinds.push_back(loss.kind);
    return kinds;
  }
};

Followed Follow(const ExifBlock& exif, const PixelChange& change) {
  Followed followed;
  followed.metadata.exif = exif.Bytes();
  FollowPixels(followed.metadata, change, followed.changes);
  if (!followed.metadata.exif.empty()) followed.exif = ExifBlock(followed.metadata.exif);
  return followed;
}

class FollowPixelsInBlock : public testing::TestWithParam<ByteOrder> {
 protected:
  ExifBlock exif_{test::BytesOf(MakeCameraBlock(GetParam()).bytes)};
  std::vector<uint8_t> thumbnail_ = test::BytesOf(JpegThumbnail(80, 'n'));
};

INSTANTIATE_TEST_SUITE_P(Orders, FollowPixelsInBlock,
                         testing::Values(ByteOrder::intel, ByteOrder::motorola));

TEST_P(FollowPixelsInBlock, Should_ExchangeSides_When_Turned) {
  PixelChange change = QuarterTurnClockwise();
  change.resolution = {150, 300};
  change.thumbnail = thumbnail_;
  const Followed followed = Follow(exif_, change);
  const ExifBlock& exif = followed.exif;
  EXPECT_FALSE(exif.IsDamaged());
  EXPECT_EQ(OrientationOf(exif), 1);
  EXPECT_EQ(exif.Number(Id::exif, 40962), 3000U);
  EXPECT_EQ(exif.Number(Id::exif, 40963), 4000U);
  EXPECT_EQ(exif.Number(Id::interop, 4097), 3000U);
  EXPECT_EQ(exif.Number(Id::interop, 4098), 4000U);
  EXPECT_EQ(ResolutionOf(exif), (Resolution{150, 300}));
  EXPECT_FALSE(exif.Has(Id::main, 256)) << "what was not stated is not added";
  EXPECT_EQ(std::vector<uint8_t>(exif.Thumbnail().begin(), exif.Thumbnail().end()), thumbnail_);
  EXPECT_THAT(followed.Losses(), IsEmpty());
  EXPECT_EQ(followed.metadata.resolution, change.resolution);
}

TEST_P(FollowPixelsInBlock, Should_KeepTheMakerNotesPlace) {
  const CameraBlock camera = MakeCameraBlock(GetParam());
  const Followed followed = Follow(exif_, QuarterTurnClockwise());
  const auto first =
      followed.metadata.exif.begin() + static_cast<std::ptrdiff_t>(camera.makerNoteAt);
  EXPECT_TRUE(std::equal(camera.makerNote.begin(), camera.makerNote.end(), first));
}

TEST_P(FollowPixelsInBlock, Should_MapARectangle) {
  // Center 100, 50; sides 20 and 10.
  EXPECT_THAT(Follow(exif_, QuarterTurnClockwise()).exif.Numbers(Id::exif, 37396),
              ElementsAre(2949, 100, 10, 20));
  EXPECT_THAT(Follow(exif_, Crop(40, 30, 500, 400)).exif.Numbers(Id::exif, 37396),
              ElementsAre(60, 20, 20, 10));
  EXPECT_THAT(Follow(exif_, Scale(0.5)).exif.Numbers(Id::exif, 37396), ElementsAre(50, 25, 10, 5));
  // Half of it is left.
  EXPECT_THAT(Follow(exif_, Crop(100, 30, 500, 400)).exif.Numbers(Id::exif, 37396),
              ElementsAre(5, 20, 11, 10));
  EXPECT_FALSE(Follow(exif_, Crop(1000, 30, 500, 400)).exif.Has(Id::exif, 37396));
}

TEST_P(FollowPixelsInBlock, Should_MapACircleAndAPoint) {
  const uint16_t circle[] = {100, 50, 30}, point[] = {10, 20};
  exif_.SetWords(Id::exif, 37396, circle);
  exif_.SetWords(Id::exif, 41492, point);
  const ExifBlock scaled = Follow(exif_, Scale(2)).exif;
  EXPECT_THAT(scaled.Numbers(Id::exif, 37396), ElementsAre(201, 101, 60));
  EXPECT_THAT(scaled.Numbers(Id::exif, 41492), ElementsAre(21, 41));
  const ExifBlock turned = Follow(exif_, QuarterTurnClockwise()).exif;
  EXPECT_THAT(turned.Numbers(Id::exif, 37396), ElementsAre(2949, 100, 30));
  EXPECT_THAT(turned.Numbers(Id::exif, 41492), ElementsAre(2979, 10));
  const ExifBlock cropped = Follow(exif_, Crop(50, 30, 500, 400)).exif;
  EXPECT_THAT(cropped.Numbers(Id::exif, 37396), ElementsAre(50, 20, 30));
  EXPECT_FALSE(cropped.Has(Id::exif, 41492));
}

TEST_P(FollowPixelsInBlock, Should_KeepTheFocalPlaneTrue) {
  exif_.SetRational(Id::exif, 41486, 2000);
  exif_.SetRational(Id::exif, 41487, 1000);
  const auto planes = [&](const PixelChange& change) {
    const ExifBlock exif = Follow(exif_, change).exif;
    return std::pair(exif.Numbers(Id::exif, 41486).at(0), exif.Numbers(Id::exif, 41487).at(0));
  };
  EXPECT_EQ(planes(QuarterTurnClockwise()), std::pair(1000.0, 2000.0));
  EXPECT_EQ(planes(Scale(0.25)), std::pair(500.0, 250.0));
  EXPECT_EQ(planes(Crop(10, 10, 50, 50)), std::pair(2000.0, 1000.0));
}

TEST_P(FollowPixelsInBlock, Should_RemoveAThumbnailThatIsNotMadeAnew) {
  const Followed followed = Follow(exif_, Crop(10, 10, 50, 50));
  EXPECT_FALSE(followed.exif.HasThumbnail());
  EXPECT_THAT(followed.Losses(), ElementsAre(LossKind::thumbnail));
  const std::string bytes(followed.metadata.exif.begin(), followed.metadata.exif.end());
  EXPECT_EQ(bytes.find(std::string(20, '\x55')), std::string::npos);
}

TEST_P(FollowPixelsInBlock, Should_AddNoThumbnail) {
  exif_.RemoveThumbnail();
  PixelChange change = Crop(10, 10, 50, 50);
  change.thumbnail = thumbnail_;
  const Followed followed = Follow(exif_, change);
  EXPECT_FALSE(followed.exif.HasThumbnail());
  EXPECT_THAT(followed.Losses(), IsEmpty());
}

TEST_P(FollowPixelsInBlock, Should_SetOrientationAndResolutionAlone_When_NoPixelChanged) {
  PixelChange change = Change(kWidth, kHeight, {1, 0, 0, 0, 1, 0});
  change.pixelsChanged = change.placesChanged = false;
  change.resolution = {72, 72};
  const auto before = test::AllTags(exif_);
  const Followed followed = Follow(exif_, change);
  auto after = test::AllTags(followed.exif);
  EXPECT_EQ(OrientationOf(followed.exif), 1);
  EXPECT_EQ(ResolutionOf(followed.exif), change.resolution);
  for (const uint16_t tag : {274, 282, 283, 296})
    after[{Id::main, tag}] = before.at({Id::main, tag});
  EXPECT_EQ(after, before);
  EXPECT_EQ(followed.exif.Thumbnail().size(), 100U);
}

TEST_P(FollowPixelsInBlock, Should_UncalibrateTheColorSpace_When_Gray) {
  const uint16_t srgb = 1;
  exif_.SetWords(Id::exif, 40961, std::span(&srgb, 1));
  PixelChange change = Change(kWidth, kHeight, {1, 0, 0, 0, 1, 0});
  change.placesChanged = false;
  EXPECT_EQ(Follow(exif_, change).exif.Number(Id::exif, 40961), 1U);
  change.becameGray = true;
  EXPECT_EQ(Follow(exif_, change).exif.Number(Id::exif, 40961), 65535U);
}

TEST_P(FollowPixelsInBlock, Should_NameAMakerNotesPreview) {
  exif_.RemoveThumbnail();
  const std::string preview("\xFF\xD8\xFF\xDB\0\x03Q\xFF\xC0\0\x02\xFF\xD9", 13);
  TagValue note = {37500, 7, 0, test::BytesOf("NOTE" + preview)};
  note.count = note.bytes.size();
  exif_.Set(Id::exif, note);
  const Followed followed = Follow(exif_, Crop(10, 10, 50, 50));
  EXPECT_THAT(followed.changes.notes, IsEmpty());
  ASSERT_THAT(followed.Losses(), ElementsAre(LossKind::makerNote));
  EXPECT_THAT(followed.changes.losses[0].why, testing::HasSubstr("--strip-maker-note"));
  EXPECT_EQ(followed.exif.Get(Id::exif, 37500), note);
  exif_.Remove(Id::exif, 37500);
  EXPECT_THAT(Follow(exif_, Crop(10, 10, 50, 50)).Losses(), IsEmpty());
}

TEST_P(FollowPixelsInBlock, Should_TakeNoOtherBytesOfAMakerNoteForAPreview) {
  exif_.RemoveThumbnail();
  const std::string others[] = {
      // No segment begins a picture with this marker, has this length, or is followed by this.
      {"\xFF\xD8\xFF\x07\0\x03Q\xFF\xC0\0\x02\xFF\xD9", 13},
      {"\xFF\xD8\xFF\xDB\0\x01Q\xFF\xC0\0\x02\xFF\xD9", 13},
      {"\xFF\xD8\xFF\xDB\0\x03QQ\xC0\0\x02\xFF\xD9", 13},
      {"\xFF\xD8\xFF\xDB\x70\x03Q\xFF\xC0\0\x02\xFF\xD9", 13},
      {"\xFF\xD8\xFF", 3}};
  for (const std::string& bytes : others) {
    TagValue note = {37500, 7, 0, test::BytesOf("NOTE" + bytes)};
    note.count = note.bytes.size();
    exif_.Set(Id::exif, note);
    EXPECT_THAT(Follow(exif_, Crop(10, 10, 50, 50)).Losses(), IsEmpty()) << bytes.size();
  }
}

TEST_P(FollowPixelsInBlock, Should_RepairADamagedBlockInPlace) {
  const CameraBlock camera = MakeCameraBlock(GetParam());
  const ExifBlock damaged(test::BytesOf(camera.bytes.substr(0, 150)));
  ASSERT_TRUE(damaged.IsDamaged());
  const Followed followed = Follow(damaged, QuarterTurnClockwise());
  EXPECT_EQ(OrientationOf(followed.exif), 1);
  EXPECT_EQ(followed.metadata.exif.size(), 150U);
  EXPECT_THAT(followed.Losses(), IsEmpty());
}

TEST_P(FollowPixelsInBlock, Should_DropADamagedBlock_When_ItsOrientationOrPictureIsUnknown) {
  const CameraBlock camera = MakeCameraBlock(GetParam());
  const std::string whole = camera.bytes;
  for (const std::string& bytes :
       {whole.substr(0, 30), whole.substr(0, 150) + "\xFF\xD8\xFF\xDBx"}) {
    const Followed followed = Follow(ExifBlock(test::BytesOf(bytes)), QuarterTurnClockwise());
    EXPECT_THAT(followed.metadata.exif, IsEmpty());
    EXPECT_THAT(followed.Losses(), ElementsAre(LossKind::exif));
  }
}

TEST_P(FollowPixelsInBlock, Should_EraseTheThumbnailOfADamagedBlock) {
  std::string bytes = MakeCameraBlock(GetParam()).bytes;
  // The thumbnail's picture ends behind the block, and the GPS directory holds a wrong place.
  const test::TiffWriter writer(GetParam());
  const size_t latitude = bytes.find(writer.Word(2) + writer.Word(5) + writer.Long(3));
  ASSERT_NE(latitude, std::string::npos);
  bytes.replace(latitude + 8, 4, writer.Long(0x7FFFFFFF));
  const Followed followed = Follow(ExifBlock(test::BytesOf(bytes)), QuarterTurnClockwise());
  EXPECT_THAT(followed.Losses(), IsEmpty());
  EXPECT_EQ(followed.metadata.exif.size(), bytes.size());
  const std::string left(followed.metadata.exif.begin(), followed.metadata.exif.end());
  EXPECT_EQ(left.find(std::string(20, '\x55')), std::string::npos);
  EXPECT_EQ(OrientationOf(followed.exif), 1);
}

TEST_P(FollowPixelsInBlock, Thumbnail_Should_BeReplacedAlone) {
  Metadata metadata;
  metadata.exif = {exif_.Bytes().begin(), exif_.Bytes().end()};
  EXPECT_TRUE(HasThumbnail(metadata));
  const auto before = test::AllTags(exif_);
  Changes changes;
  ReplaceThumbnails(metadata, thumbnail_, changes);
  EXPECT_TRUE(changes.losses.empty());
  const ExifBlock exif(metadata.exif);
  EXPECT_EQ(std::vector<uint8_t>(exif.Thumbnail().begin(), exif.Thumbnail().end()), thumbnail_);
  for (const auto& [place, value] : test::AllTags(exif)) {
    if (place.first == Id::thumbnail) continue;
    EXPECT_EQ(before.at(place).bytes, value.bytes) << place.second;
  }

  ReplaceThumbnails(metadata, {}, changes);
  ASSERT_EQ(changes.losses.size(), 1U);
  EXPECT_EQ(changes.losses[0].kind, LossKind::thumbnail);
  EXPECT_FALSE(HasThumbnail(metadata));
}

TEST_P(FollowPixelsInBlock, Thumbnail_Should_BeErased_When_TheBlockIsDamaged) {
  std::string bytes = MakeCameraBlock(GetParam()).bytes;
  const test::TiffWriter writer(GetParam());
  const size_t latitude = bytes.find(writer.Word(2) + writer.Word(5) + writer.Long(3));
  ASSERT_NE(latitude, std::string::npos);
  bytes.replace(latitude + 8, 4, writer.Long(0x7FFFFFFF));
  Metadata metadata;
  metadata.exif = test::BytesOf(bytes);
  ASSERT_TRUE(ExifBlock(metadata.exif).IsDamaged());
  Changes changes;
  ReplaceThumbnails(metadata, thumbnail_, changes);
  const std::string left(metadata.exif.begin(), metadata.exif.end());
  EXPECT_EQ(left.size(), bytes.size());
  EXPECT_EQ(left.find(std::string(20, '\x55')), std::string::npos);
}

/// A JPEG file with a frame header.
std::vector<uint8_t> FramedJpeg(uint8_t width, uint8_t height) {
  return test::BytesOf("\xFF\xD8" +
                       test::JpegSection(0xC0, "\x08\0"s + static_cast<char>(height) + "\0"s +
                                                   static_cast<char>(width) + "\3"s +
                                                   std::string(9, '\1')) +
                       "\xFF\xD9");
}

Metadata WithResources() {
  Metadata metadata;
  ImageResources resources;
  std::vector<uint8_t> resolution(16);
  resolution[1] = resolution[9] = 100;
  resources.Set(1005, resolution);
  resources.Set(1033, {1, 2, 3});
  resources.Set(1036, std::vector<uint8_t>(40, 9));
  resources.Set(1061, std::vector<uint8_t>(16, 1));
  resources.Set(2000, {5});
  resources.Set(1032, {6});
  resources.Set(1034, {1});
  metadata.photoshop = resources.Bytes();
  metadata.iptc = test::BytesOf("\x1C\2\5\0\4name"s);
  return metadata;
}

TEST(FollowPixels, Should_KeepImageResourcesTrue) {
  Metadata metadata = WithResources();
  Changes changes;
  PixelChange change = Crop(10, 10, 50, 50);
  const std::vector<uint8_t> thumbnail = FramedJpeg(16, 12);
  change.thumbnail = thumbnail;
  change.resolution = {150, 75};
  FollowPixels(metadata, change, changes);
  const ImageResources resources(metadata.photoshop);
  EXPECT_EQ(ResolutionOf(resources), change.resolution);
  EXPECT_EQ(resources.Find(1033), nullptr);
  EXPECT_EQ(resources.Find(2000), nullptr);
  EXPECT_EQ(resources.Find(1032), nullptr);
  EXPECT_NE(resources.Find(1034), nullptr);
  const auto digest = detail::Md5(metadata.iptc);
  EXPECT_EQ(resources.Find(1061)->bytes, std::vector<uint8_t>(digest.begin(), digest.end()));
  const std::vector<uint8_t>& made = resources.Find(1036)->bytes;
  EXPECT_EQ(std::vector<uint8_t>(made.begin(), made.begin() + 28),
            test::BytesOf("\0\0\0\1\0\0\0\x10\0\0\0\x0C\0\0\0\x30\0\0\2\x40\0\0\0"s +
                          static_cast<char>(thumbnail.size()) + "\0\x18\0\1"s));
  EXPECT_EQ(std::vector<uint8_t>(made.begin() + 28, made.end()), thumbnail);
  ASSERT_EQ(changes.losses.size(), 1U);
  EXPECT_EQ(changes.losses[0].what, "Photoshop's paths");
}

TEST(FollowPixels, Should_LosePhotoshopsThumbnail_When_NoneWasMade) {
  Metadata metadata = WithResources();
  Changes changes;
  PixelChange change = Crop(10, 10, 50, 50);
  change.placesChanged = false;
  FollowPixels(metadata, change, changes);
  EXPECT_EQ(ImageResources(metadata.photoshop).Find(1036), nullptr);
  EXPECT_NE(ImageResources(metadata.photoshop).Find(2000), nullptr);
  ASSERT_EQ(changes.losses.size(), 1U);
  EXPECT_EQ(changes.losses[0].kind, LossKind::thumbnail);
}

TEST(FollowPixels, Should_RemoveSegmentsOfTheOldPixels) {
  Metadata metadata;
  metadata.jpegSegments = {{0xE2, test::BytesOf("MPF\0index"s)},
                           {0xE2, test::BytesOf("urn:iso:std:iso:ts:21496:-1\0x"s)},
                           {0xEB, test::BytesOf("JP\0\1"s)},
                           {0xE7, test::BytesOf("JP\0\1"s)}};
  Changes changes;
  Metadata untouched = metadata;
  PixelChange change = Crop(0, 0, kWidth, kHeight);
  change.pixelsChanged = change.placesChanged = false;
  FollowPixels(untouched, change, changes);
  EXPECT_EQ(untouched.jpegSegments, metadata.jpegSegments);
  FollowPixels(metadata, Crop(10, 10, 50, 50), changes);
  ASSERT_EQ(metadata.jpegSegments.size(), 1U);
  EXPECT_EQ(metadata.jpegSegments[0].kind, 0xE7U);
  ASSERT_EQ(changes.losses.size(), 2U);
  EXPECT_EQ(changes.losses[0].kind, LossKind::hiddenPictures);
  EXPECT_EQ(changes.losses[1].kind, LossKind::otherBlock);
}

TEST(FollowPixels, Should_RemoveStatisticsOfTheOldPixels) {
  const std::string xml =
      "<GDALMetadata>\n  <Item name=\"AREA\">x</Item>\n  <Item name=\"STATISTICS_MAXIMUM\" "
      "sample=\"0\">255</Item>\n  <Item sample=\"0\" name=\"STATISTICS_MEAN\"/>\n  <Item "
      "name=\"LAST\">STATISTICS_</Item>\n</GDALMetadata>";
  Metadata metadata;
  metadata.tiffTags = {{42112, 2, xml.size() + 1, test::BytesOf(xml + '\0')},
                       {65000, 2, 5, test::BytesOf("other")}};
  Changes changes;
  FollowPixels(metadata, Crop(10, 10, 50, 50), changes);
  const std::string left(metadata.tiffTags[0].bytes.begin(), metadata.tiffTags[0].bytes.end());
  EXPECT_EQ(left,
            "<GDALMetadata>\n  <Item name=\"AREA\">x</Item>\n  <Item "
            "name=\"LAST\">STATISTICS_</Item>\n</GDALMetadata>\0"s);
  EXPECT_EQ(metadata.tiffTags[0].count, left.size());
  EXPECT_EQ(metadata.tiffTags[1].bytes.size(), 5U);
  EXPECT_EQ(changes.notes.size(), 1U);
}

TEST(FollowPixels, Should_KeepStatisticsThatHold) {
  const std::string turned = "<GDALMetadata><Item name='STATISTICS_MEAN'>3</Item></GDALMetadata>";
  const std::string other = "<GDALMetadata><Item name=\"MY_STATISTICS_\">3</Item></GDALMetadata>";
  for (const std::string& xml : {turned, other}) {
    Metadata metadata;
    metadata.tiffTags = {{42112, 2, xml.size(), test::BytesOf(xml)}};
    Changes changes;
    PixelChange change = Crop(10, 10, 50, 50);
    change.keepsValues = xml == turned;
    FollowPixels(metadata, change, changes);
    ASSERT_EQ(metadata.tiffTags.size(), 1U);
    EXPECT_EQ(metadata.tiffTags[0].bytes, test::BytesOf(xml));
    EXPECT_TRUE(changes.notes.empty());
  }
}

TEST(FollowPixels, Should_RemoveTheTag_When_StatisticsWereAllThatItHeld) {
  const std::string xml = "<GDALMetadata><Item name='STATISTICS_MEAN'>3</Item></GDALMetadata>";
  Metadata metadata;
  metadata.tiffTags = {{42112, 2, xml.size(), test::BytesOf(xml)}};
  Changes changes;
  FollowPixels(metadata, Crop(10, 10, 50, 50), changes);
  EXPECT_TRUE(metadata.tiffTags.empty());
  EXPECT_EQ(changes.notes.size(), 1U);
}

TEST(FollowPixels, Should_DropTheTimeOfTheLastChange_When_PixelsChanged) {
  const std::vector<OtherBlock> chunks = {{0x74494D45, {7, 0xE8, 1, 2, 3, 4, 5}},
                                          {0x61624364, {1}}};
  PixelChange change = Crop(10, 10, 50, 50);
  for (const bool pixelsChanged : {true, false}) {
    Metadata metadata;
    metadata.pngChunks = chunks;
    Changes changes;
    change.pixelsChanged = change.placesChanged = pixelsChanged;
    FollowPixels(metadata, change, changes);
    EXPECT_EQ(metadata.pngChunks, pixelsChanged ? std::vector{chunks[1]} : chunks);
    EXPECT_TRUE(changes.losses.empty());
  }
}

TEST(FollowPixels, Should_MakePhotoshopsOldThumbnailAnew) {
  ImageResources old;
  old.Set(1033, {1, 2, 3});
  Metadata metadata;
  metadata.photoshop = old.Bytes();
  Changes changes;
  PixelChange change = Crop(10, 10, 50, 50);
  const std::vector<uint8_t> thumbnail = FramedJpeg(16, 12);
  change.thumbnail = thumbnail;
  FollowPixels(metadata, change, changes);
  const ImageResources resources(metadata.photoshop);
  EXPECT_EQ(resources.Find(1033), nullptr);
  ASSERT_NE(resources.Find(1036), nullptr);
  EXPECT_EQ(resources.Find(1036)->bytes.size(), 28 + thumbnail.size());
  EXPECT_TRUE(changes.losses.empty());
}

TEST(FollowPixels, Should_KeepBrokenStatisticsWhole) {
  for (const std::string& xml : {"<Item name=\"STATISTICS_\">1"s, "<Item"s, ""s, "no item"s}) {
    Metadata metadata;
    metadata.tiffTags = {{42112, 2, xml.size(), test::BytesOf(xml)}};
    Changes changes;
    FollowPixels(metadata, Crop(10, 10, 50, 50), changes);
    EXPECT_EQ(metadata.tiffTags[0].bytes, test::BytesOf(xml));
  }
}

}  // namespace
}  // namespace rasterkit
