// Unexpected bitmaps and typed texts.

#include <QApplication>
#include <QSlider>
#include <QTest>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/bitmapframe/crop_bitmap.h>
#include <rasterkit/dialogs/editchangesize/edit_size.h>
#include <rasterkit/dialogs/execbitmap/change_bitmap.h>
#include <rasterkit/qt/controls/edits.h>

#include "tests/support/forms/form_events.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

constexpr const char* kNonsense[] = {"abc",    "-",    "+", "--5", "1e9", "99999999999999999999",
                                     "-99999", "0x1F", " ", ".,"};

/// Empties a field and types into it, as a user who leaves it then.
void TypeAndLeave(QWidget& field, const char* text) {
  field.setFocus();
  QTest::keyClick(&field, Qt::Key_A, Qt::ControlModifier);
  QTest::keyClick(&field, Qt::Key_Delete);
  for (const QChar& key : QString::fromUtf8(text)) QTest::keyClick(&field, key.toLatin1());
  QTest::keyClick(&field, Qt::Key_Tab);
}

void PressEnter(QWidget& window) {
  QTest::keyClick(&window, Qt::Key_Return);
}

TBitmap CopyOf(const TBitmap& bitmap) {
  TBitmap copy;
  copy.Assign(&bitmap);
  return copy;
}

TEST(CropBitmapFields, Nonsense_Should_LeaveARectangleInThePicture) {
  for (const char* text : kNonsense) {
    TBitmap bitmap = GradientBitmap(pf24bit, 61, 43);
    WhenModal([&](QWidget& window) {
      for (const char* name : {"SpEdWidth", "SpEdLeft", "SpEdHeight", "SpEdTop"})
        TypeAndLeave(*window.findChild<QWidget*>(name), text);
      PressEnter(window);
    });
    TRect rect{10, 10, 30, 20};
    ASSERT_TRUE(CropBitmap(bitmap, rect)) << text;
    EXPECT_TRUE(rect.Left >= 0 && rect.Top >= 0 && rect.Right <= 61 && rect.Bottom <= 43) << text;
    EXPECT_EQ(bitmap.Width(), rect.Right - rect.Left) << text;
    EXPECT_EQ(bitmap.Height(), rect.Bottom - rect.Top) << text;
    EXPECT_GT(bitmap.Width() * bitmap.Height(), 0) << text;
  }
}

TEST(CropBitmapFields, AnEmptiedField_Should_KeepItsNumber) {
  TBitmap bitmap = GradientBitmap(pf24bit, 61, 43);
  WhenModal([](QWidget& window) {
    for (const char* name : {"SpEdLeft", "SpEdTop", "SpEdWidth", "SpEdHeight"})
      TypeAndLeave(*window.findChild<QWidget*>(name), "");
    PressEnter(window);
  });
  TRect rect{10, 11, 30, 20};
  EXPECT_TRUE(ChooseCropRect(bitmap, rect));
  EXPECT_EQ(rect.Left, 10);
  EXPECT_EQ(rect.Top, 11);
  EXPECT_EQ(rect.Right, 30);
  EXPECT_EQ(rect.Bottom, 20);
}

TEST(ChangeBitmapFields, Nonsense_Should_LeaveNumbersInTheirRanges) {
  for (const char* text : kNonsense) {
    TBitmap bitmap = GradientBitmap(pf24bit, 31, 23);
    TChgBmpValuesRec values;
    WhenModal([&](QWidget& window) {
      QTest::keyClick(&window, Qt::Key_F5);
      for (auto* field : window.findChildren<TSpinEditInt*>()) {
        if (field->isVisible()) TypeAndLeave(*field, text);
        EXPECT_GE(field->value(), -100);
        EXPECT_LE(field->value(), 100);
      }
      PressEnter(window);
    });
    EXPECT_TRUE(ChangeBitmap(0, &bitmap, true, values)) << text;
    for (const int32_t value : {values.Red, values.Green, values.Blue, values.Sharpen,
                                values.Contrast, values.Brightness}) {
      EXPECT_GE(value, -100) << text;
      EXPECT_LE(value, 100) << text;
    }
  }
}

TEST(ChangeBitmapFields, AnEmptiedField_Should_KeepItsNumber) {
  TBitmap bitmap = GradientBitmap(pf24bit, 31, 23);
  TChgBmpValuesRec values{1, 2, 3, 4, 5, 6, 7};
  WhenModal([](QWidget& window) {
    for (auto* field : window.findChildren<TSpinEditInt*>())
      if (field->isVisible()) TypeAndLeave(*field, "");
    PressEnter(window);
  });
  EXPECT_TRUE(ChangeBitmap(0, &bitmap, true, values));
  EXPECT_EQ(values.Red, 1);
  EXPECT_EQ(values.Green, 2);
  EXPECT_EQ(values.Blue, 3);
  EXPECT_EQ(values.Sharpen, 4);
  EXPECT_EQ(values.Contrast, 5);
  EXPECT_EQ(values.Brightness, 6);
  EXPECT_EQ(values.GrayValue, 7);
}

TEST(EditSizeFields, Nonsense_Should_LeaveSizesOf32Bits) {
  for (const char* text : kNonsense) {
    int32_t width = 400, height = 300;
    bool proportional = false;
    WhenModal([&](QWidget& window) {
      QTest::keyClick(window.findChild<QWidget*>("CheckProp"), Qt::Key_Space);
      TypeAndLeave(*window.findChild<QWidget*>("FlEdW"), text);
      TypeAndLeave(*window.findChild<QWidget*>("FlEdH"), text);
      PressEnter(window);
    });
    EXPECT_TRUE(EditSize(width, height, proportional)) << text;
    EXPECT_GE(width, 0) << text;
    EXPECT_GE(height, 0) << text;
  }
}

TEST(EditSizeFields, AnEmptiedField_Should_KeepItsNumber) {
  int32_t width = 400, height = 300;
  bool proportional = false;
  WhenModal([&](QWidget& window) {
    TypeAndLeave(*window.findChild<QWidget*>("FlEdW"), "");
    TypeAndLeave(*window.findChild<QWidget*>("FlEdH"), "");
    PressEnter(window);
  });
  EXPECT_TRUE(EditSize(width, height, proportional));
  EXPECT_EQ(width, 400);
  EXPECT_EQ(height, 300);
}

TEST(EditSizeFields, AnySizeThatComesIn_Should_BeSurvived) {
  for (const int32_t size : {INT32_MIN, -5, 0, 1, 30000, INT32_MAX}) {
    int32_t width = size, height = 7;
    bool proportional = false;
    WhenModal([](QWidget& window) {
      TypeAndLeave(*window.findChild<QWidget*>("FlEdW"), "12");
      TypeAndLeave(*window.findChild<QWidget*>("FlEdH"), "345");
      PressEnter(window);
    });
    EXPECT_TRUE(EditSize(width, height, proportional)) << size;
    EXPECT_GE(width, 0) << size;
    EXPECT_EQ(height, 345) << size;
  }
}

TEST(ChangeBitmapDialog, EveryFormat_Should_BecomeWhatTheSilentCallMakesOfIt) {
  for (const TPixelFormat format : kEveryFormat) {
    for (const int32_t operation : {0, 5}) {
      const TBitmap original = GradientBitmap(format, 131, 73);
      TBitmap silent = CopyOf(original), shown = CopyOf(original);
      TChgBmpValuesRec values, sameValues;
      values.Brightness = sameValues.Brightness = 20;
      EXPECT_TRUE(ChangeBitmap(operation, &silent, false, values));
      WhenModal([](QWidget& window) {
        QApplication::processEvents();
        PressEnter(window);
      });
      EXPECT_TRUE(ChangeBitmap(operation, &shown, true, sameValues));
      EXPECT_TRUE(SamePixels(silent, shown)) << "format " << format << ", operation " << operation;
      EXPECT_EQ(silent.PixelFormat(), shown.PixelFormat());
    }
  }
}

TEST(ChangeBitmapDialog, NoBitmap_Should_OpenNothing) {
  TChgBmpValuesRec values{1, 2, 3, 4, 5, 6, 7};
  EXPECT_FALSE(ChangeBitmap(0, nullptr, true, values));
  EXPECT_FALSE(ChangeBitmap(5, nullptr, true, values));
  EXPECT_EQ(values.Brightness, 6);
}

class HugeBitmap : public testing::Test {
 protected:
  static constexpr int kSide = 30000;

  HugeBitmap() {
    bitmap.ResetPixels(pf1bit, kSide, kSide);
    std::fill_n(bitmap.ScanLine(kSide / 2), kSide / 16, uint8_t{0xAA});
    rows = bitmap.ScanLine(0);
  }
  /// The same rows: they were not replaced.
  void ExpectUntouched() {
    EXPECT_EQ(bitmap.Width(), kSide);
    EXPECT_EQ(bitmap.PixelFormat(), pf1bit);
    EXPECT_EQ(bitmap.ScanLine(0), rows);
    EXPECT_EQ(bitmap.ScanLine(kSide / 2)[7], 0xAA);
  }

  TBitmap bitmap;
  const uint8_t* rows = nullptr;
};

TEST_F(HugeBitmap, CropBitmap_Should_CutAPartOfIt) {
  WhenModal([](QWidget& window) {
    QApplication::processEvents();
    auto& box = *window.findChild<QWidget*>("PaintBox");
    for (int i = 0; i < 30; ++i) TurnWheel(box, box.rect().center(), 120);
    QApplication::processEvents();
    PressEnter(window);
  });
  TRect rect{3, kSide / 2, 103, kSide};
  ASSERT_TRUE(CropBitmap(bitmap, rect));
  EXPECT_EQ(bitmap.Width(), 100);
  EXPECT_EQ(bitmap.Height(), kSide / 2);
  EXPECT_EQ(bitmap.ScanLine(0)[0], 0x55) << "three pixels to the left";
}

TEST_F(HugeBitmap, CropBitmap_Should_LeaveIt_When_Canceled) {
  WhenModal([](QWidget& window) { QTest::keyClick(&window, Qt::Key_Escape); });
  TRect rect{3, 4, 103, 204};
  EXPECT_FALSE(CropBitmap(bitmap, rect));
  ExpectUntouched();
}

TEST_F(HugeBitmap, ChangeBitmap_Should_PreviewIt_AndLeaveItWhenCanceled) {
  for (const int32_t operation : {0, 5}) {
    TChgBmpValuesRec values;
    WhenModal([](QWidget& window) {
      for (auto* track : window.findChildren<QSlider*>())
        if (track->isVisible()) QTest::keyClick(track, Qt::Key_PageUp);
      QTest::keyClick(window.findChild<QWidget*>("PaintBoxOrg"), Qt::Key_Right);
      GrabForm(window);
      QTest::keyClick(&window, Qt::Key_Escape);
    });
    EXPECT_FALSE(ChangeBitmap(operation, &bitmap, true, values));
    ExpectUntouched();
  }
}

}  // namespace
}  // namespace rasterkit::test
