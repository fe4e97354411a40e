#include <random>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/editor/step_list.h>
#include <rasterkit/pictures/picture.h>
#include <rasterkit/pictures/recipes/apply_recipe.h>

#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

TEST(StepList, Should_NumberStates) {
  StepList list;
  EXPECT_EQ(list.State(), 0u);
  list.Add(TurnStep{1});
  const uint64_t first = list.State();
  list.Add(TurnStep{1});
  const uint64_t second = list.State();
  EXPECT_NE(first, second);
  list.Undo();
  EXPECT_EQ(list.State(), first);
  list.Redo();
  EXPECT_EQ(list.State(), second);
  list.Undo();
  list.Add(TurnStep{1});
  EXPECT_NE(list.State(), second) << "another way";
  list.Undo();
  list.Undo();
  EXPECT_EQ(list.State(), 0u);
  list.Set({TurnStep{1}, TurnStep{2}}, 1);
  EXPECT_NE(list.State(), first);
  EXPECT_EQ(list.Done().size(), 1u);
  EXPECT_TRUE(list.CanRedo());
}

TEST(StepList, Should_HoldAsManyStepsAsARecipe) {
  StepList list;
  for (int i = 0; i < 1000; ++i) {
    ASSERT_TRUE(list.CanAdd());
    list.Add(TurnStep{1});
  }
  EXPECT_FALSE(list.CanAdd());
  list.Undo();
  EXPECT_TRUE(list.CanAdd());
}

/// Against the pixels.
TEST(StepList, Should_KnowTurnsAndMirrorsThatUndoEachOther) {
  const unsigned seed = std::random_device()();
  SCOPED_TRACE(seed);
  std::mt19937 random(seed);
  const TBitmap source = test::GradientBitmap(pf24bit, 5, 3);
  int nothings = 0;
  for (int i = 0; i < 400; ++i) {
    StepList list;
    Picture picture = Picture::Of(source.Clone());
    const int count = static_cast<int>(random() % 7);
    for (int j = 0; j < count; ++j) {
      RecipeStep step = TurnStep{static_cast<int>(random() % 9) - 4};
      if (random() % 2 == 0) {
        step = MirrorStep{random() % 2 == 0 ? MirrorAxis::leftRight : MirrorAxis::topBottom};
      }
      list.Add(step);
      ApplyRecipeStep(picture, step);
    }
    const std::unique_ptr<TBitmap> result = picture.Bitmap();
    const bool isSame = result->Width() == 5 && test::SamePixels(source, *result);
    EXPECT_EQ(list.IsNothing(), isSame) << count << " steps";
    nothings += isSame;
  }
  EXPECT_GT(nothings, 0);
  StepList other;
  other.Add(RotateStep{0, {}});
  EXPECT_FALSE(other.IsNothing());
}

}  // namespace
}  // namespace rasterkit
