// Progress bars on a terminal.
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/test_pictures.h"
#include "tests/tool/support/run_tool.h"
#include "tests/tool/support/sample_files.h"

namespace rasterkit::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

const std::string kFullBar = "[" + std::string(40, '#') + "]";
const std::string kEmptyBar = "[" + std::string(40, '.') + "]";
/// Moves to the start of the line and erases it.
const std::string kGone = "\r\033[K";

ToolSetup OnTerminal() {
  ToolSetup setup;
  setup.hasTerminal = true;
  return setup;
}

class CliProgress : public testing::Test {
 protected:
  std::string Picture(const std::string& name, int height) {
    SavePngFile(folder_ / name, GradientRaster(pf24bit, 5, height));
    return folder_ / name;
  }

  /// Output of `combine` for a picture with that many rows.
  std::string Combine(int height, const std::string& mode, const ToolSetup& setup) {
    const ToolResult result =
        RunTool({"combine", Picture("in.png", height), folder_ / "out.png", "--overwrite", "--with",
                 Picture("over.png", height), "--mode", mode, "--threads", "2"},
                setup);
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.out, "");
    return result.err;
  }

  TempFolder folder_;
};

TEST_F(CliProgress, OnePicture_Should_HaveABarThatEndsFullAndIsWiped) {
  for (const std::string mode : {"transparent", "shadow", "overwrite", "into-white"}) {
    const std::string shown = Combine(100, mode, OnTerminal());
    EXPECT_THAT(shown, HasSubstr("\r" + kFullBar + " 100 %")) << mode;
    EXPECT_THAT(shown, EndsWith(kGone)) << mode;
    EXPECT_THAT(shown, Not(HasSubstr("\n"))) << mode;
  }
}

TEST_F(CliProgress, NoBar_Should_BeDrawn_When_StderrIsNoTerminal) {
  EXPECT_EQ(Combine(1200, "shadow", {}), "");
}

TEST_F(CliProgress, ManyFiles_Should_BeCountedOnATerminal) {
  const std::vector<std::string> line = {"gray",      Picture("a.png", 9), Picture("b.png", 9),
                                         "--out-dir", folder_ / "out",     "--overwrite"};
  const ToolResult result = RunTool(line, OnTerminal());
  EXPECT_EQ(result.code, 0);
  EXPECT_THAT(result.err, HasSubstr("\r" + kEmptyBar + " 0/2"));
  EXPECT_THAT(result.err, HasSubstr("\r[" + std::string(20, '#') + std::string(20, '.') + "] 1/2"));
  EXPECT_THAT(result.err, HasSubstr("\r" + kFullBar + " 2/2"));
  EXPECT_THAT(result.err, EndsWith(kGone));
  EXPECT_EQ(RunTool(line).err, "") << "no terminal";
}

TEST_F(CliProgress, AMessage_Should_StandOnALineOfItsOwn_When_ABarIsShown) {
  WriteText(folder_ / "broken.png", "no picture");
  const ToolResult result = RunTool({"gray", folder_ / "broken.png", Picture("b.png", 9),
                                     "--out-dir", folder_ / "out", "--continue"},
                                    OnTerminal());
  EXPECT_NE(result.code, 0);
  EXPECT_THAT(result.err, testing::ContainsRegex("\033\\[K[^\r]*broken\\.png: [^\r]*\r\n"));
}

TEST_F(CliProgress, OneFile_Should_NotBeCounted) {
  const ToolResult result =
      RunTool({"gray", Picture("a.png", 9), folder_ / "out.png", "--overwrite"}, OnTerminal());
  EXPECT_EQ(result.code, 0);
  EXPECT_THAT(result.err, Not(HasSubstr("1/1")));
}

}  // namespace
}  // namespace rasterkit::test
