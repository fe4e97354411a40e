// --dialog with a missing, damaged or wrong library of the dialogs.

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/environment.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/run_tool.h"
#include "tests/tool/support/sample_files.h"

namespace rasterkit::test {
namespace {

using testing::HasSubstr;

/// The tool loads its library from a folder of the test, and the dialogs from the same folder.
class CliDialogLibrary : public testing::Test {
 protected:
  void SetUp() override {
    const std::filesystem::path library = RASTERKIT_LIBRARY;
    std::filesystem::create_directory(Libraries());
    std::filesystem::create_symlink(library, Libraries() / library.filename());
    SavePngFile(folder_ / "in.png", GradientRaster(pf24bit, 6, 4));
  }

  std::filesystem::path Libraries() const { return folder_ / "lib"; }
  std::string Dialogs() const { return Libraries() / "librasterkit-dialogs.so.0"; }
  void PlaceFake() const { std::filesystem::create_symlink(RASTERKIT_FAKE_DIALOGS, Dialogs()); }

  /// Runs a verb that must exit with code 4, and returns its message.
  std::string Refusal(const std::string& verb, const std::string& fake = "") const {
    const Environment environment({{"LD_LIBRARY_PATH", Libraries().string()},
                                   {"RASTERKIT_FAKE", fake},
                                   {"QT_QPA_PLATFORM", "offscreen"}});
    const ToolResult result = RunTool({verb, folder_ / "in.png", folder_ / "out.png", "--dialog"});
    EXPECT_EQ(result.code, 4) << result.err;
    EXPECT_FALSE(std::filesystem::exists(folder_ / "out.png"));
    return result.err;
  }

  TempFolder folder_;
};

TEST_F(CliDialogLibrary, Missing_Should_BeSaidAndWhereItBelongs) {
#ifdef __has_feature
#if __has_feature(address_sanitizer)
  GTEST_SKIP() << "the sanitizer opens libraries for the tool, and finds those beside it";
#endif
#endif
  for (const char* verb : {"adjust", "mono", "resize", "crop"}) {
    const std::string text = Refusal(verb);
    EXPECT_THAT(text, HasSubstr("rasterkit: the dialogs are not installed: there is no "
                                "librasterkit-dialogs.so.0 in " +
                                Libraries().string()));
  }
}

TEST_F(CliDialogLibrary, Missing_Should_NotMatter_When_NobodyIsAsked) {
  const Environment environment("LD_LIBRARY_PATH", Libraries().string());
  EXPECT_EQ(RunTool({"resize", folder_ / "in.png", folder_ / "out.png", "--size", "3x2"}).code, 0);
}

/// There is no worker program beside the library.
TEST_F(CliDialogLibrary, Edit_Should_ReadInAWorker_UnlessToldOtherwise) {
  const std::filesystem::path library =
      Libraries() / std::filesystem::path(RASTERKIT_LIBRARY).filename();
  std::filesystem::remove(library);
  std::filesystem::copy_file(RASTERKIT_LIBRARY, library);
  PlaceFake();
  const Environment environment("LD_LIBRARY_PATH", Libraries().string());
  const ToolResult isolated = RunTool({"edit", folder_ / "in.png"});
  EXPECT_EQ(isolated.code, 3);
  EXPECT_THAT(isolated.err, HasSubstr("rasterkit-worker"));
  const ToolResult here = RunTool({"edit", folder_ / "in.png", "--no-isolate"});
  EXPECT_EQ(here.code, 4);
  EXPECT_THAT(here.err, HasSubstr("the window fell over"));
}

TEST_F(CliDialogLibrary, FileThatIsNoLibrary_Should_BeSaid) {
  WriteText(Dialogs(), "no library");
  EXPECT_THAT(Refusal("resize"), HasSubstr("librasterkit-dialogs.so.0 cannot be loaded: "));
}

TEST_F(CliDialogLibrary, OtherVersion_Should_BeRefused) {
  PlaceFake();
  EXPECT_THAT(Refusal("resize", "other version"),
              HasSubstr(Dialogs() + ": the dialogs and this tool have different versions"));
}

TEST_F(CliDialogLibrary, LibraryWithoutTheEntry_Should_BeRefused) {
  std::filesystem::create_symlink(RASTERKIT_LIBRARY, Dialogs());
  EXPECT_THAT(Refusal("resize"), HasSubstr("rasterkit_desktop_dialogs"));
}

TEST_F(CliDialogLibrary, StartThatFails_Should_SayWhy) {
  PlaceFake();
  EXPECT_EQ(Refusal("crop", "no window"), "rasterkit: there is no window today\n");
}

TEST_F(CliDialogLibrary, WindowThatFails_Should_SayWhyAndForWhichPicture) {
  PlaceFake();
  for (const char* verb : {"adjust", "mono", "resize", "crop"})
    EXPECT_EQ(Refusal(verb), "rasterkit: " + (folder_ / "in.png") + ": the window fell over\n");
}

TEST_F(CliDialogLibrary, SaveWindowThatFails_Should_SayWhyAndWriteNothing) {
  PlaceFake();
  const Environment environment("LD_LIBRARY_PATH", Libraries().string());
  for (const std::vector<std::string>& options : {{}, std::vector<std::string>{"--pixels"}}) {
    std::vector<std::string> line = {"save-as", folder_ / "in.png"};
    line.insert(line.end(), options.begin(), options.end());
    const ToolResult result = RunTool(line);
    EXPECT_EQ(result.code, 4);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "rasterkit: " + (folder_ / "in.png") + ": the window fell over\n");
  }
}

}  // namespace
}  // namespace rasterkit::test
