#include <filesystem>

#include "tests/dialogs/editpdfbitmap/model_fixture.h"

/// The question before a file is overwritten that no save window asked about.
namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class EditOverwriting : public EditModelTest {
 protected:
  EditOverwriting() {
    HostPorts().confirmation = [this](const std::string& question) {
      questions.push_back(question);
      return answer;
    };
  }

  /// A changed picture whose target is in `folder`; the user goes to another folder for a name.
  void ChangeAndChoose(const std::string& name, int filterIndex = 1) {
    EditNew();
    model->SpeedButtonMirrorClick();
    ConfirmSaving(name, filterIndex);
  }
  std::string Old(const char* name) { return folder.Write(name, std::string_view("an old file")); }

  TempFolder elsewhere;
  std::vector<std::string> questions;
  bool answer = true;
};

TEST_F(EditOverwriting, OK_Should_AskFirst_When_TheFileIsNotTheChosenOne) {
  Old("plan.bmp");
  ChangeAndChoose(elsewhere / "plan.bmp");
  model->NaviResultPostClick();
  ASSERT_THAT(questions, SizeIs(1));
  EXPECT_THAT(questions[0], HasSubstr(folder / "plan.bmp"));
  EXPECT_THAT(view.closed, ElementsAre(mrOk));
  EXPECT_THAT(folder.Names(), ElementsAre("plan.bmp", "plan.~bmp"));
}

TEST_F(EditOverwriting, No_Should_KeepTheWindowAndTheFile) {
  Old("plan.bmp");
  answer = false;
  ChangeAndChoose(elsewhere / "plan.bmp");
  model->NaviResultPostClick();
  EXPECT_THAT(questions, SizeIs(1));
  EXPECT_THAT(view.closed, IsEmpty());
  EXPECT_EQ(model->ModalResult(), std::nullopt);
  EXPECT_THAT(folder.Names(), ElementsAre("plan.bmp"));
  EXPECT_EQ(ReadFile(folder / "plan.bmp"), "an old file");
  EXPECT_THAT(elsewhere.Names(), IsEmpty());
  EXPECT_EQ(model->GetBmpFilename(), folder / "new.bmp") << "the name is that before";
  EXPECT_TRUE(model->BmpChanged());
}

TEST_F(EditOverwriting, SaveAs_Should_AskToo) {
  Old("plan.bmp");
  answer = false;
  ChangeAndChoose(elsewhere / "plan.bmp");
  model->SpeedButtonSaveClick();
  EXPECT_THAT(questions, SizeIs(1));
  EXPECT_EQ(ReadFile(folder / "plan.bmp"), "an old file");
  answer = true;
  model->SpeedButtonSaveClick();
  EXPECT_THAT(questions, SizeIs(2));
  EXPECT_NE(ReadFile(folder / "plan.bmp"), "an old file");
}

TEST_F(EditOverwriting, NothingIsAsked_When_TheSaveWindowAskedAboutThisFile) {
  for (const std::string& name :
       {folder / "plan.bmp", std::string("plan.bmp"),
        folder / "../" + folder.Path().filename().string() + "/plan.bmp"}) {
    StartAnew();
    Old("plan.bmp");
    ChangeAndChoose(name);
    model->NaviResultPostClick();
    EXPECT_THAT(questions, IsEmpty()) << name;
    EXPECT_NE(ReadFile(folder / "plan.bmp"), "an old file") << name;
  }
}

TEST_F(EditOverwriting, NothingIsAsked_When_TheChosenNameIsALinkToTheFile) {
  Old("plan.bmp");
  std::filesystem::create_symlink(folder / "plan.bmp", elsewhere / "plan.bmp");
  ChangeAndChoose(elsewhere / "plan.bmp");
  model->NaviResultPostClick();
  EXPECT_THAT(questions, IsEmpty());
}

TEST_F(EditOverwriting, NothingIsAsked_When_NoFileIsThere) {
  ChangeAndChoose(elsewhere / "plan.bmp");
  model->NaviResultPostClick();
  EXPECT_THAT(questions, IsEmpty());
  EXPECT_THAT(folder.Names(), ElementsAre("plan.bmp"));
}

TEST_F(EditOverwriting, AnotherExtension_Should_BeAskedAbout) {
  Old("plan.png");
  answer = false;
  ChangeAndChoose(folder / "plan.bmp", 3);
  model->NaviResultPostClick();
  ASSERT_THAT(questions, SizeIs(1));
  EXPECT_THAT(questions[0], HasSubstr("plan.png"));
  EXPECT_EQ(ReadFile(folder / "plan.png"), "an old file");
}

TEST_F(EditOverwriting, AHostWithoutAMessageBox_Should_NotBeAsked) {
  HostPorts().confirmation = nullptr;
  Old("plan.bmp");
  ChangeAndChoose(elsewhere / "plan.bmp");
  model->NaviResultPostClick();
  EXPECT_THAT(view.closed, ElementsAre(mrOk));
  EXPECT_NE(ReadFile(folder / "plan.bmp"), "an old file");
}

TEST_F(EditOverwriting, OK_Should_AskNothing_When_NothingIsWritten) {
  Old("new.bmp");
  EditNew();
  model->NaviResultPostClick();
  EXPECT_THAT(view.closed, ElementsAre(mrOk));
  EXPECT_THAT(questions, IsEmpty());
}

}  // namespace
}  // namespace rasterkit::test
