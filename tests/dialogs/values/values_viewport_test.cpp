#include <cmath>
#include <random>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/values/values_viewport.h>

namespace rasterkit {
namespace {

constexpr unsigned kSeed = 515;

int Width(const TRect& rect) {
  return rect.Right - rect.Left;
}
int Height(const TRect& rect) {
  return rect.Bottom - rect.Top;
}

ValuesViewport Wide(PreviewMode mode = PreviewMode::changed) {
  ValuesViewport view(4000, 2000);
  view.SetBox(1000, 600);
  view.SetMode(mode);
  return view;
}

TEST(ValuesViewport, Should_ShowTheWholePictureAtFirst_InTheMiddle) {
  const ValuesViewport view = Wide();
  EXPECT_TRUE(view.IsFitted());
  EXPECT_DOUBLE_EQ(view.Zoom(), 0.25);
  const TRect place = view.Areas().front().place;
  EXPECT_EQ(place.Left, 0);
  EXPECT_EQ(place.Right, 1000);
  EXPECT_EQ(place.Top, 50);
  EXPECT_EQ(place.Bottom, 550);
  EXPECT_FALSE(view.CanPan());
}

TEST(ValuesViewport, ASmallPicture_Should_NotBeEnlarged_When_ItIsFitted) {
  ValuesViewport view(100, 50);
  view.SetBox(1000, 600);
  EXPECT_DOUBLE_EQ(view.Zoom(), 1);
  EXPECT_FALSE(view.CanZoomOut());
}

TEST(ValuesViewport, SideBySide_Should_HaveTwoEqualPanesWithTheSamePart) {
  ValuesViewport view = Wide(PreviewMode::sideBySide);
  view.ShowActualSize();
  view.PanBy(-300, 77);
  const auto areas = view.Areas();
  ASSERT_EQ(areas.size(), 2u);
  EXPECT_FALSE(areas[0].isChanged);
  EXPECT_TRUE(areas[1].isChanged);
  EXPECT_EQ(Width(areas[0].box), Width(areas[1].box));
  EXPECT_EQ(areas[1].box.Left - areas[0].box.Right, ValuesViewport::kGap);
  EXPECT_EQ(areas[0].place.Left - areas[0].pane.Left, areas[1].place.Left - areas[1].pane.Left);
  EXPECT_EQ(areas[0].place.Top, areas[1].place.Top);
  EXPECT_EQ(Width(areas[0].place), 4000);
}

TEST(ValuesViewport, RightToLeft_Should_PutTheOriginalOnTheRight) {
  for (const PreviewMode mode : {PreviewMode::sideBySide, PreviewMode::split}) {
    ValuesViewport view = Wide(mode);
    view.SetRightToLeft(true);
    const auto areas = view.Areas();
    EXPECT_FALSE(areas[0].isChanged);
    EXPECT_GT(areas[0].box.Left, areas[1].box.Left);
  }
}

TEST(ValuesViewport, Split_Should_ShowOnePicture_DividedWhereTheUserWants) {
  ValuesViewport view = Wide(PreviewMode::split);
  EXPECT_EQ(view.DividerColumn(), 500);
  view.MoveDividerTo(250);
  EXPECT_DOUBLE_EQ(view.Divider(), 0.25);
  const auto areas = view.Areas();
  EXPECT_EQ(areas[0].box.Right, 250);
  EXPECT_EQ(areas[1].box.Left, 250);
  EXPECT_EQ(areas[0].place.Left, areas[1].place.Left);
  EXPECT_TRUE(view.IsOnDivider(254, 6));
  EXPECT_FALSE(view.IsOnDivider(257, 6));
  view.MoveDividerTo(-50);
  EXPECT_DOUBLE_EQ(view.Divider(), 0);
  view.SetDivider(7);
  EXPECT_DOUBLE_EQ(view.Divider(), 1);
  view.SetRightToLeft(true);
  EXPECT_EQ(view.DividerColumn(), 0);
  view.SetMode(PreviewMode::changed);
  EXPECT_FALSE(view.IsOnDivider(0, 6));
}

TEST(ValuesViewport, WhileComparing_AllAreasShowOne) {
  const ValuesViewport view = Wide(PreviewMode::sideBySide);
  for (const bool isChanged : {false, true})
    for (const PreviewArea& area : view.AreasOf(isChanged)) EXPECT_EQ(area.isChanged, isChanged);
}

TEST(ValuesViewport, Zooming_Should_GoThroughTheLadder_FromFittedToTheMost_AndBack) {
  ValuesViewport view = Wide();
  double before = view.Zoom();
  int steps = 0;
  while (view.CanZoomIn()) {
    view.ZoomBy(1);
    EXPECT_GT(view.Zoom(), before);
    before = view.Zoom();
    ASSERT_LT(++steps, 100);
  }
  EXPECT_DOUBLE_EQ(before, ValuesViewport::kMostZoom);
  while (view.CanZoomOut()) {
    view.ZoomBy(-1);
    EXPECT_LT(view.Zoom(), before);
    before = view.Zoom();
    ASSERT_LT(++steps, 200);
  }
  EXPECT_TRUE(view.IsFitted());
  view.ZoomBy(-1);
  EXPECT_TRUE(view.IsFitted());
}

TEST(ValuesViewport, ThePixelUnderTheCursor_Should_Stay_When_TheWheelZoomsIn) {
  std::mt19937 random(kSeed);
  for (int i = 0; i < 200; ++i) {
    ValuesViewport view = Wide(i % 2 == 0 ? PreviewMode::sideBySide : PreviewMode::split);
    view.ShowActualSize();
    const TPoint at{static_cast<int>(random() % 480), static_cast<int>(random() % 600)};
    const TPoint pixel = view.PixelAt(at);
    view.ZoomBy(1 + static_cast<int>(random() % 3), at);
    const TPoint after = view.PixelAt(at);
    ASSERT_NEAR(pixel.X, after.X, 1) << "seed " << kSeed << " case " << i;
    ASSERT_NEAR(pixel.Y, after.Y, 1) << "seed " << kSeed << " case " << i;
  }
}

TEST(ValuesViewport, Panning_Should_EndAtTheEdges_AndComeBackAtOnce) {
  ValuesViewport view = Wide();
  view.ShowActualSize();
  EXPECT_TRUE(view.CanPan());
  EXPECT_TRUE(view.PanBy(100000, 100000));
  EXPECT_EQ(view.Areas().front().place.Left, 0);
  EXPECT_EQ(view.Areas().front().place.Top, 0);
  EXPECT_FALSE(view.PanBy(1, 1));
  EXPECT_TRUE(view.PanBy(-10, -20));
  EXPECT_EQ(view.Areas().front().place.Left, -10);
  EXPECT_EQ(view.Areas().front().place.Top, -20);
  view.PanBy(-100000, -100000);
  EXPECT_EQ(view.Areas().front().place.Right, 1000);
  EXPECT_EQ(view.Areas().front().place.Bottom, 600);
}

TEST(ValuesViewport, AnyView_Should_LeaveNoRoomAtOneSideOnly) {
  std::mt19937 random(kSeed);
  const auto below = [&](int most) { return static_cast<int>(random() % most); };
  for (int i = 0; i < 500; ++i) {
    ValuesViewport view(1 + below(3000), 1 + below(3000));
    for (int j = 0; j < 8; ++j) {
      switch (below(5)) {
        case 0:
          view.SetBox(below(1500), below(1500));
          break;
        case 1:
          view.ZoomBy(below(7) - 3, {below(1500), below(1500)});
          break;
        case 2:
          view.PanBy(below(2001) - 1000, below(2001) - 1000);
          break;
        case 3:
          view.SetMode(static_cast<PreviewMode>(below(3)));
          break;
        default:
          view.Fit();
      }
      for (const PreviewArea& area : view.Areas()) {
        const bool isWider = Width(area.place) > Width(area.pane);
        const int left = area.place.Left - area.pane.Left;
        const int right = area.pane.Right - area.place.Right;
        if (isWider) {
          ASSERT_LE(left, 0) << "seed " << kSeed << " case " << i;
          ASSERT_LE(right, 0) << "seed " << kSeed << " case " << i;
        } else {
          ASSERT_LE(std::abs(left - right), 1) << "seed " << kSeed << " case " << i;
        }
        ASSERT_GT(Height(area.place), 0);
      }
    }
  }
}

TEST(ValuesViewport, PixelAt_Should_BeThePixelUnderThePoint) {
  ValuesViewport view = Wide(PreviewMode::sideBySide);
  const TRect second = view.Areas()[1].place;
  EXPECT_EQ(view.PixelAt({second.Left, second.Top}).X, 4000 / Width(second) / 2);
  view.ShowActualSize();
  view.PanBy(100000, 100000);
  EXPECT_EQ(view.PixelAt({3, 5}).X, 3);
  EXPECT_EQ(view.PixelAt({3, 5}).Y, 5);
  const TRect pane = view.Areas()[1].pane;
  EXPECT_EQ(view.PixelAt({pane.Left + 7, 5}).X, 7);
}

TEST(ValuesViewport, AVeryWidePicture_Should_NotGrowBeyondWhatCanBeCounted) {
  for (const int width : {12'000'000, 200'000'000, 2'000'000'000}) {
    ValuesViewport view(width, 41);
    view.SetBox(1000, 600);
    view.SetMode(PreviewMode::changed);
    for (int i = 0; i < 20; ++i) view.ZoomBy(1);
    EXPECT_FALSE(view.CanZoomIn());
    EXPECT_GE(view.Zoom(), 1);
    EXPECT_EQ(view.Zoom(), std::floor(view.Zoom()));
    for (const int direction : {-1, 1}) {
      while (view.PanBy(direction * 2'000'000'000, 0)) {
      }
      const TRect place = view.Areas().front().place;
      EXPECT_LE(place.Left, 0) << width;
      EXPECT_GE(place.Right, 1000) << width;
      EXPECT_EQ(int64_t{place.Right} - place.Left,
                static_cast<int64_t>(width) * static_cast<int64_t>(view.Zoom()));
      EXPECT_EQ(direction < 0 ? place.Right : place.Left, direction < 0 ? 1000 : 0);
    }
  }
}

TEST(ValuesViewport, AnEmptyBox_Should_DoNoHarm) {
  ValuesViewport view(10, 10);
  for (const PreviewMode mode :
       {PreviewMode::sideBySide, PreviewMode::split, PreviewMode::changed}) {
    view.SetMode(mode);
    view.SetBox(0, 0);
    view.ZoomBy(1);
    view.ZoomBy(-1, {5, 5});
    view.MoveDividerTo(3);
    EXPECT_FALSE(view.Areas().empty());
  }
}

}  // namespace
}  // namespace rasterkit
