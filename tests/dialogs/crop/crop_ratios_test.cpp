#include <cmath>
#include <string>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/crop/crop_ratios.h>

#include "tests/dialogs/crop/crop_facts.h"

namespace rasterkit::test {
namespace {

CropRatio RatioOf(RatioKind kind) {
  CropRatio ratio;
  ratio.kind = kind;
  return ratio;
}

TEST(ShapeOf, Kinds_Should_HaveTheirRatio) {
  const CropFacts facts = FactsOfAPlan();
  const std::pair<RatioKind, double> expected[] = {
      {RatioKind::any, 0},
      {RatioKind::asPicture, 1.5},
      {RatioKind::square, 1},
      {RatioKind::isoPortrait, std::sqrt(0.5)},
      {RatioKind::isoLandscape, std::sqrt(2.0)},
      {RatioKind::fourToThree, 4 / 3.0},
      {RatioKind::threeToTwo, 1.5},
      {RatioKind::sixteenToNine, 16 / 9.0},
      {RatioKind::typed, 1.25},
  };
  for (const auto& [kind, ratio] : expected) {
    EXPECT_DOUBLE_EQ(ShapeOf(RatioOf(kind), facts).ratio, ratio) << static_cast<int>(kind);
    EXPECT_FALSE(ShapeOf(RatioOf(kind), facts).IsFixed());
  }
}

TEST(ShapeOf, SwappedTwice_Should_BeTheSame) {
  const CropFacts facts = FactsOfAPlan();
  for (int i = 0; i <= static_cast<int>(RatioKind::paper); ++i) {
    const CropRatio ratio = RatioOf(static_cast<RatioKind>(i));
    const double before = ShapeOf(ratio, facts).ratio;
    const double swapped = ShapeOf(Swapped(ratio), facts).ratio;
    if (before > 0) {
      EXPECT_NEAR(before * swapped, 1, 1e-12) << i;
    } else {
      EXPECT_EQ(swapped, 0);
    }
    EXPECT_EQ(Swapped(Swapped(ratio)), ratio) << i;
  }
  EXPECT_EQ(Swapped(RatioOf(RatioKind::isoPortrait)).kind, RatioKind::isoLandscape);
  EXPECT_EQ(Swapped(RatioOf(RatioKind::typed)).typedWidth, 4);
}

TEST(ShapeOf, Paper_Should_BeItsSizeOnTheMap) {
  // A3 at 1:500 shows 210 m x 148.5 m: 420 x 297 pixels of half a meter.
  const CutShape sheet = ShapeOf(RatioOf(RatioKind::paper), FactsOfAPlan());
  EXPECT_EQ(sheet.width, 420);
  EXPECT_EQ(sheet.height, 297);
  EXPECT_TRUE(sheet.IsFixed());
  CropRatio upright = Swapped(RatioOf(RatioKind::paper));
  upright.paper = 4;
  upright.scale = 1000;
  EXPECT_EQ(ShapeOf(upright, FactsOfAPlan()).width, 420);
  EXPECT_EQ(ShapeOf(upright, FactsOfAPlan()).height, 594);
  CropRatio largest = RatioOf(RatioKind::paper);
  largest.paper = 0;
  EXPECT_EQ(ShapeOf(largest, FactsOfAPlan()).width, 1189);
  EXPECT_EQ(ShapeOf(largest, FactsOfAPlan()).height, 841);
}

TEST(ShapeOf, Paper_Should_FollowTheUnitAndTheSidesOfATurnedPicture) {
  CropFacts facts = TurnedFacts();
  facts.mapUnit = MapUnitNamed("m");
  EXPECT_EQ(ShapeOf(RatioOf(RatioKind::paper), facts).width, 420);
  EXPECT_EQ(ShapeOf(RatioOf(RatioKind::paper), facts).height, 148);
  facts.mapUnit = MapUnitNamed("ft");
  EXPECT_EQ(ShapeOf(RatioOf(RatioKind::paper), facts).width, 1378);
}

TEST(KnowsRatio, Paper_Should_NeedALength) {
  EXPECT_TRUE(KnowsRatio(FactsOfAPlan(), RatioKind::paper));
  CropFacts facts = FactsOfAPlan();
  facts.mapUnit = MapUnitNamed("°");
  EXPECT_FALSE(KnowsRatio(facts, RatioKind::paper));
  facts.mapUnit = {};
  EXPECT_FALSE(KnowsRatio(facts, RatioKind::paper));
  EXPECT_EQ(ShapeOf(RatioOf(RatioKind::paper), facts), CutShape{});
  facts = FactsOfAPlan();
  facts.affine.reset();
  EXPECT_FALSE(KnowsRatio(facts, RatioKind::paper));
  EXPECT_TRUE(KnowsRatio(facts, RatioKind::square));
}

TEST(ShapeOf, IsoA_Should_BeTrueOnPaper_When_PixelsAreNotSquare) {
  CropFacts facts = PlainFacts();
  facts.resolution = {200, 100};
  const double ratio = ShapeOf(RatioOf(RatioKind::isoLandscape), facts).ratio;
  EXPECT_DOUBLE_EQ(ratio / 200 * 100, std::sqrt(2.0));
}

TEST(RatioOfSetting, Should_ReadWhatIsWritten) {
  CropRatio ratio = RatioOf(RatioKind::paper);
  ratio.isSwapped = true;
  ratio.paper = 1;
  ratio.scale = 2500;
  ratio.typedWidth = 2.35;
  ratio.typedHeight = 1;
  EXPECT_EQ(RatioOfSetting(SettingOf(ratio)), ratio);
  for (int i = 0; i <= static_cast<int>(RatioKind::paper); ++i) {
    const CropRatio other = RatioOf(static_cast<RatioKind>(i));
    EXPECT_EQ(RatioOfSetting(SettingOf(other)), other);
  }
}

TEST(RatioOfSetting, Nonsense_Should_BeAsUsual) {
  for (const char* text : {"", "circle", "7", "\xFF\xFE"}) {
    EXPECT_EQ(RatioOfSetting(text), CropRatio{}) << text;
  }
  const CropRatio ratio = RatioOfSetting("typed upright 0 -3 99 1e300");
  EXPECT_EQ(ratio.kind, RatioKind::typed);
  EXPECT_EQ(ratio.typedWidth, 5);
  EXPECT_EQ(ratio.typedHeight, 4);
  EXPECT_EQ(ratio.paper, 3);
  EXPECT_EQ(ratio.scale, 500);
}

}  // namespace
}  // namespace rasterkit::test
