#include <QFileDialog>
#include <QLineEdit>
#include <QTest>
#include <filesystem>

#include <gtest/gtest.h>

#include <rasterkit/qt/files/folder_chooser.h>
#include <rasterkit/qt/host/qt_host.h>
#include <rasterkit/runtime/ports.h>

#include "tests/support/forms/form_events.h"
#include "tests/support/temp_folder.h"

namespace rasterkit {
namespace {

class FolderChooserTest : public testing::Test {
 protected:
  FolderChooserTest() { std::filesystem::create_directory(folder.Path() / "maps"); }

  /// Opens the chooser, notes where it starts, types a folder and confirms.
  bool Choose(const char* typed) {
    test::WhenModal([&](QWidget& window) {
      auto& chooser = dynamic_cast<QFileDialog&>(window);
      title = chooser.windowTitle();
      start = chooser.directory().path().toStdString();
      if (typed == nullptr) return;
      auto* name = chooser.findChild<QLineEdit*>("fileNameEdit");
      name->clear();
      QTest::keyClicks(name, typed);
      QTest::keyClick(&window, Qt::Key_Return);
    });
    return ChooseFolder(directory, "Which folder?", 37);
  }

  test::TempFolder folder;
  const std::string place = folder.Path().string();
  std::string directory = place, start;
  QString title;
};

TEST_F(FolderChooserTest, Choice_Should_BeReturnedAbsolute) {
  EXPECT_TRUE(Choose("maps"));
  EXPECT_EQ(title, "Which folder?");
  EXPECT_EQ(start, place);
  EXPECT_EQ(directory, place + "/maps");
}

TEST_F(FolderChooserTest, Canceling_Should_ChangeNothing) {
  EXPECT_FALSE(Choose(nullptr));
  EXPECT_EQ(directory, place);
}

TEST_F(FolderChooserTest, Start_Should_BeTheNearestFolderThatExists) {
  directory = place + "/maps/no/such/";
  EXPECT_FALSE(Choose(nullptr));
  EXPECT_EQ(start, place + "/maps");
  EXPECT_EQ(directory, place + "/maps/no/such/");
  directory.clear();
  EXPECT_FALSE(Choose(nullptr));
  EXPECT_EQ(start, std::filesystem::current_path().string());
}

TEST_F(FolderChooserTest, Host_Should_FillThePorts) {
  {
    const QtHost host;
    EXPECT_TRUE(HostPorts().folderChooser);
    EXPECT_TRUE(HostPorts().confirmation);
  }
  EXPECT_FALSE(HostPorts().folderChooser);
  EXPECT_FALSE(HostPorts().confirmation);
}

}  // namespace
}  // namespace rasterkit
