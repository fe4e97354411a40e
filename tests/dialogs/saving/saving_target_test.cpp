// Where a file is written, what is refused, and what is asked.

#include <filesystem>

#include <unistd.h>

#include "tests/dialogs/saving/saving_fixture.h"
#include "tests/support/child_process.h"

namespace rasterkit::test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

using SavingTarget = SavingTest;

TEST_F(SavingTarget, TheFolderOfTheNamedFile_Should_ComeFirst) {
  settings["Saving/Folder1"] = fs::temp_directory_path().string();
  EXPECT_EQ(OpenFile(Make("a.png")).Folder(), folder.Path().string());
}

TEST_F(SavingTarget, TheLastFolder_Should_BeUsedWithoutANamedOne) {
  settings["Saving/Folder1"] = folder.Path().string();
  const Picture picture = Picture::Open(Make("a.png"));
  EXPECT_EQ(Open(picture, {"b.png", {}, false}).File(), In("b.png"));
}

TEST_F(SavingTarget, ALastFolderThatIsGone_Should_BePassedOver) {
  settings["Saving/Folder1"] = In("gone");
  settings["Saving/Folder2"] = folder.Path().string();
  const Picture picture = Picture::Open(Make("a.png"));
  EXPECT_EQ(Open(picture, {"b.png", {}, false}).Folder(), folder.Path().string());
}

TEST_F(SavingTarget, TheFolder_Should_BeRememberedWhenConfirmed) {
  fs::create_directory(In("maps"));
  SavingModel& model = OpenFile(Make("a.png"));
  model.SetFolder(In("maps"));
  EXPECT_TRUE(settings.empty());
  model.Confirm();
  EXPECT_EQ(view.closed, true);
  EXPECT_EQ(settings["Saving/Folder1"], In("maps"));
  EXPECT_EQ(model.Choice().file, In("maps/a.png"));
}

TEST_F(SavingTarget, AnExistingFile_Should_BeAskedAboutOnce) {
  SavingModel& model = OpenFile(Make("a.png"));
  model.Confirm();
  EXPECT_EQ(view.closed, std::nullopt);
  ASSERT_EQ(view.questions.size(), 1U);
  EXPECT_THAT(view.questions[0], HasSubstr(In("a.png")));
  EXPECT_FALSE(model.Choice().mayReplace);
  view.answer = true;
  model.Confirm();
  EXPECT_EQ(view.closed, true);
  EXPECT_EQ(view.questions.size(), 2U);
  EXPECT_TRUE(model.Choice().mayReplace);
}

TEST_F(SavingTarget, ANewFile_Should_NotBeAskedAbout) {
  SavingModel& model = OpenFile(Make("a.png"));
  model.TypeName("b.png");
  model.Confirm();
  EXPECT_EQ(view.closed, true);
  EXPECT_TRUE(view.questions.empty());
  EXPECT_FALSE(model.Choice().mayReplace);
}

TEST_F(SavingTarget, WhatTheDesktopAskedAbout_Should_NotBeAskedAgain) {
  const std::string file = Make("a.png");
  SavingModel& model =
      Open(Picture::Open(file), {file, {}, true}, SavingScope::chosenName, ChosenName{file, true});
  model.Confirm();
  EXPECT_EQ(view.closed, true);
  EXPECT_TRUE(view.questions.empty());
  EXPECT_TRUE(model.Choice().mayReplace);
}

TEST_F(SavingTarget, AnEndingAddedAfterTheDesktopAsked_Should_BeAskedAbout) {
  const std::string file = Make("a.png");
  SavingModel& model = Open(Picture::Open(file), {file, {}, true}, SavingScope::chosenName,
                            ChosenName{In("a"), true});
  EXPECT_EQ(model.File(), file);
  EXPECT_FALSE(model.Choice().mayReplace);
  model.Confirm();
  EXPECT_EQ(view.questions.size(), 1U);
}

TEST_F(SavingTarget, AnotherKindAfterTheDesktopAsked_Should_BeAskedAbout) {
  const std::string file = Make("a.png");
  Make("a.bmp");
  SavingModel& model =
      Open(Picture::Open(file), {file, {}, true}, SavingScope::chosenName, ChosenName{file, true});
  ChooseType("BMP");
  model.Confirm();
  EXPECT_THAT(view.questions, ElementsAre(HasSubstr(In("a.bmp"))));
}

TEST_F(SavingTarget, AnotherNameOfTheDesktop_Should_BeTakenWithItsQuestion) {
  const std::string file = Make("a.png");
  SavingModel& model = Open(Picture::Open(file), {file, {}, true}, SavingScope::chosenName,
                            ChosenName{In("gone/a.png"), false});
  EXPECT_FALSE(model.CanSave());
  view.otherName = ChosenName{file, true};
  model.AskOtherName();
  EXPECT_TRUE(model.CanSave());
  model.Confirm();
  EXPECT_TRUE(view.questions.empty());
  EXPECT_EQ(model.Choice().file, file);
}

TEST_F(SavingTarget, AMissingFolder_Should_BeSaid) {
  const Picture picture = Picture::Open(Make("a.png"));
  const SavingModel& model = Open(picture, {In("gone/a.png"), {}, false});
  EXPECT_FALSE(model.CanSave());
  EXPECT_EQ(model.Fault(), "There is no folder " + In("gone") + ".");
}

TEST_F(SavingTarget, AFolderAsTarget_Should_BeSaid) {
  fs::create_directory(In("b.png"));
  SavingModel& model = OpenFile(Make("a.png"));
  model.TypeName("b.png");
  EXPECT_FALSE(model.CanSave());
  EXPECT_EQ(model.Fault(), "b.png is a folder.");
}

TEST_F(SavingTarget, AReadOnlyFolder_Should_BeSaid) {
  const std::string file = Make("a.png");
  fs::create_directory(In("locked"));
  using fs::perms;
  fs::permissions(folder.Path(), perms::all);
  fs::permissions(In("locked"),
                  perms::all & ~(perms::owner_write | perms::group_write | perms::others_write));
  // Root may write everywhere.
  const int code = RunInChild([&] {
    if (geteuid() == 0 && setuid(65534) != 0) return 77;
    const Picture picture = Picture::Open(file);
    const SavingModel& other = Open(picture, {In("locked/a.png"), {}, false});
    const std::string fault = "Files cannot be written into the folder " + In("locked") + ".";
    return !other.CanSave() && other.Fault() == fault ? 0 : 1;
  });
  fs::permissions(In("locked"), perms::all);
  EXPECT_EQ(code, 0);
}

TEST_F(SavingTarget, AProtectedFile_Should_BeSaid) {
  const std::string file = Make("a.png"), locked = Make("locked.png");
  fs::permissions(folder.Path(), fs::perms::all);
  fs::permissions(locked, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
  // Root may write everywhere.
  const int code = RunInChild([&] {
    if (geteuid() == 0 && setuid(65534) != 0) return 77;
    SavingModel& other = OpenFile(file);
    other.TypeName("locked.png");
    if (other.CanSave() || other.Fault() != "The file " + locked + " cannot be written.") return 1;
    other.TypeName("new.png");
    return other.CanSave() ? 0 : 2;
  });
  EXPECT_EQ(code, 0);
}

TEST_F(SavingTarget, NamesThatCannotBe_Should_BeSaid) {
  SavingModel& model = OpenFile(Make("a.png"));
  model.TypeName("");
  EXPECT_EQ(model.Fault(), "Type a name for the file.");
  model.TypeName(std::string(252, 'x'));
  EXPECT_THAT(model.Fault(), HasSubstr("too long"));
  model.TypeName(".png");
  EXPECT_THAT(model.Fault(), HasSubstr("without a name"));
  model.TypeName("a\nb");
  EXPECT_THAT(model.Fault(), HasSubstr("characters"));
  EXPECT_FALSE(model.CanSave());
  model.Confirm();
  EXPECT_EQ(view.closed, std::nullopt);
}

TEST_F(SavingTarget, AFolderThatGoesAway_Should_BeSaidInsteadOfClosing) {
  fs::create_directory(In("maps"));
  SavingModel& model = OpenFile(Make("a.png"));
  model.SetFolder(In("maps"));
  EXPECT_TRUE(model.CanSave());
  fs::remove(In("maps"));
  model.Confirm();
  EXPECT_EQ(view.closed, std::nullopt);
  EXPECT_THAT(model.Fault(), HasSubstr("no folder"));
}

TEST_F(SavingTarget, ATypedFolder_Should_BeOpened) {
  fs::create_directory(In("maps"));
  SavingModel& model = OpenFile(Make("a.png"));
  model.TypeName("maps");
  model.Confirm();
  EXPECT_EQ(view.closed, std::nullopt);
  EXPECT_EQ(model.Folder(), In("maps"));
}

TEST_F(SavingTarget, AFolderBeforeTheName_Should_Count) {
  fs::create_directory(In("maps"));
  SavingModel& model = OpenFile(Make("a.png"));
  model.TypeName("maps/../maps/b.png");
  EXPECT_EQ(model.File(), In("maps/b.png"));
  model.TypeName(In("c.bmp"));
  EXPECT_EQ(model.File(), In("c.bmp"));
}

TEST_F(SavingTarget, Links_Should_BeFollowedToTheirFolder) {
  fs::create_directory(In("maps"));
  Make("maps/real.png");
  fs::create_symlink("maps/real.png", In("link.png"));
  fs::create_symlink("gone/real.png", In("dangling.png"));
  fs::create_symlink("dangling2.png", In("circle.png"));
  fs::create_symlink("circle.png", In("dangling2.png"));
  SavingModel& model = OpenFile(In("link.png"));
  EXPECT_TRUE(model.CanSave());
  model.Confirm();
  EXPECT_EQ(view.questions.size(), 1U) << "the file behind the link is replaced";
  model.TypeName("dangling.png");
  EXPECT_THAT(model.Fault(), HasSubstr("no folder"));
}

TEST_F(SavingTarget, Settings_Should_LeaveTheFileAlone) {
  const std::string file = Make("a.png");
  SavingModel& model = OpenFile(file, SavingScope::settings);
  ChooseType("BMP");
  EXPECT_EQ(model.Type(), PictureType::png);
  model.Confirm();
  EXPECT_EQ(view.closed, true);
  EXPECT_TRUE(view.questions.empty());
  EXPECT_EQ(model.Choice().file, file);
}

}  // namespace
}  // namespace rasterkit::test
