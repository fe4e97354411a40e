#include <QApplication>
#include <QPalette>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/values/zero_slider.h>

#include "tests/support/forms/form_events.h"

namespace rasterkit {
namespace {

class ZeroSliderTest : public testing::Test {
 protected:
  ZeroSliderTest() {
    slider.setRange(-100, 100);
    slider.resize(220, 30);
  }
  /// Whether the row of the groove is filled at a column.
  bool IsFilled(int x) {
    const QImage image = test::GrabForm(slider);
    const int y = slider.FilledPart().center().y();
    const QColor color = image.pixelColor(x, y);
    const QColor highlight = slider.palette().color(QPalette::Highlight);
    return std::abs(color.hue() - highlight.hue()) < 20 && color.saturation() > 80;
  }

  ZeroSlider slider;
};

TEST_F(ZeroSliderTest, TheFilledPart_Should_ReachFromZeroToTheValue) {
  EXPECT_EQ(slider.FilledPart().width(), 0);
  const int zero = slider.FilledPart().left();
  EXPECT_NEAR(zero, 110, 2);
  slider.setValue(50);
  EXPECT_EQ(slider.FilledPart().left(), zero);
  EXPECT_NEAR(slider.FilledPart().width(), 53, 3);
  slider.setValue(-50);
  EXPECT_EQ(slider.FilledPart().right() + 1, zero);
  EXPECT_NEAR(slider.FilledPart().width(), 53, 3);
}

TEST_F(ZeroSliderTest, ThePainting_Should_FollowIt) {
  slider.setValue(60);
  EXPECT_TRUE(IsFilled(130));
  EXPECT_FALSE(IsFilled(60)) << "the style does not fill from the left";
  slider.setValue(-60);
  EXPECT_TRUE(IsFilled(90));
  EXPECT_FALSE(IsFilled(160));
  slider.setValue(0);
  EXPECT_FALSE(IsFilled(60));
  EXPECT_FALSE(IsFilled(160));
}

TEST_F(ZeroSliderTest, RightToLeft_Should_MirrorIt) {
  slider.setLayoutDirection(Qt::RightToLeft);
  slider.setValue(60);
  EXPECT_TRUE(IsFilled(90));
  EXPECT_FALSE(IsFilled(160));
}

TEST_F(ZeroSliderTest, ARangeWithoutZero_Should_FillFromItsLeast) {
  slider.setRange(10, 60);
  slider.setValue(35);
  EXPECT_LT(slider.FilledPart().left(), 20);
  EXPECT_NEAR(slider.FilledPart().width(), 105, 8);
}

}  // namespace
}  // namespace rasterkit
