// --dialog if no window can be opened, or if an error comes first.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/test_pictures.h"
#include "tests/tool/support/dialog_run.h"

namespace rasterkit::test {
namespace {

using testing::HasSubstr;

class CliDialog : public DialogTest {
 protected:
  void SetUp() override { SavePngFile(folder_ / "in.png", GradientRaster(pf24bit, 6, 4)); }

  std::vector<std::string> Line(const std::string& verb,
                                const std::vector<std::string>& options = {}) const {
    std::vector<std::string> line = {verb, folder_ / "in.png", folder_ / "out.png", "--dialog"};
    line.insert(line.end(), options.begin(), options.end());
    return line;
  }

  /// Runs each verb in an environment without a window.
  void ExpectNoWindow(const Environment::Variables& variables, const std::string& reason) {
    const Environment environment(variables);
    for (const char* verb : {"adjust", "mono", "resize", "crop"}) {
      const ToolResult result = RunTool(Line(verb));
      EXPECT_EQ(result.code, 4) << verb;
      EXPECT_THAT(result.err, HasSubstr("rasterkit: a window cannot be opened: ")) << verb;
      EXPECT_THAT(result.err, HasSubstr(reason)) << verb;
      EXPECT_FALSE(HasOutput()) << verb;
    }
  }
};

TEST_F(CliDialog, NoDisplay_Should_BeSaid) {
  ExpectNoWindow({{"DISPLAY", ""}, {"WAYLAND_DISPLAY", ""}, {"QT_QPA_PLATFORM", ""}},
                 "DISPLAY is not set");
  ExpectNoWindow({{"DISPLAY", ""}, {"WAYLAND_DISPLAY", ""}, {"QT_QPA_PLATFORM", "xcb"}},
                 "QT_QPA_PLATFORM names (xcb)");
}

TEST_F(CliDialog, DisplayWithoutAServer_Should_BeSaid) {
  ExpectNoWindow({{"DISPLAY", ":4242"}, {"WAYLAND_DISPLAY", ""}, {"QT_QPA_PLATFORM", ""}},
                 "the display ':4242' (DISPLAY) does not answer");
  ExpectNoWindow({{"DISPLAY", "nonsense"}, {"WAYLAND_DISPLAY", ""}, {"QT_QPA_PLATFORM", ""}},
                 "'nonsense'");
  ExpectNoWindow({{"DISPLAY", ""}, {"WAYLAND_DISPLAY", "wayland-4242"}, {"QT_QPA_PLATFORM", ""}},
                 "'wayland-4242' (WAYLAND_DISPLAY) does not answer");
}

TEST_F(CliDialog, PlatformThatQtDoesNotKnow_Should_BeSaid) {
  ExpectNoWindow(Environment::Variables{{"QT_QPA_PLATFORM", "paper;pencil"}}, "(paper;pencil)");
}

TEST_F(CliDialog, FirstPlatformThatWorks_Should_BeTaken) {
  const Environment user(WithUser("click ButtonOK"));
  const Environment platforms("QT_QPA_PLATFORM", "paper;offscreen");
  EXPECT_EQ(RunTool(Line("resize", {"--size", "3x2"})).code, 0);
  EXPECT_TRUE(HasOutput());
}

TEST_F(CliDialog, ExistingOutput_Should_BeRefusedBeforeTheUserIsAsked) {
  WriteText(folder_ / "out.png", "mine");
  const ToolResult result = Run(Line("resize"), "");
  EXPECT_EQ(result.code, 4);
  EXPECT_EQ(result.err,
            "rasterkit: " + (folder_ / "out.png") + ": already exists (--overwrite replaces it)\n");
  EXPECT_EQ(ReadBytes(folder_ / "out.png").size(), 4u);
}

TEST_F(CliDialog, InputThatIsNoPicture_Should_Exit3WithoutAWindow) {
  WriteText(folder_ / "in.png", "no picture");
  for (const char* verb : {"adjust", "mono", "resize", "crop"}) {
    const ToolResult result = Run(Line(verb), "");
    EXPECT_EQ(result.code, 3) << verb;
    EXPECT_THAT(result.err, testing::Not(HasSubstr("user:"))) << verb;
  }
}

TEST_F(CliDialog, SeveralJobs_Should_BeWrongUsage) {
  const ToolResult result = Run(Line("resize", {"--jobs", "2"}), "");
  EXPECT_EQ(result.code, 2);
  EXPECT_THAT(result.err, HasSubstr("--jobs"));
}

TEST_F(CliDialog, Interruption_Should_EndTheToolAtOnce) {
  for (const char* verb : {"adjust", "mono", "resize", "crop"}) {
    const ToolResult result = Run(Line(verb), "interrupt");
    EXPECT_EQ(result.code, 130) << verb;
    EXPECT_EQ(result.err, "rasterkit: interrupted\n") << verb;
    EXPECT_FALSE(HasOutput()) << verb;
  }
}

}  // namespace
}  // namespace rasterkit::test
