// Screens of every density, and what may change while a form is open.

#include <QApplication>
#include <QLayout>
#include <QLineEdit>
#include <QProgressBar>
#include <QScreen>
#include <QTest>
#include <QToolButton>
#include <QWindow>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/dialogs/bitmapframe/crop_bitmap_form.h>
#include <rasterkit/dialogs/execbitmap/chg_bmp_form.h>
#include <rasterkit/qt/look/style.h>

#include "tests/dialogs/gallery/contrast_rules.h"
#include "tests/dialogs/gallery/for_each_form.h"
#include "tests/dialogs/gallery/form_rules.h"
#include "tests/support/forms/form_events.h"

namespace rasterkit::test {
namespace {

using testing::IsEmpty;

/// A picture in which every pixel differs from its neighbors: drawing it at another size, or
/// between two pixels, is detected.
TBitmap Checkers(int width, int height) {
  TBitmap bitmap;
  bitmap.ResetPixels(pf24bit, width, height);
  for (int y = 0; y < height; ++y) {
    uint8_t* row = bitmap.ScanLine(y);
    for (int x = 0; x < width; ++x)
      for (int channel = 0; channel < 3; ++channel) row[3 * x + channel] = (x + y) % 2 * 255;
  }
  return bitmap;
}

/// The pixels of the screen in which a widget shows something.
QImage Pixels(QWidget& form, const QWidget& widget) {
  const QImage whole = form.grab().toImage();
  const double scale = whole.devicePixelRatio();
  const QRectF place(QPointF(widget.mapTo(&form, QPoint())) * scale, QSizeF(widget.size()) * scale);
  return whole.copy(place.toAlignedRect() & whole.rect());
}

/// Counts pixels that equal their right or lower neighbor, or are neither black nor white, except
/// at the edge, where a frame may be.
int Blurred(const QImage& image) {
  constexpr int kEdge = 4;
  int blurred = 0;
  for (int y = kEdge; y < image.height() - kEdge; ++y) {
    for (int x = kEdge; x < image.width() - kEdge; ++x) {
      const QRgb color = image.pixel(x, y);
      const bool isPure = color == qRgb(0, 0, 0) || color == qRgb(255, 255, 255);
      const bool isOther = color != image.pixel(x + 1, y) && color != image.pixel(x, y + 1);
      blurred += isPure && isOther ? 0 : 1;
    }
  }
  return blurred;
}

class ValuesOfCheckers : public testing::Test {
 protected:
  ValuesOfCheckers() {
    model.SetOperation(0);
    EXPECT_TRUE(ShowSettled(form));
  }
  int BlurredIn(const char* box) { return Blurred(Pixels(form, *form.findChild<QWidget*>(box))); }

  TBitmap picture = Checkers(3000, 2400);
  ChangeValuesModel model{picture};
  TFormChgBmp form{model};
};

TEST_F(ValuesOfCheckers, Previews_Should_ShowPixelsOfThePictureAsPixelsOfTheScreen) {
  EXPECT_EQ(BlurredIn("PaintBoxOrg"), 0);
  EXPECT_EQ(BlurredIn("PaintBoxChg"), 0);
}

TEST_F(ValuesOfCheckers, Previews_Should_StayCrisp_When_TheFormMovesToAnotherScreen) {
  if (QGuiApplication::screens().size() < 2) GTEST_SKIP() << "one screen";
  for (QScreen* screen : QGuiApplication::screens()) {
    form.windowHandle()->setScreen(screen);
    form.move(screen->geometry().topLeft() + QPoint(20, 20));
    Settle(form);
    ASSERT_EQ(form.devicePixelRatioF(), screen->devicePixelRatio());
    EXPECT_EQ(BlurredIn("PaintBoxOrg"), 0) << screen->devicePixelRatio();
    EXPECT_EQ(BlurredIn("PaintBoxChg"), 0) << screen->devicePixelRatio();
  }
}

/// How far red reaches along a line of the photograph.
int RedRun(const QImage& image, QPoint point, QPoint step) {
  const auto isRed = [&](QPoint place) {
    return image.rect().contains(place) && image.pixel(place) == qRgb(255, 0, 0);
  };
  int run = 0;
  for (QPoint place = point; isRed(place); place += step) ++run;
  for (QPoint place = point - step; isRed(place); place -= step) ++run;
  return run;
}

TEST(HandlesOfTheCropTool, TheirSide_Should_BeTenPixels_ScaledAsTheScreenIs) {
  TBitmap picture = Checkers(600, 400);
  TFormCropBitmap form(picture, TRect{100, 100, 500, 300});
  ASSERT_TRUE(ShowSettled(form));
  QWidget& box = *form.findChild<QWidget*>("PaintBox");
  const QImage image = Pixels(form, box);
  const double scale = image.devicePixelRatio();
  const TRect cut = form.Tool().CutRect().ToRect();
  const QPoint top = QPointF((cut.Left + cut.Right) / 2.0 * scale, cut.Top * scale).toPoint();
  // Where the outline leaves the handle, below or above it.
  const QPoint above = top - QPoint(0, qRound(3 * scale));
  EXPECT_NEAR(RedRun(image, above, {1, 0}), 10 * scale, 1.01);
  EXPECT_NEAR(RedRun(image, top, {0, 1}), 10 * scale, 1.01);
}

TEST(ScaleRules, Drawings_Should_HaveThePixelsOfTheScreen) {
  ForEachForm([](QWidget& form) {
    for (const QAbstractButton* button : form.findChildren<QAbstractButton*>()) {
      const bool isOfQt = button->objectName().startsWith("qt_");
      if (isOfQt || button->icon().isNull()) continue;
      const double scale = form.devicePixelRatioF();
      const QPixmap drawn = button->icon().pixmap(button->iconSize(), scale);
      EXPECT_EQ(drawn.size(), (QSizeF(button->iconSize()) * scale).toSize())
          << button->objectName().toStdString();
    }
  });
}

/// The work area of a screen of 1280 x 720 that is shown at 125 percent.
constexpr QSize kSmallScreen(1024, 576);

TEST(ScaleRules, EveryForm_Should_FitOnASmallScreen) {
  ForEachForm([](QWidget& form) {
    const QSize least = form.layout()->totalMinimumSize();
    EXPECT_LE(least.width(), kSmallScreen.width());
    EXPECT_LE(least.height(), kSmallScreen.height());
  });
}

/// Describes where two photographs differ; empty if they are equal.
std::string Difference(const QImage& a, const QImage& b) {
  if (a.size() != b.size()) return "another size";
  QRect place;
  for (int y = 0; y < a.height(); ++y)
    for (int x = 0; x < a.width(); ++x)
      if (a.pixel(x, y) != b.pixel(x, y)) place |= QRect(x, y, 1, 1);
  if (place.isEmpty()) return {};
  return "in " + std::to_string(place.width()) + " x " + std::to_string(place.height()) +
         " pixels at " + std::to_string(place.x()) + ", " + std::to_string(place.y());
}

/// Restores the application's style and palette.
class ChangeOfStyle : public testing::Test {
 protected:
  // A blinking cursor is never the same twice.
  ChangeOfStyle() { QApplication::setCursorFlashTime(0); }
  ~ChangeOfStyle() override {
    QApplication::setCursorFlashTime(flashTime_);
    QApplication::setStyle("Fusion");
    QApplication::setPalette(QPalette());
  }

  static void Fusion(const QPalette& palette) {
    QApplication::setStyle("Fusion");
    UsePalette(palette);
  }
  /// A photograph after all changes have ended: pictures are smoothed when idle. Moving bars never
  /// end, and folders and focus differ between windows.
  static QImage Look(QWidget& form) {
    constexpr int kPause = 250, kMost = 40;
    for (auto* bar : form.findChildren<QProgressBar*>()) bar->hide();
    if (auto* path = form.findChild<QLineEdit*>("EditPath")) path->setText("/plans");
    if (QWidget* focus = form.focusWidget()) focus->clearFocus();
    QImage last = GrabForm(form);
    for (int i = 0; i < kMost; ++i) {
      QTest::qWait(kPause);
      const QImage now = GrabForm(form);
      if (now == last) break;
      last = now;
    }
    return last;
  }

 private:
  const int flashTime_ = QApplication::cursorFlashTime();
};

TEST_F(ChangeOfStyle, Forms_Should_LookAsIfOpenedSo_When_TheColorsChange) {
  for (const bool toDark : {true, false}) {
    Fusion(toDark ? LightPalette() : DarkPalette());
    ForEachForm([&](QWidget& form, const Exhibited& exhibited) {
      Look(form);
      UsePalette(toDark ? DarkPalette() : LightPalette());
      const QImage changed = Look(form);
      const std::unique_ptr<QWidget> fresh = exhibited.make();
      EXPECT_TRUE(ShowSettled(*fresh));
      EXPECT_EQ(Difference(changed, Look(*fresh)), "") << (toDark ? "to dark" : "to light");
      UsePalette(toDark ? LightPalette() : DarkPalette());
    });
  }
}

TEST_F(ChangeOfStyle, Forms_Should_KeepTheirRoom_AndComeBack_When_TheStyleChanges) {
  QApplication::setStyle("Fusion");
  ForEachForm([](QWidget& form) {
    QApplication::setStyle("Windows");
    Settle(form);
    EXPECT_THAT(ClippedTexts(form), IsEmpty());
    QApplication::setStyle("Fusion");
    Settle(form);
    EXPECT_THAT(ClippedTexts(form), IsEmpty());
    EXPECT_THAT(FaintFrames(form), IsEmpty()) << "outlines come back";
  });
}

TEST_F(ChangeOfStyle, Forms_Should_KeepTheirRoom_When_TheFontGrows) {
  const QFont before = QApplication::font();
  ForEachForm([&](QWidget& form) {
    QFont large = before;
    large.setPointSizeF(1.5 * before.pointSizeF());
    QApplication::setFont(large);
    Settle(form);
    EXPECT_THAT(ClippedTexts(form), IsEmpty());
    QApplication::setFont(before);
  });
}

}  // namespace
}  // namespace rasterkit::test
