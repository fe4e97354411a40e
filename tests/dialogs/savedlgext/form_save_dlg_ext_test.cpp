#include <QLabel>
#include <QToolButton>

#include <rasterkit/runtime/ports.h>
#include <rasterkit/strings/strings.h>

#include "tests/dialogs/savedlgext/save_window_test.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;

class FormSaveDlgExtTest : public SaveWindowTest {
 protected:
  FormSaveDlgExtTest() {
    HostPorts().messageBox = [this](const std::string& text) { messages.push_back(text); };
  }
  ~FormSaveDlgExtTest() override { HostPorts().messageBox = nullptr; }

  QString LabelOf(const char* edit) const {
    for (const QLabel* label : form.findChildren<QLabel*>()) {
      if (label->buddy() == form.findChild<QWidget*>(edit)) return label->text().remove('&');
    }
    return {};
  }
  bool IsClosedWithOk() const { return !form.isVisible() && form.result() == QDialog::Accepted; }

  std::vector<std::string> messages;
};

TEST_F(FormSaveDlgExtTest, Controls_Should_HaveTheirNamesAndTexts) {
  EXPECT_EQ(form.windowTitle(), "Save Graphics");
  EXPECT_EQ(LabelOf("EditFilename"), "File name:");
  EXPECT_EQ(LabelOf("FilterComboBox"), "Filter: ");
  EXPECT_EQ(LabelOf("EditPath"), "Path:");
  EXPECT_EQ(Find<QPushButton>("OKButton").text().remove('&'), "Save");
  EXPECT_TRUE(Find<QPushButton>("OKButton").isDefault());
  EXPECT_EQ(Find<QPushButton>("CancelButton").text().remove('&'), "Cancel");
  EXPECT_EQ(Find<QPushButton>("ButtonOptions").text().remove('&'), "Options");
  EXPECT_EQ(Find<QToolButton>("ButtonPath").text(), "..");
  EXPECT_EQ(Find<QToolButton>("SBList").toolTip(), "List");
  EXPECT_EQ(Find<QToolButton>("SBDetails").toolTip(), "Detail");
}

TEST_F(FormSaveDlgExtTest, State_Should_BeThatOfANewWindow) {
  const TFormSaveDlgExt fresh;
  EXPECT_EQ(fresh.GetFilter(), "All files (*.*)|*.*");
  EXPECT_EQ(fresh.findChild<QComboBox*>("FilterComboBox")->currentText(), "All files (*.*)");
  EXPECT_EQ(fresh.findChild<TFileListView*>("FileListView")->ViewStyle(), vsReport);
  EXPECT_TRUE(fresh.GetConfirmOverwrite());
  EXPECT_FALSE(fresh.GetAcceptWithoutChecks());
  EXPECT_EQ(fresh.GetDefaultExt(), "");
  EXPECT_TRUE(fresh.findChild<QWidget*>("ButtonOptions")->isHidden());
  EXPECT_EQ(fresh.findChild<QLineEdit*>("EditPath")->text(), "");
}

TEST_F(FormSaveDlgExtTest, FirstFilter_Should_BeShownInTheUsersLanguageAndReadInTheSystems) {
  SetTranslator(
      [](std::string_view key) { return std::string(key == "All files" ? "Alle Dateien" : ""); });
  const TFormSaveDlgExt german;
  SetTranslator({});
  EXPECT_EQ(german.findChild<QComboBox*>("FilterComboBox")->currentText(), "Alle Dateien (*.*)");
  EXPECT_EQ(german.GetFilter(), "All files (*.*)|*.*");
}

TEST_F(FormSaveDlgExtTest, Show_Should_PutTheFocusOnTheNameAndFillTheList) {
  Show();
  EXPECT_EQ(form.focusWidget(), &Name());
  EXPECT_THAT(List().Names(), ElementsAre("maps", "a.bmp", "b.png"));
  EXPECT_EQ(Path().text().toStdString(), folder.Path().string());
}

TEST_F(FormSaveDlgExtTest, Show_Should_ShowTheCurrentFolder_When_NoneWasSet) {
  TFormSaveDlgExt fresh;
  fresh.SetFileName("plan.bmp");
  fresh.show();
  const std::string current = std::filesystem::current_path().string() + "/";
  EXPECT_EQ(fresh.findChild<QLineEdit*>("EditPath")->text().toStdString(), current);
  EXPECT_EQ(fresh.GetFileName(), current + "plan");
}

TEST_F(FormSaveDlgExtTest, TypedName_Should_BeReturnedWithTheDefaultExtension) {
  Show();
  Replace(Name(), "plan.bmp");
  EXPECT_EQ(form.GetFileName(), In("plan.png"));
}

TEST_F(FormSaveDlgExtTest, Save_Should_CloseWithOk) {
  Show();
  Replace(Name(), "plan");
  Click("OKButton");
  EXPECT_TRUE(IsClosedWithOk());
}

TEST_F(FormSaveDlgExtTest, Save_Should_DoNothing_When_TheNameIsEmpty) {
  Show();
  Click("OKButton");
  QTest::keyClick(&Name(), Qt::Key_Return);
  EXPECT_TRUE(form.isVisible());
  EXPECT_TRUE(messages.empty());
}

TEST_F(FormSaveDlgExtTest, Save_Should_Close_When_AllIsAcceptedAndTheNameIsEmpty) {
  form.SetAcceptWithoutChecks(true);
  Show();
  Click("OKButton");
  EXPECT_TRUE(IsClosedWithOk());
}

TEST_F(FormSaveDlgExtTest, Save_Should_Close_When_OverwritingIsNotConfirmed) {
  form.SetConfirmOverwrite(false);
  Show();
  Replace(Name(), "b");
  Click("OKButton");
  EXPECT_TRUE(IsClosedWithOk());
}

TEST_F(FormSaveDlgExtTest, Cancel_Should_CloseWithCancel) {
  Show();
  Replace(Name(), "plan");
  Click("CancelButton");
  EXPECT_FALSE(form.isVisible());
  EXPECT_EQ(form.result(), QDialog::Rejected);
}

// The list

TEST_F(FormSaveDlgExtTest, SelectingAnEntry_Should_CopyItsName) {
  Show();
  ClickRow("a.bmp");
  EXPECT_EQ(Name().text(), "a.bmp");
  EXPECT_EQ(form.GetFileName(), In("a.png"));
  QTest::keyClick(&Report(), Qt::Key_Down);
  EXPECT_EQ(Name().text(), "b.png");
  ClickRow("maps");
  EXPECT_EQ(Name().text(), "maps");
}

TEST_F(FormSaveDlgExtTest, SelectingTheSameEntryAgain_Should_CopyItsNameAgain) {
  Show();
  ClickRow("a.bmp");
  Replace(Name(), "other");
  ClickRow("a.bmp");
  EXPECT_EQ(Name().text(), "a.bmp");
}

TEST_F(FormSaveDlgExtTest, TheList_Should_LeaveTheTypedName_When_ItGetsTheFocusOrChanges) {
  Show();
  Replace(Name(), "plan");
  Report().setFocus();
  folder.Write("new.png", "x");
  ASSERT_TRUE(QTest::qWaitFor([&] { return List().Names().size() == 4; }, kPatience));
  EXPECT_EQ(Name().text(), "plan");
}

TEST_F(FormSaveDlgExtTest, DoubleClickOnAFile_Should_ActAsSave) {
  Show();
  DoubleClickRow("a.bmp");
  // "a.png" does not exist.
  EXPECT_TRUE(IsClosedWithOk());
  EXPECT_EQ(form.GetFileName(), In("a.png"));
}

TEST_F(FormSaveDlgExtTest, EnterOnAFile_Should_ActAsSave) {
  Show();
  ClickRow("a.bmp");
  QTest::keyClick(&Report(), Qt::Key_Return);
  EXPECT_TRUE(IsClosedWithOk());
}

TEST_F(FormSaveDlgExtTest, DoubleClickOnAFolder_Should_EnterItAndKeepTheTypedName) {
  Show();
  Replace(Name(), "plan");
  DoubleClickRow("maps");
  WaitForList();
  EXPECT_TRUE(form.isVisible());
  EXPECT_THAT(List().Names(), ElementsAre("c.png"));
  EXPECT_EQ(Path().text().toStdString(), In("maps/"));
  EXPECT_EQ(form.GetInitialDir(), In("maps/"));
  EXPECT_EQ(form.GetFileName(), In("maps/plan.png"));
}

TEST_F(FormSaveDlgExtTest, BackspaceAndTheButton_Should_GoOneFolderUp) {
  form.SetInitialDir(In("maps"));
  Show();
  QTest::keyClick(&Report(), Qt::Key_Backspace);
  WaitForList();
  EXPECT_EQ(form.GetInitialDir(), In(""));
  EXPECT_EQ(List().SelectedName(), "maps");
  EXPECT_EQ(Name().text(), "");
  Click("SBUp");
  EXPECT_EQ(form.GetInitialDir(), folder.Path().parent_path().string() + "/");
}

TEST_F(FormSaveDlgExtTest, SpeedButtons_Should_SwitchTheStyle) {
  Show();
  Click("SBList");
  EXPECT_EQ(List().ViewStyle(), vsList);
  EXPECT_TRUE(Find<QToolButton>("SBList").isChecked());
  EXPECT_FALSE(Find<QToolButton>("SBDetails").isChecked());
  Click("SBDetails");
  EXPECT_EQ(List().ViewStyle(), vsReport);
}

TEST_F(FormSaveDlgExtTest, Delete_Should_CallItsHandlersAndRefreshByAFilterChange) {
  std::vector<std::string> calls;
  form.OnFilterChange = [&] { calls.push_back("filter"); };
  Show();
  ClickRow("a.bmp");
  QTest::keyClick(&Report(), Qt::Key_Delete);
  EXPECT_TRUE(calls.empty());
  form.OnDeleteKey = [&] {
    calls.push_back("delete");
    std::filesystem::remove(folder.Path() / "a.bmp");
  };
  form.OnShiftDeleteKey = [&] { calls.push_back("shift"); };
  QTest::keyClick(&Report(), Qt::Key_Delete);
  EXPECT_THAT(calls, ElementsAre("delete", "filter"));
  QTest::keyClick(&Report(), Qt::Key_Delete, Qt::ShiftModifier);
  EXPECT_THAT(calls, ElementsAre("delete", "filter", "shift", "filter"));
  EXPECT_TRUE(QTest::qWaitFor([&] { return List().Names().size() == 2; }, kPatience));
  // Elsewhere the key deletes letters.
  Replace(Name(), "ab");
  QTest::keyClick(&Name(), Qt::Key_Home);
  QTest::keyClick(&Name(), Qt::Key_Delete);
  EXPECT_EQ(Name().text(), "b");
  EXPECT_EQ(calls.size(), 4u);
}

// Filter, options, path

TEST_F(FormSaveDlgExtTest, SetFilterIndex_Should_SelectTheEntryAndFireOnce) {
  int changes = 0;
  form.OnFilterChange = [&] { ++changes; };
  form.SetFilter("Bitmap|*.bmp|TIFF|*.tif|PNG|*.png");
  EXPECT_EQ(changes, 0);
  form.SetFilterIndex(3);
  EXPECT_EQ(changes, 1);
  EXPECT_EQ(form.GetFilterIndex(), 3);
  EXPECT_EQ(Filter().currentText(), "PNG");
  Show();
  EXPECT_THAT(List().Names(), ElementsAre("maps", "b.png"));
}

TEST_F(FormSaveDlgExtTest, ChoosingAFilter_Should_SetTheMaskAndFireOnce) {
  form.SetFilter("Bitmap|*.bmp|PNG|*.png");
  int changes = 0;
  form.OnFilterChange = [&] {
    ++changes;
    form.SetDefaultExt(form.GetFilterIndex() == 2 ? ".png" : ".bmp");
  };
  Show();
  EXPECT_THAT(List().Names(), ElementsAre("maps", "a.bmp"));
  Replace(Name(), "plan");
  QTest::keyClick(&Filter(), Qt::Key_Down);
  EXPECT_EQ(changes, 1);
  EXPECT_EQ(form.GetFilterIndex(), 2);
  EXPECT_THAT(List().Names(), ElementsAre("maps", "b.png"));
  EXPECT_EQ(form.GetFileName(), In("plan.png"));
}

TEST_F(FormSaveDlgExtTest, Options_Should_BeSeenExactlyWhenThereIsAHandler) {
  Show();
  QWidget& button = Find<QWidget>("ButtonOptions");
  EXPECT_FALSE(button.isVisible());
  int clicks = 0;
  form.SetOnOptionsClick([&] { ++clicks; });
  EXPECT_TRUE(button.isVisible());
  Click("ButtonOptions");
  EXPECT_EQ(clicks, 1);
  form.SetOptionsEnabled(false);
  Click("ButtonOptions");
  EXPECT_EQ(clicks, 1);
  form.SetOnOptionsClick(nullptr);
  EXPECT_FALSE(button.isVisible());
}

TEST_F(FormSaveDlgExtTest, SetSelPathEnabled_Should_ShowAndHideThePathSelection) {
  Show();
  form.SetSelPathEnabled(false);
  EXPECT_FALSE(Path().isVisible());
  EXPECT_FALSE(Find<QWidget>("ButtonPath").isVisible());
  form.SetSelPathEnabled(true);
  EXPECT_TRUE(Path().isVisible());
}

TEST_F(FormSaveDlgExtTest, EnterInThePath_Should_ShowTheFolderAndNotSave) {
  Show();
  Replace(Name(), "plan");
  Replace(Path(), In("maps"));
  QTest::keyClick(&Path(), Qt::Key_Return);
  EXPECT_TRUE(form.isVisible());
  EXPECT_EQ(form.GetFileName(), In("maps/plan.png"));
  Replace(Path(), "/no/such");
  QTest::keyClick(&Path(), Qt::Key_Enter, Qt::KeypadModifier);
  EXPECT_TRUE(form.isVisible());
  EXPECT_THAT(messages, ElementsAre("There is no folder /no/such."));
}

TEST_F(FormSaveDlgExtTest, LeavingThePath_Should_ShowTheFolder) {
  Show();
  form.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&form));
  Replace(Path(), In("maps"));
  Name().setFocus();
  EXPECT_EQ(form.GetInitialDir(), In("maps/"));
}

TEST_F(FormSaveDlgExtTest, ButtonPath_Should_RunTheFolderChooser) {
  HostPorts().folderChooser = [&](std::string& directory, const std::string&, int options) {
    EXPECT_EQ(directory, folder.Path().string());
    EXPECT_EQ(options, 37);
    directory = In("maps");
    return true;
  };
  Show();
  Click("ButtonPath");
  HostPorts().folderChooser = nullptr;
  EXPECT_EQ(form.GetInitialDir(), In("maps/"));
  EXPECT_EQ(Path().text().toStdString(), In("maps"));
}

TEST_F(FormSaveDlgExtTest, AnErrorInAHandler_Should_BeShownAndLeaveTheWindow) {
  form.SetOnOptionsClick([] { throw std::runtime_error("no options today"); });
  form.OnDeleteKey = [] { throw std::runtime_error("cannot be deleted"); };
  Show();
  Click("ButtonOptions");
  ClickRow("a.bmp");
  QTest::keyClick(&Report(), Qt::Key_Delete);
  EXPECT_THAT(messages, ElementsAre("no options today", "cannot be deleted"));
  EXPECT_TRUE(form.isVisible());
}

}  // namespace
}  // namespace rasterkit::test
