// Everything in the dialogs can be done without a mouse.

#include <QApplication>
#include <QTest>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/bitmapframe/crop_bitmap.h>
#include <rasterkit/dialogs/bitmapframe/crop_bitmap_form.h>
#include <rasterkit/dialogs/editchangesize/edit_size.h>
#include <rasterkit/dialogs/execbitmap/change_bitmap.h>
#include <rasterkit/dialogs/execbitmap/value_change.h>
#include <rasterkit/dialogs/savedlgbitmap/edit_graphics_paras.h>
#include <rasterkit/qt/controls/edits.h>

#include "tests/support/forms/form_events.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

/// A user with a keyboard only: keys go to the focused control.
class Keyboard {
 public:
  explicit Keyboard(QWidget& window) : window_(window) {
    window.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
  }

  Keyboard& Press(Qt::Key key, Qt::KeyboardModifiers keys = Qt::NoModifier, int times = 1) {
    for (; times > 0; --times) QTest::keyClick(Focus(), key, keys);
    return *this;
  }
  Keyboard& Type(const char* text) {
    QTest::keyClicks(Focus(), text);
    return *this;
  }
  /// A button that is called so stays down for a moment before it does its work.
  Keyboard& Alt(char letter) {
    constexpr int kMoment = 200;
    QTest::keyClick(Focus(), letter, Qt::AltModifier);
    QTest::qWait(kMoment);
    return *this;
  }
  std::string Place() const {
    return window_.focusWidget() == nullptr ? std::string()
                                            : window_.focusWidget()->objectName().toStdString();
  }

 private:
  QWidget* Focus() const {
    return window_.focusWidget() == nullptr ? &window_ : window_.focusWidget();
  }
  QWidget& window_;
};

TEST(KeyboardOnly, CropBitmap_Should_DrawMoveResizeUndoAndConfirm) {
  TBitmap bitmap = GradientBitmap(pf24bit, 600, 400);
  WhenModal([](QWidget& window) {
    Keyboard keyboard(window);
    EXPECT_EQ(keyboard.Place(), "PaintBox");
    keyboard.Press(Qt::Key_Tab, Qt::NoModifier, 3);
    EXPECT_EQ(keyboard.Place(), "SpEdWidth");
    keyboard.Type("200").Press(Qt::Key_Tab).Type("100").Press(Qt::Key_Tab);
    keyboard.Press(Qt::Key_Backtab, Qt::ShiftModifier, 5);
    EXPECT_EQ(keyboard.Place(), "PaintBox");
    keyboard.Press(Qt::Key_Right, Qt::NoModifier, 3).Press(Qt::Key_Down, Qt::ShiftModifier);
    keyboard.Press(Qt::Key_Left, Qt::ControlModifier);
    keyboard.Press(Qt::Key_Up, Qt::ControlModifier | Qt::ShiftModifier);
    keyboard.Press(Qt::Key_Z, Qt::ControlModifier);
    keyboard.Press(Qt::Key_Return);
  });
  TRect rect;
  ASSERT_TRUE(CropBitmap(bitmap, rect));
  EXPECT_EQ(rect.Left, 3);
  EXPECT_EQ(rect.Top, 10);
  EXPECT_EQ(rect.Right, 202);
  EXPECT_EQ(rect.Bottom, 110);
}

TEST(KeyboardOnly, CropBitmap_Should_ZoomPanAndPressItsButtons) {
  TBitmap bitmap = GradientBitmap(pf24bit, 3000, 2000);
  WhenModal([](QWidget& window) {
    Keyboard keyboard(window);
    const TBmpCutRect& tool = static_cast<TFormCropBitmap&>(window).Tool();
    const double fitted = tool.StretchFactor();
    keyboard.Press(Qt::Key_Plus).Press(Qt::Key_Plus, Qt::KeypadModifier);
    EXPECT_NEAR(tool.StretchFactor(), fitted * 1.05 * 1.05, 1e-9);
    keyboard.Press(Qt::Key_Minus);
    EXPECT_NEAR(tool.StretchFactor(), fitted * 1.05 * 1.05 * 0.95, 1e-9);
    keyboard.Alt('a');
    EXPECT_TRUE(tool.IsUnscaled());
    const RDRect before = tool.PaintRect();
    keyboard.Press(Qt::Key_Right, Qt::AltModifier).Press(Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(tool.PaintRect().Left, before.Left - 20);
    EXPECT_EQ(tool.PaintRect().Top, before.Top - 20);
    keyboard.Alt('f');
    EXPECT_NEAR(tool.StretchFactor(), fitted, 1e-9);
    keyboard.Alt('p');
    EXPECT_FALSE(tool.CutRectExists());
    keyboard.Alt('u');
    EXPECT_TRUE(tool.CutRectExists());
    keyboard.Press(Qt::Key_Escape);
  });
  TRect rect{100, 100, 400, 300};
  EXPECT_FALSE(CropBitmap(bitmap, rect));
}

TEST(KeyboardOnly, ChangeBitmap_Should_RefreshSetValuesAndConfirm) {
  const TBitmap original = GradientBitmap(pf24bit, 200, 100);
  TBitmap bitmap = GradientBitmap(pf24bit, 200, 100);
  TChgBmpValuesRec values;
  WhenModal([](QWidget& window) {
    Keyboard keyboard(window);
    EXPECT_EQ(keyboard.Place(), "TrackLightness");
    keyboard.Press(Qt::Key_F5).Alt('c').Press(Qt::Key_PageUp).Press(Qt::Key_Right);
    keyboard.Press(Qt::Key_Tab, Qt::NoModifier, 2).Press(Qt::Key_Tab).Type("-7");
    keyboard.Alt('g').Press(Qt::Key_Tab).Type("15").Press(Qt::Key_Return);
  });
  ASSERT_TRUE(ChangeBitmap(0, &bitmap, true, values));
  EXPECT_EQ(values.Contrast, 11);
  EXPECT_EQ(values.Sharpen, -7);
  EXPECT_EQ(values.Green, 15);
  ValueChange expected;
  expected.taskSlots = {kTaskContrast, kTaskSharpen, kTaskColors};
  expected.contrast = 11;
  expected.sharpen = -7;
  expected.green = 15;
  TBitmap changed = GradientBitmap(pf24bit, 200, 100);
  expected.ApplyTo(changed);
  EXPECT_TRUE(SamePixels(changed, bitmap));
  EXPECT_FALSE(SamePixels(original, bitmap));
}

TEST(KeyboardOnly, ChangeBitmap_Should_PickAGrayValue) {
  TBitmap bitmap = GradientBitmap(pf24bit, 200, 100);
  TChgBmpValuesRec values;
  WhenModal([](QWidget& window) {
    Keyboard keyboard(window);
    EXPECT_EQ(keyboard.Place(), "TrackBar");
    keyboard.Press(Qt::Key_Home).Press(Qt::Key_Tab).Type("200").Press(Qt::Key_Return);
  });
  ASSERT_TRUE(ChangeBitmap(5, &bitmap, true, values));
  ValueChange expected;
  expected.operation = 5;
  expected.grayValue = 200;
  TBitmap changed = GradientBitmap(pf24bit, 200, 100);
  expected.ApplyTo(changed);
  EXPECT_TRUE(SamePixels(changed, bitmap));
}

TEST(KeyboardOnly, EditSize_Should_TakeBothSizesAndTheBox) {
  int32_t width = 400, height = 300;
  bool proportional = true;
  WhenModal([](QWidget& window) {
    Keyboard keyboard(window);
    keyboard.Alt('p');
    EXPECT_EQ(keyboard.Place(), "CheckProp");
    keyboard.Alt('w').Type("123").Press(Qt::Key_Tab).Type("45").Press(Qt::Key_Up);
    keyboard.Press(Qt::Key_Return);
  });
  ASSERT_TRUE(EditSize(width, height, proportional));
  EXPECT_EQ(width, 123);
  EXPECT_EQ(height, 46);
  EXPECT_FALSE(proportional);
}

TEST(KeyboardOnly, EditGraphicsParas_Should_SetTypeResolutionColorsAndQuality) {
  TrecSaveBitmap rec{1, 24, 96, 0, 90};
  WhenModal([](QWidget& window) {
    Keyboard keyboard(window);
    EXPECT_EQ(keyboard.Place(), "CoBoGraphType");
    keyboard.Alt('s').Press(Qt::Key_Home);
    keyboard.Alt('r').Press(Qt::Key_A, Qt::ControlModifier).Type("150");
    keyboard.Alt('t').Press(Qt::Key_Down);
    keyboard.Alt('q').Press(Qt::Key_Home).Press(Qt::Key_Right).Press(Qt::Key_Return);
  });
  ASSERT_TRUE(EditGraphicsParas(rec, true, true, true, true, 210, 297));
  EXPECT_EQ(rec, (TrecSaveBitmap{6, 1, 150, 0, 11}));
}

}  // namespace
}  // namespace rasterkit::test
