#include <set>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/bitmapframe/grab_handles.h>

namespace rasterkit {
namespace {

constexpr int kFinger = 24;

/// Width and height of the places around (x, y) that take `handle`.
TPoint AreaOf(const TRect& rect, int side, EDragObjectType handle, int x, int y) {
  const auto run = [&](int dx, int dy) {
    int count = 0;
    for (int i = 0; GrabAt(rect, side, x + i * dx, y + i * dy) == handle; ++i) ++count;
    for (int i = 1; GrabAt(rect, side, x - i * dx, y - i * dy) == handle; ++i) ++count;
    return count;
  };
  return {run(1, 0), run(0, 1)};
}

TEST(GrabAt, EveryCorner_Should_BeLargeEnoughForAFinger_AtAnySize) {
  for (const int size : {1, 5, 20, 60, 400}) {
    const TRect rect{100, 100, 100 + size, 100 + size};
    const TPoint corner = AreaOf(rect, 28, doRightBottom, rect.Right, rect.Bottom);
    EXPECT_GE(corner.X, kFinger) << size;
    EXPECT_GE(corner.Y, kFinger) << size;
    EXPECT_GE(AreaOf(rect, 28, doLeftTop, 100, 100).X, kFinger) << size;
  }
}

TEST(GrabAt, Middle_Should_MoveTheRectangle_AlsoOfASmallOne) {
  for (const int size : {8, 20, 60, 400}) {
    EXPECT_EQ(GrabAt({100, 100, 100 + size, 100 + size}, 28, 100 + size / 2, 100 + size / 2),
              doNone)
        << size;
  }
}

TEST(GrabAt, Edges_Should_BeTakenOnTheirWholeLength) {
  const TRect rect{100, 100, 300, 300};
  EXPECT_EQ(GrabAt(rect, 28, 130, 100), doTop);
  EXPECT_EQ(GrabAt(rect, 28, 270, 290), doBottom);
  EXPECT_EQ(GrabAt(rect, 28, 90, 130), doLeft);
  EXPECT_EQ(GrabAt(rect, 28, 310, 270), doRight);
  EXPECT_EQ(GrabAt(rect, 28, 330, 200), doNone);
}

TEST(MakeHandles, Should_BeSquaresOnCornersAndEdges_AsRoomAllows) {
  EXPECT_EQ(MakeHandles({0, 0, 100, 100}, 10).size(), 8u);
  EXPECT_EQ(MakeHandles({0, 0, 100, 20}, 10).size(), 6u);
  EXPECT_EQ(MakeHandles({0, 0, 5, 5}, 10).size(), 4u);
  std::set<EDragObjectType> types;
  for (const RMarkRect& mark : MakeHandles({50, 60, 150, 160}, 10)) {
    types.insert(mark.RectType);
    EXPECT_EQ(mark.RectData.Right - mark.RectData.Left, 10);
    EXPECT_EQ(mark.RectData.Bottom - mark.RectData.Top, 10);
  }
  EXPECT_EQ(types.size(), 8u);
}

}  // namespace
}  // namespace rasterkit
