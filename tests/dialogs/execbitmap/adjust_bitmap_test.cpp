#include <QTest>
#include <QWidget>
#include <random>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/execbitmap/adjust_bitmap.h>
#include <rasterkit/dialogs/execbitmap/value_change.h>

#include "tests/support/forms/form_events.h"
#include "tests/support/paper_pictures.h"
#include "tests/support/same_pixels.h"

namespace rasterkit {
namespace {

using test::SamePixels;

class AdjustBitmapTest : public testing::Test {
 protected:
  AdjustBitmapTest() {
    std::mt19937 random(62);
    original = test::PaperBitmap(pf24bit, 61, 43, random, 1);
    bitmap.Assign(&original);
  }

  bool Run(std::function<void(QWidget& form)> action) {
    test::WhenModal(std::move(action));
    return AdjustBitmap(bitmap, values);
  }

  static void Press(QWidget& form, const char* button) {
    QTest::mouseClick(form.findChild<QWidget*>(button), Qt::LeftButton);
  }

  TBitmap original, bitmap;
  TChgBmpValuesRec values{5, -10, 15, 20, 25, 30, 9};
};

TEST_F(AdjustBitmapTest, GivenValues_Should_AllActOnceAndInTheirOrder) {
  EXPECT_TRUE(Run([](QWidget& form) { Press(form, "nbPost"); }));
  ValueChange expected;
  expected.taskSlots = {kTaskBrightness, kTaskContrast, kTaskSharpen, kTaskColors};
  expected.lightness = 30;
  expected.contrast = 25;
  expected.sharpen = 20;
  expected.red = 5;
  expected.green = -10;
  expected.blue = 15;
  expected.ApplyTo(original);
  EXPECT_TRUE(SamePixels(original, bitmap));
  EXPECT_TRUE(bitmap.Modified());
}

TEST_F(AdjustBitmapTest, ValuesOfTheWindow_Should_ComeBack) {
  EXPECT_TRUE(Run([](QWidget& form) {
    QTest::keyClick(form.findChild<QWidget*>("TrackContrast"), Qt::Key_Home);
    Press(form, "nbPost");
  }));
  EXPECT_EQ(values.Contrast, -100);
  EXPECT_EQ(values.Red, 5);
  EXPECT_EQ(values.GrayValue, 9);
}

TEST_F(AdjustBitmapTest, Cancel_Should_LeaveBitmapAndValues) {
  EXPECT_FALSE(Run([](QWidget& form) {
    QTest::keyClick(form.findChild<QWidget*>("TrackContrast"), Qt::Key_Home);
    Press(form, "nbCancel");
  }));
  EXPECT_TRUE(SamePixels(original, bitmap));
  EXPECT_EQ(values.Contrast, 25);
}

TEST_F(AdjustBitmapTest, NoPixels_Should_BeSurvived) {
  bitmap = TBitmap();
  EXPECT_TRUE(Run([](QWidget& form) { Press(form, "nbPost"); }));
  EXPECT_TRUE(bitmap.Empty());
}

}  // namespace
}  // namespace rasterkit
