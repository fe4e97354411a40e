// Steps that outlive a crash.

#include <cerrno>
#include <csignal>
#include <fstream>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <rasterkit/pictures/document/document.h>

#include "tests/dialogs/editor/editor_fixture.h"
#include "tests/runtime/files/replaced_calls.h"

namespace rasterkit {
namespace {

using enum EditorAnswer;
using test::EditorTest;
using test::ReadFile;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class EditorJournal : public EditorTest {
 protected:
  std::string JournalFolder() const { return (state.Path() / "rasterkit/journal").string(); }
  std::vector<std::string> Journals() const {
    std::vector<std::string> names;
    if (!std::filesystem::exists(JournalFolder())) return names;
    for (const auto& entry : std::filesystem::directory_iterator(JournalFolder())) {
      if (entry.path().extension() == ".json") names.push_back(entry.path().string());
    }
    return names;
  }
  bool IsFolderEmpty() const {
    return !std::filesystem::exists(JournalFolder()) || std::filesystem::is_empty(JournalFolder());
  }

  /// The source is saved turned, and a copy is saved that is mirrored as well.
  void SaveTurnedAndThenMirroredElsewhere() {
    model->TurnLeft();
    view->answers = {yes};
    model->Save();
    model->Mirror();
    view->saving = SavingChoice{folder / "copy.png", {}, false};
    model->SaveAs();
  }

  /// Another process takes the steps and is killed while its window is open.
  void CrashAfter(const std::function<void(EditorModel&)>& work) {
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    const pid_t child = fork();
    if (child == 0) {
      test::RecordingEditorView childView;
      childView.answers = {yes, yes};
      EditorModel childModel(childView, options);
      work(childModel);
      const char done = childView.told.empty() && !testing::Test::HasFailure() ? 'y' : 'n';
      if (write(ends[1], &done, 1) != 1) _exit(1);
      for (;;) pause();
    }
    char done = 'n';
    ASSERT_EQ(read(ends[0], &done, 1), 1);
    EXPECT_EQ(done, 'y');
    EXPECT_EQ(kill(child, SIGKILL), 0);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status));
    close(ends[0]);
    close(ends[1]);
  }
};

TEST_F(EditorJournal, Should_OfferTheStepsOfAProcessThatWasKilled) {
  const std::string file = WritePicture("plan.png");
  const std::string source = folder / "source.png";
  std::filesystem::copy_file(file, source);
  CrashAfter([&](EditorModel& child) {
    child.Open(file, 1);
    child.TurnLeft();
    child.Add(RecipeCrop{LengthUnit::pixels, 2, 3, 12, 14, Outside::refuse});
    child.Gray();
    child.Undo();
  });
  EXPECT_THAT(Journals(), SizeIs(1));
  EXPECT_EQ(ReadFile(file), ReadFile(source)) << "only notes were written";

  view->answers = {yes};
  Open(file);
  EXPECT_EQ(view->questions.at(0).kind, EditorQuestion::takeUpJournal);
  EXPECT_EQ(view->questions.at(0).text,
            "The editor ended before the changes of plan.png were saved. Do you want to take them "
            "up? Steps: 2");
  EXPECT_THAT(model->StepNames(), ElementsAre("Turn left", "Crop to 10 x 11", "Make gray"));
  EXPECT_EQ(model->Place(), 2u);
  EXPECT_TRUE(model->HasUnsavedWork());
  EXPECT_TRUE(model->CanConfirm());
  ExpectResultShown();
  EXPECT_THAT(Journals(), SizeIs(1)) << "that of this window";
  view->answers = {yes};
  model->Confirm();
  EXPECT_EQ(ReadFile(file), Replayed(source, model->ToRecipe(), folder / "replayed.png"));
  EXPECT_TRUE(IsFolderEmpty());
}

TEST_F(EditorJournal, Should_DropOrKeepWhatIsNotTakenUp) {
  const std::string file = WritePicture("plan.png");
  CrashAfter([&](EditorModel& child) {
    child.Open(file, 1);
    child.TurnLeft();
  });
  view->answers = {cancel};
  Open(file);
  EXPECT_EQ(model->Place(), 0u);
  EXPECT_TRUE(model->CancelOrClose());
  EXPECT_THAT(Journals(), SizeIs(1)) << "for another time";

  Renew();
  view->answers = {no};
  Open(file);
  EXPECT_EQ(model->Place(), 0u);
  EXPECT_TRUE(IsFolderEmpty());
  Renew();
  Open(file);
  EXPECT_THAT(view->questions, IsEmpty());
}

TEST_F(EditorJournal, Should_NotOfferTheStepsOfAWindowThatIsOpen) {
  const std::string file = WritePicture("plan.png");
  Open(file);
  model->TurnLeft();
  test::RecordingEditorView otherView;
  EditorModel other(otherView, options);
  other.Open(file, 1);
  EXPECT_THAT(otherView.questions, IsEmpty());
  other.Mirror();
  EXPECT_THAT(Journals(), SizeIs(2));
  otherView.answers = {no};
  EXPECT_TRUE(other.CancelOrClose());
  EXPECT_THAT(Journals(), SizeIs(1));
}

TEST_F(EditorJournal, Should_OfferTheStepsOfTheSameFileAlone) {
  const std::string file = WritePicture("plan.png");
  Open(file);
  model->TurnLeft();
  Renew();
  Open(WritePicture("other.png"));
  EXPECT_THAT(view->questions, IsEmpty());
  EXPECT_EQ(model->Place(), 0u);
  view->answers = {yes};
  model->OpenDropped(file);
  EXPECT_THAT(view->questions, SizeIs(1));
  EXPECT_EQ(model->Place(), 1u);
}

TEST_F(EditorJournal, Should_WarnWhenTheFileWasChangedSince) {
  const std::string file = WritePicture("plan.png");
  CrashAfter([&](EditorModel& child) {
    child.Open(file, 1);
    child.TurnLeft();
    child.Add(RecipeCrop{LengthUnit::pixels, 10, 10, 17, 20, Outside::refuse});
    child.Mirror();
  });
  WritePicture("plan.png", 12, 9);
  view->answers = {yes};
  Open(file);
  EXPECT_THAT(view->questions.at(0).text, HasSubstr("the file was changed since"));
  EXPECT_THAT(model->StepNames(), ElementsAre("Turn left"));
  ASSERT_THAT(view->told, SizeIs(1));
  EXPECT_THAT(view->told[0], HasSubstr("skipped: 2 ("));
  ExpectResultShown();
}

TEST_F(EditorJournal, Should_CountNoStepTwiceAfterASave) {
  const std::string file = WritePicture("plan.png");
  const std::string source = folder / "source.png";
  std::filesystem::copy_file(file, source);
  options.onSaved = {};
  CrashAfter([&](EditorModel& child) {
    child.Open(file, 1);
    child.TurnLeft();
  });
  view->answers = {yes};
  Open(file);
  view->saving = SavingChoice{file, {}, true};
  model->SaveAs();
  EXPECT_THAT(Journals(), IsEmpty()) << "nothing is lost by a crash";
  model->Mirror();
  EXPECT_THAT(Journals(), SizeIs(1));
  // As after a crash: the window goes without being closed.
  Renew();
  view->answers = {yes};
  Open(file);
  EXPECT_THAT(view->questions.at(0).text, HasSubstr("Steps: 1"));
  EXPECT_THAT(model->StepNames(), ElementsAre("Mirror left and right"));
  view->answers = {yes};
  model->Confirm();
  Recipe all;
  all.steps = {TurnStep{1}, MirrorStep{MirrorAxis::leftRight}};
  EXPECT_EQ(ReadFile(file), Replayed(source, all, folder / "replayed.png"));
}

TEST_F(EditorJournal, Should_NoteNothingThatTheNextStartCouldNotRead) {
  const std::string file = WritePicture("plan.png");
  Open(file);
  model->TurnLeft();
  model->Gray();
  view->saving = SavingChoice{file, {}, true};
  model->SaveAs();
  model->Undo();
  EXPECT_TRUE(model->HasUnsavedWork());
  EXPECT_THAT(Journals(), IsEmpty()) << "the file has the step that was undone";
  model->Flip();
  EXPECT_THAT(Journals(), IsEmpty());
  model->Mirror();
  EXPECT_THAT(Journals(), IsEmpty());
}

TEST_F(EditorJournal, Should_LeadFromTheSourceAsItIsWhateverWasSavedElsewhere) {
  const std::string file = WritePicture("plan.png");
  const std::string source = folder / "source.png";
  std::filesystem::copy_file(file, source);
  Open(file);
  SaveTurnedAndThenMirroredElsewhere();
  model->Gray();
  EXPECT_THAT(Journals(), SizeIs(1));
  Renew();
  view->answers = {yes};
  Open(file);
  EXPECT_THAT(view->questions.at(0).text, HasSubstr("Do you want to take them up? Steps: 2"));
  EXPECT_THAT(model->StepNames(), ElementsAre("Mirror left and right", "Make gray"));
  EXPECT_EQ(model->TargetFile(), folder / "copy.png");
  view->answers = {yes};
  model->Confirm();
  Recipe all;
  all.steps = {TurnStep{1}, MirrorStep{MirrorAxis::leftRight}, ChangeStep{MakeGray{}}};
  EXPECT_EQ(ReadFile(folder / "copy.png"), Replayed(source, all, folder / "replayed.png"));
}

TEST_F(EditorJournal, Should_LoseNothingThatTheSourceHoldsAfterASaveElsewhere) {
  Open(WritePicture("plan.png"));
  SaveTurnedAndThenMirroredElsewhere();
  model->Undo();
  EXPECT_FALSE(model->HasUnsavedWork()) << "the source has these steps";
  EXPECT_TRUE(model->CanConfirm()) << "the target has one more";
  EXPECT_THAT(Journals(), IsEmpty());
  model->Undo();
  EXPECT_TRUE(model->HasUnsavedWork());
}

TEST_F(EditorJournal, Should_TakeUpTheTarget) {
  const std::string file = WritePhoto("photo.jpg", 1);
  const std::string before = ReadFile(file);
  const std::string copy = folder / "50% of it.png";
  Open(file);
  model->TurnLeft();
  RecipeSave save;
  save.type = PictureType::png;
  view->saving = SavingChoice{copy, save, false};
  model->SaveAs();
  model->Mirror();
  Renew();
  view->answers = {yes};
  Open(file);
  EXPECT_EQ(model->TargetFile(), copy);
  EXPECT_EQ(model->Place(), 2u);
  view->answers = {yes};
  model->Confirm();
  EXPECT_EQ(view->questions.at(1).kind, EditorQuestion::replaceFile) << "asked in this window";
  EXPECT_EQ(Picture::Open(copy).SourceType(), PictureType::png);
  EXPECT_EQ(ReadFile(file), before);
}

TEST_F(EditorJournal, Should_KeepTheLastNoteThatCouldBeWritten) {
  const std::string file = WritePicture("plan.png");
  Open(file);
  model->TurnLeft();
  const std::string note = ReadFile(Journals().at(0));
  {
    const test::CallsGuard guard;
    test::FillDisk();
    model->Mirror();
  }
  EXPECT_EQ(model->Place(), 2u);
  ASSERT_THAT(Journals(), SizeIs(1));
  EXPECT_EQ(ReadFile(Journals()[0]), note);
  model->Gray();
  EXPECT_NE(ReadFile(Journals().at(0)), note);
}

TEST_F(EditorJournal, Should_BePrivateAndGoWithTheWork) {
  Open(WritePicture("plan.png"));
  EXPECT_TRUE(IsFolderEmpty());
  model->TurnLeft();
  ASSERT_THAT(Journals(), SizeIs(1));
  struct stat status {};
  ASSERT_EQ(stat(Journals()[0].c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600u);
  ASSERT_EQ(stat(JournalFolder().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0700u);
  EXPECT_THAT(ReadFile(Journals()[0]), HasSubstr("plan.png"));
  model->Undo();
  EXPECT_TRUE(IsFolderEmpty()) << "there is no work";
  model->Redo();
  EXPECT_THAT(Journals(), SizeIs(1));
  view->answers = {no};
  EXPECT_TRUE(model->CancelOrClose());
  EXPECT_TRUE(IsFolderEmpty());
}

TEST_F(EditorJournal, Should_KeepNoneWhereTheHostForbidsIt) {
  options.keepsJournal = false;
  Renew();
  Open(WritePicture("plan.png"));
  model->TurnLeft();
  EXPECT_TRUE(IsFolderEmpty());
}

TEST_F(EditorJournal, Should_RemoveDamagedJournals) {
  const std::string file = WritePicture("plan.png");
  Open(file);
  model->TurnLeft();
  const std::string name = Journals().at(0);
  const std::string note = ReadFile(name);
  for (const std::string& damaged : {std::string(), note.substr(0, note.size() / 2), "x" + note,
                                     std::string(1000, '\0'), std::string(5'000'000, 'x')}) {
    Renew();
    std::ofstream(name, std::ios::binary) << damaged;
    std::ofstream(name.substr(0, name.size() - 4) + "lock");
    Open(file);
    EXPECT_THAT(view->questions, IsEmpty());
    EXPECT_TRUE(model->HasPicture());
    EXPECT_TRUE(IsFolderEmpty());
  }
}

TEST_F(EditorJournal, Should_KeepJournalsOfOtherVersions) {
  const std::string file = WritePicture("plan.png");
  Open(file);
  model->TurnLeft();
  const std::string name = Journals().at(0);
  const std::string note = ReadFile(name);
  const auto with = [&](const std::string& old, const std::string& text) {
    std::string other = note;
    EXPECT_NE(note.find(old), std::string::npos) << note;
    return other.replace(note.find(old), old.size(), text);
  };
  for (const std::string& foreign :
       {with("\"quarters\"", "\"revision\": 99, \"quarters\""),
        with("\"quarters\"", "\"shine\": 1, \"quarters\""), with("\"turn\"", "\"glow\""),
        with("rasterkit-journal 1", "rasterkit-journal 2")}) {
    Renew();
    std::ofstream(name, std::ios::binary) << foreign;
    std::ofstream(name.substr(0, name.size() - 4) + "lock");
    Open(file);
    EXPECT_THAT(view->questions, IsEmpty());
    ASSERT_THAT(Journals(), ElementsAre(name)) << foreign;
    EXPECT_EQ(ReadFile(name), foreign);
  }
}

TEST_F(EditorJournal, Should_KeepJournalsThatCannotBeReadThisTime) {
  const std::string file = WritePicture("plan.png");
  Open(file);
  model->TurnLeft();
  Renew();
  {
    const test::CallsGuard guard;
    static detail::FileCalls base;
    base = guard.Before();
    detail::Calls().openAt = [](int place, const char* name, int flags, mode_t mode) {
      if (!std::string_view(name).ends_with(".json")) return base.openAt(place, name, flags, mode);
      errno = EIO;
      return -1;
    };
    Open(file);
    EXPECT_THAT(view->questions, IsEmpty());
  }
  Renew();
  view->answers = {yes};
  Open(file);
  EXPECT_EQ(model->Place(), 1u);
}

TEST_F(EditorJournal, Should_TakeUpPageAndSettings) {
  const std::string file = folder / "scans.tif";
  Document document;
  for (int i = 0; i < 3; ++i) {
    document.Append(
        Picture::Of(std::make_unique<TBitmap>(test::GradientRaster(pf24bit, 20 + i, 10))));
  }
  document.Save(file);
  Open(file, 2);
  view->settings = RecipeSave{};
  view->settings->compression = TiffCompression::lzw;
  model->Settings();
  model->TurnLeft();
  Renew();
  view->answers = {yes};
  Open(file, 1);
  EXPECT_EQ(model->Page(), 2);
  EXPECT_EQ(model->Result().Height(), 21);
  EXPECT_EQ(model->Saving().compression, TiffCompression::lzw);
  EXPECT_TRUE(model->CanConfirm());
}

}  // namespace
}  // namespace rasterkit
