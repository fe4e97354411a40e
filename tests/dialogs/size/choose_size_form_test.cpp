#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <memory>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/size/choose_size_form.h>
#include <rasterkit/dialogs/size/size_answer.h>
#include <rasterkit/qt/controls/edits.h>

#include "tests/dialogs/size/size_picture.h"

namespace rasterkit {
namespace {

using test::PictureOf;

class ChooseSizeFormTest : public testing::Test {
 protected:
  ChooseSizeFormTest() {
    StartSize(model, picture, {});
    form = std::make_unique<TFormChooseSize>(model, picture);
    form->show();
    form->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(form.get()));
  }

  TFloatEdit& Edit(const char* name) const { return *form->findChild<TFloatEdit*>(name); }
  QPushButton& Button(const char* name) const { return *form->findChild<QPushButton*>(name); }
  QString Text(const char* name) const { return form->findChild<QLabel*>(name)->text(); }
  void Choose(const char* box, int place) const {
    auto* list = form->findChild<QComboBox*>(box);
    list->setFocus();
    QTest::keyClick(list, Qt::Key_Home);
    for (int i = 0; i < place; ++i) QTest::keyClick(list, Qt::Key_Down);
  }
  void Type(const char* name, const char* text) const {
    Edit(name).setFocus();
    Edit(name).selectAll();
    QTest::keyClicks(&Edit(name), text);
  }
  void Press(Qt::Key key, Qt::KeyboardModifiers modifiers) const {
    QTest::keyClick(QApplication::focusWidget(), key, modifiers);
  }

  Picture picture = PictureOf(400, 300, {100, 100});
  ChangeSizeModel model{400, 300, kEditorSizeRules};
  std::unique_ptr<TFormChooseSize> form;
};

TEST_F(ChooseSizeFormTest, TheStart_Should_ShowTheSizeAndAPaleOk) {
  EXPECT_EQ(Edit("FlEdWidth").text(), "400");
  EXPECT_EQ(Edit("FlEdHeight").text(), "300");
  EXPECT_EQ(Edit("FlEdDpi").text(), "100.00");
  EXPECT_FALSE(Edit("FlEdDpi").isEnabled());
  EXPECT_TRUE(Edit("FlEdWidth").hasFocus());
  EXPECT_EQ(Edit("FlEdWidth").selectedText(), "400");
  EXPECT_FALSE(Button("ButtonOK").isEnabled());
  EXPECT_FALSE(Button("ButtonUndo").isEnabled());
  EXPECT_FALSE(Button("ButtonRedo").isEnabled());
  EXPECT_EQ(Text("LabNowValue"), "400 x 300 pixels, 352 KiB, 100 dpi");
  EXPECT_EQ(Text("LabFault"), "The picture has this size.");
}

TEST_F(ChooseSizeFormTest, ATypedNumber_Should_ShowItsResultAtOnce) {
  Type("FlEdWidth", "200");
  EXPECT_EQ(Edit("FlEdHeight").text(), "150");
  EXPECT_EQ(Text("LabResultValue"), "200 x 150 pixels, 87.9 KiB, 50 dpi");
  EXPECT_EQ(Text("LabFault"), "");
  EXPECT_TRUE(Button("ButtonOK").isEnabled());
}

TEST_F(ChooseSizeFormTest, SizesOutOfRange_Should_LeaveTheWindowOpen) {
  for (const char* side : {"0", "999999999"}) {
    Type("FlEdWidth", side);
    EXPECT_FALSE(Button("ButtonOK").isEnabled()) << side;
    EXPECT_TRUE(Text("LabFault").startsWith("Width and height must be 1 to 1000000")) << side;
    QTest::keyClick(&Edit("FlEdWidth"), Qt::Key_Return);
    EXPECT_TRUE(form->isVisible()) << side;
  }
  Type("FlEdWidth", "40");
  QTest::keyClick(&Edit("FlEdWidth"), Qt::Key_Return);
  EXPECT_FALSE(form->isVisible());
  EXPECT_EQ(form->result(), QDialog::Accepted);
}

TEST_F(ChooseSizeFormTest, Units_Should_ChangeTheNumbersAndNotTheSize) {
  Type("FlEdWidth", "200");
  Choose("UnitBox", 1);
  EXPECT_EQ(Edit("FlEdWidth").text(), "50.00");
  EXPECT_FALSE(Edit("FlEdDpi").isEnabled());
  Choose("UnitBox", 2);
  EXPECT_EQ(Edit("FlEdWidth").text(), "50.80");
  EXPECT_EQ(Edit("FlEdHeight").text(), "38.10");
  EXPECT_TRUE(Edit("FlEdDpi").isEnabled());
  EXPECT_EQ(Text("LabResultValue"), "200 x 150 pixels, 87.9 KiB, 100 dpi");
  Type("FlEdDpi", "300");
  EXPECT_EQ(Text("LabResultValue"), "600 x 450 pixels, 791 KiB, 300 dpi");
  EXPECT_EQ(Edit("FlEdWidth").text(), "50.80");
}

TEST_F(ChooseSizeFormTest, TheBox_Should_UnlockTheProportion) {
  QTest::keyClick(form->findChild<QCheckBox*>("CheckKeep"), Qt::Key_Space);
  Type("FlEdWidth", "10");
  EXPECT_EQ(Edit("FlEdHeight").text(), "300");
  const RecipeResize step = SizeStepOf(model, picture);
  EXPECT_EQ(step.width, 10);
  EXPECT_EQ(step.height, 300);
}

TEST_F(ChooseSizeFormTest, TheFilter_Should_ReachTheAnswer) {
  const Filter filters[] = {Filter::automatic, Filter::nearest, Filter::linear, Filter::area};
  for (int place = 0; place < 4; ++place) {
    Choose("FilterBox", place);
    EXPECT_EQ(SizeStepOf(model, picture).options.filter, filters[place]);
  }
}

TEST_F(ChooseSizeFormTest, UndoAndRedo_Should_WorkWhereverTheFocusIs) {
  Type("FlEdWidth", "200");
  Choose("UnitBox", 1);
  Press(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(form->findChild<QComboBox*>("UnitBox")->currentIndex(), 0);
  Edit("FlEdWidth").setFocus();
  Press(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(Edit("FlEdWidth").text(), "400");
  EXPECT_EQ(Edit("FlEdHeight").text(), "300");
  Press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(Edit("FlEdWidth").text(), "200");
  Press(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(Edit("FlEdWidth").text(), "400");
  Press(Qt::Key_Y, Qt::ControlModifier);
  EXPECT_EQ(Edit("FlEdWidth").text(), "200");
  QTest::mouseClick(&Button("ButtonUndo"), Qt::LeftButton);
  EXPECT_EQ(Edit("FlEdWidth").text(), "400");
  QTest::mouseClick(&Button("ButtonRedo"), Qt::LeftButton);
  EXPECT_EQ(Edit("FlEdWidth").text(), "200");
}

TEST_F(ChooseSizeFormTest, Escape_Should_GiveUp) {
  Type("FlEdWidth", "200");
  QTest::keyClick(form.get(), Qt::Key_Escape);
  EXPECT_FALSE(form->isVisible());
  EXPECT_EQ(form->result(), QDialog::Rejected);
}

}  // namespace
}  // namespace rasterkit
