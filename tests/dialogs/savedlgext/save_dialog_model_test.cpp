#include <gmock/gmock.h>

#include <rasterkit/strings/strings.h>

#include "tests/dialogs/savedlgext/save_model_fixture.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using SaveDialogModelTest = SaveModelTest;

TEST(SaveDialogModelStart, State_Should_BeThatOfANewWindow) {
  RecordingSaveView view;
  const SaveDialogModel model(view, "/start");
  EXPECT_EQ(model.GetFilter(), "All files (*.*)|*.*");
  EXPECT_THAT(view.filters, ElementsAre("All files (*.*)"));
  EXPECT_EQ(view.mask, "*.*");
  EXPECT_EQ(model.GetFilterIndex(), 1);
  EXPECT_EQ(model.GetInitialDir(), "/start/");
  EXPECT_EQ(model.DefaultExt, "");
  EXPECT_TRUE(model.ConfirmOverwrite);
  EXPECT_FALSE(model.AcceptWithoutChecks);
  EXPECT_FALSE(view.hasOptions);
  EXPECT_FALSE(model.OnDeleteKey);
  EXPECT_FALSE(model.OnShiftDeleteKey);
  EXPECT_FALSE(model.OnFilterChange);
  EXPECT_EQ(view.path, "");
}

// GetFileName

TEST_F(SaveDialogModelTest, GetFileName_Should_BeDirectoryAndNameWithTheDefaultExtension) {
  model.EditFilenameChange("plan.bmp");
  EXPECT_EQ(model.GetFileName(), In("plan.png"));
}

TEST_F(SaveDialogModelTest, GetFileName_Should_ReplaceTheLastExtensionOnly) {
  model.EditFilenameChange("plan.v2.tar.gz");
  EXPECT_EQ(model.GetFileName(), In("plan.v2.tar.png"));
  model.EditFilenameChange("plan.");
  EXPECT_EQ(model.GetFileName(), In("plan.png"));
  model.EditFilenameChange("Nordplan 1.5");
  EXPECT_EQ(model.GetFileName(), In("Nordplan 1.png"));
}

TEST_F(SaveDialogModelTest, GetFileName_Should_AppendTheExtension_When_TheNameHasNone) {
  model.EditFilenameChange("plan");
  EXPECT_EQ(model.GetFileName(), In("plan.png"));
}

TEST_F(SaveDialogModelTest, GetFileName_Should_CutTheExtensionOff_When_TheDefaultOneIsEmpty) {
  model.DefaultExt.clear();
  model.EditFilenameChange("plan.bmp");
  EXPECT_EQ(model.GetFileName(), In("plan"));
}

TEST_F(SaveDialogModelTest, GetFileName_Should_BeTheExtensionAlone_When_NothingIsTyped) {
  EXPECT_EQ(model.GetFileName(), In(".png"));
}

// SetFileName, SetInitialDir

TEST(SaveDialogModelNames, SetFileName_Should_SetTheFolder_When_ThereIsNoneYet) {
  RecordingSaveView view;
  SaveDialogModel model(view, "/start");
  model.SetFileName("/maps/north/plan.bmp");
  EXPECT_EQ(view.name, "plan.bmp");
  EXPECT_EQ(view.path, "/maps/north/");
  EXPECT_EQ(view.directory, "/maps/north/");
  EXPECT_EQ(model.GetFileName(), "/maps/north/plan");
}

TEST(SaveDialogModelNames, SetFileName_Should_KeepTheFolder_When_ThereIsOne) {
  RecordingSaveView view;
  SaveDialogModel model(view, "/start");
  model.SetInitialDir("/maps");
  model.SetFileName("/other/plan.bmp");
  EXPECT_EQ(view.name, "plan.bmp");
  EXPECT_EQ(view.path, "/maps");
  EXPECT_EQ(model.GetInitialDir(), "/maps/");
}

TEST(SaveDialogModelNames, SetFileName_Should_LeaveTheFolder_When_TheNameHasNone) {
  RecordingSaveView view;
  SaveDialogModel model(view, "/start");
  model.SetFileName("plan.bmp");
  EXPECT_EQ(view.name, "plan.bmp");
  EXPECT_EQ(view.path, "");
  EXPECT_EQ(model.GetInitialDir(), "/start/");
}

TEST(SaveDialogModelNames, SetFileName_Should_SplitNamesOfEitherSystem) {
  RecordingSaveView view;
  SaveDialogModel model(view, "/start");
  model.SetFileName("C:\\maps\\plan.bmp");
  EXPECT_EQ(view.name, "plan.bmp");
  EXPECT_EQ(view.directory, "C:\\maps\\");
}

TEST(SaveDialogModelNames, SetInitialDir_Should_DoNothing_When_EmptyIsSet) {
  RecordingSaveView view;
  SaveDialogModel model(view, "/start");
  model.SetInitialDir("/maps");
  model.SetInitialDir("");
  EXPECT_EQ(model.GetInitialDir(), "/maps/");
  EXPECT_EQ(view.path, "/maps");
}

TEST(SaveDialogModelNames, SetInitialDir_Should_EndTheDirectoryWithOneSeparator) {
  RecordingSaveView view;
  SaveDialogModel model(view, "/start/");
  EXPECT_EQ(model.GetInitialDir(), "/start/");
  model.SetInitialDir("/maps/");
  EXPECT_EQ(model.GetInitialDir(), "/maps/");
  EXPECT_EQ(view.directory, "/maps/");
  EXPECT_EQ(view.path, "/maps/");
  model.SetInitialDir("/");
  EXPECT_EQ(model.GetInitialDir(), "/");
}

// Filters

constexpr const char* kFilter = "Bitmap (*.bmp)|*.bmp|TIFF|*.tif; *.tiff|PNG (*.png)|*.png";

TEST_F(SaveDialogModelTest, SetFilter_Should_ListTheEntriesAndUseTheFirstMask) {
  int changes = 0;
  model.OnFilterChange = [&] { ++changes; };
  model.SetFilter(kFilter);
  EXPECT_EQ(model.GetFilter(), kFilter);
  EXPECT_THAT(view.filters, ElementsAre("Bitmap (*.bmp)", "TIFF", "PNG (*.png)"));
  EXPECT_EQ(model.GetFilterIndex(), 1);
  EXPECT_EQ(view.mask, "*.bmp");
  EXPECT_EQ(changes, 0);
}

TEST_F(SaveDialogModelTest, SetFilter_Should_ChooseTheFirstEntry_When_ALaterOneWasChosen) {
  model.SetFilter(kFilter);
  model.SetFilterIndex(3);
  model.SetFilter("TIFF|*.tif");
  EXPECT_EQ(model.GetFilterIndex(), 1);
  EXPECT_EQ(view.mask, "*.tif");
}

TEST_F(SaveDialogModelTest, SetFilterIndex3_Should_SelectTheThirdEntryAndFireTheHandlerOnce) {
  model.SetFilter(kFilter);
  std::vector<std::string> masks;
  model.OnFilterChange = [&] { masks.push_back(view.mask); };
  model.SetFilterIndex(3);
  EXPECT_EQ(model.GetFilterIndex(), 3);
  EXPECT_EQ(view.filterPosition, 2);
  // The list has its mask before the handler runs.
  EXPECT_THAT(masks, ElementsAre("*.png"));
}

TEST_F(SaveDialogModelTest, SetFilterIndex_Should_FireTheHandler_When_TheEntryIsChosenAlready) {
  model.SetFilter(kFilter);
  int changes = 0;
  model.OnFilterChange = [&] { ++changes; };
  model.SetFilterIndex(1);
  model.SetFilterIndex(1);
  EXPECT_EQ(changes, 2);
}

TEST_F(SaveDialogModelTest, SetFilterIndex_Should_SelectTheFirst_When_ThereIsNoSuchEntry) {
  model.SetFilter(kFilter);
  for (const int index : {0, -1, 4, 1000}) {
    model.SetFilterIndex(3);
    model.SetFilterIndex(index);
    EXPECT_EQ(model.GetFilterIndex(), 1);
    EXPECT_EQ(view.mask, "*.bmp");
  }
}

TEST_F(SaveDialogModelTest, FilterComboBoxChange_Should_SetTheMaskThenCallTheHandler) {
  model.SetFilter(kFilter);
  int changes = 0;
  model.OnFilterChange = [&] {
    ++changes;
    model.DefaultExt = ".tif";
  };
  model.FilterComboBoxChange(1);
  EXPECT_EQ(view.mask, "*.tif;*.tiff");
  EXPECT_EQ(changes, 1);
  model.EditFilenameChange("plan.bmp");
  EXPECT_EQ(model.GetFileName(), In("plan.tif"));
}

TEST_F(SaveDialogModelTest, FilterChange_Should_BeSafe_When_NobodyHandlesIt) {
  model.SetFilter("");
  EXPECT_EQ(view.mask, "*.*");
  model.SetFilterIndex(1);
  EXPECT_THAT(view.filters, IsEmpty());
}

// Options, path selection, styles

TEST_F(SaveDialogModelTest, ButtonOptions_Should_BeVisibleExactlyWhenThereIsAHandler) {
  int clicks = 0;
  model.SetOnOptionsClick([&] { ++clicks; });
  EXPECT_TRUE(view.hasOptions);
  model.ButtonOptionsClick();
  EXPECT_EQ(clicks, 1);
  model.SetOnOptionsClick(nullptr);
  EXPECT_FALSE(view.hasOptions);
  model.ButtonOptionsClick();
  EXPECT_EQ(clicks, 1);
}

TEST_F(SaveDialogModelTest, SetSelPathEnabled_Should_ShowAndHideThePathSelection) {
  model.SetSelPathEnabled(false);
  EXPECT_FALSE(view.hasSelPath);
  model.SetSelPathEnabled(true);
  EXPECT_TRUE(view.hasSelPath);
}

TEST_F(SaveDialogModelTest, SpeedButtons_Should_SwitchTheStyle) {
  model.SBListClick();
  EXPECT_FALSE(view.isReport);
  model.SBDetailsClick();
  EXPECT_TRUE(view.isReport);
}

// The list

TEST_F(SaveDialogModelTest, SelectingAnEntry_Should_CopyItsName) {
  model.FileListViewSelect("old.png", false);
  EXPECT_EQ(view.name, "old.png");
  EXPECT_EQ(model.GetFileName(), In("old.png"));
  model.FileListViewSelect("maps", true);
  EXPECT_EQ(view.name, "maps");
}

TEST_F(SaveDialogModelTest, DoubleClickOnAFile_Should_ActAsSave) {
  answer = true;
  model.FileListViewSelect("old.png", false);
  model.FileListViewDblClick();
  EXPECT_EQ(questions.size(), 1u);
  EXPECT_EQ(view.closings, 1);
}

TEST_F(SaveDialogModelTest, EnteringAFolder_Should_ShowItAndGiveTheTypedNameBack) {
  model.EditFilenameChange("plan");
  model.FileListViewSelect("maps", true);
  model.FileListViewSelect("maps", true);
  model.FileListViewEnter(In("maps/"));
  EXPECT_EQ(view.path, In("maps/"));
  EXPECT_EQ(view.name, "plan");
  EXPECT_EQ(model.GetFileName(), In("maps/plan.png"));
}

TEST_F(SaveDialogModelTest, EnteringAFolder_Should_KeepWhatWasTypedAfterItWasSelected) {
  model.EditFilenameChange("plan");
  model.FileListViewSelect("maps", true);
  model.EditFilenameChange("other");
  model.FileListViewEnter(In("maps/"));
  EXPECT_EQ(model.GetFileName(), In("maps/other.png"));
}

TEST_F(SaveDialogModelTest, Delete_Should_CallItsHandlerThenChangeTheFilter) {
  std::vector<std::string> calls;
  model.OnDeleteKey = [&] { calls.push_back("delete"); };
  model.OnShiftDeleteKey = [&] { calls.push_back("shift"); };
  model.OnFilterChange = [&] { calls.push_back("filter"); };
  const int masks = view.masks;
  model.FileListViewDelete(false);
  EXPECT_THAT(calls, ElementsAre("delete", "filter"));
  model.FileListViewDelete(true);
  EXPECT_THAT(calls, ElementsAre("delete", "filter", "shift", "filter"));
  EXPECT_EQ(view.masks, masks + 2);
}

TEST_F(SaveDialogModelTest, Delete_Should_DoNothing_When_NobodyHandlesIt) {
  int changes = 0;
  model.OnFilterChange = [&] { ++changes; };
  const int masks = view.masks;
  model.FileListViewDelete(false);
  model.FileListViewDelete(true);
  EXPECT_EQ(changes, 0);
  EXPECT_EQ(view.masks, masks);
}

// The folder chooser

TEST_F(SaveDialogModelTest, ButtonPath_Should_OpenTheChooserWithItsPromptAndOptions) {
  std::string start, prompt;
  int options = 0;
  HostPorts().folderChooser = [&](std::string& directory, const std::string& text, int bits) {
    start = directory;
    prompt = text;
    options = bits;
    directory = In("maps");
    return true;
  };
  model.EditPathChange("/typed");
  model.ButtonPathClick();
  EXPECT_EQ(start, "/typed");
  EXPECT_EQ(prompt, "File \"%s\" already exists - overwrite?");
  EXPECT_EQ(options, 37);
  EXPECT_EQ(view.path, In("maps"));
  EXPECT_EQ(model.GetInitialDir(), In("maps/"));
}

TEST_F(SaveDialogModelTest, ButtonPath_Should_ChangeNothing_When_TheChooserIsCanceled) {
  HostPorts().folderChooser = [&](std::string& directory, const std::string&, int) {
    directory = "/elsewhere";
    return false;
  };
  model.ButtonPathClick();
  EXPECT_EQ(model.GetInitialDir(), In(""));
  HostPorts().folderChooser = nullptr;
  model.ButtonPathClick();
  EXPECT_EQ(model.GetInitialDir(), In(""));
}

// Save

TEST_F(SaveDialogModelTest, Save_Should_CloseWithoutAQuestion_When_TheFileDoesNotExist) {
  EXPECT_TRUE(Save("plan.bmp"));
  EXPECT_THAT(questions, IsEmpty());
  EXPECT_THAT(messages, IsEmpty());
}

TEST_F(SaveDialogModelTest, Save_Should_DoNothing_When_TheNameIsEmpty) {
  EXPECT_FALSE(Save(""));
  EXPECT_THAT(questions, IsEmpty());
  EXPECT_THAT(messages, IsEmpty());
  model.ConfirmOverwrite = false;
  EXPECT_FALSE(Save(""));
  EXPECT_EQ(view.path, folder.Path().string());
  model.EditPathChange("/no/such/folder");
  EXPECT_FALSE(Save(""));
  EXPECT_THAT(messages, IsEmpty());
}

TEST_F(SaveDialogModelTest, Save_Should_AskAboutTheFileThatWillBeWritten) {
  EXPECT_FALSE(Save("old.bmp"));
  EXPECT_THAT(questions,
              ElementsAre("File already exists:\r\"" + In("old.png") + "\"\rOverwrite?"));
  answer = true;
  EXPECT_TRUE(Save("old.bmp"));
  EXPECT_EQ(questions.size(), 2u);
}

TEST_F(SaveDialogModelTest, Save_Should_CloseWithoutAQuestion_When_OverwritingIsNotConfirmed) {
  model.ConfirmOverwrite = false;
  EXPECT_TRUE(Save("old.png"));
  EXPECT_THAT(questions, IsEmpty());
}

TEST_F(SaveDialogModelTest, Save_Should_CloseEvenWithAnEmptyName_When_AllIsAccepted) {
  model.AcceptWithoutChecks = true;
  EXPECT_TRUE(Save(""));
  EXPECT_THAT(messages, IsEmpty());
}

TEST_F(SaveDialogModelTest, Save_Should_AskNothing_When_AllIsAccepted) {
  model.AcceptWithoutChecks = true;
  for (const char* name : {"old.png", "maps", "CON", "a*", ".png", "missing/plan"}) {
    EXPECT_TRUE(Save(name)) << name;
  }
  EXPECT_TRUE(Save(std::string(300, 'x')));
  model.SetInitialDir(In("missing"));
  EXPECT_TRUE(Save("plan"));
  EXPECT_THAT(questions, IsEmpty());
  EXPECT_THAT(messages, IsEmpty());
}

TEST_F(SaveDialogModelTest, Texts_Should_BeTheTranslators) {
  SetTranslator([](std::string_view key) {
    if (key == rsSaveFileExists) return std::string("Da ist schon %s");
    if (key == rsSaveFileExistsPrompt) return std::string("%s ersetzen?");
    return std::string();
  });
  std::string prompt;
  HostPorts().folderChooser = [&](std::string&, const std::string& text, int) {
    prompt = text;
    return false;
  };
  model.ButtonPathClick();
  Save("old");
  SetTranslator({});
  EXPECT_EQ(prompt, "%s ersetzen?");
  EXPECT_THAT(questions, ElementsAre("Da ist schon " + In("old.png")));
}

}  // namespace
}  // namespace rasterkit::test
