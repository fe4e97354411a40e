#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>
#include <limits>

#include <gtest/gtest.h>

#include <rasterkit/qt/controls/edits.h>

#include "tests/support/forms/form_events.h"

namespace rasterkit {
namespace {

using test::TurnWheel;

class FloatEditTest : public testing::Test {
 protected:
  FloatEditTest() {
    edit_.setLocale(QLocale(QLocale::English));
    edit_.setDecimals(0);
    edit_.setNegativeAllowed(false);
    edit_.setValue(400);
    edit_.selectAll();
    changes_.clear();
  }

  void Type(const QString& keys) { QTest::keyClicks(&edit_, keys); }
  void Paste(const QString& text) {
    QApplication::clipboard()->setText(text);
    edit_.paste();
  }

  TFloatEdit edit_;
  QSignalSpy changes_{&edit_, &TFloatEdit::valueChanged};
};

TEST_F(FloatEditTest, Typing_Should_FireForEachNewNumber) {
  Type("200");
  EXPECT_EQ(edit_.value(), 200);
  ASSERT_EQ(changes_.count(), 3);
  EXPECT_EQ(changes_[0][0], 2);
  EXPECT_EQ(changes_[2][0], 200);
}

TEST_F(FloatEditTest, Typing_Should_DoNothing_When_KeysBelongToNoNumber) {
  edit_.end(false);
  Type("abc e+-,.%");
  EXPECT_EQ(edit_.text(), "400");
  EXPECT_EQ(edit_.value(), 400);
  EXPECT_EQ(changes_.count(), 0);
}

TEST_F(FloatEditTest, Typing_Should_StopAtTheMaximum_When_NumberIsHuge) {
  edit_.setMaximum(30000);
  Type("99999999999999999999");
  EXPECT_EQ(edit_.value(), 9999);
  EXPECT_EQ(edit_.text(), "9999");
}

TEST_F(FloatEditTest, Emptied_Should_KeepTheValueAndShowItAgain_When_Left) {
  QTest::keyClick(&edit_, Qt::Key_Delete);
  EXPECT_EQ(edit_.text(), "");
  EXPECT_EQ(edit_.value(), 400);
  QFocusEvent left(QEvent::FocusOut, Qt::TabFocusReason);
  QApplication::sendEvent(&edit_, &left);
  EXPECT_EQ(edit_.text(), "400");
  EXPECT_EQ(changes_.count(), 0);
}

TEST_F(FloatEditTest, Emptied_Should_StayEmpty_When_AMenuOrAnotherWindowIsOnTop) {
  QTest::keyClick(&edit_, Qt::Key_Delete);
  for (const Qt::FocusReason reason : {Qt::PopupFocusReason, Qt::ActiveWindowFocusReason}) {
    QFocusEvent left(QEvent::FocusOut, reason);
    QApplication::sendEvent(&edit_, &left);
    EXPECT_EQ(edit_.text(), "");
  }
}

TEST_F(FloatEditTest, Emptied_Should_ShowTheValueAgain_When_EnterIsPressed) {
  QTest::keyClick(&edit_, Qt::Key_Delete);
  QTest::keyClick(&edit_, Qt::Key_Return);
  EXPECT_EQ(edit_.text(), "400");
}

TEST_F(FloatEditTest, Enter_Should_ReachTheDefaultButton) {
  QDialog dialog;
  auto* column = new QVBoxLayout(&dialog);
  auto* edit = new TFloatEdit;
  column->addWidget(edit);
  auto* button = new QPushButton("OK");
  column->addWidget(button);
  button->setDefault(true);
  QSignalSpy clicked(button, &QPushButton::clicked);
  dialog.show();
  edit->clear();
  QTest::keyClick(edit, Qt::Key_Return);
  EXPECT_EQ(clicked.count(), 1);
}

TEST_F(FloatEditTest, Paste_Should_BeRefused_When_TextIsNoNumber) {
  Paste("12 px");
  EXPECT_EQ(edit_.value(), 400);
  EXPECT_EQ(edit_.text(), "400");
}

TEST_F(FloatEditTest, Paste_Should_BeTidied_When_TextIsANumber) {
  edit_.setDecimals(1);
  edit_.selectAll();
  Paste(" 1,234.5\n");
  EXPECT_EQ(edit_.value(), 1234.5);
  EXPECT_EQ(edit_.text(), "1234.5");
}

TEST_F(FloatEditTest, Undo_Should_BringTheValueBack) {
  Paste("7");
  EXPECT_EQ(edit_.value(), 7);
  edit_.undo();
  EXPECT_EQ(edit_.value(), 400);
}

TEST_F(FloatEditTest, SetValue_Should_StoreTheDoubleAndShowItRounded) {
  edit_.setValue(133.0 + 1.0 / 3.0);
  EXPECT_EQ(edit_.value(), 133.0 + 1.0 / 3.0);
  EXPECT_EQ(edit_.text(), "133");
  EXPECT_EQ(changes_.count(), 1);
}

TEST_F(FloatEditTest, SetValue_Should_FireNothing_When_ItIsShownAlready) {
  edit_.setValue(400);
  edit_.setValue(400.25);
  EXPECT_EQ(changes_.count(), 0);
  EXPECT_EQ(edit_.value(), 400.25);
}

TEST_F(FloatEditTest, SetValue_Should_IgnoreWhatIsNoNumber) {
  edit_.setValue(std::numeric_limits<double>::quiet_NaN());
  edit_.setValue(std::numeric_limits<double>::infinity());
  EXPECT_EQ(edit_.value(), 400);
  EXPECT_EQ(changes_.count(), 0);
}

TEST_F(FloatEditTest, SetValue_Should_GiveZero_When_NegativeIsNotAllowed) {
  edit_.setValue(-5);
  EXPECT_EQ(edit_.value(), 0);
}

TEST_F(FloatEditTest, SetValue_Should_LeaveUnfinishedTextAlone_When_ItIsTheSameNumber) {
  edit_.setDecimals(2);
  edit_.selectAll();
  Type("7.");
  edit_.setValue(7.001);
  EXPECT_EQ(edit_.text(), "7.");
}

TEST_F(FloatEditTest, TwoFieldsThatSetEachOther_Should_ComeToRest) {
  TFloatEdit height;
  height.setDecimals(0);
  height.setValue(300);
  int exchanges = 0;
  QObject::connect(&edit_, &TFloatEdit::valueChanged, [&](double value) {
    ++exchanges;
    height.setValue(value / 400 * 300);
  });
  QObject::connect(&height, &TFloatEdit::valueChanged, [&](double value) {
    ++exchanges;
    edit_.setValue(value / 300 * 400);
  });
  Type("200");
  EXPECT_EQ(height.text(), "150");
  height.selectAll();
  QTest::keyClicks(&height, "100");
  EXPECT_EQ(edit_.text(), "133");
  EXPECT_NEAR(edit_.value(), 133.333333, 1e-6);
  EXPECT_LT(exchanges, 20);
}

TEST_F(FloatEditTest, ArrowKeys_Should_Step) {
  QTest::keyClick(&edit_, Qt::Key_Up);
  EXPECT_EQ(edit_.value(), 401);
  QTest::keyClick(&edit_, Qt::Key_PageDown);
  EXPECT_EQ(edit_.value(), 391);
  edit_.setSingleStep(0.5);
  edit_.setDecimals(1);
  QTest::keyClick(&edit_, Qt::Key_Down);
  EXPECT_EQ(edit_.value(), 390.5);
}

TEST_F(FloatEditTest, Wheel_Should_Step) {
  TurnWheel(edit_, {2, 2}, 120);
  EXPECT_EQ(edit_.value(), 401);
  TurnWheel(edit_, {2, 2}, -240);
  EXPECT_EQ(edit_.value(), 399);
  TurnWheel(edit_, {2, 2}, 120, Qt::ControlModifier);
  EXPECT_EQ(edit_.value(), 409);
}

TEST_F(FloatEditTest, Wheel_Should_StepOnce_When_ItSendsPartsOfANotch) {
  for (int i = 0; i < 4; ++i) TurnWheel(edit_, {2, 2}, 30);
  EXPECT_EQ(edit_.value(), 401);
  EXPECT_EQ(changes_.count(), 1);
}

TEST_F(FloatEditTest, Steps_Should_StopAtTheEnds) {
  edit_.setMaximum(401);
  QTest::keyClick(&edit_, Qt::Key_PageUp);
  EXPECT_EQ(edit_.value(), 401);
  edit_.setValue(2);
  QTest::keyClick(&edit_, Qt::Key_PageDown);
  EXPECT_EQ(edit_.value(), 0);
}

TEST_F(FloatEditTest, ReadOnly_Should_NotStep) {
  edit_.setReadOnly(true);
  QTest::keyClick(&edit_, Qt::Key_Up);
  TurnWheel(edit_, {2, 2}, 120);
  EXPECT_EQ(edit_.value(), 400);
}

TEST_F(FloatEditTest, Locale_Should_DecideThePoint) {
  edit_.setDecimals(2);
  edit_.setLocale(QLocale(QLocale::German));
  EXPECT_EQ(edit_.text(), "400,00");
  edit_.selectAll();
  Type("1.5");
  EXPECT_EQ(edit_.text(), "1,5");
  EXPECT_EQ(edit_.value(), 1.5);
  QTest::keyClick(&edit_, Qt::Key_Return);
  EXPECT_EQ(edit_.text(), "1,50");
}

TEST_F(FloatEditTest, NegativeNumbers_Should_BeTyped_When_Allowed) {
  edit_.setNegativeAllowed(true);
  Type("-12");
  EXPECT_EQ(edit_.value(), -12);
}

TEST_F(FloatEditTest, SetMaximum_Should_IgnoreWhatIsNoLimit) {
  edit_.setMaximum(std::numeric_limits<double>::infinity());
  edit_.setMaximum(-1);
  EXPECT_EQ(edit_.maximum(), 1e15);
  edit_.setMaximum(100);
  EXPECT_EQ(edit_.value(), 100);
}

}  // namespace
}  // namespace rasterkit
