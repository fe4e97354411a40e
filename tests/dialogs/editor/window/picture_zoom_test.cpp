#include <gtest/gtest.h>

#include <rasterkit/dialogs/editor/window/picture_zoom.h>

namespace rasterkit {
namespace {

class Zoom : public testing::Test {
 protected:
  Zoom() {
    zoom.SetBox(400, 300);
    zoom.SetPicture(4000, 2000);
  }
  PictureZoom zoom;
};

TEST_F(Zoom, APicture_Should_BeFittedAndCentered) {
  EXPECT_DOUBLE_EQ(zoom.Factor(), 0.1);
  EXPECT_EQ(zoom.Place().Left, 0);
  EXPECT_EQ(zoom.Place().Right, 400);
  EXPECT_EQ(zoom.Place().Top, 50);
  EXPECT_EQ(zoom.Place().Bottom, 250);
  EXPECT_FALSE(zoom.CanPan());
}

TEST_F(Zoom, TheActualSize_Should_NotBeJumpedOver) {
  zoom.ZoomBy(9.5);
  EXPECT_DOUBLE_EQ(zoom.Factor(), 0.95);
  zoom.ZoomBy(1.25);
  EXPECT_DOUBLE_EQ(zoom.Factor(), 1);
  zoom.ZoomBy(1.25);
  EXPECT_DOUBLE_EQ(zoom.Factor(), 1.25);
  zoom.ZoomBy(0.5);
  EXPECT_DOUBLE_EQ(zoom.Factor(), 1);
}

TEST_F(Zoom, ALargePicture_Should_CoverTheBox) {
  zoom.ShowActualSize();
  zoom.PanBy(10'000, 10'000);
  EXPECT_EQ(zoom.Place().Left, 0);
  EXPECT_EQ(zoom.Place().Top, 0);
  zoom.PanBy(-10'000, -10'000);
  EXPECT_EQ(zoom.Place().Right, 400);
  EXPECT_EQ(zoom.Place().Bottom, 300);
}

TEST_F(Zoom, TheMiddle_Should_Stay_When_TheBoxGrows) {
  zoom.ShowActualSize();
  const TRect before = zoom.Place();
  zoom.SetBox(500, 380);
  EXPECT_EQ(zoom.Place().Left, before.Left + 50);
  EXPECT_EQ(zoom.Place().Top, before.Top + 40);
}

TEST_F(Zoom, Factors_Should_HaveLimits) {
  for (int i = 0; i < 100; ++i) zoom.ZoomBy(2);
  EXPECT_LE(zoom.Factor(), 64);
  EXPECT_FALSE(zoom.CanZoom(1.1));
  for (int i = 0; i < 100; ++i) zoom.ZoomBy(0.5);
  EXPECT_GT(zoom.Place().Right - zoom.Place().Left, 0);
  EXPECT_FALSE(zoom.CanZoom(0.9));
}

TEST_F(Zoom, AStripOfAMillionPixels_Should_BeShownAtEveryFactor) {
  zoom.SetPicture(1'000'000, 1);
  EXPECT_GE(zoom.Place().Bottom - zoom.Place().Top, 1);
  for (int i = 0; i < 60; ++i) zoom.ZoomBy(2);
  EXPECT_LE(zoom.Place().Right - zoom.Place().Left, 1 << 27);
}

TEST_F(Zoom, WithoutABoxOrAPicture_NothingShouldHappen) {
  PictureZoom none;
  none.ZoomBy(2);
  none.PanBy(1, 1);
  none.ShowActualSize();
  EXPECT_EQ(none.Factor(), 0);
  none.SetPicture(10, 10);
  EXPECT_EQ(none.Factor(), 0);
  none.SetBox(100, 50);
  EXPECT_DOUBLE_EQ(none.Factor(), 5);
}

}  // namespace
}  // namespace rasterkit
