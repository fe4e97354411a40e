#include <gtest/gtest.h>

#include <rasterkit/dialogs/editchangesize/change_size_model.h>

namespace rasterkit {
namespace {

using Field = ChangeSizeModel::Field;

class ChangeSizeHistoryTest : public testing::Test {
 protected:
  ChangeSizeModel model{400, 300, kEditorSizeRules};
};

TEST_F(ChangeSizeHistoryTest, UndoAndRedo_Should_MoveThroughAllChanges) {
  model.FlEdChange(Field::width, 200);
  model.SetFilter(Filter::nearest);
  model.SetUnit(LengthUnit::percent);
  model.SetProportional(false);
  model.FlEdChange(Field::height, 10);
  for (int i = 0; i < 5; ++i) {
    ASSERT_TRUE(model.CanUndo()) << i;
    model.Undo();
  }
  EXPECT_FALSE(model.CanUndo());
  EXPECT_EQ(model.Width(), 400);
  EXPECT_EQ(model.GetFilter(), Filter::automatic);
  EXPECT_EQ(model.Unit(), LengthUnit::pixels);
  EXPECT_TRUE(model.Proportional());
  for (int i = 0; i < 5; ++i) {
    ASSERT_TRUE(model.CanRedo()) << i;
    model.Redo();
  }
  EXPECT_FALSE(model.CanRedo());
  EXPECT_EQ(model.Width(), 50);
  EXPECT_EQ(model.Height(), 10);
  EXPECT_EQ(model.GetFilter(), Filter::nearest);
  EXPECT_FALSE(model.Proportional());
}

TEST_F(ChangeSizeHistoryTest, TypedDigits_Should_BeOneChange_UntilTypingEnds) {
  for (const double typed : {1.0, 12.0, 120.0}) model.FlEdChange(Field::width, typed);
  model.FlEdChange(Field::height, 3);
  model.Undo();
  EXPECT_EQ(model.Width(), 120);
  model.Undo();
  EXPECT_EQ(model.Width(), 400);
  model.FlEdChange(Field::width, 1);
  model.EndTyping();
  model.FlEdChange(Field::width, 2);
  model.Undo();
  EXPECT_EQ(model.Width(), 1);
}

TEST_F(ChangeSizeHistoryTest, AResolution_Should_BeOneChange) {
  model.SetUnit(LengthUnit::millimeters);
  for (const double typed : {1.0, 15.0, 150.0}) model.SetDpi(typed);
  model.Undo();
  EXPECT_EQ(model.Unit(), LengthUnit::millimeters);
  EXPECT_EQ(model.Dpi(), 0);
}

TEST_F(ChangeSizeHistoryTest, ANewChange_Should_EndRedo) {
  model.FlEdChange(Field::width, 200);
  model.Undo();
  model.FlEdChange(Field::width, 100);
  EXPECT_FALSE(model.CanRedo());
  model.Redo();
  EXPECT_EQ(model.Width(), 100);
}

TEST_F(ChangeSizeHistoryTest, WhatChangesNothing_Should_NotBeNoted) {
  model.SetProportional(true);
  model.SetFilter(Filter::automatic);
  model.SetUnit(LengthUnit::pixels);
  model.FlEdChange(Field::width, 400);
  EXPECT_FALSE(model.CanUndo());
}

TEST_F(ChangeSizeHistoryTest, TheListener_Should_HearOfUndoOnce) {
  int calls = 0;
  model.OnState = [&] { ++calls; };
  model.FlEdChange(Field::width, 200);
  EXPECT_EQ(calls, 0);
  model.Undo();
  EXPECT_EQ(calls, 1);
  model.Undo();
  EXPECT_EQ(calls, 1);
}

TEST_F(ChangeSizeHistoryTest, TheOldestChanges_Should_BeForgotten) {
  for (int i = 1; i <= 300; ++i) {
    model.FlEdChange(Field::width, i);
    model.EndTyping();
  }
  int steps = 0;
  for (; model.CanUndo(); ++steps) model.Undo();
  EXPECT_EQ(steps, 256);
  EXPECT_EQ(model.Width(), 44);
}

}  // namespace
}  // namespace rasterkit
