// Invalid names and folders: a message, or their obvious meaning.

#include <gmock/gmock.h>

#include "tests/dialogs/savedlgext/save_model_fixture.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class BadNamesTest : public SaveModelTest {
 protected:
  /// "Save" leaves the window open and says this.
  void ExpectRefused(const std::string& name, const std::string& message) {
    messages.clear();
    EXPECT_FALSE(Save(name)) << name;
    EXPECT_THAT(messages, ElementsAre(message));
    EXPECT_THAT(questions, IsEmpty());
  }
  void ExpectSaved(const std::string& name, const std::string& file) {
    EXPECT_TRUE(Save(name)) << name;
    EXPECT_THAT(messages, IsEmpty());
    EXPECT_EQ(model.GetFileName(), file);
  }
};

// A path in the name field

TEST_F(BadNamesTest, AFolderAsName_Should_BeEntered) {
  EXPECT_FALSE(Save("maps"));
  EXPECT_EQ(view.directory, In("maps/"));
  EXPECT_EQ(view.path, In("maps"));
  EXPECT_EQ(view.name, "");
  EXPECT_THAT(messages, IsEmpty());
  EXPECT_FALSE(Save(".."));
  EXPECT_EQ(view.directory, In(""));
  EXPECT_FALSE(Save("/"));
  EXPECT_EQ(view.directory, "/");
}

TEST_F(BadNamesTest, AFolderSelectedInTheList_Should_BeEnteredAndGiveTheTypedNameBack) {
  model.EditFilenameChange("plan");
  model.FileListViewSelect("maps", true);
  model.OKButtonClick();
  EXPECT_EQ(view.closings, 0);
  EXPECT_EQ(view.directory, In("maps/"));
  EXPECT_EQ(view.name, "plan");
  model.OKButtonClick();
  EXPECT_EQ(view.closings, 1);
  EXPECT_EQ(model.GetFileName(), In("maps/plan.png"));
}

TEST_F(BadNamesTest, AnAbsolutePath_Should_BeGoneToAndKeepItsName) {
  ExpectSaved(In("maps/plan.bmp"), In("maps/plan.png"));
  EXPECT_EQ(view.name, "plan.bmp");
  EXPECT_EQ(view.directory, In("maps/"));
}

TEST_F(BadNamesTest, ARelativePath_Should_StartAtTheListedFolder) {
  ExpectSaved("maps/plan", In("maps/plan.png"));
  ExpectSaved("../plan", In("plan.png"));
  ExpectSaved("./maps/../maps//plan", In("maps/plan.png"));
}

TEST_F(BadNamesTest, Backslashes_Should_SeparateFoldersAsWell) {
  ExpectSaved("maps\\plan.bmp", In("maps/plan.png"));
  EXPECT_FALSE(Save("..\\"));
  EXPECT_EQ(view.directory, In(""));
}

TEST_F(BadNamesTest, ATilde_Should_BeTheUsersOwnFolder) {
  const std::string before = getenv("HOME") == nullptr ? "/" : getenv("HOME");
  setenv("HOME", In("maps").c_str(), 1);
  ExpectSaved("~/plan", In("maps/plan.png"));
  model.SetInitialDir(In(""));
  EXPECT_FALSE(Save("~"));
  EXPECT_EQ(view.directory, In("maps/"));
  ExpectSaved("~plan", In("maps/~plan.png"));
  setenv("HOME", before.c_str(), 1);
}

TEST_F(BadNamesTest, APathToAnExistingFile_Should_BeAskedAbout) {
  folder.Write("maps/old.png", "picture");
  EXPECT_FALSE(Save("maps/old"));
  EXPECT_THAT(questions,
              ElementsAre("File already exists:\r\"" + In("maps/old.png") + "\"\rOverwrite?"));
}

TEST_F(BadNamesTest, AMissingFolderInTheName_Should_BeRefused) {
  ExpectRefused("missing/plan.png", "There is no folder missing/.");
  ExpectRefused("missing/", "There is no folder missing/.");
  ExpectRefused("/no/such/plan", "There is no folder /no/such/.");
  // A file is not a folder.
  ExpectRefused("old.png/plan", "There is no folder old.png/.");
  EXPECT_EQ(model.GetInitialDir(), In(""));
}

// The path field

TEST_F(BadNamesTest, EnterInThePath_Should_ShowTheFolder) {
  model.EditPathChange(In("maps"));
  model.EditPathEnter();
  EXPECT_EQ(view.directory, In("maps/"));
  model.EditPathChange("..");
  model.EditPathEnter();
  EXPECT_EQ(view.directory, In(""));
  EXPECT_THAT(messages, IsEmpty());
}

TEST_F(BadNamesTest, EnterInThePath_Should_BeRefused_When_ThereIsNoSuchFolder) {
  model.EditPathChange("/no/such/folder");
  model.EditPathEnter();
  EXPECT_THAT(messages, ElementsAre("There is no folder /no/such/folder."));
  EXPECT_EQ(view.directory, folder.Path().string() + "/");
}

TEST_F(BadNamesTest, LeavingThePath_Should_ShowTheFolderAndSayNothing) {
  model.EditPathChange("maps");
  model.EditPathExit();
  EXPECT_EQ(view.directory, In("maps/"));
  model.EditPathChange("/no/such/folder");
  model.EditPathExit();
  EXPECT_EQ(view.directory, In("maps/"));
  EXPECT_THAT(messages, IsEmpty());
}

TEST_F(BadNamesTest, Save_Should_GoToTheTypedPathFirst) {
  model.EditPathChange("maps");
  ExpectSaved("plan", In("maps/plan.png"));
}

TEST_F(BadNamesTest, Save_Should_BeRefused_When_TheTypedPathIsMissing) {
  model.EditPathChange("/no/such/folder");
  ExpectRefused("plan", "There is no folder /no/such/folder.");
}

TEST_F(BadNamesTest, Save_Should_UseTheListedFolder_When_ThePathWasEmptied) {
  model.EditPathChange("");
  ExpectSaved("plan", In("plan.png"));
}

TEST_F(BadNamesTest, Save_Should_TakeTheTypedPath_When_AllIsAccepted) {
  model.AcceptWithoutChecks = true;
  model.EditPathChange("/no/such/folder");
  ExpectSaved("plan", "/no/such/folder/plan.png");
  model.SetInitialDir(In(""));
  ExpectSaved(In("maps/plan"), In("maps/plan.png"));
}

// The folder itself

TEST_F(BadNamesTest, AFolderThatVanished_Should_BeRefused) {
  model.SetInitialDir(In("maps"));
  std::filesystem::remove(folder.Path() / "maps");
  ExpectRefused("plan", "There is no folder " + In("maps/") + ".");
}

TEST_F(BadNamesTest, AFolderThatNeverWas_Should_BeRefused) {
  model.SetInitialDir("/no/such");
  ExpectRefused("plan", "There is no folder /no/such/.");
}

// The name

TEST_F(BadNamesTest, ATargetThatIsAFolder_Should_BeRefused) {
  std::filesystem::create_directory(folder.Path() / "plan.png");
  ExpectRefused("plan.bmp", "plan.png is a folder.");
  ExpectRefused("plan", "plan.png is a folder.");
}

TEST_F(BadNamesTest, ReservedNames_Should_BeRefused) {
  for (const char* name : {"CON", "con.bmp", "Nul.x", "aux", "PRN", "com1.png", "LPT9", "con .bmp"})
    EXPECT_FALSE(Save(name)) << name;
  ExpectRefused("CON", "The name CON.png is reserved by the system.");
  for (const char* name : {"console", "com0x", "com", "lpt10", "nully", "aux1"})
    EXPECT_TRUE(Save(name)) << name;
}

TEST_F(BadNamesTest, NamesThatAreTooLong_Should_BeRefused) {
  EXPECT_TRUE(Save(std::string(251, 'x')));
  EXPECT_FALSE(Save(std::string(252, 'x')));
  const std::string shown = std::string(40, 'x') + "…" + std::string(36, 'x') + ".png";
  ExpectRefused(std::string(252, 'x'), "The name " + shown + " is too long.");
  // The limit counts bytes.
  std::string umlauts;
  for (int i = 0; i < 126; ++i) umlauts += "ü";
  EXPECT_FALSE(Save(umlauts));
  EXPECT_TRUE(Save(umlauts.substr(2)));
}

TEST_F(BadNamesTest, APathThatIsTooLong_Should_BeRefused) {
  std::string path = "plan";
  for (int i = 0; i < 2500; ++i) path.insert(0, "x/");
  EXPECT_FALSE(Save(path));
  ASSERT_EQ(messages.size(), 1u);
  EXPECT_LT(messages[0].size(), 150u);
}

TEST_F(BadNamesTest, CharactersThatNoFileHas_Should_BeRefused) {
  ExpectRefused("*.bmp", "The name *.png has characters that a file's name cannot have.");
  for (const char* name : {"plan?", "a\tb", "a\nb", "a\x7f", "a\x01"}) EXPECT_FALSE(Save(name));
}

TEST_F(BadNamesTest, AnExtensionWithoutAName_Should_BeRefused) {
  ExpectRefused(".bmp", ".png is an extension without a name.");
  ExpectRefused("   ", "   .png is an extension without a name.");
  model.DefaultExt.clear();
  ExpectRefused(".hidden", ".hidden is an extension without a name.");
}

TEST_F(BadNamesTest, NamesInAnyScript_Should_BeSaved) {
  for (const char* name :
       {"Lageplan Süd", "план", "地図", "خريطة", "🗺", "a'b\"c", "%s %d", "x&y"})
    ExpectSaved(name, In(std::string(name) + ".png"));
}

TEST_F(BadNamesTest, AMessage_Should_NotTakePartsOfANameForPlaces) {
  std::filesystem::create_directory(folder.Path() / "100%s.png");
  ExpectRefused("100%s", "100%s.png is a folder.");
}

}  // namespace
}  // namespace rasterkit::test
