#include <climits>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/execbitmap/preview_position.h>

namespace rasterkit {
namespace {

void ExpectPoint(TPoint point, int x, int y) {
  EXPECT_EQ(point.X, x);
  EXPECT_EQ(point.Y, y);
}

TEST(PreviewPositionTest, ALargerPicture_Should_StartInItsMiddleWithHalvesToEven) {
  PreviewPosition position;
  position.InitBmpPos(105, 207, 100, 200);
  ExpectPoint(position.MaxOffset(), 5, 7);
  ExpectPoint(position.Offset(), 2, 4);
}

TEST(PreviewPositionTest, ASmallerPicture_Should_ShowAtZeroAndNotBePanned) {
  PreviewPosition position;
  position.InitBmpPos(50, 200, 100, 200);
  ExpectPoint(position.MaxOffset(), 0, 0);
  position.Press({10, 10});
  EXPECT_FALSE(position.Drag({0, 0}));
  EXPECT_FALSE(position.Drag({90, 90}));
  ExpectPoint(position.Offset(), 0, 0);
  const TRect visible = position.Visible();
  EXPECT_EQ(visible.Right, 50);
  EXPECT_EQ(visible.Bottom, 200);
}

TEST(PreviewPositionTest, EachAxis_Should_BePannedForItself) {
  PreviewPosition position;
  position.InitBmpPos(300, 50, 100, 100);
  ExpectPoint(position.Offset(), 100, 0);
  position.Press({0, 0});
  EXPECT_TRUE(position.Drag({-7, -7}));
  ExpectPoint(position.Offset(), 107, 0);
}

TEST(PreviewPositionTest, Dragging_Should_MoveThePictureWithTheMouseStepByStep) {
  PreviewPosition position;
  position.InitBmpPos(300, 400, 100, 100);
  position.Press({50, 60});
  position.Drag({45, 62});
  ExpectPoint(position.Offset(), 105, 148);
  position.Drag({45, 62});
  ExpectPoint(position.Offset(), 105, 148);
  position.Drag({55, 52});
  ExpectPoint(position.Offset(), 95, 158);
}

TEST(PreviewPositionTest, Offsets_Should_BeClampedOnEachAxis) {
  PreviewPosition position;
  position.InitBmpPos(300, 400, 100, 100);
  position.Press({0, 0});
  position.Drag({1000, -1000});
  ExpectPoint(position.Offset(), 0, 300);
  position.Drag({INT_MIN, INT_MAX});
  ExpectPoint(position.Offset(), 200, 0);
}

TEST(PreviewPositionTest, Scrolling_Should_NotDisturbADrag) {
  PreviewPosition position;
  position.InitBmpPos(300, 400, 100, 100);
  position.Press({50, 50});
  EXPECT_TRUE(position.Scroll(20, -1000));
  ExpectPoint(position.Offset(), 120, 0);
  EXPECT_FALSE(position.Scroll(0, -1));
  position.Drag({49, 45});
  ExpectPoint(position.Offset(), 121, 5);
}

TEST(PreviewPositionTest, ANewSizeOfTheBox_Should_StartInTheMiddleAgain) {
  PreviewPosition position;
  position.InitBmpPos(300, 400, 100, 100);
  position.Press({0, 0});
  position.Drag({30, 30});
  position.InitBmpPos(300, 400, 200, 100);
  ExpectPoint(position.Offset(), 50, 150);
  EXPECT_EQ(position.Visible().Right, 250);
}

TEST(PreviewPositionTest, EmptyPicturesAndBoxes_Should_ShowNothing) {
  PreviewPosition position;
  position.InitBmpPos(0, 0, 100, 100);
  EXPECT_EQ(position.Visible().Right, 0);
  position.InitBmpPos(10, 10, 0, -5);
  EXPECT_EQ(position.Visible().Right - position.Visible().Left, 0);
  EXPECT_EQ(position.Visible().Bottom - position.Visible().Top, 0);
}

}  // namespace
}  // namespace rasterkit
