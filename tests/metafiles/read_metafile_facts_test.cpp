#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/metafiles/read_metafile_facts.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/emf_file.h"
#include "tests/support/wmf_file.h"

namespace rasterkit::test {
namespace {

using namespace detail;

TEST(MetafileFacts, Should_TakeTheFrameAsSize_When_Enhanced) {
  EmfFile file;
  file.frame = {100, 200, 2640, 1470};
  const MetafileFacts facts = ReadMetafileFacts(file.Bytes());
  EXPECT_EQ(facts.kind, MetafileKind::emf);
  EXPECT_EQ(facts.widthMm100, 2540);
  EXPECT_EQ(facts.heightMm100, 1270);
  EXPECT_EQ(facts.width, 96);
  EXPECT_EQ(facts.height, 48);
  EXPECT_EQ(facts.deviceWidth, 1000);
  EXPECT_EQ(facts.deviceHeightMm, 200);
  EXPECT_EQ(facts.records, 2u);
  EXPECT_THAT(facts.warnings, testing::IsEmpty());
}

TEST(MetafileFacts, Should_TakeTheBounds_When_FrameIsEmpty) {
  EmfFile file;
  file.frame = {0, 0, 0, 0};
  const MetafileFacts facts = ReadMetafileFacts(file.Bytes());
  EXPECT_EQ(facts.frame.right, 2500);  // 100 pixels of 0.25 mm
  EXPECT_EQ(facts.frame.bottom, 2000);
  EXPECT_THAT(facts.warnings, testing::ElementsAre("EMF: the frame is empty; the bounds are used"));
}

TEST(MetafileFacts, Should_TakeTheBounds_When_FrameHasNoWidthOrHeight) {
  for (const std::array<int32_t, 4>& frame :
       {std::array{0, 0, 2500, 0}, {0, 0, 0, 2000}, {0, 10, 2500, 5}}) {
    EmfFile file;
    file.frame = frame;
    file.bounds = {10, 20, 49, 39};
    const MetafileFacts facts = ReadMetafileFacts(file.Bytes());
    EXPECT_EQ(facts.frame.left, 250);
    EXPECT_EQ(facts.frame.top, 500);
    EXPECT_EQ(facts.widthMm100, 1000);
    EXPECT_EQ(facts.heightMm100, 500);
  }
}

TEST(MetafileFacts, Should_TakeACommonScreen_When_NoDeviceIsNamed) {
  const auto broken = [](int32_t EmfFile::*field) {
    EmfFile file;
    file.frame = {0, 0, 0, 0};
    file.bounds = {0, 0, 191, 95};
    file.*field = 0;
    return ReadMetafileFacts(file.Bytes());
  };
  for (const auto field : {&EmfFile::deviceWidth, &EmfFile::deviceHeight, &EmfFile::deviceWidthMm,
                           &EmfFile::deviceHeightMm}) {
    const MetafileFacts facts = broken(field);
    EXPECT_EQ(facts.deviceWidthMm, 25.4);
    EXPECT_EQ(facts.deviceHeight, 96);
    EXPECT_EQ(facts.width, 192);
    EXPECT_EQ(facts.height, 96);
    EXPECT_EQ(facts.widthMm100, 5080);
    EXPECT_THAT(facts.warnings, testing::Contains("EMF: the header states no reference device"));
  }
}

TEST(MetafileFacts, Sizes_Should_BeRoundedToTheNearest) {
  EmfFile file;
  file.frame = {0, 0, 278, 279};  // 10.507 and 10.545 pixels
  EXPECT_EQ(ReadMetafileFacts(file.Bytes()).width, 11);
  file.frame = {0, 0, 277, 279};  // 10.469
  EXPECT_EQ(ReadMetafileFacts(file.Bytes()).width, 10);
}

TEST(MetafileFacts, Should_HaveASize_When_NumbersAreExtreme) {
  EmfFile file;
  file.frame = {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX};
  file.deviceWidth = -1;
  MetafileFacts facts = ReadMetafileFacts(file.Bytes());
  EXPECT_GT(facts.width, 0);
  EXPECT_EQ(facts.widthMm100, INT32_MAX);
  EXPECT_GT(facts.deviceWidth, 0);
  file.frame = {5, 5, 4, 4};
  file.bounds = {INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN};
  facts = ReadMetafileFacts(file.Bytes());
  EXPECT_EQ(facts.width, 1);
  EXPECT_EQ(facts.heightMm100, 1);
}

TEST(MetafileFacts, Should_HaveASize_When_BoundsAreExtremeAndPixelsAreHuge) {
  EmfFile file;
  file.frame = {0, 0, 0, 0};
  file.bounds = {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX};
  file.deviceWidth = file.deviceHeight = 1;
  file.deviceWidthMm = file.deviceHeightMm = INT32_MAX;
  const MetafileFacts facts = ReadMetafileFacts(file.Bytes());
  EXPECT_LT(facts.frame.left, 0);
  EXPECT_GT(facts.frame.right, 0);
  EXPECT_GE(facts.widthMm100, 1 << 30);
  EXPECT_GE(facts.heightMm100, 1 << 30);
}

TEST(MetafileFacts, Should_HaveASize_When_CoordinatesOfAPlainFileRunAway) {
  for (const int steps : {60, 66, 67, 68, 69, 70, 80}) {
    WmfFile file;
    file.Add(WmfFunction::setMapMode, {8});
    for (int i = 0; i < steps; ++i) file.Add(WmfFunction::scaleWindowExt, {32767, 1, 32767, 1});
    file.Add(WmfFunction::moveTo, {30000, 30000}).Add(WmfFunction::lineTo, {-30000, 30000});
    const MetafileFacts facts = ReadMetafileFacts(file.Bytes());
    EXPECT_LE(std::abs(facts.bounds.left), 1 << 24) << steps;
    EXPECT_LE(std::abs(facts.bounds.bottom), 1 << 24) << steps;
    EXPECT_GE(facts.width, 1) << steps;
    EXPECT_GE(facts.heightMm100, 1) << steps;
  }
}

TEST(MetafileFacts, Should_TakeBoxAndUnits_When_Placeable) {
  WmfFile file;
  file.box = {{-100, 50, 900, -450}};
  file.unitsPerInch = 1000;
  const MetafileFacts facts = ReadMetafileFacts(file.Bytes());
  EXPECT_EQ(facts.kind, MetafileKind::placeableWmf);
  EXPECT_EQ(facts.unitsPerInch, 1000);
  EXPECT_EQ(facts.bounds.left, -100);
  EXPECT_EQ(facts.bounds.bottom, -450);
  EXPECT_EQ(facts.width, 96);
  EXPECT_EQ(facts.height, 48);
  EXPECT_EQ(facts.heightMm100, 1270);
}

TEST(MetafileFacts, Should_Warn_When_ThePlaceableHeaderIsEmpty) {
  WmfFile file;
  file.box = {{5, 5, 5, 9}};
  file.unitsPerInch = 0;
  file.Add(WmfFunction::setWindowExt, {48, 192});
  const MetafileFacts facts = ReadMetafileFacts(file.Bytes());
  EXPECT_EQ(facts.width, 192);
  EXPECT_EQ(facts.height, 48);
  EXPECT_EQ(facts.warnings.size(), 2u);
}

TEST(MetafileFacts, Should_TakeUnitsForPixels_When_PlainAndSmall) {
  WmfFile file;
  file.Add(WmfFunction::setWindowOrg, {3, 4}).Add(WmfFunction::setWindowExt, {-120, 300});
  const MetafileFacts facts = ReadMetafileFacts(file.Bytes());
  EXPECT_EQ(facts.kind, MetafileKind::wmf);
  EXPECT_EQ(facts.width, 300);
  EXPECT_EQ(facts.height, 120);
  EXPECT_EQ(facts.bounds.left, 4);
  EXPECT_EQ(facts.bounds.bottom, -117);
}

TEST(MetafileFacts, Should_TakeTwentiethsOfAPoint_When_PlainAndLarge) {
  WmfFile file;
  file.Add(WmfFunction::setWindowExt, {720, 2880});
  const MetafileFacts facts = ReadMetafileFacts(file.Bytes());
  EXPECT_EQ(facts.unitsPerInch, 1440);
  EXPECT_EQ(facts.width, 192);
}

TEST(MetafileFacts, Should_LookAtTheLongerSide_When_UnitsAreNotSaid) {
  const auto units = [](int64_t height, int64_t width) {
    WmfFile file;
    return ReadMetafileFacts(file.Add(WmfFunction::setWindowExt, {height, width}).Bytes())
        .unitsPerInch;
  };
  EXPECT_EQ(units(10, 2048), 96);
  EXPECT_EQ(units(10, 2049), 1440);
  EXPECT_EQ(units(2048, 10), 96);
  EXPECT_EQ(units(2049, 10), 1440);
  EXPECT_EQ(units(-2049, 10), 1440);
}

TEST(MetafileFacts, Should_TakeTheModesUnit_When_PlainAndMetric) {
  WmfFile file;
  file.Add(WmfFunction::setMapMode, {2}).Add(WmfFunction::rectangle, {-127, 508, 0, 0});
  const MetafileFacts facts = ReadMetafileFacts(file.Bytes());
  EXPECT_EQ(facts.unitsPerInch, 254);
  EXPECT_NEAR(facts.width, 192, 1);
}

TEST(MetafileFacts, Should_TellDrawingsThatAreNotDrawn) {
  EmfFile file;
  const FieldBytes clear{20, kEmfPlusMark, 0x4009, 16, 4, 0};
  file.Add(EmfType::comment, clear);
  MetafileFacts facts = ReadMetafileFacts(file.Bytes());
  EXPECT_TRUE(facts.hasEmfPlus);
  EXPECT_TRUE(facts.isEmfPlusOnly);
  file.Add(EmfType::lineTo, {4, 4});
  facts = ReadMetafileFacts(file.Bytes());
  EXPECT_TRUE(facts.hasEmfPlus);
  EXPECT_FALSE(facts.isEmfPlusOnly);
}

TEST(MetafileFacts, Should_BeDrawn_When_NewerRecordsDrawNothing) {
  EmfFile file;
  file.Add(EmfType::comment, {16, kEmfPlusMark, 0x4001, 12, 0});
  const MetafileFacts facts = ReadMetafileFacts(file.Bytes());
  EXPECT_TRUE(facts.hasEmfPlus);
  EXPECT_FALSE(facts.isEmfPlusOnly);
}

TEST(MetafileFacts, Should_BeRefused_When_BytesAreSomethingElse) {
  EXPECT_THROW(ReadMetafileFacts({}), FormatError);
  EXPECT_THROW(ReadMetafileFacts(FieldBytes().Text("BM and more").bytes), FormatError);
  // A placeable header without anything after it.
  EXPECT_THROW(ReadMetafileFacts(FieldBytes{kWmfPlaceableKey}.FillTo(22).bytes), FormatError);
}

}  // namespace
}  // namespace rasterkit::test
