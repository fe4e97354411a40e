#include <ctime>
#include <map>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include <rasterkit/runtime/ports.h>

namespace rasterkit {
namespace {

class PortsTest : public testing::Test {
 protected:
  void TearDown() override { HostPorts() = Ports(); }
};

TEST_F(PortsTest, EmptyPorts_AnswerAsACanceledDialogAndShowNothing) {
  ShowMessage("never shown");
  PictureFileDialog dialog;
  dialog.FileName = "a.bmp";
  EXPECT_FALSE(ExecutePictureFileDialog(dialog));
  EXPECT_EQ(dialog.FileName, "a.bmp");
  EXPECT_FALSE(Confirm("Overwrite?"));
  std::string directory = "maps";
  EXPECT_FALSE(SelectDirectoryEx(directory, "Which folder?", 37));
  EXPECT_EQ(directory, "maps");
  EXPECT_EQ(GetSysColor(5), 0u);
  EXPECT_FALSE(HostPorts().pdfPageChooser);
  EXPECT_FALSE(HostPorts().messagePump);
  WriteSetting("Settings", "Left", "1");
  EXPECT_EQ(ReadSetting("Settings", "Left"), std::nullopt);
  ShowHelpTopic(1);
}

TEST_F(PortsTest, SelectDirectoryEx_KeepsTheFolder_WhenTheUserCancels) {
  bool isChosen = true;
  HostPorts().folderChooser = [&](std::string& directory, const std::string& prompt, int options) {
    EXPECT_EQ(prompt, "Which folder?");
    EXPECT_EQ(options, 37);
    directory += "/north";
    return isChosen;
  };
  std::string directory = "maps";
  EXPECT_TRUE(SelectDirectoryEx(directory, "Which folder?", 37));
  EXPECT_EQ(directory, "maps/north");
  isChosen = false;
  EXPECT_FALSE(SelectDirectoryEx(directory, "Which folder?", 37));
  EXPECT_EQ(directory, "maps/north");
}

TEST_F(PortsTest, MinuteOfDay_IsTheLocalClocksWhileThePortIsEmpty) {
  const auto minute = [] {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    return local.tm_hour * 60 + local.tm_min;
  };
  // The minute may turn between two readings, but not between all of them.
  int before = 0;
  int answer = 0;
  do {
    before = minute();
    answer = MinuteOfDay();
  } while (before != minute());
  EXPECT_EQ(answer, before);
}

TEST_F(PortsTest, FilledPorts_AreCalled) {
  std::string shown;
  HostPorts().messageBox = [&](const std::string& text) { shown = text; };
  HostPorts().pictureFileDialog = [](PictureFileDialog& dialog) {
    dialog.FileName = "chosen.png";
    return true;
  };
  HostPorts().systemColor = [](uint32_t index) { return index * 2; };
  HostPorts().minuteOfDay = [] { return 1439; };
  ShowMessage("hello");
  EXPECT_EQ(shown, "hello");
  PictureFileDialog dialog;
  EXPECT_TRUE(ExecutePictureFileDialog(dialog));
  EXPECT_EQ(dialog.FileName, "chosen.png");
  EXPECT_EQ(GetSysColor(21), 42u);
  EXPECT_EQ(MinuteOfDay(), 1439);
}

TEST_F(PortsTest, FilledSettingsAndHelp_AreCalled) {
  std::map<std::string, std::string> kept;
  HostPorts().writeSetting = [&](const std::string& section, const std::string& key,
                                 const std::string& value) { kept[section + "/" + key] = value; };
  HostPorts().readSetting = [&](const std::string& section, const std::string& key) {
    return std::optional(kept[section + "/" + key]);
  };
  WriteSetting("Settings", "Left", "-7");
  EXPECT_EQ(ReadSetting("Settings", "Left"), "-7");
  EXPECT_EQ(ReadSetting("Other", "Left"), "");
  int topic = 0;
  HostPorts().helpTopic = [&](int helpContext) { topic = helpContext; };
  ShowHelpTopic(570001);
  EXPECT_EQ(topic, 570001);
}

}  // namespace
}  // namespace rasterkit
