#include <limits>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/editchangesize/change_size_model.h>

namespace rasterkit {
namespace {

using Field = ChangeSizeModel::Field;

class ChangeSizeUnitsTest : public testing::Test {
 protected:
  ChangeSizeUnitsTest() { model.SetOwnResolution({300, 300}); }

  void ExpectPixels(int32_t width, int32_t height) const {
    EXPECT_EQ(model.RoundedWidth(), width);
    EXPECT_EQ(model.RoundedHeight(), height);
  }

  ChangeSizeModel model{4000, 3000, kEditorSizeRules};
};

TEST_F(ChangeSizeUnitsTest, Percent_Should_CountFromTheStart) {
  model.SetUnit(LengthUnit::percent);
  EXPECT_EQ(model.Width(), 100);
  EXPECT_EQ(model.Height(), 100);
  model.FlEdChange(Field::height, 25);
  EXPECT_EQ(model.Width(), 25);
  ExpectPixels(1000, 750);
  model.SetProportional(false);
  model.FlEdChange(Field::width, 200);
  ExpectPixels(8000, 750);
}

TEST_F(ChangeSizeUnitsTest, Millimeters_Should_BeTakenAtTheResolution) {
  model.SetUnit(LengthUnit::millimeters);
  EXPECT_EQ(model.Dpi(), 300);
  EXPECT_NEAR(model.Width(), 4000 * 25.4 / 300, 1e-9);
  model.FlEdChange(Field::width, 254);
  EXPECT_NEAR(model.Height(), 190.5, 1e-9);
  ExpectPixels(3000, 2250);
  model.SetDpi(100);
  EXPECT_EQ(model.Width(), 254);
  ExpectPixels(1000, 750);
}

TEST_F(ChangeSizeUnitsTest, AnotherUnit_Should_KeepThePixels) {
  model.FlEdChange(Field::width, 1233);
  ExpectPixels(1233, 925);  // 924.75
  for (const LengthUnit unit : {LengthUnit::percent, LengthUnit::millimeters, LengthUnit::pixels,
                                LengthUnit::millimeters, LengthUnit::percent, LengthUnit::pixels}) {
    model.SetUnit(unit);
    ExpectPixels(1233, 925);
  }
  EXPECT_EQ(model.Width(), 1233);
}

TEST_F(ChangeSizeUnitsTest, Pixels_Should_BecomeWhole_When_TheyComeFromAnotherUnit) {
  model.SetUnit(LengthUnit::percent);
  model.FlEdChange(Field::width, 33.33);
  model.SetUnit(LengthUnit::pixels);
  EXPECT_EQ(model.Width(), 1333);
  EXPECT_NEAR(model.Height(), 999.75, 1e-9);
}

TEST_F(ChangeSizeUnitsTest, Millimeters_Should_BeRefused_When_TheResolutionIsOutOfRange) {
  model.SetUnit(LengthUnit::millimeters);
  for (const double dpi : {0.0, 0.5, 100001.0, -3.0, std::numeric_limits<double>::infinity(),
                           std::numeric_limits<double>::quiet_NaN()}) {
    model.SetDpi(dpi);
    EXPECT_EQ(model.Fault(), SizeFault::needsResolution) << dpi;
  }
  model.SetDpi(150);
  EXPECT_EQ(model.Fault(), SizeFault::none);
  model.SetDpi(0);
  model.SetUnit(LengthUnit::percent);
  EXPECT_EQ(model.Fault(), SizeFault::outOfRange);
}

TEST_F(ChangeSizeUnitsTest, AnotherResolution_Should_CountAsAChange) {
  model.SetUnit(LengthUnit::millimeters);
  EXPECT_EQ(model.Fault(), SizeFault::unchanged);
  const double width = model.Width();
  model.SetDpi(600);
  EXPECT_EQ(model.Fault(), SizeFault::none);
  model.FlEdChange(Field::width, width / 2);
  ExpectPixels(4000, 3000);
  EXPECT_EQ(model.Fault(), SizeFault::none) << "the file states another resolution";
}

TEST_F(ChangeSizeUnitsTest, TheProportionOnPaper_Should_Stay_When_DotsAreNotSquare) {
  model.SetOwnResolution({200, 100});
  EXPECT_EQ(model.Dpi(), 200);
  model.SetUnit(LengthUnit::millimeters);
  model.FlEdChange(Field::width, 508);
  EXPECT_NEAR(model.Height(), 762, 1e-9) << "20 inches x 30 inches";
  EXPECT_TRUE(model.FollowsLead());
}

TEST_F(ChangeSizeUnitsTest, TheLead_Should_BeFollowed_UntilNumbersDiffer) {
  EXPECT_TRUE(model.FollowsLead());
  model.FlEdChange(Field::height, 1500);
  EXPECT_EQ(model.Lead(), Field::height);
  EXPECT_TRUE(model.FollowsLead());
  model.SetProportional(false);
  model.FlEdChange(Field::width, 10);
  model.SetProportional(true);
  EXPECT_FALSE(model.FollowsLead());
}

TEST_F(ChangeSizeUnitsTest, MapUnits_Should_BeIgnored) {
  model.SetUnit(LengthUnit::map);
  EXPECT_EQ(model.Unit(), LengthUnit::pixels);
}

}  // namespace
}  // namespace rasterkit
