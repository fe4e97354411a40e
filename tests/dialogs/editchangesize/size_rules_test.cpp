#include <gtest/gtest.h>

#include <rasterkit/dialogs/editchangesize/change_size_model.h>

#include "tests/support/memory_limit.h"

namespace rasterkit {
namespace {

using Field = ChangeSizeModel::Field;

/// The same events under the rules of both windows.
struct Twins {
  Twins(int32_t width, int32_t height)
      : entry(width, height), editor(width, height, kEditorSizeRules) {
    for (ChangeSizeModel* model : {&entry, &editor}) {
      model->BytesOf = [](int32_t w, int32_t h) {
        constexpr uint64_t kBytes = 3;
        return kBytes * static_cast<uint64_t>(w) * static_cast<uint64_t>(h);
      };
    }
  }
  void Set(Field field, double value) {
    entry.FlEdChange(field, value);
    editor.FlEdChange(field, value);
  }
  void Unlock() {
    entry.SetProportional(false);
    editor.SetProportional(false);
  }

  ChangeSizeModel entry, editor;
};

TEST(SizeRulesTest, Numbers_Should_BeTheSame_When_TheyAreInRange) {
  Twins twins(400, 300);
  for (const double width : {1.0, 7.0, 399.0, 400.0, 1e5}) {
    twins.Set(Field::width, width);
    EXPECT_EQ(twins.entry.Width(), twins.editor.Width());
    EXPECT_EQ(twins.entry.Height(), twins.editor.Height());
    EXPECT_EQ(twins.entry.RoundedHeight(), twins.editor.RoundedHeight()) << width;
  }
}

TEST(SizeRulesTest, TheStart_Should_BeConfirmedByTheEntryAlone) {
  const Twins twins(400, 300);
  EXPECT_TRUE(twins.entry.CanConfirm());
  EXPECT_EQ(twins.editor.Fault(), SizeFault::unchanged);
  EXPECT_FALSE(twins.editor.CanConfirm());
}

TEST(SizeRulesTest, SizesOutOfRange_Should_BeRefusedByTheEditorAlone) {
  for (const double side : {0.0, 0.5, 1000001.0, 999999999.0}) {
    Twins twins(400, 300);
    twins.Unlock();
    twins.Set(Field::width, side);
    twins.Set(Field::height, 10);
    EXPECT_EQ(twins.editor.Fault(), SizeFault::outOfRange) << side;
    EXPECT_TRUE(twins.entry.CanConfirm()) << side;
    twins.Set(Field::width, 10);
    EXPECT_TRUE(twins.editor.CanConfirm());
    twins.Set(Field::height, side);
    EXPECT_EQ(twins.editor.Fault(), SizeFault::outOfRange) << side;
  }
}

TEST(SizeRulesTest, TheLimits_Should_BeInRange) {
  Twins twins(400, 300);
  twins.Unlock();
  twins.Set(Field::width, 1);
  twins.Set(Field::height, 1);
  EXPECT_TRUE(twins.editor.CanConfirm());
  twins.Set(Field::width, 1000000);
  EXPECT_TRUE(twins.editor.CanConfirm());
}

TEST(SizeRulesTest, TheFollowingSide_Should_KeepAPixelInTheEditorAlone) {
  Twins twins(10000, 1);
  twins.Set(Field::width, 100);
  EXPECT_EQ(twins.entry.RoundedHeight(), 0);
  EXPECT_EQ(twins.editor.RoundedHeight(), 1);
  EXPECT_TRUE(twins.editor.CanConfirm());
}

TEST(SizeRulesTest, SizesBeyondMemory_Should_BeRefusedByTheEditorAlone) {
  const test::MemoryLimit limit(3 * 1000 * 750);
  Twins twins(400, 300);
  twins.Set(Field::width, 1000);
  EXPECT_TRUE(twins.editor.CanConfirm());
  twins.Set(Field::width, 1001);
  EXPECT_EQ(twins.editor.Fault(), SizeFault::beyondMemory);
  EXPECT_TRUE(twins.entry.CanConfirm());
}

TEST(SizeRulesTest, History_Should_BeKeptByTheEditorAlone) {
  Twins twins(400, 300);
  twins.Set(Field::width, 200);
  EXPECT_FALSE(twins.entry.CanUndo());
  EXPECT_TRUE(twins.editor.CanUndo());
  twins.entry.Undo();
  twins.editor.Undo();
  EXPECT_EQ(twins.entry.Width(), 200);
  EXPECT_EQ(twins.editor.Width(), 400);
}

// The rules are numbers: any others work as well.
TEST(SizeRulesTest, OtherRules_Should_MoveSidesToTheNearestLimit) {
  ChangeSizeModel model(400, 300, {.leastSide = 16, .greatestSide = 64});
  EXPECT_EQ(model.RoundedWidth(), 64);
  model.FlEdChange(Field::width, 3);
  EXPECT_EQ(model.RoundedWidth(), 16);
  EXPECT_TRUE(model.CanConfirm());
}

}  // namespace
}  // namespace rasterkit
