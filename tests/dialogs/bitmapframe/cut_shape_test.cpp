#include <cmath>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/bitmapframe/cut_shape.h>

namespace rasterkit {
namespace {

void ExpectRect(const TRect& rect, int left, int top, int right, int bottom) {
  EXPECT_EQ(rect.Left, left);
  EXPECT_EQ(rect.Top, top);
  EXPECT_EQ(rect.Right, right);
  EXPECT_EQ(rect.Bottom, bottom);
}

CutDrag DragOf(EDragObjectType object, const TRect& start, double toX, double toY) {
  CutDrag drag;
  drag.object = object;
  drag.start = start;
  drag.toX = toX;
  drag.toY = toY;
  drag.bitmapWidth = 600;
  drag.bitmapHeight = 400;
  return drag;
}

TEST(DraggedCut, Corner_Should_FollowTheRatio_AndStopAtTheNearestEdge) {
  CutDrag drag = DragOf(doRightBottom, {100, 100, 200, 200}, 50, 10);
  drag.shape.ratio = 1.5;
  ExpectRect(DraggedCut(drag), 100, 100, 265, 210);
  drag.toX = 1000;
  ExpectRect(DraggedCut(drag), 100, 100, 550, 400);
  drag.object = doLeftTop;
  drag.toX = drag.toY = -500;
  ExpectRect(DraggedCut(drag), 0, 67, 200, 200);
}

TEST(DraggedCut, Edge_Should_GrowTheOtherSideAboutItsMiddle_When_ThereIsARatio) {
  CutDrag drag = DragOf(doRight, {100, 100, 200, 200}, 100, 33);
  drag.shape.ratio = 1;
  ExpectRect(DraggedCut(drag), 100, 50, 300, 250);
  drag.object = doTop;
  drag.toY = -50;
  ExpectRect(DraggedCut(drag), 75, 50, 225, 200);
}

TEST(DraggedCut, Edge_Should_StopBeforeTheOtherOne) {
  ExpectRect(DraggedCut(DragOf(doRight, {100, 100, 200, 200}, -400, 0)), 100, 100, 101, 200);
  ExpectRect(DraggedCut(DragOf(doTop, {100, 100, 200, 200}, 0, 400)), 100, 199, 200, 200);
}

TEST(DraggedCut, NewCut_Should_GrowFromThePressInAnyDirection) {
  CutDrag drag = DragOf(doFrame, {}, 250.4, 90.6);
  drag.fromX = 300.2;
  drag.fromY = 100.7;
  ExpectRect(DraggedCut(drag), 250, 91, 300, 101);
  drag.fromX = 600;
  drag.fromY = 400;
  drag.toX = 700;
  drag.toY = 500;
  ExpectRect(DraggedCut(drag), 599, 399, 600, 400);
}

TEST(DraggedCut, FixedSize_Should_MoveOnly) {
  CutDrag drag = DragOf(doRightBottom, {100, 100, 300, 200}, 50, 60);
  drag.shape = {2, 200, 100};
  ExpectRect(DraggedCut(drag), 150, 160, 350, 260);
  drag.object = doFrame;
  drag.toX = 10;
  drag.toY = 200;
  ExpectRect(DraggedCut(drag), 0, 150, 200, 250);
  drag.shape = {2, 2000, 1000};
  ExpectRect(DraggedCut(drag), 0, 0, 600, 400);
}

TEST(DraggedCut, Move_Should_SnapToTheMiddle_AndStayInside) {
  CutDrag drag = DragOf(doMove, {100, 100, 200, 200}, 147, 500);
  drag.snap = 5;
  ExpectRect(DraggedCut(drag), 250, 300, 350, 400);
  drag.snap = 2;
  ExpectRect(DraggedCut(drag), 247, 300, 347, 400);
}

TEST(ReshapedCut, Should_KeepCenterAndArea_OrBeTheLargest) {
  ExpectRect(ReshapedCut({100, 100, 300, 200}, {0.5, 0, 0}, 600, 400), 150, 50, 250, 250);
  ExpectRect(ReshapedCut({}, {1, 0, 0}, 600, 400), 100, 0, 500, 400);
  ExpectRect(ReshapedCut({}, {3, 0, 0}, 600, 400), 0, 100, 600, 300);
  ExpectRect(ReshapedCut({0, 0, 10, 10}, {2, 200, 100}, 600, 400), 0, 0, 200, 100);
  ExpectRect(ReshapedCut({5, 6, 7, 8}, {}, 600, 400), 5, 6, 7, 8);
}

TEST(ResizedCut, Should_StayInside) {
  ExpectRect(ResizedCut({500, 300, 550, 350}, 1000, 0, {}, 600, 400), 500, 300, 600, 350);
  ExpectRect(ResizedCut({500, 300, 550, 350}, 1000, 0, {1, 0, 0}, 600, 400), 500, 300, 600, 400);
  ExpectRect(ResizedCut({500, 300, 550, 350}, -1000, -1000, {}, 600, 400), 500, 300, 501, 301);
}

TEST(DraggedCut, AnyDrag_Should_StayInside_AndKeepTheRatioToAPixel) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  const auto pick = [&](int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(random);
  };
  for (int i = 0; i < 100'000; ++i) {
    CutDrag drag;
    drag.object = static_cast<EDragObjectType>(pick(doMove, doRightBottom));
    drag.bitmapWidth = pick(1, 50);
    drag.bitmapHeight = pick(1, 50);
    const int left = pick(0, drag.bitmapWidth - 1), top = pick(0, drag.bitmapHeight - 1);
    drag.start = {left, top, pick(left + 1, drag.bitmapWidth), pick(top + 1, drag.bitmapHeight)};
    drag.fromX = pick(-100, 600) / 10.0;
    drag.fromY = pick(-100, 600) / 10.0;
    drag.toX = pick(-1000, 1500) / 10.0;
    drag.toY = pick(-1000, 1500) / 10.0;
    drag.fromCenter = pick(0, 1) == 0;
    drag.snap = pick(0, 3);
    if (pick(0, 1) == 0) drag.shape.ratio = pick(1, 500) / 100.0;
    const TRect cut = DraggedCut(drag);
    ASSERT_TRUE(cut.Left >= 0 && cut.Top >= 0 && cut.Right <= drag.bitmapWidth &&
                cut.Bottom <= drag.bitmapHeight && cut.Left < cut.Right && cut.Top < cut.Bottom)
        << i << ": " << cut.Left << " " << cut.Top << " " << cut.Right << " " << cut.Bottom
        << " of " << drag.bitmapWidth << " x " << drag.bitmapHeight << ", object " << drag.object;
    if (drag.object == doMove || drag.shape.ratio <= 0) continue;
    const double width = cut.Right - cut.Left, height = cut.Bottom - cut.Top;
    const bool fits = std::abs(width - height * drag.shape.ratio) <= 0.5 * drag.shape.ratio + 0.5;
    // A flat ratio can be impossible: one pixel is the least.
    ASSERT_TRUE(fits || width == 1 || height == 1)
        << i << ": " << width << " x " << height << " at " << drag.shape.ratio;
  }
}

}  // namespace
}  // namespace rasterkit
