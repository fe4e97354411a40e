#include <limits>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/bitmapframe/rd_rect.h>

namespace rasterkit::test {
namespace {

void ExpectRect(const TRect& rect, int left, int top, int right, int bottom) {
  EXPECT_EQ(rect.Left, left);
  EXPECT_EQ(rect.Top, top);
  EXPECT_EQ(rect.Right, right);
  EXPECT_EQ(rect.Bottom, bottom);
}

TEST(RDRect, FitInRect_Should_ScaleUniformlyAndCenter_When_TheBoundsAreWider) {
  RDRect rect(0, 0, 100, 50);
  EXPECT_DOUBLE_EQ(rect.FitInRect(RDRect(10, 20, 210, 80)), 1.2);
  EXPECT_TRUE(AlmostEqual(rect, RDRect(50, 20, 170, 80), 1e-12));
}

TEST(RDRect, FitInRect_Should_ScaleByTheWidth_When_TheBoundsAreHigher) {
  RDRect rect(3, 4, 43, 14);
  EXPECT_DOUBLE_EQ(rect.FitInRect(RDRect(0, 0, 20, 100)), 0.5);
  EXPECT_TRUE(AlmostEqual(rect, RDRect(0, 47.5, 20, 52.5), 1e-12));
}

TEST(RDRect, FitInRect_Should_NotDivideByZero_When_TheRectangleHasNoSize) {
  RDRect point;
  EXPECT_DOUBLE_EQ(point.FitInRect(RDRect(0, 0, 20, 10)), 1);
  EXPECT_EQ(point, RDRect(10, 5, 10, 5));
  RDRect line(0, 0, 0, 5);
  EXPECT_DOUBLE_EQ(line.FitInRect(RDRect(0, 0, 20, 10)), 2);
}

TEST(RDRect, FitInRect_Should_CollapseToThePlace_When_TheBoundsHaveNoSize) {
  RDRect rect(0, 0, 7, 5);
  EXPECT_DOUBLE_EQ(rect.FitInRect(RDRect()), 0);
  EXPECT_EQ(rect, RDRect());
}

TEST(RDRect, Contains_Should_IncludeTheEdges) {
  const RDRect rect(1, 2, 3, 4);
  EXPECT_TRUE(rect.Contains(1, 2));
  EXPECT_TRUE(rect.Contains(3, 4));
  EXPECT_TRUE(rect.Contains(1, 4));
  EXPECT_FALSE(rect.Contains(0.999, 3));
  EXPECT_FALSE(rect.Contains(2, 4.001));
}

TEST(RDRect, Stretch_Should_ScaleByOnePlusStepAboutThePoint) {
  RDRect rect(0, 0, 10, 20);
  rect.Stretch(0.5, 2, 20);
  EXPECT_TRUE(AlmostEqual(rect, RDRect(-1, -10, 14, 20), 1e-12));
  rect.Stretch(-0.5, -1, -10);
  EXPECT_TRUE(AlmostEqual(rect, RDRect(-1, -10, 6.5, 5), 1e-12));
}

TEST(RDRect, MoveInRect_Should_ClampAtEachSide) {
  const RDRect bounds(0, 0, 100, 50);
  RDRect rect(10, 10, 30, 20);
  rect.MoveInRect(5, -3, bounds);
  EXPECT_EQ(rect, RDRect(15, 7, 35, 17));
  rect.MoveInRect(500, 500, bounds);
  EXPECT_EQ(rect, RDRect(80, 40, 100, 50));
  rect.MoveInRect(-500, -500, bounds);
  EXPECT_EQ(rect, RDRect(0, 0, 20, 10));
}

TEST(RDRect, MoveInRect_Should_AlignLeftAndTop_When_TheRectangleIsLargerThanTheBounds) {
  RDRect rect(0, 0, 200, 80);
  rect.MoveInRect(-20, 30, RDRect(5, 6, 105, 56));
  EXPECT_EQ(rect, RDRect(5, 6, 205, 86));
}

TEST(RDRect, Intersect_Should_DrawEdgesBack) {
  RDRect rect(-5, 3, 20, 90);
  rect.Intersect(RDRect(0, 0, 10, 50));
  EXPECT_EQ(rect, RDRect(0, 3, 10, 50));
}

TEST(RDRect, Intersect_Should_EndOnTheBorder_When_TheRectangleLiesOutside) {
  RDRect rect(20, 3, 30, 9);
  rect.Intersect(RDRect(0, 0, 10, 50));
  EXPECT_EQ(rect, RDRect(10, 3, 10, 9));
}

TEST(RDRect, Intersect_Should_KeepAPoint_When_ItLiesInside) {
  RDRect rect(4, 4, 4, 4);
  rect.Intersect(RDRect(0, 0, 10, 50));
  EXPECT_EQ(rect, RDRect(4, 4, 4, 4));
}

TEST(RDRect, ToRect_Should_RoundEveryCorner_HalvesToEven) {
  ExpectRect(RDRect(0.5, 1.5, 2.49, -0.51).ToRect(), 0, 2, 2, -1);
}

TEST(RDRect, ToRect_Should_StayInRange_When_CoordinatesAreHugeOrNoNumbers) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double infinity = std::numeric_limits<double>::infinity();
  ExpectRect(RDRect(-1e300, nan, 1e300, infinity).ToRect(), -(1 << 30), -(1 << 30), 1 << 30,
             1 << 30);
}

TEST(RDRect, MoveAndScale_Should_ChangeAllCorners) {
  RDRect rect(1, 2, 3, 5);
  rect.Move(10, -1);
  EXPECT_EQ(rect, RDRect(11, 1, 13, 4));
  rect.Scale(2);
  EXPECT_EQ(rect, RDRect(22, 2, 26, 8));
  EXPECT_EQ(rect.Width(), 4);
  EXPECT_EQ(rect.Height(), 6);
  EXPECT_FALSE(rect.IsEmpty());
  EXPECT_TRUE(RDRect(1, 1, 1, 5).IsEmpty());
}

}  // namespace
}  // namespace rasterkit::test
