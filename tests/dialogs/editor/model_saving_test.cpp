// What OK writes, and what is asked before.

#include <cerrno>
#include <fstream>

#include <unistd.h>

#include <rasterkit/pictures/document/document.h>

#include "tests/dialogs/editor/editor_fixture.h"
#include "tests/dialogs/editor/made_samples.h"
#include "tests/dialogs/saving/saving_fixture.h"
#include "tests/runtime/files/replaced_calls.h"
#include "tests/support/gif_file.h"
#include "tests/support/webp_file.h"

namespace rasterkit {
namespace {

using enum EditorAnswer;
using test::EditorTest;
using test::ReadFile;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class EditorSaving : public EditorTest {
 protected:
  /// A picture of the same kind at another moment.
  void ChangeFile(const std::string& file) {
    const std::string other = WritePicture("other.png", 40, 40);
    std::filesystem::rename(other, file);
  }

  /// Opens, takes steps, confirms, and compares the file with what its recipe makes.
  void ExpectReplayed(const std::string& file, const std::vector<RecipeStep>& steps) {
    SCOPED_TRACE(file);
    const std::string extension = std::filesystem::path(file).extension().string();
    const std::string source = folder / ("source" + extension);
    std::filesystem::copy_file(file, source, std::filesystem::copy_options::overwrite_existing);
    Renew();
    view->answers = {yes};
    Open(file);
    for (const RecipeStep& step : steps) model->Add(step);
    ASSERT_THAT(view->told, IsEmpty());
    ASSERT_TRUE(model->CanConfirm());
    model->Confirm();
    ASSERT_THAT(view->told, IsEmpty());
    EXPECT_THAT(view->closed, ElementsAre(true));
    ASSERT_TRUE(model->Written());
    EXPECT_EQ(model->Written()->file, file);
    EXPECT_EQ(model->Written()->recipe.steps.size(), steps.size());
    EXPECT_EQ(ReadFile(file),
              Replayed(source, model->Written()->recipe, folder / ("replayed" + extension)));
    EXPECT_NE(ReadFile(file), ReadFile(source));
  }
};

const std::vector<RecipeStep> kTurned = {TurnStep{1}};
const std::vector<RecipeStep> kMany = {MirrorStep{MirrorAxis::leftRight},
                                       RecipeCrop{LengthUnit::pixels, 1, 2, 9, 11, Outside::refuse},
                                       ChangeStep{AdjustColors{10, 5, 0, 0, 0, 3}},
                                       RecipeResize{LengthUnit::percent, 150, 150, 0, {}}};

TEST_F(EditorSaving, Should_WriteWhatTheRecipeMakesOfPhotographs) {
  for (int orientation = 1; orientation <= 8; ++orientation) {
    for (const TPixelFormat format : {pf24bit, pf8bit}) {
      ExpectReplayed(WritePhoto("photo.jpeg", orientation, format), kTurned);
      ExpectReplayed(WritePhoto("photo.jpeg", orientation, format), kMany);
    }
  }
}

TEST_F(EditorSaving, Should_WriteWhatTheRecipeMakesOfEveryKind) {
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf24bit, pf32bit}) {
    for (const char* name : {"a.png", "a.tif", "a.bmp"}) {
      ExpectReplayed(WritePicture(name, 31, 19, format), kTurned);
      ExpectReplayed(WritePicture(name, 31, 19, format), kMany);
    }
  }
}

TEST_F(EditorSaving, Should_WriteNumbersAndNotWhatIsShown) {
  for (const char* name : {"deep.png", "deep.tif"}) {
    const std::string file = folder / name;
    Picture::Of(test::DeepGray(20, 10)).Save(file);
    ExpectReplayed(file, {TurnStep{1}, RecipeCrop{LengthUnit::pixels, 1, 2, 9, 11}});
    EXPECT_EQ(Picture::Open(file).Layout().bits, 16);
  }
}

TEST_F(EditorSaving, Should_WriteWhatTheRecipeMakesOfAPlacedPicture) {
  const std::string file = folder / "map.tif";
  Picture::Of(std::make_unique<TBitmap>(test::GradientRaster(pf8bit, 40, 30)))
      .Apply(PlaceStep{Affine{2, 0, 0, -2, 1000, 2000}})
      .Save(file);
  ExpectReplayed(file, {RecipeCrop{LengthUnit::map, 1010, 1990, 1030, 1960}, TurnStep{1}});
  EXPECT_TRUE(Picture::Open(file).GetPlacement().affine.has_value());
}

TEST_F(EditorSaving, Should_MoveThePixelsOfAMirroredPhotographAndSayIt) {
  const std::string file = WritePhoto("photo.jpeg", 2, pf24bit, 64, 64);
  const size_t before = ReadFile(file).size();
  Open(file);
  EXPECT_FALSE(model->CanConfirm());
  model->TurnLeft();
  EXPECT_EQ(model->SavingFacts(), "Lossless: the compressed pixels are moved");
  EXPECT_THAT(model->Losses(), IsEmpty());
  view->answers = {yes};
  model->Confirm();
  EXPECT_LT(ReadFile(file).size(), before + before / 4);
}

TEST_F(EditorSaving, Should_SayWhenPixelsAreCompressedAgain) {
  Open(WritePhoto("photo.jpeg", 1, pf24bit, 64, 64));
  model->Add(RecipeCrop{LengthUnit::pixels, 3, 0, 40, 40});
  EXPECT_THAT(model->SavingFacts(), HasSubstr("Compressed again: the new edges"));
  model->Gray();
  EXPECT_EQ(model->SavingFacts(), "Compressed again: the pixels were changed");
}

TEST_F(EditorSaving, Should_SayThatAPngFileIsLosslessAndWhatABmpFileLacks) {
  Open(WritePhoto("photo.jpg", 1));
  model->TurnLeft();
  view->saving = SavingChoice{folder / "photo.bmp", {}, false};
  model->SaveAs();
  EXPECT_THAT(model->Losses(), HasSubstr("Lost: "));
  EXPECT_THAT(model->LossDetails(), HasSubstr("BMP"));
  view->saving = SavingChoice{folder / "photo.png", {}, false};
  model->SaveAs();
  EXPECT_EQ(model->SavingFacts(), "Lossless: every pixel is kept");
}

TEST_F(EditorSaving, Should_NotCallASmallerDepthLossless) {
  Open(WritePicture("plan.png"));
  EXPECT_EQ(model->SavingFacts(), "Lossless: every pixel is kept");
  view->settings = RecipeSave{};
  view->settings->bits = 8;
  model->Settings();
  EXPECT_EQ(model->SavingFacts(), "Not lossless: the file has another depth");
}

TEST_F(EditorSaving, Should_AskOnceBeforeTheNamedFileIsReplaced) {
  const std::string file = WritePicture("plan.png");
  const std::string before = ReadFile(file);
  Open(file);
  EXPECT_EQ(model->TargetFile(), file);
  model->TurnLeft();
  view->answers = {no};
  model->Confirm();
  EXPECT_THAT(view->closed, IsEmpty());
  EXPECT_EQ(ReadFile(file), before);
  EXPECT_TRUE(model->CanConfirm());
  view->answers = {yes};
  model->Confirm();
  EXPECT_THAT(view->closed, ElementsAre(true));
  EXPECT_EQ(Picture::Open(file).Width(), 17);
  ASSERT_EQ(view->questions.size(), 2u);
  EXPECT_EQ(view->questions[0].kind, EditorQuestion::replaceFile);
  EXPECT_EQ(view->questions[0].text, "plan.png exists. Do you want to replace it?");
  EXPECT_THAT(folder.Names(), ElementsAre("plan.png"));
}

TEST_F(EditorSaving, Should_SaveElsewhereWithoutAnotherQuestionAndStay) {
  const std::string file = WritePicture("plan.png");
  const std::string before = ReadFile(file);
  const std::string other = WritePicture("other.jpg", 5, 5);
  Open(file);
  model->TurnLeft();
  RecipeSave save;
  save.quality = 40;
  view->saving = SavingChoice{other, save, true};
  model->SaveAs();
  EXPECT_THAT(view->questions, IsEmpty());
  EXPECT_THAT(view->closed, IsEmpty());
  EXPECT_EQ(view->savingStarts.at(0).file, file);
  EXPECT_EQ(model->TargetFile(), other);
  EXPECT_FALSE(model->CanConfirm());
  EXPECT_FALSE(model->HasUnsavedWork());
  EXPECT_EQ(ReadFile(file), before);
  EXPECT_EQ(ReadFile(other), Replayed(file, model->ToRecipe(), folder / "replayed.jpg"));

  model->TurnLeft();
  EXPECT_TRUE(model->CanConfirm());
  EXPECT_TRUE(model->HasUnsavedWork());
  model->Undo();
  EXPECT_FALSE(model->CanConfirm()) << "back at what was saved";
  model->Undo();
  EXPECT_TRUE(model->CanConfirm()) << "the target has other pixels";
  EXPECT_FALSE(model->HasUnsavedWork()) << "the source has these";
  model->Redo();
  model->Gray();
  model->Confirm();
  EXPECT_THAT(view->questions, IsEmpty()) << "the user agreed already";
  EXPECT_THAT(view->closed, ElementsAre(true));
  EXPECT_EQ(ReadFile(other), Replayed(file, model->ToRecipe(), folder / "replayed.jpg"));
}

TEST_F(EditorSaving, Should_AskWhenTheUserDidNotAgreeInTheSaveWindow) {
  Open(WritePicture("plan.png"));
  model->TurnLeft();
  const std::string other = WritePicture("other.png", 5, 5);
  view->saving = SavingChoice{other, {}, false};
  view->answers = {no};
  model->SaveAs();
  EXPECT_EQ(Picture::Open(other).Width(), 5);
  EXPECT_EQ(model->TargetFile(), folder / "plan.png") << "the target stays";
  EXPECT_TRUE(model->CanConfirm());
}

TEST_F(EditorSaving, Should_CountStepsOnceAfterTheSourceWasReplaced) {
  const std::string file = WritePhoto("photo.jpg", 6);
  const std::string source = folder / "source.jpg";
  std::filesystem::copy_file(file, source);
  Open(file);
  model->TurnLeft();
  view->saving = SavingChoice{file, {}, true};
  model->SaveAs();
  EXPECT_FALSE(model->CanConfirm());
  model->Undo();
  EXPECT_TRUE(model->CanConfirm()) << "the file has the step";
  EXPECT_TRUE(model->HasUnsavedWork());
  model->Redo();
  EXPECT_FALSE(model->CanConfirm());
  model->Mirror();
  model->Confirm();
  EXPECT_EQ(ReadFile(file), Replayed(source, model->ToRecipe(), folder / "replayed.jpg"));
  EXPECT_EQ(model->ToRecipe().steps.size(), 2u);
}

TEST_F(EditorSaving, Should_HaveNothingToWriteAfterTurnsThatUndoEachOther) {
  Open(WritePicture("plan.png"));
  for (int i = 0; i < 3; ++i) {
    model->TurnLeft();
    EXPECT_TRUE(model->CanConfirm());
  }
  model->TurnLeft();
  EXPECT_FALSE(model->CanConfirm());
  model->Mirror();
  model->TurnLeft();
  model->Flip();
  model->TurnLeft();
  EXPECT_TRUE(model->CanConfirm());
  model->Rotate(180);
  EXPECT_FALSE(model->CanConfirm()) << "mirrored and turned back";
  EXPECT_FALSE(model->HasUnsavedWork());
}

TEST_F(EditorSaving, Should_AskWhenAnotherProgramChangedTheFile) {
  const std::string file = WritePicture("plan.png");
  Open(file);
  model->TurnLeft();
  ChangeFile(file);
  const std::string theirs = ReadFile(file);
  view->answers = {no};
  model->Confirm();
  EXPECT_EQ(view->questions.at(0).kind, EditorQuestion::fileChanged);
  EXPECT_EQ(ReadFile(file), theirs);
  view->answers = {yes};
  model->Confirm();
  EXPECT_EQ(Picture::Open(file).Width(), 17) << "of the picture that was opened";
  EXPECT_THAT(view->closed, ElementsAre(true));
}

TEST_F(EditorSaving, Should_AskAgainWhenTheFileChangedAfterTheUserAgreed) {
  const std::string file = WritePicture("plan.png");
  Open(file);
  model->TurnLeft();
  view->saving = SavingChoice{file, {}, true};
  model->SaveAs();
  ChangeFile(file);
  model->TurnLeft();
  view->answers = {no};
  model->Confirm();
  EXPECT_EQ(view->questions.at(0).kind, EditorQuestion::fileChanged);
  EXPECT_EQ(Picture::Open(file).Width(), 40);
}

TEST_F(EditorSaving, Should_RefuseASourceThatWasWrittenOver) {
  const std::string file = WritePicture("plan.png");
  Open(file);
  model->TurnLeft();
  std::ofstream(file, std::ios::binary) << "something else";
  view->saving = SavingChoice{folder / "new.png", {}, false};
  model->SaveAs();
  ASSERT_EQ(view->told.size(), 1u);
  EXPECT_THAT(view->told[0], HasSubstr("changed after it was opened"));
  EXPECT_THAT(folder.Names(), ElementsAre("plan.png"));
  EXPECT_TRUE(model->HasUnsavedWork());
  EXPECT_EQ(model->TargetFile(), file);
}

TEST_F(EditorSaving, Should_AskForAFileThatAppearedMeanwhile) {
  const std::string file = WritePicture("plan.png");
  Open(file);
  model->TurnLeft();
  const std::string other = folder / "new.png";
  view->saving = SavingChoice{other, {}, false};
  // Between the look at the name and the save.
  view->onJob = [&](const std::string& title) {
    if (title == "Saving the picture") WritePicture("new.png", 5, 5);
  };
  view->answers = {no};
  model->SaveAs();
  EXPECT_EQ(view->questions.at(0).kind, EditorQuestion::replaceFile);
  EXPECT_EQ(Picture::Open(other).Width(), 5);
  view->onJob = {};
  view->answers = {yes};
  model->SaveAs();
  EXPECT_EQ(Picture::Open(other).Width(), 17);
}

TEST_F(EditorSaving, Should_WriteThroughALinkAndUnderOddNames) {
  const std::string file = WritePicture("plan.png");
  std::filesystem::create_symlink("plan.png", folder / "link.png");
  Open(folder / "link.png");
  model->TurnLeft();
  view->answers = {yes};
  model->Confirm();
  EXPECT_TRUE(std::filesystem::is_symlink(folder / "link.png"));
  EXPECT_EQ(Picture::Open(file).Width(), 17);

  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::rename(file, folder / "-plan.png");
  std::filesystem::current_path(folder.Path());
  Renew();
  Open("-plan.png");
  std::filesystem::current_path(before);
  EXPECT_EQ(model->TargetFile(), folder / "-plan.png");
  model->TurnLeft();
  view->answers = {yes};
  model->Confirm();
  EXPECT_EQ(Picture::Open(folder / "-plan.png").Width(), 23);
}

TEST_F(EditorSaving, Should_SuggestANameForKindsThatCannotBeWritten) {
  const std::string file = folder.Write("anim.gif", test::PlainGif(12, 8).Bytes());
  const std::string before = ReadFile(file);
  Open(file);
  EXPECT_EQ(model->TargetFile(), folder / "anim.png");
  EXPECT_THAT(model->TargetNote(), HasSubstr("gif"));
  EXPECT_THAT(view->told, IsEmpty());
  EXPECT_TRUE(model->CanConfirm());
  EXPECT_FALSE(model->HasUnsavedWork());
  view->saving = SavingChoice{file, {}, true};
  model->SaveAs();
  EXPECT_EQ(view->told.size(), 1u) << "never over the file that is edited";
  EXPECT_EQ(ReadFile(file), before);
  model->Confirm();
  EXPECT_THAT(view->closed, ElementsAre(true));
  EXPECT_EQ(Picture::Open(folder / "anim.png").Width(), 12);
  EXPECT_EQ(ReadFile(file), before);
}

TEST_F(EditorSaving, Should_NeverReplaceASourceThatCannotBeWrittenAgain) {
  const std::vector<uint8_t> webp = test::LosslessWebp(test::GradientRaster(pf24bit, 12, 8));
  const std::string bytes(webp.begin(), webp.end());
  // A writable ending, and a link with one.
  const std::string misnamed = folder.Write("photo.png", bytes);
  const std::string real = folder.Write("real.webp", bytes);
  std::filesystem::create_symlink("real.webp", folder / "real.png");
  for (const std::string& file : {misnamed, real, folder / "real.png"}) {
    SCOPED_TRACE(file);
    const std::string free =
        file == misnamed ? folder / "photo-2.png" : std::string(folder / "real-2.png");
    Renew();
    Open(file);
    EXPECT_EQ(model->TargetFile(), free);
    EXPECT_THAT(model->TargetNote(), HasSubstr(std::filesystem::path(free).filename().string()));
    view->settings = RecipeSave{};
    view->settings->pngLevel = 9;
    model->Settings();
    model->TurnLeft();
    model->Confirm();
    EXPECT_THAT(view->closed, ElementsAre(true));
    EXPECT_EQ(Picture::Open(free).Width(), 8);
    EXPECT_EQ(ReadFile(file), bytes);
    std::filesystem::remove(free);
  }
  EXPECT_TRUE(std::filesystem::is_symlink(folder / "real.png"));
}

TEST_F(EditorSaving, Should_LookAtTheSourceOnceMoreWhenItSaves) {
  const std::string file = folder.Write("anim.gif", test::PlainGif(12, 8).Bytes());
  const std::string before = ReadFile(file);
  Open(file);
  model->TurnLeft();
  // The name that was free leads to the source by the time of OK.
  std::filesystem::create_symlink("anim.gif", folder / "anim.png");
  model->Confirm();
  ASSERT_EQ(view->told.size(), 1u);
  EXPECT_THAT(view->told[0], HasSubstr("anim.png is the file that is edited"));
  EXPECT_EQ(view->savingStarts.size(), 1u) << "OK lets the user choose another name";
  EXPECT_THAT(view->questions, IsEmpty());
  EXPECT_THAT(view->closed, IsEmpty());
  EXPECT_EQ(ReadFile(file), before);
}

TEST_F(EditorSaving, Should_SuggestTheNameThatTheWindowOfSavingSuggests) {
  std::ofstream(folder / "anim.png") << "another file";
  Open(folder.Write("anim.gif", test::PlainGif(12, 8).Bytes()));
  EXPECT_EQ(model->TargetFile(), folder / "anim-2.png");
  Renew();
  Open(folder.Write("plain", test::PlainGif(12, 8).Bytes()));
  EXPECT_EQ(model->TargetFile(), folder / "plain.png");
  Renew();
  const std::string placed = folder.Write("map.gif", test::PlainGif(12, 8).Bytes());
  std::ofstream(folder / "map.gfw") << "2\n0\n0\n-2\n1001\n1999\n";
  Open(placed);
  EXPECT_EQ(model->TargetFile(), folder / "map.tif") << "PNG files hold no position";
}

TEST_F(EditorSaving, Should_KeepTheKindWhereTheExtensionSaysAnotherOne) {
  const std::string file = WritePicture("plan.png");
  std::filesystem::rename(file, folder / "plan.jpg");
  Open(folder / "plan.jpg");
  model->TurnLeft();
  view->answers = {yes};
  model->Confirm();
  EXPECT_EQ(Picture::Open(folder / "plan.jpg").SourceType(), PictureType::png);
}

TEST_F(EditorSaving, Should_TakeSettingsAsWork) {
  const std::string file = WritePhoto("photo.jpg", 1);
  Open(file);
  view->settings = RecipeSave{};
  model->Settings();
  EXPECT_FALSE(model->CanConfirm()) << "the same settings";
  view->settings->quality = 30;
  model->Settings();
  EXPECT_TRUE(model->CanConfirm());
  EXPECT_TRUE(model->HasUnsavedWork());
  const std::string source = folder / "source.jpg";
  std::filesystem::copy_file(file, source);
  view->answers = {yes};
  model->Confirm();
  EXPECT_EQ(ReadFile(file), Replayed(source, model->ToRecipe(), folder / "replayed.jpg"));
}

/// What the window of the settings answers if nothing is changed in it.
RecipeSave UnchangedSettings(const EditorModel& model) {
  test::RecordingSavingView window;
  SavingModel settings(window, model.Result(), {model.TargetFile(), model.Saving(), false},
                       SavingScope::settings);
  settings.Confirm();
  EXPECT_EQ(window.closed, true);
  return settings.Choice().save;
}

TEST_F(EditorSaving, Should_NotTakeUnchangedSettingsAsWork) {
  const std::string renamed = folder / "renamed.jpg";
  std::filesystem::rename(WritePicture("plan.png"), renamed);
  for (const std::string& file : {folder.Write("anim.gif", test::PlainGif(12, 8).Bytes()), renamed,
                                  WritePicture("own.tif"), WritePhoto("photo.jpeg", 6)}) {
    SCOPED_TRACE(file);
    Renew();
    Open(file);
    view->settings = UnchangedSettings(*model);
    model->Settings();
    EXPECT_FALSE(model->HasUnsavedWork());
    EXPECT_TRUE(model->CancelOrClose());
    EXPECT_THAT(view->questions, IsEmpty());
  }
}

TEST_F(EditorSaving, Should_TellTheHostWhatWasWritten) {
  std::vector<std::string> saved;
  options.onSaved = [&](const std::string& file, const Recipe& recipe, const Report& report) {
    saved.push_back(file);
    EXPECT_EQ(recipe.steps.size(), 1u);
    EXPECT_EQ(report.type, PictureType::png);
    EXPECT_THAT(recipe.madeWith, HasSubstr("rasterkit 0."));
  };
  Renew();
  Open(WritePicture("plan.png"));
  model->TurnLeft();
  view->answers = {yes};
  model->Confirm();
  EXPECT_THAT(saved, ElementsAre(folder / "plan.png"));
}

TEST_F(EditorSaving, Should_TellTheHostWhatWasWrittenWhereTheDiskMayForget) {
  std::vector<Report> reports;
  options.onSaved = [&](const std::string&, const Recipe&, const Report& report) {
    reports.push_back(report);
  };
  Renew();
  const std::string file = folder / "scans.tif", copy = folder / "copy.tif";
  Document document;
  for (int i = 0; i < 2; ++i) {
    document.Append(
        Picture::Of(std::make_unique<TBitmap>(test::GradientRaster(pf24bit, 20 + i, 10))));
  }
  document.Save(file);
  Open(file);
  model->TurnLeft();
  {
    const test::CallsGuard guard;
    static detail::FileCalls base;
    static bool isThere;
    base = guard.Before();
    isThere = false;
    detail::Calls().renameAt = [](int place, const char* old, const char* name, unsigned flags) {
      isThere = isThere || std::string_view(name) == "copy.tif";
      return base.renameAt(place, old, name, flags);
    };
    detail::Calls().linkAt = [](int from, const char* old, int place, const char* name, int flags) {
      isThere = isThere || std::string_view(name) == "copy.tif";
      return base.linkAt(from, old, place, name, flags);
    };
    detail::Calls().syncAll = [](int handle) {
      if (!isThere) return base.syncAll(handle);
      errno = EIO;
      return -1;
    };
    view->saving = SavingChoice{copy, {}, false};
    model->SaveAs();
  }
  ASSERT_EQ(view->told.size(), 1u);
  EXPECT_THAT(view->told[0], HasSubstr("a power failure could undo that"));
  ASSERT_EQ(reports.size(), 1u);
  EXPECT_EQ(reports[0].type, PictureType::tiff);
  EXPECT_EQ(reports[0].width, 10);
  EXPECT_EQ(reports[0].height, 20);
  EXPECT_EQ(model->PagesFile(), copy);
  EXPECT_FALSE(model->HasUnsavedWork());
}

// Losing work.

TEST_F(EditorSaving, Should_CloseWithoutAQuestionWhenNothingIsLost) {
  Open(WritePicture("plan.png"));
  EXPECT_TRUE(model->CancelOrClose());
  EXPECT_THAT(view->closed, ElementsAre(false));
  EXPECT_TRUE(model->CancelOrClose()) << "closed already";
  EXPECT_THAT(view->closed, ElementsAre(false));
}

TEST_F(EditorSaving, Should_AskBeforeWorkIsLost) {
  const std::string file = WritePicture("plan.png");
  Open(file);
  model->TurnLeft();
  view->answers = {cancel};
  EXPECT_FALSE(model->CancelOrClose());
  EXPECT_EQ(view->questions.at(0).kind, EditorQuestion::loseWork);
  EXPECT_THAT(view->closed, IsEmpty());
  view->answers = {yes, no};
  EXPECT_FALSE(model->CancelOrClose()) << "the file is not to be replaced";
  EXPECT_THAT(view->closed, IsEmpty());
  view->answers = {yes, yes};
  EXPECT_TRUE(model->CancelOrClose());
  EXPECT_THAT(view->closed, ElementsAre(true));
  EXPECT_EQ(Picture::Open(file).Width(), 17);
}

TEST_F(EditorSaving, Should_DiscardWhenTheUserSaysSo) {
  const std::string file = WritePicture("plan.png");
  Open(file);
  model->TurnLeft();
  view->answers = {no};
  EXPECT_TRUE(model->CancelOrClose());
  EXPECT_THAT(view->closed, ElementsAre(false));
  EXPECT_EQ(Picture::Open(file).Width(), 23);
}

}  // namespace
}  // namespace rasterkit
