#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <memory>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/editchangesize/change_size_form.h>
#include <rasterkit/dialogs/editchangesize/edit_size.h>
#include <rasterkit/qt/controls/edits.h>

#include "tests/support/forms/form_events.h"

namespace rasterkit {
namespace {

using test::WhenModal;

class FormChangeSizeTest : public testing::Test {
 protected:
  void Open(int32_t width, int32_t height) {
    form.reset();
    model = std::make_unique<ChangeSizeModel>(width, height);
    form = std::make_unique<TFormChangeSize>(*model);
    form->show();
    QApplication::processEvents();
  }

  TFloatEdit& Edit(const char* name) const { return *form->findChild<TFloatEdit*>(name); }
  QCheckBox& Box() const { return *form->findChild<QCheckBox*>("CheckProp"); }
  void Type(const char* name, const char* text) const {
    Edit(name).setFocus();
    Edit(name).selectAll();
    QTest::keyClicks(&Edit(name), text);
  }

  std::unique_ptr<ChangeSizeModel> model;
  std::unique_ptr<TFormChangeSize> form;
};

TEST_F(FormChangeSizeTest, Controls_Should_HaveTheirNamesAndTexts) {
  Open(400, 300);
  EXPECT_EQ(form->windowTitle(), "Change Size");
  const auto* label = form->findChild<QLabel*>("LabBreite");
  ASSERT_NE(label, nullptr);
  EXPECT_EQ(label->text().remove('&'), "Width / Height");
  EXPECT_EQ(label->buddy(), &Edit("FlEdW"));
  EXPECT_EQ(Box().text().remove('&'), "proportional");
  EXPECT_TRUE(Box().isChecked());
  EXPECT_EQ(form->findChild<QPushButton*>("ButtonOK")->text(), "OK");
  EXPECT_EQ(form->findChild<QPushButton*>("ButtonExit")->text(), "Cancel");
  EXPECT_EQ(Edit("FlEdW").text(), "400");
  EXPECT_EQ(Edit("FlEdH").text(), "300");
  for (const char* name : {"FlEdW", "FlEdH"}) {
    EXPECT_EQ(Edit(name).decimals(), 0);
    EXPECT_FALSE(Edit(name).isNegativeAllowed());
  }
  EXPECT_TRUE(Edit("FlEdW").hasFocus());
}

TEST_F(FormChangeSizeTest, TheOtherField_Should_FollowWhatIsTyped) {
  Open(400, 300);
  Type("FlEdW", "200");
  EXPECT_EQ(Edit("FlEdH").text(), "150");
  Type("FlEdH", "100");
  EXPECT_EQ(Edit("FlEdW").text(), "133");
  EXPECT_NEAR(Edit("FlEdW").value(), 133.333, 0.001);
  EXPECT_EQ(Edit("FlEdH").value(), 100);
}

TEST_F(FormChangeSizeTest, EachField_Should_StayAsTyped_When_TheOtherIsRounded) {
  Open(1000, 3);
  for (const char* width : {"7", "499", "501", "167", "999"}) {
    Type("FlEdW", width);
    EXPECT_EQ(Edit("FlEdW").text(), width);
  }
}

TEST_F(FormChangeSizeTest, Unchecked_Should_LetTheFieldsChangeAlone) {
  Open(400, 300);
  QTest::keyClick(&Box(), Qt::Key_Space);
  EXPECT_FALSE(Box().isChecked());
  Type("FlEdW", "10");
  EXPECT_EQ(Edit("FlEdH").text(), "300");
  QTest::keyClick(&Box(), Qt::Key_Space);
  EXPECT_EQ(Edit("FlEdH").text(), "300");
  Type("FlEdH", "30");
  EXPECT_EQ(Edit("FlEdW").text(), "40");
}

TEST_F(FormChangeSizeTest, Nonsense_Should_NotBeTyped) {
  Open(400, 300);
  Type("FlEdW", "-1a2b.,e9");
  EXPECT_EQ(Edit("FlEdW").text(), "129");
  Type("FlEdW", "99999999999999999999");
  EXPECT_LE(Edit("FlEdW").value(), INT32_MAX);
  EXPECT_LE(Edit("FlEdH").value(), INT32_MAX);
}

TEST_F(FormChangeSizeTest, AStartOfZero_Should_SkipTheCoupling) {
  Open(0, 300);
  Type("FlEdW", "50");
  EXPECT_EQ(Edit("FlEdH").text(), "300");
}

TEST_F(FormChangeSizeTest, TabOrder_Should_StartWithWidthThenHeight) {
  Open(400, 300);
  QTest::keyClick(form.get(), Qt::Key_Tab);
  EXPECT_TRUE(Edit("FlEdH").hasFocus());
  QTest::keyClick(form.get(), Qt::Key_Tab);
  EXPECT_TRUE(Box().hasFocus());
}

class EditSizeTest : public testing::Test {
 protected:
  bool Run(const std::function<void(QWidget&)>& action) {
    WhenModal(action);
    return EditSize(width, height, proportional);
  }
  static void Type(QWidget& form, const char* name, const char* text) {
    auto* edit = form.findChild<TFloatEdit*>(name);
    edit->selectAll();
    QTest::keyClicks(edit, text);
  }
  void ExpectUntouched() const {
    EXPECT_EQ(width, 400);
    EXPECT_EQ(height, 300);
    EXPECT_FALSE(proportional);
  }

  int32_t width = 400, height = 300;
  bool proportional = false;
};

TEST_F(EditSizeTest, Ok_Should_ReturnRoundedSizesAndTheBox) {
  EXPECT_TRUE(Run([](QWidget& form) {
    Type(form, "FlEdH", "100");
    QTest::mouseClick(form.findChild<QWidget*>("ButtonOK"), Qt::LeftButton);
  }));
  EXPECT_EQ(width, 133);
  EXPECT_EQ(height, 100);
  EXPECT_TRUE(proportional);
}

TEST_F(EditSizeTest, Ok_Should_ReturnFalseForTheBox_When_ItIsUnchecked) {
  proportional = true;
  EXPECT_TRUE(Run([](QWidget& form) {
    QTest::keyClick(form.findChild<QWidget*>("CheckProp"), Qt::Key_Space);
    QTest::keyClick(&form, Qt::Key_Return);
  }));
  EXPECT_FALSE(proportional);
  EXPECT_EQ(width, 400);
}

TEST_F(EditSizeTest, CancelEscapeAndFrame_Should_LeaveAllThree) {
  const std::function<void(QWidget&)> ends[] = {
      [](QWidget& form) {
        QTest::mouseClick(form.findChild<QWidget*>("ButtonExit"), Qt::LeftButton);
      },
      [](QWidget& form) { QTest::keyClick(&form, Qt::Key_Escape); },
      [](QWidget& form) { form.close(); }};
  for (const auto& end : ends) {
    EXPECT_FALSE(Run([&](QWidget& form) {
      Type(form, "FlEdW", "77");
      end(form);
    }));
    ExpectUntouched();
  }
}

TEST_F(EditSizeTest, TheHostQuitting_Should_LeaveAllThree) {
  bool answer = true;
  QTimer::singleShot(0, [&] {
    answer = Run([](QWidget& form) {
      Type(form, "FlEdW", "77");
      QApplication::quit();
    });
  });
  QApplication::exec();
  EXPECT_FALSE(answer);
  ExpectUntouched();
}

TEST_F(EditSizeTest, Halves_Should_BecomeEven) {
  width = 2;
  height = 1;
  EXPECT_TRUE(Run([](QWidget& form) {
    Type(form, "FlEdW", "5");
    QTest::keyClick(&form, Qt::Key_Return);
  }));
  EXPECT_EQ(width, 5);
  EXPECT_EQ(height, 2);
}

}  // namespace
}  // namespace rasterkit
