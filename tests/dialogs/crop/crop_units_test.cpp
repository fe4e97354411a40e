#include <gtest/gtest.h>

#include <rasterkit/dialogs/crop/crop_units.h>
#include <rasterkit/strings/format_text.h>

#include "tests/dialogs/crop/crop_facts.h"

namespace rasterkit::test {
namespace {

void ExpectPlace(UnitPlace place, double x, double y) {
  EXPECT_NEAR(place.x, x, 1e-9);
  EXPECT_NEAR(place.y, y, 1e-9);
}

TEST(PlaceOfCorner, Should_BeTrueInEveryUnit) {
  const CropFacts facts = FactsOfAPlan();
  ExpectPlace(PlaceOfCorner(facts, LengthUnit::pixels, 30, 40), 30, 40);
  ExpectPlace(PlaceOfCorner(facts, LengthUnit::percent, 30, 40), 5, 10);
  ExpectPlace(PlaceOfCorner(facts, LengthUnit::millimeters, 30, 40), 3, 4);
  // A position is that of a pixel's center, half a pixel from its corner.
  ExpectPlace(PlaceOfCorner(facts, LengthUnit::map, 0, 0), 1000, 2000);
  ExpectPlace(PlaceOfCorner(facts, LengthUnit::map, 30, 40), 1015, 1980);
}

TEST(PlaceOfCorner, Corners_Should_BeTrue_When_ThePictureIsTurned) {
  const CropFacts facts = TurnedFacts();
  ExpectPlace(PlaceOfCorner(facts, LengthUnit::map, 0.5, 0.5), 1000, 2000);
  ExpectPlace(PlaceOfCorner(facts, LengthUnit::map, 10.5, 0.5), 1004, 2003);
  ExpectPlace(PlaceOfCorner(facts, LengthUnit::map, 0.5, 10.5), 1006, 1992);
}

TEST(PixelSizeIn, Should_BeMeasuredAlongTheSides) {
  ExpectPlace(PixelSizeIn(TurnedFacts(), LengthUnit::map), 0.5, 1);
  ExpectPlace(PixelSizeIn(FactsOfAPlan(), LengthUnit::map), 0.5, 0.5);
  ExpectPlace(PixelSizeIn(FactsOfAPlan(), LengthUnit::millimeters), 0.1, 0.1);
}

TEST(CornerOfPlace, Should_LeadBack) {
  for (const CropFacts& facts : {FactsOfAPlan(), TurnedFacts()}) {
    for (const LengthUnit unit :
         {LengthUnit::pixels, LengthUnit::percent, LengthUnit::millimeters, LengthUnit::map}) {
      if (!KnowsUnit(facts, unit)) continue;
      ExpectPlace(CornerOfPlace(facts, unit, PlaceOfCorner(facts, unit, 123, 77)), 123, 77);
    }
  }
}

TEST(KnowsUnit, Millimeters_Should_NeedAResolution_AndMapUnitsAPosition) {
  EXPECT_TRUE(KnowsUnit(FactsOfAPlan(), LengthUnit::millimeters));
  EXPECT_TRUE(KnowsUnit(FactsOfAPlan(), LengthUnit::map));
  EXPECT_FALSE(KnowsUnit(PlainFacts(), LengthUnit::millimeters));
  EXPECT_FALSE(KnowsUnit(PlainFacts(), LengthUnit::map));
  EXPECT_TRUE(KnowsUnit(PlainFacts(), LengthUnit::percent));
  CropFacts flat = PlainFacts();
  flat.affine = Affine{1, 1, 1, 1, 0, 0};
  EXPECT_FALSE(KnowsUnit(flat, LengthUnit::map)) << "it cannot be inverted";
}

TEST(DecimalsFor, TheLastDigit_Should_BeATenthOfAPixelOrLess) {
  EXPECT_EQ(DecimalsFor(FactsOfAPlan(), LengthUnit::pixels), 0);
  EXPECT_EQ(DecimalsFor(FactsOfAPlan(), LengthUnit::millimeters), 2);
  EXPECT_EQ(DecimalsFor(FactsOfAPlan(), LengthUnit::map), 2);
  EXPECT_EQ(DecimalsFor(FactsOfAPlan(), LengthUnit::percent), 2);
  CropFacts coarse = FactsOfAPlan();
  coarse.affine = Affine{30, 0, 0, -30, 0, 0};
  EXPECT_EQ(DecimalsFor(coarse, LengthUnit::map), 0);
  CropFacts degrees = FactsOfAPlan();
  degrees.affine = Affine{8e-6, 0, 0, -8e-6, 11, 48};
  EXPECT_EQ(DecimalsFor(degrees, LengthUnit::map), 7);
}

TEST(CropIn, Map_Should_NameTheGreaterYTop_AlsoWhereRowsRunNorth) {
  const RecipeCrop crop = CropIn(FactsOfAPlan(), LengthUnit::map, {10, 20, 30, 60});
  EXPECT_EQ(crop.unit, LengthUnit::map);
  EXPECT_DOUBLE_EQ(crop.left, 1005);
  EXPECT_DOUBLE_EQ(crop.top, 1990);
  EXPECT_DOUBLE_EQ(crop.right, 1015);
  EXPECT_DOUBLE_EQ(crop.bottom, 1970);
  CropFacts northward = FactsOfAPlan();
  northward.affine = Affine{0.5, 0, 0, 0.5, 1000.25, 2000.25};
  const RecipeCrop other = CropIn(northward, LengthUnit::map, {10, 20, 30, 60});
  EXPECT_DOUBLE_EQ(other.top, 2030);
  EXPECT_DOUBLE_EQ(other.bottom, 2010);
}

TEST(CropIn, ATurnedPicture_Should_BeToldInPixels) {
  EXPECT_EQ(CropIn(TurnedFacts(), LengthUnit::map, {1, 2, 3, 4}).unit, LengthUnit::pixels);
}

TEST(FixedText, Should_HaveTheDecimalMarkOfTheTexts) {
  EXPECT_EQ(FixedText(1.25, 1), "1.2");
  EXPECT_EQ(FixedText(-0.001, 2), "0.00");
  EXPECT_EQ(FixedText(-1, 0), "-1");
  SetDecimalMark(",");
  EXPECT_EQ(FixedText(1234.5, 2), "1234,50");
  SetDecimalMark("");
}

TEST(UnitSymbol, Should_NameTheUnit) {
  EXPECT_EQ(UnitSymbol(FactsOfAPlan(), LengthUnit::pixels), "px");
  EXPECT_EQ(UnitSymbol(FactsOfAPlan(), LengthUnit::percent), "%");
  EXPECT_EQ(UnitSymbol(FactsOfAPlan(), LengthUnit::millimeters), "mm");
  EXPECT_EQ(UnitSymbol(FactsOfAPlan(), LengthUnit::map), "m");
  EXPECT_EQ(UnitSymbol(TurnedFacts(), LengthUnit::map), "");
}

}  // namespace
}  // namespace rasterkit::test
