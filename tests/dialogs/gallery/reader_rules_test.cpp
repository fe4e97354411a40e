#include "tests/dialogs/gallery/reader_rules.h"

#include <QAccessible>
#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QSlider>
#include <QTest>
#include <QVBoxLayout>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/dialogs/bitmapframe/crop_bitmap_form.h>
#include <rasterkit/qt/controls/edits.h>
#include <rasterkit/qt/controls/paint_box.h>

#include "tests/dialogs/gallery/for_each_form.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// Activates each form and applies a rule that lists faults.
void ExpectNoFaults(const std::function<std::vector<std::string>(QWidget&)>& rule) {
  ForEachForm([&](QWidget& form) {
    form.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&form));
    EXPECT_THAT(rule(form), IsEmpty());
  });
}

TEST(ReaderRules, EveryControl_Should_BeReadAsWhatItIs) {
  ExpectNoFaults(ReaderFaults);
}

TEST(ReaderRules, EveryName_Should_BeThatOfOneControl) {
  ExpectNoFaults(TwinNames);
}

TEST(ReaderRules, EveryControl_Should_BeCalledByAKey) {
  ExpectNoFaults(ControlsWithoutKey);
}

// Tests of the rules.

class PlainForm : public testing::Test {
 protected:
  PlainForm() {
    form.setWindowTitle("A form");
    form.setObjectName("Form");
  }
  void Show() {
    form.show();
    form.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&form));
  }

  QDialog form;
  QVBoxLayout column{&form};
};

TEST_F(PlainForm, ALabelWithAnotherName_Should_BeFound) {
  auto* label = new QLabel("12 x 34");
  column.addWidget(label);
  Show();
  EXPECT_THAT(ReaderFaults(form), IsEmpty());
  label->setAccessibleName("Size");
  EXPECT_THAT(ReaderFaults(form), ElementsAre(HasSubstr("read is \"Size\"")));
}

TEST_F(PlainForm, AWidgetOfNoKnownKind_Should_BeFound_When_ItTakesTheKeyboard) {
  auto* widget = new QWidget;
  column.addWidget(widget);
  Show();
  EXPECT_THAT(ReaderFaults(form), IsEmpty());
  widget->setFocusPolicy(Qt::TabFocus);
  EXPECT_THAT(ReaderFaults(form), ElementsAre(HasSubstr("cannot tell what it is")));
}

TEST_F(PlainForm, ANameWithColon_OrNone_Should_BeFound) {
  auto* edit = new QLineEdit;
  column.addWidget(edit);
  Show();
  EXPECT_THAT(ReaderFaults(form), ElementsAre(HasSubstr("has no name")));
  edit->setAccessibleName("Name:");
  EXPECT_THAT(ReaderFaults(form), ElementsAre(HasSubstr("\"Name:\"")));
  edit->setAccessibleName("Name");
  EXPECT_THAT(ReaderFaults(form), IsEmpty());
}

TEST_F(PlainForm, TwoFieldsOfOneName_Should_BeFound) {
  for (int i = 0; i < 2; ++i) {
    auto* edit = new QLineEdit;
    edit->setAccessibleName("Width");
    column.addWidget(edit);
  }
  Show();
  EXPECT_THAT(TwinNames(form), ElementsAre(HasSubstr("both called \"Width\"")));
}

TEST_F(PlainForm, AControlWithoutMnemonic_Should_BeFound) {
  auto* first = new QPushButton("&First");
  auto* box = new QCheckBox("Second");
  auto* last = new QSlider(Qt::Horizontal);
  for (QWidget* widget :
       {static_cast<QWidget*>(first), static_cast<QWidget*>(box), static_cast<QWidget*>(last)}) {
    widget->setObjectName(widget->metaObject()->className());
    column.addWidget(widget);
  }
  Show();
  EXPECT_THAT(ControlsWithoutKey(form),
              ElementsAre(HasSubstr("QCheckBox has neither"), HasSubstr("QSlider has neither")));
  box->setText("&Second");
  EXPECT_THAT(ControlsWithoutKey(form), IsEmpty()) << "the slider stands behind the box";
}

// What readers can do and are told.

TEST(PaintBoxReader, ABox_Should_BeAPicture_WithItsContentsInWords) {
  TPaintBox box;
  box.setAccessibleName("Picture");
  QAccessibleInterface* node = QAccessible::queryAccessibleInterface(&box);
  ASSERT_NE(node, nullptr);
  EXPECT_EQ(node->role(), QAccessible::Graphic);
  EXPECT_EQ(node->text(QAccessible::Name), "Picture");
  EXPECT_EQ(node->text(QAccessible::Description), "");
  box.SetContentText("a house");
  EXPECT_EQ(node->text(QAccessible::Description), "a house");
  EXPECT_EQ(node->text(QAccessible::Value), "a house");
  box.setAccessibleDescription("Arrows move it.");
  EXPECT_EQ(node->text(QAccessible::Description), "a house. Arrows move it.");
  box.resize(30, 20);
  ASSERT_NE(node->imageInterface(), nullptr);
  EXPECT_EQ(node->imageInterface()->imageSize(), QSize(30, 20));
  EXPECT_EQ(node->imageInterface()->imageDescription(), "a house. Arrows move it.");
}

class CropForReaders : public testing::Test {
 protected:
  CropForReaders() {
    form.show();
    form.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&form));
  }
  TPaintBox& Box() { return *form.findChild<TPaintBox*>("PaintBox"); }
  QString Told() {
    QCoreApplication::processEvents();
    return QAccessible::queryAccessibleInterface(&Box())->text(QAccessible::Value);
  }

  TBitmap bitmap = GradientBitmap(pf24bit, 600, 400);
  TFormCropBitmap form{bitmap, TRect{10, 20, 110, 70}};
};

TEST_F(CropForReaders, TheRectangle_Should_BeTold_WhereItIs) {
  EXPECT_EQ(Told(), "Rectangle: left 10, top 20, width 100, height 50");
  QTest::keyClick(&Box(), Qt::Key_Right);
  EXPECT_EQ(Told(), "Rectangle: left 11, top 20, width 100, height 50");
  QTest::keyClick(&Box(), Qt::Key_Down, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(Told(), "Rectangle: left 11, top 20, width 100, height 60");
  QTest::keyClick(&Box(), Qt::Key_Delete);
  EXPECT_EQ(Told(), "No rectangle");
}

TEST_F(CropForReaders, AReader_Should_PressButtonsAndSetNumbers) {
  const auto node = [&](const char* name) {
    return QAccessible::queryAccessibleInterface(form.findChild<QWidget*>(name));
  };
  // A button that is pressed so stays down for a moment before it does its work.
  const auto tells = [&](const QString& text) {
    return QTest::qWaitFor([&] { return Told() == text; });
  };
  const QString press = QAccessibleActionInterface::pressAction();
  node("SpEdLeft")->valueInterface()->setCurrentValue(33);
  EXPECT_TRUE(tells("Rectangle: left 33, top 20, width 100, height 50"));
  node("SpeedButtonWhole")->actionInterface()->doAction(press);
  EXPECT_TRUE(tells("No rectangle"));
  EXPECT_TRUE(node("SpeedButtonWhole")->state().disabled);
  node("SpeedButtonUndo")->actionInterface()->doAction(press);
  EXPECT_TRUE(tells("Rectangle: left 33, top 20, width 100, height 50"));
}

TEST(SpinEditForReaders, AReal_Should_TellValueAndLimits) {
  TSpinEditReal edit;
  edit.setRange(-2.5, 7.5);
  edit.setValue(1.25);
  QAccessibleInterface* node = QAccessible::queryAccessibleInterface(&edit);
  ASSERT_NE(node->valueInterface(), nullptr);
  EXPECT_EQ(node->valueInterface()->currentValue().toDouble(), 1.25);
  EXPECT_EQ(node->valueInterface()->minimumValue().toDouble(), -2.5);
  EXPECT_EQ(node->valueInterface()->maximumValue().toDouble(), 7.5);
  node->valueInterface()->setCurrentValue(3.0);
  EXPECT_EQ(edit.value(), 3.0);
}

}  // namespace
}  // namespace rasterkit::test
