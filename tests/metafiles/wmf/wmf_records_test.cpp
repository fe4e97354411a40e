#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/metafiles/wmf/wmf_extent.h>

#include "tests/support/wmf_file.h"

namespace rasterkit::test {
namespace {

using namespace detail;

std::vector<WmfFunction> Functions(std::span<const uint8_t> bytes, std::string* damage = nullptr) {
  WmfRecords records(bytes);
  std::vector<WmfFunction> functions;
  while (const auto record = records.Next()) functions.push_back(record->function);
  if (damage != nullptr) *damage = records.Damage();
  return functions;
}

WmfFile TwoLines() {
  WmfFile file;
  file.Add(WmfFunction::moveTo, {5, 3}).Add(WmfFunction::lineTo, {11, 17});
  return file;
}

TEST(WmfRecords, Should_WalkToTheLastRecord_When_FileIsWhole) {
  std::string damage = "unset";
  EXPECT_THAT(
      Functions(TwoLines().Bytes(), &damage),
      testing::ElementsAre(WmfFunction::moveTo, WmfFunction::lineTo, WmfFunction::endOfFile));
  EXPECT_EQ(damage, "");
}

TEST(WmfRecords, Should_ReadThePlacement_When_FileIsPlaceable) {
  WmfFile file = TwoLines();
  const auto plain = file.Bytes();
  EXPECT_FALSE(WmfRecords(plain).Placement());
  file.box = {{-7, 9, 300, -200}};
  file.unitsPerInch = 1440;
  const auto bytes = file.Bytes();
  const auto placement = WmfRecords(bytes).Placement();
  ASSERT_TRUE(placement);
  EXPECT_EQ(placement->left, -7);
  EXPECT_EQ(placement->top, 9);
  EXPECT_EQ(placement->right, 300);
  EXPECT_EQ(placement->bottom, -200);
  EXPECT_EQ(placement->unitsPerInch, 1440);
  EXPECT_EQ(Functions(bytes), Functions(plain));
}

TEST(WmfRecords, Should_TakeBothKindsAndVersionsOfHeaders) {
  auto bytes = TwoLines().Bytes();
  for (const uint8_t type : {1, 2}) {
    for (const uint8_t version : {1, 3}) {
      bytes[0] = type;
      bytes[5] = version;
      EXPECT_EQ(Functions(bytes).size(), 3u) << int{type} << ", " << int{version};
    }
  }
  bytes[0] = 3;
  EXPECT_THROW(WmfRecords{bytes}, FormatError);
  bytes[0] = 1;
  bytes[5] = 2;
  EXPECT_THROW(WmfRecords{bytes}, FormatError);
}

TEST(WmfRecords, Should_BeRefused_When_APlaceableHeaderIsCutOff) {
  WmfFile file = TwoLines();
  file.box = {{0, 0, 10, 10}};
  const auto bytes = file.Bytes();
  for (size_t count = 0; count < kWmfPlaceableHeader + kWmfHeader; ++count) {
    EXPECT_THROW(WmfRecords(std::span(bytes).first(count)), FormatError) << count;
  }
}

TEST(WmfRecords, Should_BeRefused_When_ThereIsNoHeader) {
  const auto whole = TwoLines().Bytes();
  for (size_t count = 0; count < kWmfHeader; ++count) {
    EXPECT_THROW(WmfRecords(std::span(whole).first(count)), FormatError) << count;
  }
  for (const size_t offset : {0, 2, 4}) {
    auto bytes = whole;
    bytes[offset] ^= 0x40;
    EXPECT_THROW(WmfRecords{bytes}, FormatError) << offset;
  }
}

TEST(WmfRecords, Should_KeepWhatIsWhole_When_DataEndInsideARecord) {
  const auto bytes = TwoLines().Bytes();
  for (size_t count = bytes.size() - 1; count >= kWmfHeader; --count) {
    std::string damage;
    const size_t records = Functions(std::span(bytes).first(count), &damage).size();
    EXPECT_EQ(records, count >= kWmfHeader + 20 ? 2u : count >= kWmfHeader + 10 ? 1u : 0u) << count;
    EXPECT_NE(damage, "") << count;
  }
}

TEST(WmfRecords, Should_EndTheWalk_When_ASizeIsImpossible) {
  for (const uint32_t words : {0u, 1u, 2u, 0x7FFFFFFFu, 0x80000002u, 0xFFFFFFFFu}) {
    WmfFile file = TwoLines();
    for (int i = 0; i < 4; ++i) file.records[i] = static_cast<uint8_t>(words >> (8 * i));
    std::string damage;
    EXPECT_TRUE(Functions(file.Bytes(), &damage).empty()) << words;
    EXPECT_THAT(damage, testing::StartsWith("WMF: ")) << words;
  }
}

TEST(WmfRecords, Should_AcceptALastRecordWithoutASize) {
  WmfFile file = TwoLines();
  file.hasEnd = false;
  auto bytes = file.Bytes();
  bytes.insert(bytes.end(), 6, 0);
  std::string damage;
  EXPECT_EQ(Functions(bytes, &damage).size(), 3u);
  EXPECT_EQ(damage, "");
}

TEST(WmfContents, Should_TakeTheFirstWindow) {
  WmfFile file;
  EXPECT_FALSE(ReadWmfContents(file.Bytes()).windowExt);
  file.Add(WmfFunction::setWindowOrg, {20, 10}).Add(WmfFunction::setWindowExt, {-50, 40});
  file.Add(WmfFunction::setWindowOrg, {0, 0}).Add(WmfFunction::setWindowExt, {7, 7});
  const WmfContents contents = ReadWmfContents(file.Bytes());
  EXPECT_EQ(contents.windowOrg, (PointD{10, 20}));
  EXPECT_EQ(contents.windowExt, (PointD{40, -50}));
}

TEST(WmfContents, Should_TakeTheNextWindow_When_OneHasNoWidthOrHeight) {
  WmfFile file;
  file.Add(WmfFunction::setWindowExt, {0, 5}).Add(WmfFunction::setWindowExt, {5, 0});
  file.Add(WmfFunction::setWindowExt, {9, 7});
  EXPECT_EQ(ReadWmfContents(file.Bytes()).windowExt, (PointD{7, 9}));
}

TEST(WmfContents, Should_SkipRecords_When_TheyAreTooShortOrEmpty) {
  WmfFile file;
  file.Add(WmfFunction::setMapMode).Add(WmfFunction::setWindowOrg, {1});
  file.Add(WmfFunction::setWindowExt, {1}).Add(WmfFunction::setWindowExt, {5, 0});
  file.Add(WmfFunction::setWindowExt, {17, 11});
  const WmfContents contents = ReadWmfContents(file.Bytes());
  EXPECT_EQ(contents.records, 6u);
  EXPECT_FALSE(contents.windowOrg);
  EXPECT_EQ(contents.windowExt, (PointD{11, 17}));
}

TEST(WmfContents, Should_KnowTheUnitsOfMetricModes) {
  const auto units = [](int mode) {
    WmfFile file;
    return ReadWmfContents(file.Add(WmfFunction::setMapMode, {mode}).Bytes()).unitsPerInch;
  };
  EXPECT_EQ(units(1), 0);
  EXPECT_EQ(units(2), 254);
  EXPECT_EQ(units(3), 2540);
  EXPECT_EQ(units(4), 100);
  EXPECT_EQ(units(5), 1000);
  EXPECT_EQ(units(6), 1440);
  EXPECT_EQ(units(8), 0);
  EXPECT_EQ(units(77), 0);
  WmfFile two;
  two.Add(WmfFunction::setMapMode, {8}).Add(WmfFunction::setMapMode, {5});
  two.Add(WmfFunction::setMapMode, {6});
  EXPECT_EQ(ReadWmfContents(two.Bytes()).unitsPerInch, 1000);
}

}  // namespace
}  // namespace rasterkit::test
