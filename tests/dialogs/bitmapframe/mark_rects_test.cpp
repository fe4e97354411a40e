#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/dialogs/bitmapframe/mark_rects.h>

namespace rasterkit::test {
namespace {

using testing::ElementsAre;

constexpr TRect kRect{100, 200, 180, 260};
constexpr int kSide = 10;

std::vector<EDragObjectType> TypesOf(const std::vector<RMarkRect>& marks) {
  std::vector<EDragObjectType> types;
  for (const RMarkRect& mark : marks) types.push_back(mark.RectType);
  return types;
}

std::vector<int> Numbers(const TRect& rect) {
  return {rect.Left, rect.Top, rect.Right, rect.Bottom};
}

TEST(MarkRects, Should_BeOneForEachEdgeAndTwoForEachCorner) {
  EXPECT_THAT(TypesOf(MakeMarkRects(kRect, kSide)),
              ElementsAre(doLeft, doTop, doRight, doBottom, doLeftTop, doLeftTop, doRightTop,
                          doRightTop, doLeftBottom, doLeftBottom, doRightBottom, doRightBottom));
}

TEST(MarkRects, Should_BeSquaresOnTheMiddleOfTheEdges) {
  const auto marks = MakeMarkRects(kRect, kSide);
  EXPECT_THAT(Numbers(marks[0].RectData), ElementsAre(95, 225, 105, 235));
  EXPECT_THAT(Numbers(marks[1].RectData), ElementsAre(135, 195, 145, 205));
  EXPECT_THAT(Numbers(marks[2].RectData), ElementsAre(175, 225, 185, 235));
  EXPECT_THAT(Numbers(marks[3].RectData), ElementsAre(135, 255, 145, 265));
}

TEST(MarkRects, Should_FormAnLInsideEachCorner) {
  const auto marks = MakeMarkRects(kRect, kSide);
  EXPECT_THAT(Numbers(marks[4].RectData), ElementsAre(100, 200, 110, 205));
  EXPECT_THAT(Numbers(marks[5].RectData), ElementsAre(100, 200, 105, 210));
  EXPECT_THAT(Numbers(marks[6].RectData), ElementsAre(170, 200, 180, 205));
  EXPECT_THAT(Numbers(marks[7].RectData), ElementsAre(175, 200, 180, 210));
  EXPECT_THAT(Numbers(marks[8].RectData), ElementsAre(100, 255, 110, 260));
  EXPECT_THAT(Numbers(marks[9].RectData), ElementsAre(100, 250, 105, 260));
  EXPECT_THAT(Numbers(marks[10].RectData), ElementsAre(170, 255, 180, 260));
  EXPECT_THAT(Numbers(marks[11].RectData), ElementsAre(175, 250, 180, 260));
}

TEST(MarkAt, Should_TakeTheFirstThatHoldsThePoint_When_HandlesOverlap) {
  const auto marks = MakeMarkRects({0, 0, 12, 12}, kSide);
  EXPECT_EQ(MarkAt(marks, 1, 1), doLeft) << "the left square reaches over the corner";
  EXPECT_EQ(MarkAt(marks, 11, 11), doRight);
}

TEST(MarkAt, Should_IncludeBorders_When_ThePointLiesOnTheVeryCorner) {
  const auto marks = MakeMarkRects(kRect, kSide);
  EXPECT_EQ(MarkAt(marks, 100, 200), doLeftTop);
  EXPECT_EQ(MarkAt(marks, 180, 200), doRightTop);
  EXPECT_EQ(MarkAt(marks, 100, 260), doLeftBottom);
  EXPECT_EQ(MarkAt(marks, 180, 260), doRightBottom);
  EXPECT_EQ(MarkAt(marks, 140, 230), doNone);
}

TEST(MarkRects, Should_StaySafe_When_TheRectangleIsAsFarAsNumbersGo) {
  const auto marks = MakeMarkRects({-(1 << 30), -(1 << 30), 1 << 30, 1 << 30}, kSide);
  EXPECT_EQ(marks.size(), 12u);
  EXPECT_EQ(MarkAt(marks, 0, -(1 << 30)), doTop);
}

}  // namespace
}  // namespace rasterkit::test
