// Folders, files and disks that take no file.

#include <cerrno>

#include <fcntl.h>

#include <rasterkit/runtime/files/file_calls.h>

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

class EditorRefused : public EditorTest {
 protected:
  ~EditorRefused() override { detail::Calls() = before_; }

  /// As on a file system that is mounted for reading.
  static void RefuseNewFiles() {
    detail::Calls().openAt = [](int folder, const char* name, int flags, mode_t mode) {
      const bool isNew = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
      if (!isNew) return openat(folder, name, flags, mode);
      errno = EROFS;
      return -1;
    };
  }
  static void ProtectFiles() {
    detail::Calls().accessAt = [](int, const char*, int mode) {
      if ((mode & 2) == 0) return 0;
      errno = EACCES;
      return -1;
    };
  }
  void Allow() { detail::Calls() = before_; }

 private:
  const detail::FileCalls before_ = detail::Calls();
};

TEST_F(EditorRefused, Should_SayBeforeTheWindowOpensThatTheFolderTakesNoFile) {
  options.keepsJournal = false;
  Renew();
  const std::string file = WritePicture("plan.png");
  view->runsAtOnce = false;
  RefuseNewFiles();
  Open(file);
  ASSERT_EQ(view->told.size(), 1u) << "before a job runs";
  EXPECT_THAT(view->told[0], HasSubstr(file));
  EXPECT_THAT(view->told[0], HasSubstr("Read-only file system"));
  view->RunJobs();
  EXPECT_TRUE(model->HasPicture());
}

TEST_F(EditorRefused, Should_SaveAProtectedFileElsewhere) {
  const std::string file = WritePicture("plan.png");
  const std::string before = ReadFile(file);
  ProtectFiles();
  Open(file);
  ASSERT_EQ(view->told.size(), 1u);
  EXPECT_THAT(view->told[0], HasSubstr("Permission denied"));
  model->TurnLeft();
  view->saving = SavingChoice{folder / "new.png", {}, false};
  model->Confirm();
  EXPECT_EQ(view->savingStarts.size(), 1u) << "OK lets the user choose another name";
  EXPECT_THAT(view->closed, ElementsAre(true));
  EXPECT_EQ(Picture::Open(folder / "new.png").Width(), 17);
  EXPECT_EQ(ReadFile(file), before);
}

TEST_F(EditorRefused, Should_StayWhereTheHostFixedTheName) {
  options.showsSave = false;
  Renew();
  const std::string file = WritePicture("plan.png");
  ProtectFiles();
  Open(file);
  model->TurnLeft();
  view->saving = SavingChoice{folder / "new.png", {}, false};
  model->Confirm();
  EXPECT_EQ(view->told.size(), 2u);
  EXPECT_THAT(view->savingStarts, IsEmpty());
  EXPECT_THAT(view->closed, IsEmpty());
  EXPECT_TRUE(model->HasUnsavedWork());
  EXPECT_THAT(folder.Names(), ElementsAre("plan.png"));
}

TEST_F(EditorRefused, Should_StayWhenNoOtherNameIsChosen) {
  ProtectFiles();
  const std::string file = WritePicture("plan.png");
  Open(file);
  model->TurnLeft();
  model->Confirm();
  EXPECT_THAT(view->closed, IsEmpty());
  EXPECT_TRUE(model->CanConfirm());
  view->saving = SavingChoice{folder / "missing/new.png", {}, false};
  model->Confirm();
  EXPECT_THAT(view->closed, IsEmpty());
  EXPECT_EQ(model->TargetFile(), file);
  EXPECT_THAT(view->told.back(), HasSubstr("missing/new.png"));
}

TEST_F(EditorRefused, Should_KeepWindowAndWorkAfterAFailedSave) {
  const std::string file = WritePicture("plan.png");
  const std::string before = ReadFile(file);
  Open(file);
  model->TurnLeft();
  test::FillDisk();
  view->answers = {yes};
  model->Confirm();
  ASSERT_EQ(view->told.size(), 1u);
  EXPECT_THAT(view->told[0], HasSubstr("No space left"));
  EXPECT_THAT(view->closed, IsEmpty());
  EXPECT_TRUE(model->CanConfirm());
  EXPECT_TRUE(model->HasUnsavedWork());
  EXPECT_EQ(ReadFile(file), before);
  EXPECT_THAT(folder.Names(), ElementsAre("plan.png"));
  Allow();
  model->Confirm();
  EXPECT_THAT(view->closed, ElementsAre(true));
  EXPECT_EQ(Picture::Open(file).Width(), 17);
}

TEST_F(EditorRefused, Should_EditWithoutAJournalWhereNoneCanBeWritten) {
  Open(WritePicture("plan.png"));
  RefuseNewFiles();
  model->TurnLeft();
  model->TurnLeft();
  EXPECT_EQ(model->Place(), 2u);
  EXPECT_THAT(view->told, IsEmpty());
  Allow();
  model->TurnLeft();
  EXPECT_THAT(view->told, IsEmpty());
}

TEST_F(EditorRefused, Should_ThrowForWhatIsNoPicture) {
  EXPECT_THROW(Open(folder / "missing.png"), FileError);
  EXPECT_THROW(Open(folder.Write("text.png", "no picture")), Error);
  EXPECT_THROW(Open(folder.Path().string()), Error);
  EXPECT_THROW(Open(WritePicture("plan.png"), 2), RangeError);
  EXPECT_FALSE(model->HasPicture());
  EXPECT_FALSE(model->CanConfirm());
  model->TurnLeft();
  model->SaveAs();
  model->Crop();
  EXPECT_EQ(model->Place(), 0u);
  EXPECT_TRUE(model->CancelOrClose());
}

}  // namespace
}  // namespace rasterkit
