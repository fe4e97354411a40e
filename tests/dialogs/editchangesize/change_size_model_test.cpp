#include <optional>
#include <utility>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/editchangesize/change_size_model.h>

namespace rasterkit {
namespace {

using Field = ChangeSizeModel::Field;

TEST(ChangeSizeModelTest, TheOtherField_Should_FollowInTheProportionOfTheStart) {
  ChangeSizeModel model(400, 300);
  model.FlEdChange(Field::width, 200);
  EXPECT_EQ(model.Height(), 150);
  model.FlEdChange(Field::height, 100);
  EXPECT_NEAR(model.Width(), 133.333, 0.001);
  EXPECT_EQ(model.RoundedWidth(), 133);
  EXPECT_EQ(model.RoundedHeight(), 100);
}

TEST(ChangeSizeModelTest, Rounding_Should_NotAccumulate) {
  ChangeSizeModel model(1000, 3);
  model.FlEdChange(Field::width, 499);
  model.FlEdChange(Field::width, 1);
  EXPECT_NEAR(model.Height(), 0.003, 1e-12);
  model.FlEdChange(Field::width, 1000);
  EXPECT_EQ(model.Height(), 3);
}

TEST(ChangeSizeModelTest, Unchecked_Should_LeaveTheOtherFieldAlone) {
  ChangeSizeModel model(400, 300);
  EXPECT_TRUE(model.Proportional());
  model.SetProportional(false);
  model.FlEdChange(Field::width, 10);
  model.FlEdChange(Field::height, 20);
  EXPECT_EQ(model.Width(), 10);
  EXPECT_EQ(model.Height(), 20);
}

TEST(ChangeSizeModelTest, CheckedAgain_Should_FollowFromTheNextEditOn) {
  ChangeSizeModel model(400, 300);
  model.SetProportional(false);
  model.FlEdChange(Field::width, 10);
  model.SetProportional(true);
  EXPECT_EQ(model.Width(), 10);
  EXPECT_EQ(model.Height(), 300);
  model.FlEdChange(Field::height, 30);
  EXPECT_EQ(model.Width(), 40);
}

TEST(ChangeSizeModelTest, Halves_Should_BecomeEven) {
  ChangeSizeModel model(2, 1);
  model.FlEdChange(Field::width, 5);
  EXPECT_EQ(model.Height(), 2.5);
  EXPECT_EQ(model.RoundedHeight(), 2);
  model.FlEdChange(Field::width, 7);
  EXPECT_EQ(model.RoundedHeight(), 4);
}

TEST(ChangeSizeModelTest, AStartOfZero_Should_SkipTheCoupling) {
  for (const auto& [width, height] : {std::pair{0, 300}, {400, 0}, {0, 0}}) {
    ChangeSizeModel model(width, height);
    model.FlEdChange(Field::width, width + 50);
    model.FlEdChange(Field::height, height + 60);
    EXPECT_EQ(model.RoundedWidth(), width + 50) << width << " x " << height;
    EXPECT_EQ(model.RoundedHeight(), height + 60);
  }
}

TEST(ChangeSizeModelTest, TheListener_Should_HearOfTheOtherFieldAloneAndOnce) {
  ChangeSizeModel model(400, 300);
  int calls = 0;
  model.OnField = [&](Field field, double value) {
    ++calls;
    EXPECT_EQ(field, Field::height);
    // A field that emits a signal whenever it is set.
    model.FlEdChange(field, value);
  };
  model.FlEdChange(Field::width, 100);
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(model.Width(), 100);
  EXPECT_EQ(model.Height(), 75);
}

TEST(ChangeSizeModelTest, Results_Should_Fit32BitsAndNotBeNegative) {
  ChangeSizeModel model(1, 1000);
  model.FlEdChange(Field::width, 2e9);
  EXPECT_EQ(model.RoundedHeight(), INT32_MAX);
  model.FlEdChange(Field::width, -1);
  EXPECT_EQ(model.RoundedWidth(), 0);
  EXPECT_EQ(ChangeSizeModel(-5, INT32_MIN).RoundedWidth(), 0);
}

}  // namespace
}  // namespace rasterkit
