#include <QApplication>
#include <QSlider>
#include <algorithm>

#include <gtest/gtest.h>

#include <rasterkit/qt/look/style.h>

#include "tests/support/forms/color_contrast.h"

namespace rasterkit {
namespace {

using test::Contrast;

TEST(Style, IsDark_Should_TellThePalettesApart) {
  EXPECT_TRUE(IsDark(DarkPalette()));
  EXPECT_FALSE(IsDark(LightPalette()));
}

TEST(Style, Texts_Should_BeReadable) {
  for (const QPalette& palette : {LightPalette(), DarkPalette()}) {
    const auto contrast = [&](QPalette::ColorRole text, QPalette::ColorRole ground) {
      return Contrast(palette.color(text), palette.color(ground));
    };
    EXPECT_GE(contrast(QPalette::WindowText, QPalette::Window), 4.5);
    EXPECT_GE(contrast(QPalette::Text, QPalette::Base), 4.5);
    EXPECT_GE(contrast(QPalette::Text, QPalette::AlternateBase), 4.5);
    EXPECT_GE(contrast(QPalette::ButtonText, QPalette::Button), 4.5);
    EXPECT_GE(contrast(QPalette::HighlightedText, QPalette::Highlight), 4.5);
    EXPECT_GE(contrast(QPalette::PlaceholderText, QPalette::Base), 4.5);
    EXPECT_GE(contrast(QPalette::ToolTipText, QPalette::ToolTipBase), 4.5);
    EXPECT_GE(contrast(QPalette::Link, QPalette::Window), 4.5);
  }
}

TEST(Style, DisabledTexts_Should_LookDisabled) {
  for (const QPalette& palette : {LightPalette(), DarkPalette()}) {
    EXPECT_NE(palette.color(QPalette::Disabled, QPalette::ButtonText),
              palette.color(QPalette::Active, QPalette::ButtonText));
  }
}

TEST(Style, Ticks_Should_BeSeen_When_TheStyleIsDark) {
  const QPalette before = QApplication::palette();
  UsePalette(DarkPalette());
  QSlider slider(Qt::Horizontal);
  slider.setTickPosition(QSlider::TicksBelow);
  slider.setTickInterval(10);
  slider.resize(220, slider.sizeHint().height());
  const QImage shown = slider.grab().toImage();
  const QColor window = DarkPalette().color(QPalette::Window);
  double best = 0;
  for (int x = 0; x < shown.width(); ++x)
    best = std::max(best, Contrast(shown.pixelColor(x, shown.height() - 3), window));
  EXPECT_GE(best, 3);
  UsePalette(before);
  EXPECT_EQ(QApplication::palette("QSlider").color(QPalette::Window),
            before.color(QPalette::Window));
}

}  // namespace
}  // namespace rasterkit
