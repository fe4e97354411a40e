#include <QMessageBox>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/savedlgext/save_file_ok.h>
#include <rasterkit/runtime/ports.h>

#include "tests/support/forms/form_events.h"
#include "tests/support/temp_folder.h"

namespace rasterkit {
namespace {

class SaveFileOKTest : public testing::Test {
 protected:
  ~SaveFileOKTest() override { HostPorts() = Ports(); }

  /// Answers the question box with a press of `button`.
  bool AnswerBy(QMessageBox::StandardButton button) {
    test::WhenModal([this, button](QWidget& window) {
      auto& box = dynamic_cast<QMessageBox&>(window);
      shown = box.text();
      QTest::mouseClick(box.button(button), Qt::LeftButton);
    });
    return SaveFileOK(file);
  }

  test::TempFolder folder;
  const std::string file = folder.Write("plan.png", "picture");
  QString shown;
};

TEST_F(SaveFileOKTest, Answer_Should_BeTrueUnasked_When_TheFileDoesNotExist) {
  HostPorts().confirmation = [](const std::string&) {
    ADD_FAILURE() << "no question is needed";
    return false;
  };
  EXPECT_TRUE(SaveFileOK(folder / "new.png"));
  EXPECT_TRUE(SaveFileOK(folder / "no/such/folder.png"));
  EXPECT_TRUE(SaveFileOK(""));
}

TEST_F(SaveFileOKTest, Question_Should_HoldTheNameInQuotationMarksBetweenCarriageReturns) {
  std::string question;
  HostPorts().confirmation = [&](const std::string& text) {
    question = text;
    return true;
  };
  EXPECT_TRUE(SaveFileOK(file));
  EXPECT_EQ(question, "File already exists:\r\"" + file + "\"\rOverwrite?");
}

TEST_F(SaveFileOKTest, Answer_Should_BeTrueForYesOnly) {
  for (const bool answer : {true, false}) {
    HostPorts().confirmation = [answer](const std::string&) { return answer; };
    EXPECT_EQ(SaveFileOK(file), answer);
  }
}

TEST_F(SaveFileOKTest, Box_Should_OfferYesAndNo_When_TheHostHasNone) {
  EXPECT_TRUE(AnswerBy(QMessageBox::Yes));
  EXPECT_EQ(shown.toStdString(), "File already exists:\n\"" + file + "\"\nOverwrite?");
  EXPECT_FALSE(AnswerBy(QMessageBox::No));
}

TEST_F(SaveFileOKTest, EnterEscapeAndFrame_Should_KeepTheFile) {
  const std::function<void(QWidget&)> ends[] = {
      [](QWidget& box) { QTest::keyClick(&box, Qt::Key_Return); },
      [](QWidget& box) { QTest::keyClick(&box, Qt::Key_Escape); },
      [](QWidget& box) { box.close(); }};
  for (const auto& end : ends) {
    test::WhenModal(end);
    EXPECT_FALSE(SaveFileOK(file));
  }
}

TEST_F(SaveFileOKTest, ANameWithPercentSigns_Should_BeShownAsItIs) {
  std::string question;
  HostPorts().confirmation = [&](const std::string& text) {
    question = text;
    return false;
  };
  const std::string odd = folder.Write("100%s.png", "picture");
  EXPECT_FALSE(SaveFileOK(odd));
  EXPECT_EQ(question, "File already exists:\r\"" + odd + "\"\rOverwrite?");
}

}  // namespace
}  // namespace rasterkit
