#include <map>
#include <string>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/editpdfbitmap/resolution_setting.h>
#include <rasterkit/runtime/ports.h>

namespace rasterkit::test {
namespace {

class ResolutionSetting : public testing::Test {
 protected:
  ResolutionSetting() {
    HostPorts().readSetting = [this](const std::string& section, const std::string& key) {
      const auto found = settings.find(section + "/" + key);
      return found == settings.end() ? std::nullopt : std::optional(found->second);
    };
    HostPorts().writeSetting = [this](const std::string& section, const std::string& key,
                                      const std::string& value) {
      settings[section + "/" + key] = value;
    };
  }
  ~ResolutionSetting() override { HostPorts() = before_; }

  std::optional<int> Read(const std::string& text) {
    settings["Settings/FormEditPdfBmp.Resolution"] = text;
    return ReadResolution();
  }

  const Ports before_ = HostPorts();
  std::map<std::string, std::string> settings;
};

TEST_F(ResolutionSetting, Should_BeReadAsItWasWritten) {
  EXPECT_EQ(ReadResolution(), std::nullopt);
  WriteResolution(300);
  EXPECT_EQ(settings["Settings/FormEditPdfBmp.Resolution"], "300");
  EXPECT_EQ(ReadResolution(), 300);
}

TEST_F(ResolutionSetting, Should_BeNone_When_TheFileHoldsNoSensibleOne) {
  for (const char* text : {"", "much", "0", "-72", "10001", "99999999999", "72 dpi"})
    EXPECT_EQ(Read(text), std::nullopt) << text;
  EXPECT_EQ(Read("1"), 1);
  EXPECT_EQ(Read("10000"), 10000);
}

TEST_F(ResolutionSetting, Should_BeNone_When_ThePortsAreEmpty) {
  HostPorts().readSetting = nullptr;
  HostPorts().writeSetting = nullptr;
  WriteResolution(300);
  EXPECT_EQ(ReadResolution(), std::nullopt);
}

}  // namespace
}  // namespace rasterkit::test
