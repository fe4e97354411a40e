#include <QApplication>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <limits>

#include <gtest/gtest.h>

#include <rasterkit/qt/controls/edits.h>

#include "tests/support/forms/form_events.h"

namespace rasterkit {
namespace {

using test::TurnWheel;

TEST(SpinEditInt, Typing_Should_BeSafe) {
  TSpinEditInt edit;
  edit.setRange(-100, 100);
  edit.setValue(20);
  edit.selectAll();
  QTest::keyClicks(&edit, "abc-5x000");
  EXPECT_EQ(edit.value(), -50);
  edit.selectAll();
  QTest::keyClick(&edit, Qt::Key_Delete);
  EXPECT_EQ(edit.text(), "");
  QTest::keyClick(&edit, Qt::Key_Return);
  EXPECT_EQ(edit.value(), -50);
  EXPECT_EQ(edit.text(), "-50");
}

TEST(SpinEditInt, NewOne_Should_TakeAnyNumber) {
  TSpinEditInt edit;
  edit.setValue(std::numeric_limits<int>::min());
  EXPECT_EQ(edit.value(), std::numeric_limits<int>::min());
  edit.setValue(std::numeric_limits<int>::max());
  EXPECT_EQ(edit.value(), std::numeric_limits<int>::max());
}

TEST(SpinEditInt, SetValue_Should_FireNothing_When_ItIsShownAlready) {
  TSpinEditInt edit;
  edit.setValue(7);
  QSignalSpy changes(&edit, &QSpinBox::valueChanged);
  edit.setValue(7);
  EXPECT_EQ(changes.count(), 0);
}

TEST(SpinEditInt, KeysAndWheel_Should_Step) {
  TSpinEditInt edit;
  edit.setValue(7);
  QTest::keyClick(&edit, Qt::Key_Up);
  EXPECT_EQ(edit.value(), 8);
  TurnWheel(edit, {2, 2}, -240);
  EXPECT_EQ(edit.value(), 6);
}

class SpinEditRealTest : public testing::Test {
 protected:
  SpinEditRealTest() {
    edit_.setLocale(QLocale(QLocale::English));
    edit_.setDecimals(1);
    edit_.setRange(-100, 100);
    edit_.setValue(20);
    edit_.selectAll();
    changes_.clear();
  }

  QString Text() const { return edit_.findChild<QLineEdit*>()->text(); }

  TSpinEditReal edit_;
  QSignalSpy changes_{&edit_, &TSpinEditReal::valueChanged};
};

TEST_F(SpinEditRealTest, SetValue_Should_StoreTheDoubleAndShowItRounded) {
  edit_.setValue(1.0 / 3.0);
  EXPECT_EQ(edit_.value(), 1.0 / 3.0);
  EXPECT_EQ(Text(), "0.3");
  EXPECT_EQ(changes_.count(), 1);
}

TEST_F(SpinEditRealTest, Leaving_Should_KeepTheDouble_When_NothingWasTyped) {
  edit_.setValue(1.0 / 3.0);
  QFocusEvent came(QEvent::FocusIn, Qt::TabFocusReason);
  QApplication::sendEvent(&edit_, &came);
  QFocusEvent left(QEvent::FocusOut, Qt::TabFocusReason);
  QApplication::sendEvent(&edit_, &left);
  QTest::keyClick(&edit_, Qt::Key_Return);
  EXPECT_EQ(edit_.value(), 1.0 / 3.0);
}

TEST_F(SpinEditRealTest, SetValue_Should_FireNothing_When_ItIsShownAlready) {
  edit_.setValue(20);
  edit_.setValue(20.01);
  EXPECT_EQ(changes_.count(), 0);
}

TEST_F(SpinEditRealTest, SetValue_Should_IgnoreWhatIsNoNumber) {
  edit_.setValue(std::numeric_limits<double>::quiet_NaN());
  edit_.setValue(-std::numeric_limits<double>::infinity());
  EXPECT_EQ(edit_.value(), 20);
}

TEST_F(SpinEditRealTest, Typing_Should_BeSafe) {
  QTest::keyClicks(&edit_, "x-1e2,5.5");
  EXPECT_EQ(Text(), "-12.5");
  EXPECT_EQ(edit_.value(), -12.5);
  edit_.clear();
  EXPECT_EQ(edit_.value(), -12.5);
  QTest::keyClick(&edit_, Qt::Key_Return);
  EXPECT_EQ(Text(), "-12.5");
}

TEST_F(SpinEditRealTest, Typing_Should_StopAtTheRange_When_NumberIsHuge) {
  QTest::keyClicks(&edit_, "999999");
  EXPECT_EQ(edit_.value(), 99);
}

TEST_F(SpinEditRealTest, KeysAndWheel_Should_StepFromWhatIsShown) {
  edit_.setValue(20.04);
  QTest::keyClick(&edit_, Qt::Key_Up);
  EXPECT_EQ(edit_.value(), 21);
  QTest::keyClick(&edit_, Qt::Key_PageDown);
  EXPECT_EQ(edit_.value(), 11);
  TurnWheel(edit_, {2, 2}, 240);
  EXPECT_EQ(edit_.value(), 13);
  EXPECT_EQ(Text(), "13.0");
}

TEST_F(SpinEditRealTest, Steps_Should_StopAtTheEnds) {
  edit_.setValue(99.5);
  QTest::keyClick(&edit_, Qt::Key_Up);
  EXPECT_EQ(edit_.value(), 100);
  QTest::keyClick(&edit_, Qt::Key_Up);
  EXPECT_EQ(edit_.value(), 100);
  EXPECT_EQ(changes_.count(), 2);
}

TEST_F(SpinEditRealTest, SetMinimum_Should_TakeTheMaximumAlong_When_BeyondIt) {
  edit_.setMinimum(500);
  EXPECT_EQ(edit_.maximum(), 500);
  EXPECT_EQ(edit_.value(), 500);
  edit_.setMaximum(std::numeric_limits<double>::quiet_NaN());
  EXPECT_EQ(edit_.maximum(), 500);
}

TEST_F(SpinEditRealTest, Locale_Should_DecideThePoint) {
  edit_.setLocale(QLocale(QLocale::German));
  EXPECT_EQ(Text(), "20,0");
}

TEST_F(SpinEditRealTest, SizeHint_Should_HoldTheWidestNumber) {
  edit_.resize(edit_.sizeHint());
  edit_.setValue(-100);
  edit_.show();
  const auto* line = edit_.findChild<QLineEdit*>();
  EXPECT_GE(line->width(), line->fontMetrics().horizontalAdvance("-100.0"));
}

}  // namespace
}  // namespace rasterkit
