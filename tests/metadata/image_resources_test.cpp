#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/metadata/image_resources.h>
#include <rasterkit/metadata/md5.h>

#include "tests/metadata/exif_blocks.h"

namespace rasterkit {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

std::string Resource(uint16_t id, const std::string& bytes, const std::string& name = "") {
  const TiffWriter writer(ByteOrder::motorola);
  std::string text = "8BIM" + writer.Word(id) + static_cast<char>(name.size()) + name;
  if (name.size() % 2 == 0) text += '\0';
  text += writer.Long(static_cast<uint32_t>(bytes.size())) + bytes;
  return text + std::string(bytes.size() % 2, '\0');
}

std::string ResolutionBytes(uint32_t x, uint32_t y) {
  const TiffWriter writer(ByteOrder::motorola);
  return writer.Long(x << 16) + writer.Word(1) + writer.Word(1) + writer.Long(y << 16) +
         writer.Word(2) + writer.Word(2);
}

const std::string kRecords = std::string("\x1C\2\5\0\4name", 9);

TEST(ImageResourcesTest, Should_ReadAndWriteTheSameBytes) {
  const std::string bytes = Resource(1005, ResolutionBytes(300, 150)) + Resource(1028, kRecords) +
                            Resource(4000, "abc", "odd") + Resource(4001, "", "even");
  const ImageResources resources(BytesOf(bytes));
  EXPECT_EQ(resources.All().size(), 4U);
  EXPECT_EQ(resources.All()[2].name, "odd");
  EXPECT_FALSE(resources.IsDamaged());
  EXPECT_EQ(resources.Bytes(), BytesOf(bytes));
}

TEST(ImageResourcesTest, Should_KeepWhatIsNoResource) {
  const std::string good = Resource(4000, "abc");
  for (const std::string& rest : {std::string("8BIM"), std::string("garbage at the end"),
                                  Resource(4001, "cut off").substr(0, 16)}) {
    const ImageResources resources(BytesOf(good + rest));
    EXPECT_TRUE(resources.IsDamaged());
    EXPECT_EQ(resources.All().size(), 1U);
    EXPECT_EQ(resources.Bytes(), BytesOf(good + rest));
  }
}

TEST(ImageResourcesTest, Should_AcceptALastOneWithoutPadding) {
  const std::string good = Resource(4000, "abc");
  const ImageResources resources(BytesOf(good.substr(0, good.size() - 1)));
  EXPECT_FALSE(resources.IsDamaged());
  EXPECT_EQ(resources.Bytes(), BytesOf(good));
}

TEST(ImageResourcesTest, Should_ReadTheResolutionPerInch) {
  ImageResources resources(BytesOf(Resource(1005, ResolutionBytes(300, 150))));
  EXPECT_EQ(ResolutionOf(resources), (Resolution{300, 150}));
  FollowResolution(resources, {72.5, 96});
  EXPECT_EQ(ResolutionOf(resources), (Resolution{72.5, 96}));
  EXPECT_EQ(resources.Find(1005)->bytes[13], 2) << "the display unit stays";
  FollowResolution(resources, {});
  EXPECT_FALSE(ResolutionOf(resources).IsKnown());
  FollowResolution(resources, {72, 72});
  EXPECT_THAT(resources.All(), IsEmpty());
}

TEST(ImageResourcesTest, Should_SeparateRecordsAndJoinThemWithATrueDigest) {
  const std::string bytes =
      Resource(1028, kRecords) + Resource(1061, std::string(16, 'x')) + Resource(4000, "abc");
  Metadata metadata;
  SplitImageResources(BytesOf(bytes), metadata);
  EXPECT_EQ(metadata.iptc, BytesOf(kRecords));
  EXPECT_EQ(ImageResources(metadata.photoshop).All().size(), 2U);
  const ImageResources joined(JoinImageResources(metadata));
  EXPECT_EQ(joined.All().at(0).id, 1028);
  EXPECT_EQ(joined.All().at(0).bytes, metadata.iptc);
  const auto digest = detail::Md5(metadata.iptc);
  EXPECT_EQ(joined.Find(1061)->bytes, std::vector<uint8_t>(digest.begin(), digest.end()));
  metadata.iptc.clear();
  EXPECT_EQ(ImageResources(JoinImageResources(metadata)).All().size(), 1U);
}

TEST(ImageResourcesTest, Should_AddNoDigest) {
  Metadata metadata;
  metadata.iptc = BytesOf(kRecords);
  EXPECT_EQ(JoinImageResources(metadata), BytesOf(Resource(1028, kRecords)));
  metadata.iptc.clear();
  EXPECT_THAT(JoinImageResources(metadata), IsEmpty());
}

TEST(ImageResourcesTest, Should_LoseNoByte_When_BytesAreRandom) {
  const unsigned seed = std::random_device()();
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  std::mt19937 random(seed);
  const std::string whole = Resource(1028, kRecords) + Resource(4000, "abcd", "name") +
                            Resource(1005, ResolutionBytes(300, 150));
  for (int round = 0; round < 2000; ++round) {
    std::string bytes = whole;
    for (int i = 0; i < 3; ++i) bytes[random() % bytes.size()] = static_cast<char>(random());
    const ImageResources once(BytesOf(bytes));
    const ImageResources twice(once.Bytes());
    ASSERT_EQ(once.Bytes(), twice.Bytes());
    ASSERT_EQ(once.All().size(), twice.All().size());
  }
}

TEST(Md5, Should_GiveKnownDigests) {
  EXPECT_EQ(detail::Md5Text({}), "D41D8CD98F00B204E9800998ECF8427E");
  EXPECT_EQ(detail::Md5Text(BytesOf("abc")), "900150983CD24FB0D6963F7D28E17F72");
  EXPECT_EQ(detail::Md5Text(BytesOf("12345678901234567890123456789012345678901234567890123456789012"
                                    "345678901234567890")),
            "57EDF4A22BE3C955AC49DA2E2107B67A");
}

}  // namespace
}  // namespace rasterkit
