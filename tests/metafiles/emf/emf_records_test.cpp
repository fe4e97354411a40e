#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/metafiles/emf/emf_contents.h>

#include "tests/support/emf_file.h"

namespace rasterkit::test {
namespace {

using namespace detail;

std::vector<EmfType> Types(std::span<const uint8_t> bytes, std::string* damage = nullptr) {
  EmfRecords records(bytes);
  std::vector<EmfType> types;
  while (const auto record = records.Next()) types.push_back(record->type);
  if (damage != nullptr) *damage = records.Damage();
  return types;
}

EmfFile TwoLines() {
  EmfFile file;
  file.Add(EmfType::moveTo, {3, 5}).Add(EmfType::lineTo, {17, 11});
  return file;
}

TEST(EmfRecords, Should_WalkToTheLastRecord_When_FileIsWhole) {
  const auto bytes = TwoLines().Bytes();
  std::string damage = "unset";
  EXPECT_THAT(Types(bytes, &damage), testing::ElementsAre(EmfType::header, EmfType::moveTo,
                                                          EmfType::lineTo, EmfType::endOfFile));
  EXPECT_EQ(damage, "");
}

TEST(EmfRecords, Should_ReadFieldsBehindTypeAndSize) {
  const auto bytes = TwoLines().Bytes();
  EmfRecords records(bytes);
  records.Next();
  auto fields = records.Next()->Fields();
  EXPECT_EQ(fields.Left(), 8u);
  EXPECT_EQ(fields.Int(), 3);
  EXPECT_EQ(fields.Int(), 5);
  EXPECT_THROW(fields.Byte(), FormatError);
}

TEST(EmfRecords, Should_IgnoreWhatFollows_When_LastRecordIsRead) {
  auto bytes = TwoLines().Bytes();
  bytes.insert(bytes.end(), 40, 0xFF);
  std::string damage;
  EXPECT_EQ(Types(bytes, &damage).size(), 4u);
  EXPECT_EQ(damage, "");
}

TEST(EmfRecords, Should_TellThatTheEndIsMissing) {
  EmfFile file = TwoLines();
  file.hasEnd = false;
  std::string damage;
  EXPECT_EQ(Types(file.Bytes(), &damage).size(), 3u);
  EXPECT_EQ(damage, "EMF: the data end before the last record");
}

TEST(EmfRecords, Should_KeepWhatIsWhole_When_DataEndInsideARecord) {
  const auto bytes = TwoLines().Bytes();
  const size_t whole = bytes.size();
  // Each cut, from the last byte back to the start, loses the records that it cuts.
  for (size_t count = whole - 1; count > 0; --count) {
    std::string damage;
    const size_t records = Types(std::span(bytes).first(count), &damage).size();
    EXPECT_NE(damage, "") << count;
    EXPECT_EQ(records, count >= whole - 20   ? 3u
                       : count >= whole - 36 ? 2u
                       : count >= 88         ? 1u
                                             : 0u)
        << count;
  }
}

TEST(EmfRecords, Should_EndTheWalk_When_ASizeIsImpossible) {
  for (const uint32_t size : {0u, 1u, 7u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
    EmfFile file = TwoLines();
    for (int i = 0; i < 4; ++i) file.records[4 + i] = static_cast<uint8_t>(size >> (8 * i));
    std::string damage;
    EXPECT_THAT(Types(file.Bytes(), &damage), testing::ElementsAre(EmfType::header)) << size;
    EXPECT_THAT(damage, testing::StartsWith("EMF: ")) << size;
  }
}

TEST(EmfRecords, Should_RefuseParts_When_TheyLieOutsideTheRecord) {
  const auto bytes = TwoLines().Bytes();
  EmfRecords records(bytes);
  records.Next();
  const EmfRecord record = *records.Next();
  EXPECT_EQ(record.Part(8, 8)[4], 5);
  EXPECT_EQ(record.Part(16, 0).size(), 0u);
  EXPECT_THROW(record.Part(9, 8), FormatError);
  EXPECT_THROW(record.Part(17, 0), FormatError);
  EXPECT_THROW(record.Part(0xFFFFFFFF, 0xFFFFFFFF), FormatError);
}

TEST(EmfHeader, Should_ReadSizesAndTexts) {
  EmfFile file;
  file.bounds = {-4, 2, 95, 70};
  file.frame = {10, 20, 2600, 2100};
  file.micrometersX = 250500;
  file.micrometersY = 200250;
  file.description = std::u16string(u"Plotter\u00E4") + u'\0' + u"Ground floor" + u'\0' + u'\0';
  const auto bytes = file.Bytes();
  const EmfHeader header = ReadEmfHeader(*EmfRecords(bytes).Next());
  EXPECT_EQ(header.bounds.left, -4);
  EXPECT_EQ(header.bounds.bottom, 70);
  EXPECT_EQ(header.frame.right, 2600);
  EXPECT_EQ(header.bytes, bytes.size());
  EXPECT_EQ(header.records, 2u);
  EXPECT_EQ(header.deviceWidth, 1000);
  EXPECT_EQ(header.deviceWidthMm, 250.5);
  EXPECT_EQ(header.deviceHeightMm, 200.25);
  EXPECT_EQ(header.program, "Plotter\u00E4");
  EXPECT_EQ(header.title, "Ground floor");
}

TEST(EmfHeader, Should_TakeMillimeters_When_HeaderIsShort) {
  const auto bytes = EmfFile().Bytes();
  const EmfHeader header = ReadEmfHeader(*EmfRecords(bytes).Next());
  EXPECT_EQ(header.deviceWidthMm, 250);
  EXPECT_EQ(header.program, "");
}

/// A header with micrometers, followed by a description.
std::vector<uint8_t> WithMicrometers(int32_t x, int32_t y, std::u16string description = {}) {
  EmfFile file;
  file.micrometersX = x;
  file.micrometersY = y;
  file.description = std::move(description);
  return file.Bytes();
}

double WidthMm(const std::vector<uint8_t>& bytes) {
  return ReadEmfHeader(*EmfRecords(bytes).Next()).deviceWidthMm;
}

TEST(EmfHeader, Should_TakeMillimeters_When_MicrometersAreOthers) {
  EXPECT_EQ(WidthMm(WithMicrometers(250900, 200100)), 250.9);
  EXPECT_EQ(WidthMm(WithMicrometers(260000, 200000)), 250);
  EXPECT_EQ(WidthMm(WithMicrometers(250000, 220000)), 250);
  EXPECT_EQ(WidthMm(WithMicrometers(-250000, 200000)), 250);
  EmfFile tiny;
  tiny.deviceWidthMm = 1;
  tiny.deviceHeightMm = 1;
  tiny.micrometersX = tiny.micrometersY = 800;
  auto bytes = tiny.Bytes();
  EXPECT_EQ(WidthMm(bytes), 0.8);
  bytes[100] = bytes[101] = 0;
  EXPECT_EQ(WidthMm(bytes), 1);
}

TEST(EmfHeader, Should_TakeMillimeters_When_DescriptionOrPixelFormatLieWhereMicrometersWould) {
  const auto setLong = [](std::vector<uint8_t>& bytes, size_t at, uint32_t value) {
    for (size_t i = 0; i < 4; ++i) bytes[at + i] = static_cast<uint8_t>(value >> (8 * i));
  };
  auto described = WithMicrometers(250500, 200250, u"Plotter");
  setLong(described, 64, 100);
  EXPECT_EQ(WidthMm(described), 250);
  auto formatted = WithMicrometers(250500, 200250);
  setLong(formatted, 88, 8);
  EXPECT_EQ(WidthMm(formatted), 250.5);  // offset 0: no description
  setLong(formatted, 92, 100);
  EXPECT_EQ(WidthMm(formatted), 250);
  setLong(formatted, 88, 0);
  EXPECT_EQ(WidthMm(formatted), 250.5);
}

TEST(EmfHeader, Should_BeRefused_When_ItIsAnotherRecord) {
  auto bytes = EmfFile().Bytes();
  bytes[0] = 2;
  EXPECT_THROW(ReadEmfHeader(*EmfRecords(bytes).Next()), FormatError);
}

TEST(EmfHeader, Should_BeRefused_When_SignatureIsAnother) {
  auto bytes = EmfFile().Bytes();
  bytes[40] = 'x';
  EXPECT_THROW(ReadEmfHeader(*EmfRecords(bytes).Next()), FormatError);
}

TEST(EmfHeader, Should_CutTheText_When_ItsLengthIsALie) {
  EmfFile file;
  file.description = u"abc";
  auto bytes = file.Bytes();
  bytes[60] = bytes[61] = bytes[62] = bytes[63] = 0xFF;
  EXPECT_EQ(ReadEmfHeader(*EmfRecords(bytes).Next()).program, "abc");
  bytes[64] = 0xFF;  // with a wrong offset
  EXPECT_EQ(ReadEmfHeader(*EmfRecords(bytes).Next()).program, "");
  bytes[64] = 0;  // without an offset
  EXPECT_EQ(ReadEmfHeader(*EmfRecords(bytes).Next()).program, "");
}

FieldBytes PlusComment(std::initializer_list<uint16_t> types) {
  FieldBytes fields;
  fields.Long(static_cast<int64_t>(4 + 12 * types.size())).Long(kEmfPlusMark);
  for (const uint16_t type : types) fields.Word(type).Word(0).Long(12).Long(0);
  return fields;
}

TEST(EmfContents, Should_TellRecordsOfTheNewerKind) {
  EmfFile file;
  file.Add(EmfType::comment, PlusComment({0x4001}));
  EmfContents contents = ReadEmfContents(file.Bytes());
  EXPECT_TRUE(contents.hasEmfPlus);
  EXPECT_FALSE(contents.hasEmfPlusDrawing);
  EXPECT_FALSE(contents.hasDrawing);
  file.Add(EmfType::comment, PlusComment({0x4008, 0x400A}));
  contents = ReadEmfContents(file.Bytes());
  EXPECT_TRUE(contents.hasEmfPlusDrawing);
  EXPECT_FALSE(contents.hasDrawing);
  EXPECT_EQ(contents.records, 4u);
  file.Add(EmfType::rectangle, {1, 1, 5, 5});
  EXPECT_TRUE(ReadEmfContents(file.Bytes()).hasDrawing);
}

TEST(EmfContents, Should_KnowWhichNewerRecordsDraw) {
  const auto draws = [](uint16_t type) {
    EmfFile file;
    file.Add(EmfType::comment, PlusComment({type}));
    return ReadEmfContents(file.Bytes()).hasEmfPlusDrawing;
  };
  for (const uint16_t type : {0x4009, 0x400A, 0x401B, 0x401C, 0x4036}) EXPECT_TRUE(draws(type));
  for (const uint16_t type : {0x4001, 0x4008, 0x401D, 0x4035, 0x4037, 0x9}) {
    EXPECT_FALSE(draws(type)) << type;
  }
}

TEST(EmfContents, Should_EndAtTheNewerRecord_When_ItsSizeIsImpossible) {
  const auto draws = [](int64_t size) {
    EmfFile file;
    FieldBytes fields{64, kEmfPlusMark, 0x4001, size, 0};
    for (int i = 0; i < 3; ++i) fields.Longs({0x400A, 12, 0});
    file.Add(EmfType::comment, fields);
    return ReadEmfContents(file.Bytes()).hasEmfPlusDrawing;
  };
  EXPECT_TRUE(draws(12));
  EXPECT_TRUE(draws(24));
  EXPECT_TRUE(draws(36));
  for (const uint32_t size : {0u, 1u, 4u, 8u, 11u, 48u, 49u, 60u, 0xFFFFu, 0xFFFFFFFFu}) {
    EXPECT_FALSE(draws(size)) << size;
  }
}

TEST(EmfContents, Should_NotWalkIntoANewerRecord_When_ItsSizeIsLessThanItsHead) {
  EmfFile file;
  file.Add(EmfType::comment, FieldBytes{64, kEmfPlusMark, 0x4001, 8, 0x400A, 12, 0, 0, 0});
  EXPECT_FALSE(ReadEmfContents(file.Bytes()).hasEmfPlusDrawing);
}

TEST(EmfContents, Should_IgnoreMarks_When_TheCommentIsTooShortForOne) {
  for (const int64_t stated : {0, 1, 3}) {
    EmfFile file;
    file.Add(EmfType::comment, FieldBytes{stated, kEmfPlusMark, 0x400A, 12, 0});
    const EmfContents contents = ReadEmfContents(file.Bytes());
    EXPECT_FALSE(contents.hasEmfPlus) << stated;
    EXPECT_FALSE(contents.hasEmfPlusDrawing) << stated;
  }
}

TEST(EmfContents, Should_IgnoreOtherAndBrokenComments) {
  EmfFile file;
  file.Add(EmfType::comment, {4, 0x43494447}).Add(EmfType::comment, {0});
  file.Add(EmfType::comment, {0x7FFFFFFF, 0}).Add(EmfType::comment);
  EXPECT_FALSE(ReadEmfContents(file.Bytes()).hasEmfPlus);
  // A size of 0 must not cause an endless loop.
  file.Add(EmfType::comment, FieldBytes{64, kEmfPlusMark, 0x4001, 0, 0, 0, 0});
  const EmfContents contents = ReadEmfContents(file.Bytes());
  EXPECT_TRUE(contents.hasEmfPlus);
  EXPECT_FALSE(contents.hasEmfPlusDrawing);
}

}  // namespace
}  // namespace rasterkit::test
