#include <cmath>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/metadata/ifd.h>

#include "tests/metadata/exif_blocks.h"

namespace rasterkit {
namespace {

using namespace test;
using Id = ExifDirectoryId;
using testing::ElementsAre;
using testing::IsEmpty;

class ExifReading : public testing::TestWithParam<ByteOrder> {
 protected:
  TiffWriter writer_{GetParam()};
  CameraBlock camera_ = MakeCameraBlock(GetParam());
  ExifBlock block_{BytesOf(camera_.bytes)};
};

INSTANTIATE_TEST_SUITE_P(Orders, ExifReading,
                         testing::Values(ByteOrder::intel, ByteOrder::motorola));

TEST_P(ExifReading, Should_FindEveryDirectory) {
  EXPECT_FALSE(block_.IsDamaged());
  EXPECT_EQ(block_.IsBigEndian(), GetParam() == ByteOrder::motorola);
  EXPECT_EQ(block_.Text(Id::main, 270), "A description");
  EXPECT_EQ(block_.Number(Id::main, 274), 6U);
  EXPECT_EQ(block_.Number(Id::exif, 40962), 4000U);
  EXPECT_THAT(block_.Numbers(Id::gps, 2), ElementsAre(48, 8, 30.2));
  EXPECT_EQ(block_.Text(Id::interop, 1), "R98");
  EXPECT_EQ(block_.Number(Id::thumbnail, 259), 6U);
  const auto thumbnail = block_.Thumbnail();
  EXPECT_EQ(std::string(thumbnail.begin(), thumbnail.end()), camera_.thumbnail);
  EXPECT_TRUE(block_.HasThumbnail());
  EXPECT_FALSE(block_.IsEmpty());
}

TEST_P(ExifReading, Should_GiveValuesInLittleEndianOrder) {
  EXPECT_THAT(block_.Get(Id::exif, 37396)->bytes, ElementsAre(100, 0, 50, 0, 20, 0, 10, 0));
  EXPECT_THAT(block_.Get(Id::exif, 33434)->bytes, ElementsAre(1, 0, 0, 0, 250, 0, 0, 0));
  EXPECT_FALSE(block_.Get(Id::exif, 1).has_value());
}

TEST_P(ExifReading, Should_ReadEveryNumberType) {
  const std::string bytes =
      writer_.Tiff({writer_.Bytes(1, "\xFE\x02", 1),
                    writer_.Bytes(6, "\xFE\x02", 6),
                    {8, 8, 2, writer_.Word(0xFFFE) + writer_.Word(2)},
                    {9, 9, 1, writer_.Long(0xFFFFFFFE)},
                    {10, 10, 1, writer_.Long(0xFFFFFFFF) + writer_.Long(4)},
                    {11, 11, 1, writer_.Long(0x3FC00000)},
                    {12, 12, 1,
                     GetParam() == ByteOrder::intel ? writer_.Long(0) + writer_.Long(0x40020000)
                                                    : writer_.Long(0x40020000) + writer_.Long(0)},
                    {13, 13, 1, writer_.Long(77)},
                    {20, 5, 1, writer_.Long(1) + writer_.Long(0)}});
  const ExifBlock block(BytesOf(bytes));
  EXPECT_THAT(block.Numbers(Id::main, 1), ElementsAre(254, 2));
  EXPECT_THAT(block.Numbers(Id::main, 6), ElementsAre(-2, 2));
  EXPECT_THAT(block.Numbers(Id::main, 8), ElementsAre(-2, 2));
  EXPECT_THAT(block.Numbers(Id::main, 9), ElementsAre(-2));
  EXPECT_THAT(block.Numbers(Id::main, 10), ElementsAre(-0.25));
  EXPECT_THAT(block.Numbers(Id::main, 11), ElementsAre(1.5));
  EXPECT_THAT(block.Numbers(Id::main, 12), ElementsAre(2.25));
  EXPECT_THAT(block.Numbers(Id::main, 13), ElementsAre(77));
  EXPECT_TRUE(std::isnan(block.Numbers(Id::main, 20).at(0)));
}

TEST_P(ExifReading, Should_LeaveOutEntriesWithValuesOutside) {
  std::string bytes = writer_.Tiff({writer_.Short(274, 6), writer_.Ascii(305, "some software")});
  bytes.resize(bytes.size() - 1);
  const ExifBlock block(BytesOf(bytes));
  EXPECT_TRUE(block.IsDamaged());
  EXPECT_EQ(block.Number(Id::main, 274), 6U);
  EXPECT_FALSE(block.Has(Id::main, 305));
}

TEST_P(ExifReading, Should_SeeDamage_When_ACountOverflows) {
  for (const uint32_t count : {0x20000001U, 0xFFFFFFFFU, 0x80000000U}) {
    const std::string bytes =
        writer_.Header() + writer_.Directory(8, {{282, 5, count, writer_.Long(8)}});
    const ExifBlock block(BytesOf(bytes));
    EXPECT_TRUE(block.IsDamaged());
    EXPECT_FALSE(block.Has(Id::main, 282));
  }
}

TEST_P(ExifReading, Should_ReadACutTableAsFarAsItGoes) {
  const std::string bytes =
      writer_.Header() + writer_.Word(9) +
      writer_.Directory(0, {writer_.Short(274, 3), writer_.Short(296, 2)}).substr(2, 24);
  const ExifBlock block(BytesOf(bytes));
  EXPECT_TRUE(block.IsDamaged());
  EXPECT_EQ(block.Number(Id::main, 296), 2U);
}

TEST_P(ExifReading, Should_EndLoops) {
  const std::string loop = writer_.Header() + writer_.Directory(8, {writer_.Short(274, 3)}, 8);
  EXPECT_TRUE(ExifBlock(BytesOf(loop)).IsDamaged());
  EXPECT_FALSE(ExifBlock(BytesOf(loop)).HasThumbnail());
  const std::string pointers =
      writer_.Header() + writer_.Directory(8, {writer_.Short(274, 3), writer_.LongEntry(34665, 8),
                                               writer_.LongEntry(34853, 20)});
  const ExifBlock block(BytesOf(pointers));
  EXPECT_TRUE(block.IsDamaged());
  EXPECT_THAT(block.All(Id::exif), IsEmpty());
  EXPECT_THAT(block.All(Id::gps), IsEmpty());
}

TEST_P(ExifReading, Should_BeDamaged_When_ValuesLieInATable) {
  std::string bytes = camera_.bytes;
  const size_t entry = bytes.find(writer_.Word(282) + writer_.Word(5));
  bytes.replace(entry + 8, 4, writer_.Long(20));
  EXPECT_TRUE(ExifBlock(BytesOf(bytes)).IsDamaged());
}

TEST_P(ExifReading, Should_RefuseValuesThatShareTheirBytesByTheHundred) {
  std::vector<TiffEntry> entries(200, {37500, 7, 60000, writer_.Long(8)});
  std::string bytes = writer_.Header() + writer_.Directory(8, entries) + std::string(60000, 'x');
  const ExifBlock block(BytesOf(bytes));
  EXPECT_TRUE(block.IsDamaged());
  EXPECT_LT(block.All(Id::main).size(), 5U);
}

TEST(ExifReadingOfBytes, Should_BeDamaged_When_TheHeaderIs) {
  for (const std::string& header : {std::string("II*"), std::string("XX*\0\10\0\0\0\0\0", 10),
                                    std::string("II*\0\377\377\0\0\0\0", 10)}) {
    const ExifBlock block(BytesOf(header));
    EXPECT_TRUE(block.IsDamaged());
    EXPECT_TRUE(block.IsEmpty());
  }
  const ExifBlock otherMark(BytesOf("II+" + MakeCameraBlock(ByteOrder::intel).bytes.substr(3)));
  EXPECT_TRUE(otherMark.IsDamaged());
  EXPECT_EQ(otherMark.Number(Id::main, 274), 6U);
}

TEST(ExifReadingOfBytes, Should_StayInside_When_BytesAreRandom) {
  const unsigned seed = std::random_device()();
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  std::mt19937 random(seed);
  for (int round = 0; round < 3000; ++round) {
    std::string bytes =
        MakeCameraBlock(round % 2 == 0 ? ByteOrder::intel : ByteOrder::motorola).bytes;
    for (int i = 0; i < 8; ++i) bytes[random() % bytes.size()] = static_cast<char>(random());
    bytes.resize(random() % 4 == 0 ? random() % bytes.size() + 1 : bytes.size());
    ExifBlock block(BytesOf(bytes));
    const auto tags = AllTags(block);
    EXPECT_LE(tags.size(), 40U);
    block.EraseThumbnail();
    if (block.SetUpright()) {
      EXPECT_LE(block.Number(Id::main, 274).value_or(1), 1U);
    }
    EXPECT_EQ(block.Bytes().size(), bytes.size());
  }
}

TEST(ReadIfd, Should_KnowTheSizesOfAllTypes) {
  constexpr size_t kSizes[] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4, 0, 0, 8, 8, 8, 0};
  for (uint16_t type = 0; type < std::size(kSizes); ++type) {
    EXPECT_EQ(detail::BytesOfTagType(type), kSizes[type]) << type;
  }
  EXPECT_EQ(detail::BytesOfTagType(65535), 0U);
}

}  // namespace
}  // namespace rasterkit
