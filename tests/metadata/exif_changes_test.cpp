#include <cmath>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/runtime/errors.h>

#include "tests/metadata/exif_blocks.h"

namespace rasterkit {
namespace {

using namespace test;
using Id = ExifDirectoryId;
using testing::Each;

class ExifChanges : public testing::TestWithParam<ByteOrder> {
 protected:
  std::string Bytes(size_t at, size_t size) const {
    const auto first = block_.Bytes().begin() + static_cast<std::ptrdiff_t>(at);
    return {first, first + static_cast<std::ptrdiff_t>(size)};
  }
  size_t PlaceOf(const std::string& text) const {
    const std::string all(block_.Bytes().begin(), block_.Bytes().end());
    return all.find(text);
  }

  /// After each test: all is readable, and the maker note is where it was.
  void TearDown() override {
    const ExifBlock read(block_.Bytes());
    EXPECT_FALSE(read.IsDamaged());
    EXPECT_EQ(Bytes(camera_.makerNoteAt, camera_.makerNote.size()), camera_.makerNote);
  }

  TiffWriter writer_{GetParam()};
  CameraBlock camera_ = MakeCameraBlock(GetParam());
  ExifBlock block_{BytesOf(camera_.bytes)};
};

INSTANTIATE_TEST_SUITE_P(Orders, ExifChanges,
                         testing::Values(ByteOrder::intel, ByteOrder::motorola));

TEST_P(ExifChanges, Should_OverwriteInPlace_When_TheValueIsNotLonger) {
  const size_t at = PlaceOf("A description");
  block_.SetText(Id::main, 270, "Shorter");
  EXPECT_EQ(Bytes(at, 14), std::string("Shorter\0\0\0\0\0\0\0", 14));
  EXPECT_EQ(block_.Bytes().size(), camera_.bytes.size());
  EXPECT_EQ(block_.Text(Id::main, 270), "Shorter");
  EXPECT_EQ(block_.Get(Id::main, 270)->count, 8U);
}

TEST_P(ExifChanges, Should_AppendWhatGrows) {
  const size_t at = PlaceOf("A description");
  block_.SetText(Id::main, 270, "A description that is longer");
  EXPECT_EQ(Bytes(at, 14), std::string(14, '\0'));
  EXPECT_GE(PlaceOf("A description that is longer"), camera_.bytes.size());
  EXPECT_EQ(block_.Text(Id::main, 270), "A description that is longer");
}

TEST_P(ExifChanges, Should_ChangeOneValue_When_TwoShareTheirBytes) {
  std::string bytes = camera_.bytes;
  // XResolution leads to YResolution's bytes.
  const auto entry = [&](uint16_t tag) { return bytes.find(writer_.Word(tag) + writer_.Word(5)); };
  bytes.replace(entry(282) + 8, 4, bytes.substr(entry(283) + 8, 4));
  block_ = ExifBlock(BytesOf(bytes));
  block_.SetRational(Id::main, 282, 150);
  EXPECT_THAT(block_.Numbers(Id::main, 282), Each(150));
  EXPECT_THAT(block_.Numbers(Id::main, 283), Each(300));
}

TEST_P(ExifChanges, Should_MoveTheTable_When_AnEntryIsAdded) {
  const auto before = AllTags(block_);
  block_.SetText(Id::main, 315, "An artist");
  auto after = AllTags(block_);
  EXPECT_EQ(block_.Text(Id::main, 315), "An artist");
  after.erase({Id::main, 315});
  EXPECT_EQ(after, before);
  EXPECT_EQ(Bytes(8, 100), std::string(100, '\0'));
  std::vector<uint16_t> tags;
  for (const TagValue& value : block_.All(Id::main)) tags.push_back(value.tag);
  EXPECT_TRUE(std::is_sorted(tags.begin(), tags.end()));
}

TEST_P(ExifChanges, Should_RemoveAnEntryWithinItsTable) {
  auto before = AllTags(block_);
  const size_t at = PlaceOf("2021:02:03 04:05:06");
  block_.Remove(Id::main, 306);
  before.erase({Id::main, 306});
  EXPECT_EQ(AllTags(block_), before);
  EXPECT_EQ(Bytes(at, 20), std::string(20, '\0'));
  EXPECT_EQ(block_.Bytes().size(), camera_.bytes.size());
}

TEST_P(ExifChanges, Should_RemoveADirectoryWithItsPointer) {
  block_.Remove(Id::main, 34853);
  EXPECT_TRUE(block_.All(Id::gps).empty());
  EXPECT_FALSE(block_.Has(Id::main, 34853));
  EXPECT_EQ(PlaceOf(writer_.Long(48) + writer_.Long(1)), std::string::npos);
  EXPECT_EQ(block_.Text(Id::interop, 1), "R98");
}

TEST_P(ExifChanges, Should_MakeDirectories) {
  block_.Remove(Id::main, 34853);
  block_.SetText(Id::gps, 1, "S");
  EXPECT_EQ(block_.Text(Id::gps, 1), "S");
  EXPECT_EQ(block_.All(Id::gps).size(), 1U);
}

TEST_P(ExifChanges, Should_ReplaceTheThumbnailInPlace_When_ItFits) {
  const size_t at = PlaceOf(camera_.thumbnail);
  const std::string small = JpegThumbnail(60, 'n');
  block_.SetThumbnail(BytesOf(small));
  const auto thumbnail = block_.Thumbnail();
  EXPECT_EQ(std::string(thumbnail.begin(), thumbnail.end()), small);
  EXPECT_EQ(PlaceOf(small), at);
  EXPECT_EQ(block_.Bytes().size(), camera_.bytes.size() - 40);
  EXPECT_FALSE(block_.Has(Id::thumbnail, 274));
}

TEST_P(ExifChanges, Should_ReplaceTheThumbnail_When_ItGrows) {
  const std::string large = JpegThumbnail(500, 'n');
  block_.SetThumbnail(BytesOf(large));
  const auto thumbnail = block_.Thumbnail();
  EXPECT_EQ(std::string(thumbnail.begin(), thumbnail.end()), large);
  EXPECT_EQ(PlaceOf(std::string(20, '\x55')), std::string::npos);
  EXPECT_LT(block_.Bytes().size(), camera_.bytes.size() + 500);
}

TEST_P(ExifChanges, Should_RemoveTheThumbnail) {
  block_.RemoveThumbnail();
  EXPECT_FALSE(block_.HasThumbnail());
  EXPECT_TRUE(block_.All(Id::thumbnail).empty());
  EXPECT_EQ(PlaceOf(std::string(20, '\x55')), std::string::npos);
  EXPECT_LT(block_.Bytes().size(), camera_.bytes.size() - 100);
  block_.SetThumbnail(BytesOf(camera_.thumbnail));
  EXPECT_EQ(block_.Thumbnail().size(), 100U);
}

TEST_P(ExifChanges, ShrinkTo_Should_MoveValuesIntoGaps_BeforeTheThumbnailGoes) {
  constexpr uint16_t kCopyright = 33432;
  // The table of the main directory moves to the end and leaves a gap.
  block_.SetText(Id::main, kCopyright, "a copyright of some length");
  auto tags = AllTags(block_);
  const size_t size = block_.Bytes().size();
  block_.ShrinkTo(size);
  EXPECT_EQ(block_.Bytes().size(), size);
  block_.ShrinkTo(size - 20);
  EXPECT_LE(block_.Bytes().size(), size - 20);
  EXPECT_TRUE(block_.HasThumbnail());
  EXPECT_EQ(AllTags(ExifBlock(block_.Bytes())), tags);
  block_.ShrinkTo(size - 120);
  EXPECT_LE(block_.Bytes().size(), size - 120);
  EXPECT_FALSE(block_.HasThumbnail());
  std::erase_if(tags, [](const auto& tag) { return tag.first.first == Id::thumbnail; });
  EXPECT_EQ(AllTags(ExifBlock(block_.Bytes())), tags);
}

TEST_P(ExifChanges, Should_KeepWhatStandsInTheThumbnailsRange) {
  // The length of the thumbnail covers bytes of another value.
  std::string bytes = camera_.bytes;
  const size_t length = bytes.find(writer_.Word(514) + writer_.Word(4));
  const std::string kept = "text behind the thumbnail";
  bytes.replace(length + 8, 4, writer_.Long(static_cast<uint32_t>(100 + kept.size() + 1)));
  const size_t description = bytes.find(writer_.Word(270) + writer_.Word(2));
  bytes.replace(description + 4, 8,
                writer_.Long(static_cast<uint32_t>(kept.size() + 1)) +
                    writer_.Long(static_cast<uint32_t>(bytes.size())));
  bytes += kept + '\0';
  block_ = ExifBlock(BytesOf(bytes));
  block_.RemoveThumbnail();
  EXPECT_EQ(block_.Text(Id::main, 270), kept);
  EXPECT_EQ(PlaceOf(std::string(20, '\x55')), std::string::npos);
}

TEST_P(ExifChanges, Should_AddAThumbnail_When_TheMainTableHasNoLink) {
  std::string bytes = writer_.Header() + writer_.Directory(8, {writer_.Short(274, 6)});
  bytes.resize(bytes.size() - 4);
  ExifBlock block(BytesOf(bytes));
  EXPECT_FALSE(block.IsDamaged());
  block.SetThumbnail(BytesOf(camera_.thumbnail));
  EXPECT_EQ(block.Thumbnail().size(), 100U);
  EXPECT_EQ(block.Number(Id::main, 274), 6U);
  EXPECT_FALSE(ExifBlock(block.Bytes()).IsDamaged());
}

TEST_P(ExifChanges, Should_CompleteATableWithoutLink) {
  std::string bytes = writer_.Header() + writer_.Directory(8, {writer_.Short(274, 6)});
  bytes.resize(bytes.size() - 4);
  for (const char* rest : {"", "\x09", "\x09\x09\x09"}) {
    ExifBlock block(BytesOf(bytes + rest));
    block.SetText(Id::main, 274, "text that is appended");
    block.SetText(Id::gps, 29, "2024:01:02");
    EXPECT_FALSE(block.IsDamaged());
    EXPECT_FALSE(block.HasThumbnail());
    EXPECT_EQ(block.Text(Id::main, 274), "text that is appended");
    EXPECT_EQ(block.Text(Id::gps, 29), "2024:01:02");
  }
}

TEST_P(ExifChanges, SetRational_Should_BeExactForUsualNumbers) {
  for (const double number : {0.0, 1.0, 300.0, 72.009, 0.1, 118.11, 1.0 / 3, 4294967295.0, -2.5}) {
    block_.SetRational(Id::main, 282, number);
    EXPECT_DOUBLE_EQ(block_.Numbers(Id::main, 282).at(0), number);
  }
  EXPECT_THROW(block_.SetRational(Id::main, 282, std::nan("")), RangeError);
}

TEST_P(ExifChanges, SetUpright_Should_ChangeTwoBytes) {
  EXPECT_TRUE(block_.SetUpright());
  EXPECT_EQ(block_.Number(Id::main, 274), 1U);
  int changed = 0;
  for (size_t i = 0; i < camera_.bytes.size(); ++i) {
    changed += static_cast<uint8_t>(camera_.bytes[i]) != block_.Bytes()[i] ? 1 : 0;
  }
  EXPECT_EQ(changed, 1);
}

TEST_P(ExifChanges, SetUpright_Should_RepairADamagedBlock) {
  std::string bytes = camera_.bytes.substr(0, 150);
  ExifBlock block(BytesOf(bytes));
  ASSERT_TRUE(block.IsDamaged());
  EXPECT_TRUE(block.SetUpright());
  EXPECT_EQ(block.Number(Id::main, 274), 1U);
  EXPECT_EQ(block.Bytes().size(), 150U);
  EXPECT_THROW(block.SetText(Id::main, 270, "x"), FormatError);
}

TEST_P(ExifChanges, SetUpright_Should_SayWhenTheOrientationIsUnknown) {
  ExifBlock cut(BytesOf(camera_.bytes.substr(0, 30)));
  EXPECT_FALSE(cut.SetUpright());
  ExifBlock nothing(BytesOf(camera_.bytes.substr(0, 6)));
  EXPECT_FALSE(nothing.SetUpright());
}

TEST_P(ExifChanges, Set_Should_RefuseWhatDoesNotFit) {
  EXPECT_THROW(block_.Set(Id::main, {270, 2, 5, {1, 2}}), RangeError);
  EXPECT_THROW(block_.Set(Id::main, {270, 14, 1, {1}}), RangeError);
  EXPECT_THROW(block_.SetLong(Id::main, 34665, 8), RangeError);
}

TEST_P(ExifChanges, Should_KeepAllOthers_When_RandomTagsChange) {
  const unsigned seed = std::random_device()();
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  std::mt19937 random(seed);
  constexpr uint16_t kTags[] = {270, 271, 274, 282, 283, 305, 306, 315, 33432, 40962, 3, 5, 4097};
  constexpr Id kDirectories[] = {Id::main, Id::exif, Id::gps, Id::interop};
  constexpr uint16_t kTypes[] = {1, 2, 3, 4, 5, 7, 8, 9, 10, 11, 12, 13};
  for (int series = 0; series < 40; ++series) {
    block_ = ExifBlock(BytesOf(camera_.bytes));
    auto expected = AllTags(block_);
    for (int round = 0; round < 40; ++round) {
      const Id directory = kDirectories[random() % 4];
      const uint16_t tag = kTags[random() % std::size(kTags)];
      if (random() % 3 == 0) {
        block_.Remove(directory, tag);
        expected.erase({directory, tag});
      } else {
        TagValue value = {tag, kTypes[random() % std::size(kTypes)], random() % 12, {}};
        value.bytes.resize(value.count * detail::BytesOfTagType(value.type));
        for (uint8_t& byte : value.bytes) byte = static_cast<uint8_t>(random());
        block_.Set(directory, value);
        expected[{directory, tag}] = value;
      }
      ASSERT_EQ(AllTags(block_), expected) << "series " << series << ", round " << round;
      ASSERT_FALSE(block_.IsDamaged());
      ASSERT_EQ(Bytes(camera_.makerNoteAt, camera_.makerNote.size()), camera_.makerNote);
      const auto thumbnail = block_.Thumbnail();
      ASSERT_EQ(std::string(thumbnail.begin(), thumbnail.end()), camera_.thumbnail);
    }
  }
}

TEST(ExifChangesOfAnEmptyBlock, Should_MakeEverything) {
  ExifBlock block;
  EXPECT_TRUE(block.IsEmpty());
  EXPECT_FALSE(block.IsDamaged());
  block.SetText(Id::interop, 1, "R98");
  block.SetText(Id::main, 271, "Cam");
  block.SetThumbnail(BytesOf(JpegThumbnail(33, 'a')));
  EXPECT_EQ(block.Text(Id::interop, 1), "R98");
  EXPECT_EQ(block.Text(Id::main, 271), "Cam");
  EXPECT_EQ(block.Thumbnail().size(), 33U);
  EXPECT_FALSE(ExifBlock(block.Bytes()).IsDamaged());
}

}  // namespace
}  // namespace rasterkit
