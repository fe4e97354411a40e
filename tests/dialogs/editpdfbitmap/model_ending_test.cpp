#include <rasterkit/bitmaptools/files/file_filters.h>
#include <rasterkit/bitmaptools/files/windows_bitmap.h>
#include <rasterkit/dialogs/editpdfbitmap/editor_isolation.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/worker/worker_program.h>

#include "tests/dialogs/editpdfbitmap/model_fixture.h"

/// Keys, files that are opened and saved, and how the window ends.
namespace rasterkit::test {
namespace {

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class EditEnding : public EditModelTest {
 protected:
  TBitmap Saved(const std::string& name) {
    TBitmap bitmap;
    bitmap.LoadFromFile(folder / name);
    return bitmap;
  }
  void Change() { model->SpeedButtonMirrorClick(); }
};

// OK.

TEST_F(EditEnding, OK_Should_WriteNothing_When_NothingWasChanged) {
  EditNew();
  model->NaviResultPostClick();
  EXPECT_THAT(view.closed, ElementsAre(mrOk));
  EXPECT_EQ(model->ModalResult(), mrOk);
  EXPECT_THAT(dialogs, IsEmpty());
  EXPECT_THAT(folder.Names(), IsEmpty());
}

TEST_F(EditEnding, OK_Should_CloseAWindow_ThatNothingWasOpenedIn) {
  model->NaviResultPostClick();
  EXPECT_THAT(view.closed, ElementsAre(mrOk));
}

TEST_F(EditEnding, OK_Should_AskForTheName_AndSave_When_ThePictureWasChanged) {
  EditNew();
  Change();
  ConfirmSaving("/elsewhere/saved.xyz", 3);
  model->NaviResultPostClick();
  EXPECT_THAT(view.closed, ElementsAre(mrOk));
  ASSERT_THAT(dialogs, SizeIs(1));
  EXPECT_EQ(dialogs[0].kind, PictureFileDialog::Kind::save);
  EXPECT_EQ(dialogs[0].InitialDir, folder / "");
  EXPECT_EQ(dialogs[0].FileName, "new.bmp");
  EXPECT_EQ(dialogs[0].FilterIndex, 1);
  EXPECT_EQ(dialogs[0].Filter, GetSaveFilter(false));
  EXPECT_TRUE(dialogs[0].ofOverwritePrompt);
  EXPECT_FALSE(dialogs[0].ofNoChangeDir);
  EXPECT_EQ(model->GetBmpFilename(), folder / "saved.png") << "the folder chosen is dropped";
  EXPECT_THAT(folder.Names(), ElementsAre("saved.png"));
}

TEST_F(EditEnding, OK_Should_WriteWhatIsSeen) {
  EditNew();
  Change();
  ConfirmSaving("saved.bmp");
  const TBitmap expected = std::move(*Work().Clone());
  model->NaviResultPostClick();
  EXPECT_TRUE(SamePixels(expected, Saved("saved.bmp")));
}

TEST_F(EditEnding, OK_Should_WriteTheCut_EvenWhenNothingElseWasChanged) {
  EditNew();
  Cut();
  ConfirmSaving("saved.bmp");
  const auto expected = tool.GetCutBitmap();
  model->NaviResultPostClick();
  EXPECT_TRUE(SamePixels(*expected, Saved("saved.bmp")));
  EXPECT_THAT(view.closed, ElementsAre(mrOk));
}

TEST_F(EditEnding, OK_Should_LeaveABackup_When_TheFileExisted) {
  EditExisting();
  Change();
  ConfirmSaving("old.bmp");
  model->NaviResultPostClick();
  EXPECT_THAT(folder.Names(), ElementsAre("old.bmp", "old.~bmp"));
  EXPECT_EQ(ReadFile(folder / "old.~bmp"), "an old file");
}

TEST_F(EditEnding, OK_Should_StayOpen_When_TheNameIsNotConfirmed) {
  EditNew();
  Change();
  model->NaviResultPostClick();
  EXPECT_THAT(dialogs, SizeIs(1));
  EXPECT_THAT(view.closed, IsEmpty());
  EXPECT_EQ(model->ModalResult(), std::nullopt);
  EXPECT_EQ(model->GetBmpFilename(), folder / "new.bmp");
  EXPECT_THAT(folder.Names(), IsEmpty());
}

TEST_F(EditEnding, OK_Should_StayOpen_When_TheFileCannotBeWritten) {
  model->SetBmpFilename(folder / "missing/new.bmp");
  model->SetOrgGraphic(GradientBitmap(pf24bit, 9, 7).Clone());
  Change();
  ConfirmSaving("new.bmp");
  model->NaviResultPostClick();
  EXPECT_THAT(messages, SizeIs(1));
  EXPECT_THAT(view.closed, IsEmpty());
  EXPECT_EQ(Work().Width(), 9);
}

TEST_F(EditEnding, OK_Should_WriteAPage) {
  OpenPdf(3);
  model->SetBmpFilename(folder / "plan.png");
  ConfirmSaving("plan.png", 3);
  model->NaviResultPostClick();
  EXPECT_EQ(dialogs[0].FilterIndex, 3);
  EXPECT_THAT(view.closed, ElementsAre(mrOk));
  std::unique_ptr<TBitmap> saved;
  ASSERT_TRUE(LoadWindowsBitmap(folder / "plan.png", 0, saved));
  EXPECT_TRUE(SameColors(PdfPicture(0, 1.5), *saved));
}

// Save and open.

TEST_F(EditEnding, Save_Should_WriteThePicture_AndGoOn) {
  EditNew();
  ConfirmSaving("/elsewhere/saved.bmp");
  model->SpeedButtonSaveClick();
  EXPECT_TRUE(SamePixels(GradientBitmap(pf24bit, 40, 30), Saved("saved.bmp")));
  EXPECT_EQ(model->FileNames().fBmpName, "saved.bmp");
  EXPECT_THAT(view.closed, IsEmpty());
}

TEST_F(EditEnding, Save_Should_WriteTheCut) {
  EditNew();
  Cut();
  ConfirmSaving("saved.bmp");
  model->SpeedButtonSaveClick();
  EXPECT_EQ(Saved("saved.bmp").Width(), 20);
  EXPECT_TRUE(tool.GetCutRectExists());
}

TEST_F(EditEnding, Save_Should_WriteNothing_When_TheNameIsNotConfirmed) {
  EditNew();
  model->SpeedButtonSaveClick();
  EXPECT_THAT(folder.Names(), IsEmpty());
  EXPECT_EQ(model->FileNames().fBmpName, "new.bmp");
}

TEST_F(EditEnding, Open_Should_StartWhereTheSourceLies) {
  model->SetBmpFilename("maps/Photo.tif");
  model->SetBmpFilename("elsewhere/target.bmp");
  model->SpeedButtonOpenClick();
  ASSERT_THAT(dialogs, SizeIs(1));
  EXPECT_EQ(dialogs[0].kind, PictureFileDialog::Kind::open);
  EXPECT_EQ(dialogs[0].InitialDir, "maps/");
  EXPECT_EQ(dialogs[0].FileName, "");
  EXPECT_EQ(dialogs[0].Filter, GetOpenFilter(false));
  EXPECT_EQ(dialogs[0].FilterIndex, 5) << "TIFF";
  EXPECT_EQ(model->WorkBitmap(), nullptr) << "it was not confirmed";
}

TEST_F(EditEnding, Open_Should_ShowTheFile_AndNameTheTargetAfterIt) {
  EditNew();
  const std::string other = folder.Path().string() + "/sub/other.bmp";
  std::filesystem::create_directory(folder.Path() / "sub");
  GradientBitmap(pf8bit, 9, 7).SaveToFile(other);
  ConfirmOpening(other);
  model->SpeedButtonOpenClick();
  EXPECT_EQ(Work().Width(), 9);
  EXPECT_EQ(model->FileNames().fOrgFilename, other);
  EXPECT_EQ(model->GetBmpFilename(), folder / "other.bmp") << "the target's folder stays";
}

TEST_F(EditEnding, Open_Should_KeepAPdf) {
  EditNew();
  ConfirmOpening("plans/plan.pdf");
  model->SpeedButtonOpenClick();
  EXPECT_TRUE(model->IsPDF());
  EXPECT_EQ(model->FileNames().fBmpName, "plan.pdf");
}

TEST_F(EditEnding, Open_Should_KeepTheNames_When_TheFileCannotBeOpened) {
  EditNew();
  ConfirmOpening(folder / "missing.bmp");
  model->SpeedButtonOpenClick();
  EXPECT_EQ(model->GetBmpFilename(), folder / "new.bmp");
  EXPECT_THAT(messages, SizeIs(1));
}

TEST_F(EditEnding, FormDropFile_Should_DoWhatOpenDoes) {
  EditNew();
  GradientBitmap(pf8bit, 9, 7).SaveToFile(folder / "dropped.bmp");
  model->FormDropFile(folder / "dropped.bmp");
  EXPECT_EQ(Work().Width(), 9);
  EXPECT_EQ(model->FileNames().fBmpName, "dropped.bmp");
  model->FormDropFile(folder.Write("text.txt", std::string_view("no picture")));
  EXPECT_EQ(Work().Width(), 9);
  EXPECT_EQ(model->FileNames().fBmpName, "dropped.bmp");
}

/// A worker program that is missing shows that one is needed.
TEST_F(EditEnding, OpenAndDrop_Should_ReadInAWorker_When_Isolated) {
  EditNew();
  const std::string other = folder / "other.bmp";
  GradientBitmap(pf8bit, 9, 7).SaveToFile(other);
  ConfirmOpening(other);
  detail::SetEditorIsolation(Isolation::process);
  detail::SetWorkerProgram(folder / "missing");
  model->SpeedButtonOpenClick();
  model->FormDropFile(other);
  EXPECT_EQ(Work().Width(), 40);
  EXPECT_EQ(model->GetBmpFilename(), folder / "new.bmp");
  EXPECT_THAT(messages, SizeIs(2));
  EXPECT_THAT(messages, Each(HasSubstr("there is no " + (folder / "missing"))));
  detail::SetWorkerProgram(RASTERKIT_WORKER_FILE);
  model->SpeedButtonOpenClick();
  EXPECT_TRUE(SamePixels(*GraphicIntoBitmap(LoadGraphic(other).get()), Work()));
  EXPECT_EQ(model->GetBmpFilename(), other);
  detail::SetWorkerProgram("");
  detail::SetEditorIsolation(Isolation::none);
}

// Other ways out.

TEST_F(EditEnding, Cancel_Should_Close) {
  EditNew();
  Change();
  model->NaviResultCancelClick();
  EXPECT_THAT(view.closed, ElementsAre(mrCancel));
  EXPECT_EQ(model->ModalResult(), mrCancel);
}

TEST_F(EditEnding, FormClose_Should_CancelToo) {
  EditNew();
  model->FormClose();
  EXPECT_THAT(view.closed, ElementsAre(mrCancel));
}

TEST_F(EditEnding, Help_Should_ShowTheTopicOfTheSource) {
  EditNew();
  model->NaviResultHelpClick();
  OpenPdf();
  model->NaviResultHelpClick();
  EXPECT_THAT(topics, ElementsAre(570002, 570001));
}

// Keys.

TEST_F(EditEnding, Enter_Should_BeOK) {
  EditNew();
  EXPECT_TRUE(model->FormKeyDown(EditKey::enter, false));
  EXPECT_THAT(view.closed, ElementsAre(mrOk));
}

TEST_F(EditEnding, Escape_Should_RemoveTheCut_AndOnlyThenCancel) {
  EditNew();
  Cut();
  EXPECT_TRUE(model->FormKeyDown(EditKey::escape, false));
  EXPECT_FALSE(tool.GetCutRectExists());
  EXPECT_THAT(view.closed, IsEmpty());
  EXPECT_THAT(view.calls, Contains("repaint"));
  EXPECT_TRUE(model->FormKeyDown(EditKey::escape, false));
  EXPECT_THAT(view.closed, ElementsAre(mrCancel));
}

TEST_F(EditEnding, Escape_Should_GiveUpADragFirst) {
  EditNew();
  tool.MouseDown(CutButton::left, {true}, 100, 100);
  tool.MouseMove({true}, 200, 200);
  EXPECT_TRUE(model->FormKeyDown(EditKey::escape, false));
  EXPECT_FALSE(tool.DragIsActive());
  EXPECT_THAT(view.closed, IsEmpty());
}

TEST_F(EditEnding, Delete_Should_RemoveTheCut) {
  EditNew();
  Cut();
  EXPECT_TRUE(model->FormKeyDown(EditKey::del, false));
  EXPECT_FALSE(tool.GetCutRectExists());
  EXPECT_THAT(view.calls, Contains("repaint"));
  EXPECT_TRUE(model->FormKeyDown(EditKey::del, false));
  EXPECT_THAT(view.closed, IsEmpty());
}

TEST_F(EditEnding, Keys_Should_BeIgnored_When_TheUserTypesInABox) {
  EditNew();
  Cut();
  model->CoBoRotationKeyPress(ComboKey::digit);
  for (const EditKey key : {EditKey::enter, EditKey::escape, EditKey::del, EditKey::h, EditKey::z})
    EXPECT_FALSE(model->FormKeyDown(key, true));
  EXPECT_FALSE(model->CtrlPressed());
  EXPECT_TRUE(tool.GetCutRectExists());
  EXPECT_THAT(view.closed, IsEmpty());
  model->CoBoExit();
  EXPECT_TRUE(model->FormKeyDown(EditKey::enter, false));
}

TEST_F(EditEnding, Ctrl_Should_BeRecordedWithEachKey) {
  EditNew();
  EXPECT_FALSE(model->FormKeyDown(EditKey::other, true));
  EXPECT_TRUE(model->CtrlPressed());
  model->FormKeyDown(EditKey::other, false);
  EXPECT_FALSE(model->CtrlPressed());
}

}  // namespace
}  // namespace rasterkit::test
