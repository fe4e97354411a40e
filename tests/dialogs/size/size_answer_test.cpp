#include <random>
#include <utility>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/size/size_answer.h>
#include <rasterkit/pictures/recipes/apply_recipe.h>

#include "tests/dialogs/size/size_picture.h"

namespace rasterkit {
namespace {

using test::PictureOf;
using Field = ChangeSizeModel::Field;

class SizeAnswerTest : public testing::Test {
 protected:
  void Start(const RecipeResize& start, LengthUnit remembered = LengthUnit::pixels) {
    model = ChangeSizeModel(picture.Width(), picture.Height(), kEditorSizeRules);
    StartSize(model, picture, start, remembered);
  }
  void ExpectStep(LengthUnit unit, double width, double height, double dpi = 0) const {
    const RecipeResize step = SizeStepOf(model, picture);
    EXPECT_EQ(step.unit, unit);
    EXPECT_DOUBLE_EQ(step.width, width);
    EXPECT_DOUBLE_EQ(step.height, height);
    EXPECT_EQ(step.dpi, dpi);
  }

  Picture picture = PictureOf(60, 40, {254, 254});
  ChangeSizeModel model{60, 40, kEditorSizeRules};
};

TEST_F(SizeAnswerTest, TheTypedSideAlone_Should_BeStated_When_TheOtherFollows) {
  Start({});
  model.FlEdChange(Field::height, 20);
  ExpectStep(LengthUnit::pixels, 0, 20);
  model.FlEdChange(Field::width, 90);
  ExpectStep(LengthUnit::pixels, 90, 0);
}

TEST_F(SizeAnswerTest, BothSides_Should_BeStated_When_TheyDoNotFollow) {
  Start({});
  model.SetProportional(false);
  model.FlEdChange(Field::height, 10);
  ExpectStep(LengthUnit::pixels, 60, 10);
  model.SetProportional(true);
  ExpectStep(LengthUnit::pixels, 60, 10);
}

TEST_F(SizeAnswerTest, PixelsThatFollowed_Should_BeWhole_When_TheOtherSideIsTypedAlone) {
  Start({});
  model.FlEdChange(Field::width, 7);  // 4.67 high
  model.SetProportional(false);
  model.FlEdChange(Field::width, 9);
  ExpectStep(LengthUnit::pixels, 9, 5);
}

TEST_F(SizeAnswerTest, PercentAndMillimeters_Should_StayAsTyped) {
  Start({}, LengthUnit::percent);
  model.FlEdChange(Field::width, 33.3);
  ExpectStep(LengthUnit::percent, 33.3, 0);
  Start({}, LengthUnit::millimeters);
  EXPECT_NEAR(model.Width(), 6, 1e-9);
  model.FlEdChange(Field::width, 12.5);
  ExpectStep(LengthUnit::millimeters, 12.5, 0, 254);
  model.SetDpi(100);
  ExpectStep(LengthUnit::millimeters, 12.5, 0, 100);
}

TEST_F(SizeAnswerTest, TheFilter_Should_BeTakenOver) {
  RecipeResize start;
  start.options.filter = Filter::area;
  Start(start);
  EXPECT_EQ(SizeStepOf(model, picture).options.filter, Filter::area);
  model.SetFilter(Filter::nearest);
  EXPECT_EQ(SizeStepOf(model, picture).options.filter, Filter::nearest);
}

TEST_F(SizeAnswerTest, AStep_Should_ComeBack_When_TheWindowStartsWithIt) {
  const RecipeResize steps[] = {{LengthUnit::pixels, 30, 0, 0, {}},
                                {LengthUnit::pixels, 0, 10, 0, {}},
                                {LengthUnit::pixels, 30, 30, 0, {}},
                                {LengthUnit::percent, 50, 0, 0, {}},
                                {LengthUnit::percent, 50, 200, 0, {}},
                                {LengthUnit::millimeters, 0, 25, 150, {Filter::linear}}};
  for (const RecipeResize& step : steps) {
    Start(step, LengthUnit::percent);
    ExpectStep(step.unit, step.width, step.height, step.dpi);
    EXPECT_FALSE(model.CanUndo());
  }
}

TEST_F(SizeAnswerTest, SidesInProportion_Should_StayCoupled) {
  for (const auto& [width, height] : {std::pair{60, 40}, {30, 20}, {7, 5}}) {
    Start({LengthUnit::pixels, static_cast<double>(width), static_cast<double>(height), 0, {}});
    EXPECT_TRUE(model.Proportional()) << width;
    EXPECT_EQ(model.RoundedHeight(), height);
  }
  Start({LengthUnit::pixels, 30, 21, 0, {}});
  EXPECT_FALSE(model.Proportional());
  EXPECT_EQ(model.RoundedHeight(), 21);
}

TEST_F(SizeAnswerTest, TheRememberedUnit_Should_Count_When_TheStepStatesNoSize) {
  Start({}, LengthUnit::percent);
  EXPECT_EQ(model.Unit(), LengthUnit::percent);
  EXPECT_EQ(model.Fault(), SizeFault::unchanged);
  Start({LengthUnit::pixels, 30, 0, 0, {}}, LengthUnit::percent);
  EXPECT_EQ(model.Unit(), LengthUnit::pixels);
}

TEST_F(SizeAnswerTest, APictureWithoutResolution_Should_GetAUsualOne) {
  picture = PictureOf(60, 40, {});
  Start({}, LengthUnit::millimeters);
  EXPECT_EQ(model.Dpi(), 300);
  EXPECT_NEAR(model.Width(), 60 * 25.4 / 300, 1e-9);
}

TEST_F(SizeAnswerTest, PixelsOfTheStep_Should_BeTheSizeThatIsShown) {
  constexpr unsigned kSeed = 2207;
  std::mt19937 random(kSeed);
  const auto upTo = [&](int most) { return std::uniform_int_distribution(1, most)(random); };
  const auto shows = [&] {
    const ResizeStep pixels = PixelsOf(SizeStepOf(model, picture), picture);
    return pixels.width == model.RoundedWidth() && pixels.height == model.RoundedHeight();
  };
  int checked = 0;
  for (int round = 0; round < 300; ++round) {
    const Resolution dpi{static_cast<double>(upTo(600)), static_cast<double>(upTo(600))};
    picture = PictureOf(upTo(90), upTo(90), upTo(4) == 1 ? Resolution{} : dpi);
    for (const LengthUnit unit :
         {LengthUnit::pixels, LengthUnit::percent, LengthUnit::millimeters}) {
      Start({}, unit);
      for (int event = 0; event < 8; ++event) {
        const Field field = upTo(2) == 1 ? Field::width : Field::height;
        model.FlEdChange(field, unit == LengthUnit::pixels ? upTo(500) : upTo(50000) / 100.0);
        if (upTo(5) == 1) model.SetProportional(!model.Proportional());
        if (upTo(5) == 1) model.SetDpi(upTo(60000) / 100.0);
        if (model.Fault() == SizeFault::outOfRange) continue;
        ++checked;
        ASSERT_TRUE(shows()) << "seed " << kSeed << ", round " << round << ", event " << event;
      }
    }
  }
  EXPECT_GT(checked, 5000);
}

TEST(SizeUnitNameTest, Names_Should_ComeBack) {
  for (const LengthUnit unit : {LengthUnit::pixels, LengthUnit::percent, LengthUnit::millimeters}) {
    EXPECT_EQ(SizeUnitOf(SizeUnitName(unit)), unit);
  }
  EXPECT_EQ(SizeUnitOf(""), LengthUnit::pixels);
  EXPECT_EQ(SizeUnitOf("furlongs"), LengthUnit::pixels);
}

}  // namespace
}  // namespace rasterkit
