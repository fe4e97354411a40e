// --scratch, --band-rows and what -v says of the process.

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/test_pictures.h"
#include "tests/tool/support/run_tool.h"
#include "tests/tool/support/sample_files.h"

namespace rasterkit::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class CliFlowOptions : public testing::Test {
 protected:
  CliFlowOptions() {
    SavePngFile(folder_ / "in.png", GradientRaster(pf24bit, 90, 200));
    std::filesystem::create_directory(folder_ / "scratch");
  }

  ToolResult Rotate(const std::string& out, const std::vector<std::string>& options) {
    std::vector<std::string> line = {"rotate", folder_ / "in.png", folder_ / out, "--angle", "30"};
    line.insert(line.end(), options.begin(), options.end());
    return RunTool(line);
  }

  TempFolder folder_;
};

TEST_F(CliFlowOptions, Outputs_Should_BeTheSame_For_AllBandsThreadsAndFolders) {
  ASSERT_EQ(Rotate("whole.tif", {}).code, 0);
  int number = 0;
  for (const char* rows : {"1", "7", "64", "1000"}) {
    for (const char* threads : {"1", "2", "7"}) {
      const std::string out = std::to_string(++number) + ".tif";
      const ToolResult result = Rotate(
          out, {"--band-rows", rows, "--threads", threads, "--scratch", folder_ / "scratch"});
      EXPECT_EQ(result.code, 0) << result.err;
      EXPECT_TRUE(ReadBytes(folder_ / out) == ReadBytes(folder_ / "whole.tif")) << rows;
    }
  }
  EXPECT_TRUE(std::filesystem::is_empty(folder_ / "scratch"));
}

TEST_F(CliFlowOptions, Scratch_Should_BeAFolderThatExists) {
  for (const std::string& name : {folder_ / "none", folder_ / "in.png"}) {
    const ToolResult result = Rotate("out.tif", {"--scratch", name});
    EXPECT_EQ(result.code, 2);
    EXPECT_THAT(result.err, AllOf(HasSubstr("--scratch"), HasSubstr("a folder that exists")));
  }
}

TEST_F(CliFlowOptions, DryRun_Should_SayMemoryAndScratchSpace) {
  const ToolResult result = Rotate("out.tif", {"--dry-run", "--json"});
  ASSERT_EQ(result.code, 0) << result.err;
  const auto line = JsonLines(result.out).at(0);
  EXPECT_GT(line.at("memory").get<uint64_t>(), 0u);
  EXPECT_EQ(line.at("scratch").get<uint64_t>(), 0u);
}

TEST_F(CliFlowOptions, Verbose_Should_SayWhatTheProcessUsed) {
  EXPECT_THAT(Rotate("a.tif", {"-v"}).err,
              AllOf(HasSubstr("used: "), HasSubstr(" s of processor time"), HasSubstr(" minor, "),
                    HasSubstr(" major"), HasSubstr(" MiB")));
  EXPECT_THAT(Rotate("b.tif", {}).err, IsEmpty());
}

TEST_F(CliFlowOptions, BandRows_Should_BeForTestsAlone) {
  const std::string help = RunTool({"rotate", "--help"}).out;
  EXPECT_THAT(help, HasSubstr("--scratch"));
  EXPECT_THAT(help, Not(HasSubstr("--band-rows")));
}

}  // namespace
}  // namespace rasterkit::test
