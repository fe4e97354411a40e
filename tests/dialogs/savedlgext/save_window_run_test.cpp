// The window from opening to the name that it returns, with its own boxes.

#include <QFileDialog>

#include "tests/dialogs/savedlgext/save_window_test.h"

namespace rasterkit::test {
namespace {

class SaveWindowRun : public SaveWindowTest {
 protected:
  /// What the user does, once the window is active and its list is filled.
  int Run(const std::function<void()>& deeds) {
    WhenModal([this, deeds](QWidget& window) {
      window.activateWindow();
      ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
      WaitForList();
      deeds();
    });
    return form.ShowModal();
  }
  /// The box that a deed is about to open is answered so; its text is kept.
  void AnswerNextBox(QMessageBox::StandardButton button) {
    WhenModal([this, button](QWidget& window) {
      auto& box = dynamic_cast<QMessageBox&>(window);
      boxes.push_back(box.text().toStdString());
      QTest::mouseClick(box.button(button), Qt::LeftButton);
    });
  }

  std::vector<std::string> boxes;
};

TEST_F(SaveWindowRun, ANewName_Should_BeReturned) {
  EXPECT_EQ(Run([&] {
              QTest::keyClicks(form.focusWidget(), "plan.bmp");
              QTest::keyClick(form.focusWidget(), Qt::Key_Return);
            }),
            mrOk);
  EXPECT_EQ(form.GetFileName(), In("plan.png"));
}

TEST_F(SaveWindowRun, AnExistingFile_Should_BeAskedAboutUntilYes) {
  EXPECT_EQ(Run([&] {
              AnswerNextBox(QMessageBox::No);
              DoubleClickRow("b.png");
              EXPECT_TRUE(form.isVisible());
              AnswerNextBox(QMessageBox::Yes);
              Click("OKButton");
            }),
            mrOk);
  const std::string question = "File already exists:\n\"" + In("b.png") + "\"\nOverwrite?";
  EXPECT_THAT(boxes, testing::ElementsAre(question, question));
  EXPECT_EQ(form.GetFileName(), In("b.png"));
}

TEST_F(SaveWindowRun, FoldersFiltersAndStyles_Should_LeadToTheName) {
  form.SetFilter("Bitmap|*.bmp|PNG|*.png");
  form.OnFilterChange = [&] { form.SetDefaultExt(form.GetFilterIndex() == 2 ? ".png" : ".bmp"); };
  form.SetFilterIndex(1);
  EXPECT_EQ(Run([&] {
              QTest::keyClicks(&Name(), "plan");
              DoubleClickRow("maps");
              WaitForList();
              EXPECT_TRUE(List().Names().empty());
              EXPECT_EQ(List().Notice(), "There are no files of this kind");
              QTest::keyClick(&Filter(), Qt::Key_Down);
              EXPECT_THAT(List().Names(), testing::ElementsAre("c.png"));
              Click("SBList");
              Click("OKButton");
            }),
            mrOk);
  EXPECT_EQ(form.GetFileName(), In("maps/plan.png"));
}

TEST_F(SaveWindowRun, TheFolderChooser_Should_HaveItsPromptAndSetTheFolder) {
  QString title;
  EXPECT_EQ(Run([&] {
              WhenModal([&](QWidget& window) {
                auto& chooser = dynamic_cast<QFileDialog&>(window);
                title = chooser.windowTitle();
                EXPECT_EQ(chooser.directory().path().toStdString(), folder.Path().string());
                QTest::keyClicks(chooser.findChild<QLineEdit*>("fileNameEdit"), "maps");
                QTest::keyClick(&window, Qt::Key_Return);
              });
              Click("ButtonPath");
              QTest::keyClicks(&Name(), "plan");
              Click("OKButton");
            }),
            mrOk);
  EXPECT_EQ(title, "File \"%s\" already exists - overwrite?");
  EXPECT_EQ(form.GetFileName(), In("maps/plan.png"));
}

TEST_F(SaveWindowRun, BadNames_Should_BeToldAndLeaveTheWindow) {
  EXPECT_EQ(Run([&] {
              for (const char* name : {"missing/plan", "CON", "*.png"}) {
                Replace(Name(), name);
                AnswerNextBox(QMessageBox::Ok);
                QTest::keyClick(&Name(), Qt::Key_Return);
                EXPECT_TRUE(form.isVisible());
              }
              Replace(Name(), "maps");
              QTest::keyClick(&Name(), Qt::Key_Return);
              EXPECT_TRUE(form.isVisible());
              Replace(Name(), "../plan");
              QTest::keyClick(&Name(), Qt::Key_Return);
            }),
            mrOk);
  EXPECT_THAT(
      boxes, testing::ElementsAre("There is no folder missing/.",
                                  "The name CON.png is reserved by the system.",
                                  "The name *.png has characters that a file's name cannot have."));
  EXPECT_EQ(form.GetFileName(), In("plan.png"));
}

TEST_F(SaveWindowRun, AFolderThatVanishes_Should_BeToldAndLeaveTheWindow) {
  form.SetInitialDir(In("maps"));
  EXPECT_EQ(Run([&] {
              std::filesystem::remove_all(folder.Path() / "maps");
              EXPECT_TRUE(QTest::qWaitFor(
                  [&] { return List().Notice() == "There is no such folder"; }, kPatience));
              QTest::keyClicks(&Name(), "plan");
              AnswerNextBox(QMessageBox::Ok);
              Click("OKButton");
              EXPECT_TRUE(form.isVisible());
              QTest::keyClick(&Report(), Qt::Key_Backspace);
              WaitForList();
              Click("OKButton");
            }),
            mrOk);
  EXPECT_THAT(boxes, testing::ElementsAre("There is no folder " + In("maps/") + "."));
  EXPECT_EQ(form.GetFileName(), In("plan.png"));
}

TEST_F(SaveWindowRun, CancelEscapeAndFrame_Should_AllCancel) {
  const std::function<void()> ends[] = {[&] { Click("CancelButton"); },
                                        [&] { QTest::keyClick(&form, Qt::Key_Escape); },
                                        [&] { form.close(); }};
  for (const auto& end : ends) {
    EXPECT_EQ(Run([&] {
                Replace(Name(), "plan");
                end();
              }),
              mrCancel);
  }
}

TEST_F(SaveWindowRun, KeysAlone_Should_DoEverything) {
  EXPECT_EQ(Run([&] {
              const auto press = [&](Qt::Key key, Qt::KeyboardModifiers keys = Qt::NoModifier) {
                QTest::keyClick(form.focusWidget(), key, keys);
              };
              QTest::keyClicks(form.focusWidget(), "plan");
              press(Qt::Key_Backtab, Qt::ShiftModifier);
              EXPECT_EQ(form.focusWidget(), &Report());
              press(Qt::Key_Home);
              EXPECT_EQ(Name().text(), "maps");
              press(Qt::Key_Return);
              WaitForList();
              EXPECT_EQ(form.GetFileName(), In("maps/plan.png"));
              QTest::keyClick(form.focusWidget(), Qt::Key_P, Qt::AltModifier);
              EXPECT_EQ(form.focusWidget(), &Path());
              press(Qt::Key_Tab);
              EXPECT_EQ(form.focusWidget(), &Find<QWidget>("ButtonPath"));
              press(Qt::Key_Tab);
              press(Qt::Key_Space);
              EXPECT_EQ(form.GetInitialDir(), In(""));
              press(Qt::Key_Tab);
              EXPECT_EQ(form.focusWidget(), &Find<QWidget>("SBList"));
              press(Qt::Key_Space);
              EXPECT_EQ(List().ViewStyle(), vsList);
              QTest::keyClick(form.focusWidget(), Qt::Key_N, Qt::AltModifier);
              EXPECT_EQ(form.focusWidget(), &Name());
              press(Qt::Key_Return);
            }),
            mrOk);
  EXPECT_EQ(form.GetFileName(), In("plan.png"));
}

}  // namespace
}  // namespace rasterkit::test
