#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/raster/raster.h>

#include "tests/support/environment.h"
#include "tests/tool/support/run_tool.h"
#include "tests/tool/support/sample_files.h"

namespace rasterkit::test {

/// Runs verbs with --dialog and simulates a user; see tests/support/user. Runs without a display
/// unless the test has one.
class DialogTest : public testing::Test {
 protected:
  Environment::Variables WithUser(const std::string& script) const {
    const char* const platform = std::getenv("QT_QPA_PLATFORM");
    return {{"QT_QPA_PLATFORM", platform ? platform : "offscreen"},
            {"QT_QPA_GENERIC_PLUGINS", "rasterkit-user"},
            {"QT_PLUGIN_PATH", RASTERKIT_USER_PLUGINS},
            {"RASTERKIT_USER", script},
            // Drops Qt's messages about the platform.
            {"QT_LOGGING_RULES", "default.warning=false"},
            {"LC_ALL", locale_},
            {"LANGUAGE", ""},
            {"HOME", home_.Path()},
            {"XDG_CONFIG_HOME", home_.Path()},
            {"XDG_STATE_HOME", home_.Path()}};
  }

  ToolResult Run(const std::vector<std::string>& line, const std::string& script) const {
    const Environment environment(WithUser(script));
    return RunTool(line);
  }

  /// Runs `verb in.png out.png --dialog options`.
  ToolResult RunVerb(const std::string& verb, const Raster& raster, const std::string& script,
                     const std::vector<std::string>& options = {}) {
    SavePngFile(folder_ / "in.png", raster);
    std::filesystem::remove(folder_ / "out.png");
    std::vector<std::string> line = {verb, folder_ / "in.png", folder_ / "out.png", "--dialog"};
    line.insert(line.end(), options.begin(), options.end());
    return Run(line, script);
  }

  /// The picture that is written after the user confirms.
  Raster Confirmed(const std::string& verb, const Raster& raster, const std::string& script,
                   const std::vector<std::string>& options = {}) {
    const ToolResult result = RunVerb(verb, raster, script, options);
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out, "");
    return result.code == 0 ? LoadFile(folder_ / "out.png") : Raster();
  }

  /// The picture that the verb writes without a window.
  Raster WithoutDialog(const std::string& verb, const Raster& raster,
                       const std::vector<std::string>& options) {
    SavePngFile(folder_ / "in.png", raster);
    std::vector<std::string> line = {verb, folder_ / "in.png", folder_ / "plain.png",
                                     "--overwrite"};
    line.insert(line.end(), options.begin(), options.end());
    EXPECT_EQ(RunTool(line).code, 0);
    return LoadFile(folder_ / "plain.png");
  }

  bool HasOutput() const { return std::filesystem::exists(folder_ / "out.png"); }

  TempFolder folder_;
  /// Locale of the user.
  std::string locale_ = "C.UTF-8";

 private:
  /// Qt and its libraries keep memory until the process ends; that is not a leak of the tool.
  const Environment leaks_{"LSAN_OPTIONS",
                           "suppressions=" RASTERKIT_LEAKS_OF_OTHERS ":print_suppressions=0"};
  /// An empty settings folder: windows must not open as the developer or another test left them.
  const TempFolder home_;
};

}  // namespace rasterkit::test
