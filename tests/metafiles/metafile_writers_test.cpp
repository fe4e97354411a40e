// Written files must be readable by other programs: sizes, counts and checksums must be correct.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/metafiles/emf/emf_writer.h>
#include <rasterkit/metafiles/read_metafile_facts.h>
#include <rasterkit/metafiles/wmf/wmf_writer.h>
#include <rasterkit/raster/fill.h>
#include <rasterkit/runtime/memory/picture_memory_scope.h>

#include "tests/support/played_metafile.h"
#include "tests/support/wmf_file.h"

namespace rasterkit::test {
namespace {

using namespace detail;

Raster White(int width, int height) {
  Raster raster(pf24bit, width, height);
  FillRaster(raster, {0, 0, width, height}, clWhite);
  return raster;
}

uint32_t Long(std::span<const uint8_t> bytes, size_t at) {
  return MetafileBytes(bytes, at).Long();
}

TEST(EncodeWmf, Header_Should_TellSizesAndSum) {
  const std::vector<uint8_t> bytes = EncodeWmf(White(5, 3), 132, 79);
  MetafileBytes words(bytes);
  uint16_t sum = 0;
  for (size_t i = 0; i < kWmfPlaceableHeader / 2; ++i) sum ^= words.Word();
  EXPECT_EQ(sum, 0) << "the last word is the exclusive or of the others";
  const std::span<const uint8_t> plain = std::span(bytes).subspan(kWmfPlaceableHeader);
  EXPECT_EQ(2 * Long(plain, 6), plain.size());
  uint32_t longest = 0;
  WmfRecords records(bytes);
  while (const auto record = records.Next()) {
    longest = std::max(longest, static_cast<uint32_t>(record->bytes.size() / 2));
  }
  EXPECT_EQ(records.Damage(), "");
  EXPECT_EQ(Long(plain, 12), longest);
}

TEST(EncodeWmf, Box_Should_KeepTheSize_When_ASideIsLong) {
  for (const auto& [width, height] : {std::pair(2540, 1270),
                                      {1270, 2540},
                                      {32767, 10},
                                      {32768, 16384},
                                      {10000, 150000},
                                      {3000000, 20000},
                                      {1, 1}}) {
    const MetafileFacts facts = ReadMetafileFacts(EncodeWmf(White(2, 2), width, height));
    EXPECT_NEAR(facts.widthMm100, width, 1 + width / 20.0) << width << " x " << height;
    EXPECT_NEAR(facts.heightMm100, height, 1 + height / 20.0) << width << " x " << height;
    EXPECT_EQ(facts.warnings, std::vector<std::string>());
  }
}

TEST(EncodeWmf, Should_Refuse_When_ASideIsMoreThanTheRecordHolds) {
  EXPECT_NO_THROW(EncodeWmf(White(32767, 1), 100, 100));
  EXPECT_NO_THROW(EncodeWmf(White(1, 32767), 100, 100));
  EXPECT_THROW(EncodeWmf(White(32768, 1), 100, 100), LimitError);
  EXPECT_THROW(EncodeWmf(White(1, 32768), 100, 100), LimitError);
}

TEST(EmfWriter, Header_Should_TellSizesAndCounts) {
  EmfWriter writer;
  writer.Add(EmfType::lineTo, {30, 20});
  EmfFields odd;
  writer.Add(EmfType::comment, odd.Long(1).Byte(7));
  EmfPicture picture;
  picture.width = 96;
  picture.height = 48;
  picture.widthMm100 = 2545;
  picture.heightMm100 = 1270;
  picture.drawn = RectD{-5.5, 2.25, 30.5, 200};
  picture.handles = 7;
  const std::vector<uint8_t> bytes = writer.Finish(picture);
  EmfRecords records(bytes);
  const EmfRecord head = *records.Next();
  const EmfHeader header = ReadEmfHeader(head);
  EXPECT_EQ(header.bytes, bytes.size());
  EXPECT_EQ(header.records, 4u);
  EXPECT_EQ(MetafileBytes(head.bytes, 56).Word(), 7) << "handles";
  EXPECT_EQ(header.bounds.left, 0);
  EXPECT_EQ(header.bounds.top, 2);
  EXPECT_EQ(header.bounds.right, 30);
  EXPECT_EQ(header.bounds.bottom, 47);
  EXPECT_EQ(header.frame.right, 2545);
  EXPECT_EQ(header.frame.bottom, 1270);
  EXPECT_EQ(header.deviceWidth, 96);
  EXPECT_EQ(header.deviceHeight, 48);
  EXPECT_EQ(header.deviceWidthMm, 25.45);
  EXPECT_EQ(Long(head.bytes, 80), 25u);
  EXPECT_EQ(records.Next()->bytes.size(), 16u);
  EXPECT_EQ(records.Next()->bytes.size(), 16u) << "records are filled up to four bytes";
  const EmfRecord last = *records.Next();
  EXPECT_EQ(last.type, EmfType::endOfFile);
  EXPECT_EQ(Long(last.bytes, last.bytes.size() - 4), last.bytes.size());
  EXPECT_EQ(records.Damage(), "");
}

TEST(EmfWriter, Bounds_Should_BeEmpty_When_NothingIsPainted) {
  EmfPicture picture;
  picture.width = picture.height = 10;
  picture.widthMm100 = picture.heightMm100 = 1;
  const std::vector<uint8_t> bytes = EmfWriter().Finish(picture);
  const EmfHeader header = ReadEmfHeader(*EmfRecords(bytes).Next());
  EXPECT_LT(header.bounds.right, header.bounds.left);
  EXPECT_LT(header.bounds.bottom, header.bounds.top);
  EXPECT_GE(Long(bytes, 80), 1u) << "millimeters that others divide by";
  EXPECT_GE(Long(bytes, 84), 1u);
}

TEST(EmfFields, Numbers_Should_BeTheNearest) {
  EmfFields fields;
  fields.Number(2.6).Number(-2.6).Number(1e300).Number(-1e300).Number(std::nan(""));
  MetafileBytes bytes(fields.Bytes());
  EXPECT_EQ(bytes.Int(), 3);
  EXPECT_EQ(bytes.Int(), -3);
  EXPECT_EQ(bytes.Int(), INT32_MAX);
  EXPECT_EQ(bytes.Int(), INT32_MIN);
  EXPECT_EQ(bytes.Int(), 0);
}

TEST(EmfWriter, Should_RaiseLimitError_When_RecordsAreMoreThanTheBudget) {
  const PictureMemoryScope small(1000);
  EmfWriter writer;
  const auto add = [&](int count) {
    for (int i = 0; i < count; ++i) writer.Add(EmfType::lineTo, {1, 2});
  };
  EXPECT_NO_THROW(add(50));
  EXPECT_THROW(add(50), LimitError);
}

TEST(WmfToEmf, Handles_Should_CountTheHighestOneAndZero) {
  WmfFile file;
  for (int i = 0; i < 3; ++i) {
    file.Add(WmfFunction::createBrushIndirect, FieldBytes().Word(0).Long(0).Word(0));
  }
  const std::vector<uint8_t> bytes = EmfOf(file.Bytes());
  EXPECT_EQ(MetafileBytes(bytes, 56).Word(), 4);
  EXPECT_EQ(MetafileBytes(EmfOf(WmfFile().Bytes()), 56).Word(), 1);
  file.Add(WmfFunction::deleteObject, {0});
  file.Add(WmfFunction::createBrushIndirect, FieldBytes().Word(0).Long(0).Word(0));
  EXPECT_EQ(MetafileBytes(EmfOf(file.Bytes()), 56).Word(), 4);
}

TEST(WmfToEmf, RecordsThatSayNothing_Should_BeLeftOut) {
  const std::vector<uint8_t> nothing = EmfOf(WmfFile().Bytes());
  const auto written = [](WmfFunction function, std::initializer_list<int64_t> words) {
    WmfFile file;
    file.Add(function, words);
    return EmfOf(file.Bytes());
  };
  EXPECT_EQ(written(WmfFunction::setViewportExt, {0, 50}), nothing);
  EXPECT_EQ(written(WmfFunction::setViewportExt, {50, 0}), nothing);
  EXPECT_EQ(written(WmfFunction::paintRegion, {7}), nothing);
  EXPECT_EQ(written(WmfFunction::selectObject, {7}), nothing);
  EXPECT_EQ(written(WmfFunction::escape, {15, 0}), nothing);
}

TEST(WmfToEmf, BlitsWithoutABitmap_Should_BeLeftOut_When_TheyNeedOne) {
  const auto records = [](int64_t operation) {
    WmfFile file;
    file.box = {{0, 0, 100, 80}};
    file.Add(WmfFunction::dibBitBlt, {0x20, operation, 0, 0, 0, 20, 30, 10, 10});
    return ReadMetafileFacts(EmfOf(file.Bytes())).records;
  };
  EXPECT_EQ(records(0xF0), records(0xCC) + 1);
}

TEST(WmfToEmf, Texts_Should_NameNoSteps_When_TheyHaveNone) {
  WmfFile file;
  file.box = {{0, 0, 100, 80}};
  file.Add(WmfFunction::textOut, {4, 0x6554, 0x7478, 20, 20});
  const std::vector<uint8_t> bytes = EmfOf(file.Bytes());
  EmfRecords records(bytes);
  std::optional<EmfRecord> record = records.Next();
  while (record && record->type != EmfType::extTextOutW) record = records.Next();
  ASSERT_TRUE(record);
  EXPECT_EQ(Long(record->bytes, 44), 4u) << "letters";
  EXPECT_EQ(Long(record->bytes, 72), 0u) << "steps";
}

}  // namespace
}  // namespace rasterkit::test
