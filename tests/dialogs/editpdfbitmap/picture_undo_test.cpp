#include <gtest/gtest.h>

#include <rasterkit/dialogs/editpdfbitmap/picture_undo.h>
#include <rasterkit/graphics/metafile.h>

#include "tests/support/memory_limit.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

std::unique_ptr<TBitmap> Picture(int width = 10, int height = 10) {
  return GradientBitmap(pf32bit, width, height).Clone();
}

TEST(PictureUndo, Should_HaveNoStep_When_NothingWasKept) {
  PictureUndo undo;
  EXPECT_FALSE(undo.HasStep());
  undo.KeepBitmap(Picture());
  EXPECT_FALSE(undo.HasStep()) << "no change has begun";
  undo.Begin({});
  EXPECT_FALSE(undo.HasStep());
  EXPECT_TRUE(undo.AwaitsBitmap());
}

TEST(PictureUndo, Take_Should_GiveTheStepOnce) {
  PictureUndo undo;
  EditState state;
  state.rotation = 90;
  undo.Begin(state);
  undo.KeepBitmap(Picture(7, 5));
  undo.KeepGraphic(Picture(3, 3), 100);
  ASSERT_TRUE(undo.HasStep());
  EXPECT_FALSE(undo.AwaitsBitmap());
  const PictureUndo::Step step = undo.Take();
  EXPECT_EQ(step.state.rotation, 90);
  EXPECT_EQ(step.bitmap->Width(), 7);
  EXPECT_TRUE(step.hasGraphic);
  EXPECT_EQ(step.graphic->Width(), 3);
  EXPECT_FALSE(undo.HasStep());
}

TEST(PictureUndo, Begin_Should_ForgetTheStepBefore) {
  PictureUndo undo;
  undo.Begin({});
  undo.KeepBitmap(Picture());
  undo.Begin({});
  EXPECT_FALSE(undo.HasStep());
}

TEST(PictureUndo, KeepBitmap_Should_ForgetTheChange_When_ItCouldNotBeKept) {
  PictureUndo undo;
  undo.Begin({});
  undo.KeepBitmap(nullptr);
  EXPECT_FALSE(undo.HasStep());
  EXPECT_FALSE(undo.AwaitsBitmap());
}

TEST(PictureUndo, KeepGraphic_Should_KeepNoneToo) {
  PictureUndo undo;
  undo.Begin({});
  undo.KeepBitmap(Picture());
  undo.KeepGraphic(nullptr, 0);
  EXPECT_TRUE(undo.Take().hasGraphic);
}

TEST(PictureUndo, KeepGraphic_Should_ForgetTheChange_When_AllIsTooMuch) {
  PictureUndo undo;
  undo.Begin({});
  undo.KeepBitmap(Picture());
  {
    const MemoryLimit limit(1200);
    undo.KeepGraphic(Picture(), 400);
    EXPECT_TRUE(undo.HasStep()) << "three times 400";
    undo.KeepGraphic(Picture(), 401);
  }
  EXPECT_FALSE(undo.HasStep());
}

TEST(PictureUndo, IsNew_Should_LastUntilItIsSettled) {
  PictureUndo undo;
  EXPECT_FALSE(undo.IsNew());
  undo.Begin({});
  EXPECT_TRUE(undo.IsNew());
  undo.Settle();
  EXPECT_FALSE(undo.IsNew());
}

TEST(PictureUndo, PixelBytes_Should_CountTheRows) {
  EXPECT_EQ(PixelBytes(GradientBitmap(pf24bit, 3, 5)), 60u);
  EXPECT_EQ(PixelBytes(TMetafile()), 0u);
}

TEST(PictureUndo, MayKeep_Should_CountBothTogether) {
  const MemoryLimit limit(1000);
  EXPECT_TRUE(MayKeep(400, 600));
  EXPECT_FALSE(MayKeep(400, 601));
  EXPECT_FALSE(MayKeep(1001, 0));
  EXPECT_FALSE(MayKeep(UINT64_MAX, UINT64_MAX));
}

TEST(PictureUndo, CopyForUndo_Should_BeNull_When_ItIsTooMuch) {
  const auto picture = Picture();
  EXPECT_EQ(CopyForUndo(nullptr), nullptr);
  {
    const MemoryLimit limit(800);
    EXPECT_NE(CopyForUndo(picture.get()), nullptr);
  }
  const MemoryLimit limit(799);
  EXPECT_EQ(CopyForUndo(picture.get()), nullptr);
}

}  // namespace
}  // namespace rasterkit::test
