// Saving, closing, and what is on the disk afterwards.

#include <QDialog>
#include <QMessageBox>
#include <QTimer>

#include "tests/dialogs/editor/window/editor_form_test.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class EditorEnding : public EditorFormTest {
 protected:
  /// Answers the next question by the object name of a button, and keeps its words.
  void Answer(const char* button) {
    WhenModal([this, button](QWidget& window) {
      auto& box = dynamic_cast<QMessageBox&>(window);
      question = box.text();
      words.clear();
      for (const QAbstractButton* each : box.buttons()) words += each->text().remove('&');
      words.sort();
      auto* pressed = box.findChild<QAbstractButton*>(button);
      ASSERT_NE(pressed, nullptr) << button;
      QTest::mouseClick(pressed, Qt::LeftButton);
    });
  }
  void ExpectSize(const std::string& file, int width, int height) {
    const Picture picture = OpenAgain(file);
    EXPECT_EQ(picture.Width(), width);
    EXPECT_EQ(picture.Height(), height);
  }

  QString question;
  QStringList words;
};

TEST_F(EditorEnding, Ok_Should_BePale_UntilThereIsSomethingToWrite) {
  Show(WritePicture("plan.png"));
  EXPECT_FALSE(Button(nbPost).isEnabled());
  Use("TurnLeft");
  EXPECT_TRUE(Button(nbPost).isEnabled());
  Use("Undo");
  EXPECT_FALSE(Button(nbPost).isEnabled());
}

TEST_F(EditorEnding, Ok_Should_AskAndWriteTheFileThatWasNamed) {
  const std::string file = WritePicture("plan.png");
  Show(file);
  Use("TurnLeft");
  Answer("ButtonYes");
  QTest::mouseClick(&Button(nbPost), Qt::LeftButton);
  WaitForJobs();
  EXPECT_THAT(question.toStdString(), HasSubstr("plan.png"));
  EXPECT_EQ(words, QStringList({"Cancel", "Replace"}));
  EXPECT_FALSE(form->isVisible());
  ExpectSize(file, 40, 60);
  EXPECT_THAT(folder.Names(), ElementsAre("plan.png"));
  ASSERT_TRUE(form->Model().Written());
  EXPECT_EQ(form->Model().Written()->file, file);
}

TEST_F(EditorEnding, Ok_Should_WriteNothing_When_TheQuestionIsCanceled) {
  const std::string file = WritePicture("plan.png");
  const std::string before = ReadFile(file);
  Show(file);
  Use("TurnLeft");
  Answer("ButtonCancel");
  QTest::mouseClick(&Button(nbPost), Qt::LeftButton);
  WaitForJobs();
  EXPECT_TRUE(form->isVisible());
  EXPECT_EQ(ReadFile(file), before);
  EXPECT_EQ(form->Model().Place(), 1u);
}

TEST_F(EditorEnding, CtrlS_Should_WriteAndStay) {
  const std::string file = WritePicture("plan.png");
  Show(file);
  Use("TurnLeft");
  Answer("ButtonYes");
  Press(Qt::Key_S, Qt::ControlModifier);
  WaitForJobs();
  EXPECT_TRUE(form->isVisible());
  ExpectSize(file, 40, 60);
  EXPECT_FALSE(Button(nbPost).isEnabled());
  EXPECT_FALSE(form->Model().HasUnsavedWork());
}

TEST_F(EditorEnding, SaveAs_Should_WriteTheOtherFile_AndTellTheHost) {
  std::vector<std::string> saved;
  options.onSaved = [&](const std::string& file, const Recipe&, const Report&) {
    saved.push_back(file);
  };
  const std::string file = WritePicture("plan.png"), other = folder / "other.png";
  const std::string before = ReadFile(file);
  Show(file);
  Use("TurnLeft");
  savingAnswer = SavingChoice{other, {}, false};
  Press(Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
  WaitForJobs();
  EXPECT_EQ(savingStart.file, file);
  EXPECT_TRUE(savingStart.usesDesktopDialog);
  ExpectSize(other, 40, 60);
  EXPECT_EQ(ReadFile(file), before);
  EXPECT_THAT(saved, ElementsAre(other));
  EXPECT_TRUE(form->isVisible());
}

using Way = void (*)(TFormPictureEditor& form);
struct WayOut {
  const char* name;
  Way leave;
  friend void PrintTo(const WayOut& way, std::ostream* out) { *out << way.name; }
};

class EditorWaysOut : public EditorEnding, public testing::WithParamInterface<WayOut> {};

TEST_P(EditorWaysOut, Should_AskAndStay_When_Canceled) {
  const std::string file = WritePicture("plan.png"), before = ReadFile(file);
  Show(file);
  Use("TurnLeft");
  Answer("ButtonCancel");
  GetParam().leave(*form);
  WaitForJobs();
  EXPECT_EQ(words, QStringList({"Cancel", "Discard", "Save"}));
  EXPECT_TRUE(form->isVisible());
  EXPECT_EQ(form->Model().Place(), 1u);
  EXPECT_EQ(ReadFile(file), before);
}

TEST_P(EditorWaysOut, Should_AskAndLeave_When_Discarded) {
  const std::string file = WritePicture("plan.png"), before = ReadFile(file);
  Show(file);
  Use("TurnLeft");
  Answer("ButtonNo");
  GetParam().leave(*form);
  WaitForJobs();
  EXPECT_FALSE(form->isVisible());
  EXPECT_EQ(ReadFile(file), before);
}

TEST_P(EditorWaysOut, Should_AskAndWrite_When_Saved) {
  const std::string file = WritePicture("plan.png");
  Show(file);
  Use("TurnLeft");
  // The second question is whether the file is replaced.
  WhenModal([this](QWidget& window) {
    QTest::mouseClick(window.findChild<QAbstractButton*>("ButtonYes"), Qt::LeftButton);
    Answer("ButtonYes");
  });
  GetParam().leave(*form);
  WaitForJobs();
  EXPECT_FALSE(form->isVisible());
  ExpectSize(file, 40, 60);
}

TEST_P(EditorWaysOut, Should_AskNothing_When_NothingWouldBeLost) {
  Show(WritePicture("plan.png"));
  Use("TurnLeft");
  Use("TurnRight");
  GetParam().leave(*form);
  EXPECT_FALSE(form->isVisible());
}

constexpr WayOut kWays[] = {
    {"Escape",
     [](TFormPictureEditor& form) { QTest::keyClick(form.focusWidget(), Qt::Key_Escape); }},
    {"Frame", [](TFormPictureEditor& form) { form.close(); }},
    {"Cancel",
     [](TFormPictureEditor& form) {
       QTest::mouseClick(form.findChild<QWidget*>("nbCancel"), Qt::LeftButton);
     }},
    {"Menu", [](TFormPictureEditor& form) { form.findChild<QAction*>("ActionClose")->trigger(); }},
    {"Session", [](TFormPictureEditor& form) { form.EndSession(true); }},
};

INSTANTIATE_TEST_SUITE_P(All, EditorWaysOut, testing::ValuesIn(kWays),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(EditorEnding, TheSession_Should_NotEnd_When_TheUserStays) {
  Show(WritePicture("plan.png"));
  Use("TurnLeft");
  Answer("ButtonCancel");
  EXPECT_FALSE(form->EndSession(true));
  Answer("ButtonNo");
  EXPECT_TRUE(form->EndSession(true));
}

TEST_F(EditorEnding, TheSession_Should_CancelTheWindowsAboveFirst) {
  int result = -1;
  windows.crop = [&](TBitmap&, const Picture&, const ChooseCropOptions&,
                     QWidget* parent) -> std::optional<RecipeCrop> {
    QDialog above(parent);
    QTimer::singleShot(0, &above, [&] {
      // A message over the window.
      QTimer::singleShot(0, &above, [&] {
        Answer("ButtonNo");
        EXPECT_TRUE(form->EndSession(true));
        EXPECT_FALSE(above.isVisible());
      });
      QMessageBox(QMessageBox::Information, {}, "Above", QMessageBox::Ok, &above).exec();
    });
    result = above.exec();
    return std::nullopt;
  };
  const std::string file = WritePicture("plan.png"), before = ReadFile(file);
  Show(file);
  Use("TurnLeft");
  Use("Crop");
  EXPECT_EQ(result, QDialog::Rejected);
  EXPECT_EQ(words, QStringList({"Cancel", "Discard", "Save"}));
  EXPECT_FALSE(form->isVisible());
  EXPECT_EQ(ReadFile(file), before);
}

TEST_F(EditorEnding, TheSession_Should_WaitForASave) {
  const std::string file = WritePicture("plan.png", 1500, 1200), other = folder / "other.png";
  Show(file);
  Use("TurnLeft");
  savingAnswer = SavingChoice{other, {}, false};
  Action("SaveAs").trigger();
  ASSERT_TRUE(form->IsJobRunning());
  EXPECT_TRUE(form->EndSession(true));
  EXPECT_FALSE(form->isVisible());
  ExpectSize(other, 1200, 1500);
}

TEST_F(EditorEnding, TheSession_Should_EndWithoutAQuestion_When_NoneMayBeAsked) {
  Show(WritePicture("plan.png"));
  Use("TurnLeft");
  EXPECT_TRUE(form->EndSession(false));
  EXPECT_TRUE(form->isVisible());
}

TEST_F(EditorEnding, EscapeInTheQuestion_Should_Cancel) {
  Show(WritePicture("plan.png"));
  Use("TurnLeft");
  WhenModal([](QWidget& window) { QTest::keyClick(&window, Qt::Key_Escape); });
  Press(Qt::Key_Escape);
  EXPECT_TRUE(form->isVisible());
}

TEST_F(EditorEnding, AFailedSave_Should_KeepWindowAndWork) {
  const std::string file = WritePicture("plan.png");
  Show(file);
  Use("TurnLeft");
  savingAnswer = SavingChoice{folder / "no/such/folder.png", {}, false};
  WhenModal([this](QWidget& window) { question = dynamic_cast<QMessageBox&>(window).text(); });
  Use("SaveAs");
  EXPECT_THAT(question.toStdString(), HasSubstr("folder.png"));
  EXPECT_TRUE(form->isVisible());
  EXPECT_EQ(form->Model().Place(), 1u);
  EXPECT_TRUE(form->Model().HasUnsavedWork());
}

TEST_F(EditorEnding, TheWindow_Should_EndWithTheProgram) {
  Show(WritePicture("plan.png"));
  Use("TurnLeft");
  form->hide();
  bool hasReturned = false;
  QTimer::singleShot(0, [&] {
    QTimer::singleShot(0, [] { QCoreApplication::exit(); });
    form->ShowEditor();
    hasReturned = true;
  });
  QCoreApplication::exec();
  EXPECT_TRUE(hasReturned);
  EXPECT_FALSE(form->Model().Written());
}

}  // namespace
}  // namespace rasterkit::test
