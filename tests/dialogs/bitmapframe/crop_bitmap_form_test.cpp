#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QSet>
#include <QTest>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/bitmapframe/crop_bitmap.h>
#include <rasterkit/dialogs/bitmapframe/crop_bitmap_form.h>
#include <rasterkit/qt/controls/edits.h>
#include <rasterkit/qt/controls/navigator.h>
#include <rasterkit/strings/strings.h>

#include "tests/support/forms/form_events.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

void ExpectRect(const TRect& rect, int left, int top, int right, int bottom) {
  EXPECT_EQ(rect.Left, left);
  EXPECT_EQ(rect.Top, top);
  EXPECT_EQ(rect.Right, right);
  EXPECT_EQ(rect.Bottom, bottom);
}

class CropForm : public testing::Test {
 protected:
  CropForm() : bitmap(GradientBitmap(pf24bit, 600, 400)) {}
  void TearDown() override { SetTranslator(nullptr); }

  void Open(const TRect& start = {}) {
    form = std::make_unique<TFormCropBitmap>(bitmap, start);
    form->show();
    QApplication::processEvents();
  }
  template <class Widget>
  Widget& Find(const char* name) {
    return *form->findChild<Widget*>(name);
  }
  TPaintBox& Box() { return Find<TPaintBox>("PaintBox"); }
  void Click(const char* name) { QTest::mouseClick(&Find<QPushButton>(name), Qt::LeftButton); }
  int Number(const char* name) { return Find<TSpinEditInt>(name).value(); }

  TBitmap bitmap;
  std::unique_ptr<TFormCropBitmap> form;
};

TEST_F(CropForm, Should_ChooseTheWhole_When_NothingIsDrawn) {
  Open();
  ExpectRect(form->ChosenRect(), 0, 0, 600, 400);
  EXPECT_FALSE(Find<QPushButton>("SpeedButtonWhole").isEnabled());
  EXPECT_FALSE(Find<QPushButton>("SpeedButtonUndo").isEnabled());
  EXPECT_EQ(Find<QLabel>("LabelSizeValue").text(), "600 * 400 px (720 [kB])");
  EXPECT_EQ(form->focusWidget(), &Box());
}

TEST_F(CropForm, Should_BeginWithTheRectangle_When_OneIsGiven) {
  Open({100, 50, 300, 1000});
  ExpectRect(form->ChosenRect(), 100, 50, 300, 400);
  EXPECT_EQ(Number("SpEdLeft"), 100);
  EXPECT_EQ(Number("SpEdTop"), 50);
  EXPECT_EQ(Number("SpEdWidth"), 200);
  EXPECT_EQ(Number("SpEdHeight"), 350);
  EXPECT_FALSE(Find<QPushButton>("SpeedButtonUndo").isEnabled()) << "nothing was changed yet";
  Open({700, 0, 800, 10});
  EXPECT_FALSE(form->Tool().CutRectExists());
  Open({5, 5, 5, 9});
  EXPECT_FALSE(form->Tool().CutRectExists());
}

TEST_F(CropForm, Parts_Should_BeCalledLossless_When_TheyAre) {
  Open({16, 32, 300, 250});
  const QLabel& label = Find<QLabel>("LabelLossless");
  EXPECT_TRUE(label.isHidden()) << "nothing is known about the file";
  form->SetIsLossless([](const TRect& part) { return part.Left % 16 == 0 && part.Top % 16 == 0; });
  EXPECT_FALSE(label.isHidden());
  EXPECT_EQ(label.text().toStdString(), rsCropLossless);
  Find<TSpinEditInt>("SpEdLeft").setValue(17);
  EXPECT_EQ(label.text().toStdString(), rsCropNotLossless);
  Find<TSpinEditInt>("SpEdLeft").setValue(64);
  EXPECT_EQ(label.text().toStdString(), rsCropLossless);
  Find<TSpinEditInt>("SpEdTop").setValue(33);
  EXPECT_EQ(label.text().toStdString(), rsCropNotLossless);
  Click("SpeedButtonWhole");
  EXPECT_EQ(label.text().toStdString(), rsCropLossless);
}

TEST_F(CropForm, Numbers_Should_FollowTheMouse_AndTheSizeText) {
  Open({100, 50, 300, 250});
  const RDRect cut = form->Tool().CutRect();
  const QPoint inside(static_cast<int>((cut.Left + cut.Right) / 2),
                      static_cast<int>((cut.Top + cut.Bottom) / 2));
  QTest::mousePress(&Box(), Qt::LeftButton, Qt::NoModifier, inside);
  QMouseEvent move(QEvent::MouseMove, inside + QPoint(-500, 0),
                   Box().mapToGlobal(inside + QPoint(-500, 0)), Qt::NoButton, Qt::LeftButton,
                   Qt::NoModifier);
  QApplication::sendEvent(&Box(), &move);
  QTest::mouseRelease(&Box(), Qt::LeftButton, Qt::NoModifier, inside);
  EXPECT_EQ(Number("SpEdLeft"), 0);
  EXPECT_EQ(Number("SpEdWidth"), 200);
  EXPECT_TRUE(Find<QPushButton>("SpeedButtonUndo").isEnabled());
}

TEST_F(CropForm, Numbers_Should_MakeTheRectangle_When_Typed) {
  Open();
  TSpinEditInt& left = Find<TSpinEditInt>("SpEdLeft");
  left.setFocus();
  left.selectAll();
  QTest::keyClicks(&left, "123");
  QTest::keyClick(&left, Qt::Key_Tab);
  ExpectRect(form->ChosenRect(), 123, 0, 600, 400);
  Find<TSpinEditInt>("SpEdWidth").setValue(7);
  Find<TSpinEditInt>("SpEdTop").setValue(390);
  ExpectRect(form->ChosenRect(), 123, 390, 130, 400);
  EXPECT_EQ(Number("SpEdHeight"), 10);
  EXPECT_EQ(Find<QLabel>("LabelSizeValue").text(), "7 * 10 px (210 [byte])");
}

TEST_F(CropForm, Numbers_Should_StayInside_When_NonsenseIsTyped) {
  Open({100, 50, 300, 250});
  TSpinEditInt& width = Find<TSpinEditInt>("SpEdWidth");
  for (const char* text : {"-5", "abc", "", "99999999999999", "0"}) {
    width.setFocus();
    width.selectAll();
    QTest::keyClicks(&width, text);
    QTest::keyClick(&width, Qt::Key_Tab);
    const TRect rect = form->ChosenRect();
    EXPECT_LT(rect.Left, rect.Right);
    EXPECT_LE(rect.Right, 600);
  }
}

TEST_F(CropForm, WholePicture_Should_RemoveTheRectangle_AndUndoBringItBack) {
  Open({100, 50, 300, 250});
  Click("SpeedButtonWhole");
  ExpectRect(form->ChosenRect(), 0, 0, 600, 400);
  EXPECT_EQ(Find<QLabel>("LabelSizeValue").text(), "600 * 400 px (720 [kB])");
  Click("SpeedButtonUndo");
  ExpectRect(form->ChosenRect(), 100, 50, 300, 250);
}

TEST_F(CropForm, SizeText_Should_BeThatOfThePicture_When_AClickRemovedTheRectangle) {
  Open({100, 50, 300, 250});
  const RDRect place = form->Tool().PaintRect();
  QTest::mouseClick(&Box(), Qt::LeftButton, Qt::NoModifier,
                    QPoint(static_cast<int>(place.Right) - 5, static_cast<int>(place.Bottom) - 5));
  EXPECT_FALSE(form->Tool().CutRectExists());
  EXPECT_EQ(Find<QLabel>("LabelSizeValue").text(), "600 * 400 px (720 [kB])");
}

TEST_F(CropForm, Zoom_Should_FollowButtonsAndWheel) {
  Open();
  Click("SpeedButtonOrgSize");
  EXPECT_TRUE(form->Tool().IsUnscaled());
  TurnWheel(Box(), {100, 100}, 120);
  EXPECT_DOUBLE_EQ(form->Tool().StretchFactor(), 1.05);
  Click("SpeedButtonFit");
  EXPECT_FALSE(form->Tool().IsUnscaled());
}

TEST_F(CropForm, Keys_Should_MoveDeleteAndUndo) {
  Open({100, 50, 300, 250});
  QTest::keyClick(&Box(), Qt::Key_Right, Qt::ShiftModifier);
  ExpectRect(form->ChosenRect(), 110, 50, 310, 250);
  QTest::keyClick(&Box(), Qt::Key_Delete);
  EXPECT_FALSE(form->Tool().CutRectExists());
  QTest::keyClick(&Box(), Qt::Key_Z, Qt::ControlModifier);
  ExpectRect(form->ChosenRect(), 110, 50, 310, 250);
  QTest::keyClick(&Find<QPushButton>("SpeedButtonFit"), Qt::Key_Z, Qt::ControlModifier);
  ExpectRect(form->ChosenRect(), 100, 50, 300, 250);
}

TEST_F(CropForm, Escape_Should_GiveUpADragFirst_ThenClose) {
  Open({100, 50, 300, 250});
  const RDRect cut = form->Tool().CutRect();
  QTest::mousePress(&Box(), Qt::LeftButton, Qt::NoModifier,
                    QPoint(static_cast<int>(cut.Left) + 20, static_cast<int>(cut.Top) + 20));
  ASSERT_TRUE(form->Tool().DragIsActive());
  QTest::keyClick(&Box(), Qt::Key_Escape);
  EXPECT_FALSE(form->Tool().DragIsActive());
  EXPECT_TRUE(form->isVisible());
  QTest::keyClick(&Box(), Qt::Key_Escape);
  EXPECT_FALSE(form->isVisible());
  EXPECT_EQ(form->result(), QDialog::Rejected);
}

TEST_F(CropForm, Controls_Should_HaveNamesForScreenReaders_AndMnemonicsOfTheirOwn) {
  Open();
  QSet<QString> mnemonics;
  int mnemonicCount = 0;
  const auto note = [&](const QString& text) {
    const int at = static_cast<int>(text.indexOf('&'));
    if (at < 0) return;
    ++mnemonicCount;
    mnemonics.insert(text.mid(at + 1, 1).toLower());
  };
  for (const QPushButton* button : form->findChildren<QPushButton*>()) note(button->text());
  for (const QLabel* caption : form->findChildren<QLabel*>()) note(caption->text());
  EXPECT_GE(mnemonicCount, 8);
  EXPECT_EQ(mnemonics.size(), mnemonicCount);
  for (const char* name :
       {"PaintBox", "SpEdLeft", "SpEdTop", "SpEdWidth", "SpEdHeight", "SpeedButtonFit",
        "SpeedButtonOrgSize", "SpeedButtonUndo", "SpeedButtonWhole"})
    EXPECT_FALSE(Find<QWidget>(name).accessibleName().isEmpty()) << name;
  // With an accessible name, a screen reader would not read the size.
  EXPECT_TRUE(Find<QWidget>("LabelSizeValue").accessibleName().isEmpty());
  for (const char* name : {"SpEdLeft", "SpEdTop", "SpEdWidth", "SpEdHeight", "SpeedButtonFit",
                           "SpeedButtonOrgSize", "SpeedButtonUndo", "SpeedButtonWhole"})
    EXPECT_FALSE(Find<QWidget>(name).toolTip().isEmpty()) << name;
}

/// Every text has enough room.
void ExpectNothingClipped(QWidget& form) {
  for (const QPushButton* button : form.findChildren<QPushButton*>()) {
    if (!button->isVisible()) continue;
    EXPECT_GE(button->width(), button->sizeHint().width()) << button->text().toStdString();
  }
  for (const QLabel* caption : form.findChildren<QLabel*>()) {
    EXPECT_GE(caption->width(), caption->sizeHint().width()) << caption->text().toStdString();
    EXPECT_GE(caption->height(), caption->sizeHint().height());
  }
}

TEST_F(CropForm, Texts_Should_NotBeClipped_When_TheFontIsLargeOrTheWordsAreLong) {
  const QFont before = QApplication::font();
  for (const double scale : {1.0, 1.5, 2.0}) {
    QFont font = before;
    font.setPointSizeF(before.pointSizeF() * scale);
    QApplication::setFont(font);
    for (const bool isLong : {false, true}) {
      if (isLong)
        SetTranslator([](std::string_view key) {
          return std::string(key) + std::string(key.size() * 2 / 5 + 1, 'm');
        });
      Open();
      form->resize(form->minimumSizeHint());
      QApplication::processEvents();
      ExpectNothingClipped(*form);
      SetTranslator(nullptr);
    }
  }
  QApplication::setFont(before);
}

TEST_F(CropForm, ChooseCropRect_Should_GiveTheRectangle_When_Confirmed) {
  WhenModal([](QWidget& window) {
    auto& form = static_cast<TFormCropBitmap&>(window);
    form.Tool().SetBmpCutRect({10, 20, 110, 70});
    QTest::mouseClick(&form.findChild<TNavigator*>("NaviResult")->Button(nbPost), Qt::LeftButton);
  });
  TRect rect;
  EXPECT_TRUE(ChooseCropRect(bitmap, rect));
  ExpectRect(rect, 10, 20, 110, 70);
  EXPECT_EQ(bitmap.Width(), 600);
}

TEST_F(CropForm, CropBitmap_Should_CutThePicture_When_Confirmed) {
  const TBitmap whole = GradientBitmap(pf24bit, 600, 400);
  WhenModal([](QWidget& window) { QTest::keyClick(&window, Qt::Key_Return); });
  TRect rect{10, 20, 110, 70};
  EXPECT_TRUE(CropBitmap(bitmap, rect));
  ASSERT_EQ(bitmap.Width(), 100);
  ASSERT_EQ(bitmap.Height(), 50);
  EXPECT_EQ(bitmap.PixelColor(0, 0), whole.PixelColor(10, 20));
  EXPECT_EQ(bitmap.PixelColor(99, 49), whole.PixelColor(109, 69));
}

TEST_F(CropForm, CropBitmap_Should_ChangeNothing_When_CanceledInAnyWay) {
  const std::function<void(QWidget&)> ways[] = {
      [](QWidget& window) { window.close(); },
      [](QWidget& window) { QTest::keyClick(&window, Qt::Key_Escape); },
      [](QWidget& window) {
        QTest::mouseClick(&window.findChild<TNavigator*>("NaviResult")->Button(nbCancel),
                          Qt::LeftButton);
      }};
  for (const auto& way : ways) {
    WhenModal(way);
    TRect rect{10, 20, 110, 70};
    EXPECT_FALSE(CropBitmap(bitmap, rect));
    ExpectRect(rect, 10, 20, 110, 70);
    EXPECT_TRUE(SamePixels(GradientBitmap(pf24bit, 600, 400), bitmap));
  }
}

TEST_F(CropForm, CropBitmap_Should_BeSafe_When_TheBitmapIsEmptyOrTiny) {
  for (const auto& [width, height] : {std::pair{0, 0}, {1, 1}}) {
    TBitmap small = GradientBitmap(pf1bit, width, height);
    WhenModal([](QWidget& window) { QTest::keyClick(&window, Qt::Key_Return); });
    TRect rect;
    EXPECT_TRUE(CropBitmap(small, rect));
    ExpectRect(rect, 0, 0, width, height);
    EXPECT_EQ(small.Width(), width);
  }
}

}  // namespace
}  // namespace rasterkit::test
