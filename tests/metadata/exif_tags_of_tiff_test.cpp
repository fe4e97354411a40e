#include <algorithm>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/metadata/exif_tags_of_tiff.h>

#include "tests/metadata/exif_blocks.h"

namespace rasterkit {
namespace {

using namespace test;
using Id = ExifDirectoryId;
using testing::IsEmpty;

bool Has(const std::vector<TagValue>& tags, uint16_t tag) {
  return std::any_of(tags.begin(), tags.end(), [tag](const TagValue& v) { return v.tag == tag; });
}

TEST(ExifTagsOfTiff, Should_SeparateStructureFromFacts) {
  for (const uint16_t tag :
       {256,   257,   258,   259,   262,   266,   273,   277,   278,   279,   284,   317,
        320,   321,   322,   323,   324,   325,   330,   338,   339,   347,   512,   513,
        514,   521,   529,   530,   531,   532,   700,   33550, 33723, 33922, 34264, 34377,
        34665, 34675, 34735, 34736, 34737, 34853, 40965, 42113, 50844}) {
    EXPECT_TRUE(IsStructureOfTiff(tag)) << tag;
  }
  for (const uint16_t tag :
       {270, 271, 272, 274, 282, 283, 296, 305, 306, 315, 316, 33432, 33434, 36867, 37500}) {
    EXPECT_TRUE(IsTagOfExif(tag)) << tag;
  }
  EXPECT_FALSE(IsTagOfExif(42112));
  EXPECT_FALSE(IsStructureOfTiff(42112));
  for (int tag = 0; tag <= UINT16_MAX; ++tag) {
    const auto number = static_cast<uint16_t>(tag);
    EXPECT_FALSE(IsTagOfExif(number) && IsStructureOfTiff(number)) << tag;
  }
}

TEST(ExifTagsOfTiff, Should_GoThereAndBack) {
  for (const ByteOrder order : {ByteOrder::intel, ByteOrder::motorola}) {
    const std::string bytes = MakeCameraBlock(order).bytes;
    const TiffDirectories tags = TagsOfExif(BytesOf(bytes));
    EXPECT_EQ(tags.isBigEndian, order == ByteOrder::motorola);
    EXPECT_FALSE(Has(tags.main, 34665));
    EXPECT_FALSE(Has(tags.exif, 40965));
    for (const bool isBigEndian : {false, true}) {
      const ExifBlock block(ExifOfTags(tags.main, tags.exif, tags.gps, tags.interop, isBigEndian));
      EXPECT_FALSE(block.IsDamaged());
      EXPECT_EQ(block.IsBigEndian(), isBigEndian);
      ExifBlock expected(BytesOf(bytes));
      expected.RemoveThumbnail();
      EXPECT_EQ(AllTags(block), AllTags(expected));
    }
  }
}

TEST(ExifTagsOfTiff, Should_LeaveStructureBehind) {
  const std::vector<TagValue> main = {{256, 4, 1, {1, 0, 0, 0}},
                                      {270, 2, 2, {'a', 0}},
                                      {34665, 4, 1, {8, 0, 0, 0}},
                                      {42112, 2, 2, {'x', 0}}};
  const ExifBlock block(ExifOfTags(main, {}, {}, {}));
  EXPECT_EQ(AllTags(block).size(), 1U);
  EXPECT_EQ(block.Text(Id::main, 270), "a");
  EXPECT_THAT(ExifOfTags(std::span(main).first(1), {}, {}, {}), IsEmpty());
}

TEST(ExifTagsOfTiff, Should_NarrowTheTypesOfLargeFiles) {
  const std::vector<TagValue> exif = {{40962, 16, 1, {1, 2, 0, 0, 0, 0, 0, 0}},
                                      {40963, 16, 1, {0, 0, 0, 0, 1, 0, 0, 0}},
                                      {37380, 17, 1, {0xFE, 255, 255, 255, 255, 255, 255, 255}},
                                      {37381, 5, 1, {1, 2, 3}}};
  const ExifBlock block(ExifOfTags({}, exif, {}, {}));
  EXPECT_EQ(block.Number(Id::exif, 40962), 513U);
  EXPECT_EQ(block.Get(Id::exif, 40962)->type, 4);
  EXPECT_FALSE(block.Has(Id::exif, 40963));
  EXPECT_EQ(block.Numbers(Id::exif, 37380).at(0), -2);
  EXPECT_FALSE(block.Has(Id::exif, 37381));
}

}  // namespace
}  // namespace rasterkit
