// JPEG files that are turned, mirrored and cropped without being compressed again.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/pictures/coefficient_picture.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/run_tool.h"
#include "tests/tool/support/sample_files.h"

namespace rasterkit::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;

class CliLossless : public testing::Test {
 protected:
  struct Run {
    ToolResult result;
    json report;
  };

  /// Runs a verb on in.jpg and writes out.jpg.
  Run Make(std::vector<std::string> words) {
    words.insert(words.end(),
                 {folder_ / "in.jpg", folder_ / "out.jpg", "--overwrite", "--json", "--strict"});
    Run run{RunTool(words), {}};
    run.report = JsonLines(run.result.out).at(0);
    EXPECT_EQ(run.result.code, 0) << run.result.err;
    return run;
  }
  void SavePhoto(int width, int height, int orientation = 0) {
    SaveJpegFile(folder_ / "in.jpg", GradientRaster(pf24bit, width, height), orientation);
  }
  CoefficientPicture In() { return CoefficientsOf(ReadBytes(folder_ / "in.jpg")); }
  CoefficientPicture Out() { return CoefficientsOf(ReadBytes(folder_ / "out.jpg")); }

  TempFolder folder_;
};

TEST_F(CliLossless, Verbs_Should_MoveBlocks_When_TheirEdgesFit) {
  SavePhoto(96, 64);
  struct Case {
    std::vector<std::string> words;
    CoefficientPicture expected;
  };
  const CoefficientPicture in = In();
  const Case cases[] = {{{"rotate", "--angle", "90"}, Turned(in, 1)},
                        {{"rotate", "--angle", "-90"}, Turned(in, 3)},
                        {{"convert", "--angle", "180"}, Turned(in, 2)},
                        {{"mirror", "--horizontal"}, Mirrored(in)},
                        {{"mirror", "--vertical"}, Flipped(in)},
                        {{"crop", "--rect", "16,32,49,17"}, Cropped(in, 16, 32, 49, 17)},
                        {{"rotate", "--angle", "90", "--isolate"}, Turned(in, 1)},
                        {{"rotate", "--angle", "90", "--lossless", "trim"}, Turned(in, 1)}};
  for (const Case& one : cases) {
    const Run run = Make(one.words);
    SCOPED_TRACE(run.report.dump());
    EXPECT_EQ(run.result.err, "");
    EXPECT_EQ(run.report.at("pixels"), "moved");
    EXPECT_THAT(run.report.at("notes").dump(), HasSubstr("moved without recompression"));
    EXPECT_TRUE(Out() == one.expected);
    std::vector<std::string> dry = one.words;
    dry.emplace_back("--dry-run");
    EXPECT_EQ(Make(dry).report.at("pixels"), "moved");
  }
}

TEST_F(CliLossless, EveryOrientation_Should_BecomeUpright) {
  for (int orientation = 1; orientation <= 8; ++orientation) {
    SavePhoto(96, 64, orientation);
    const CoefficientPicture in = In();
    const Run run = Make({"convert"});
    EXPECT_EQ(run.report.at("pixels"), orientation == 1 ? "copied" : "moved");
    EXPECT_EQ(run.result.err, "");
    EXPECT_TRUE(Out() == Upright(in, orientation)) << orientation;
  }
}

TEST_F(CliLossless, Edges_Should_BeSaid_When_TheyDoNotFit) {
  SavePhoto(93, 61);
  const std::vector<std::string> words = {"mirror", "--horizontal"};
  Run run = Make(words);
  EXPECT_EQ(run.report.at("pixels"), "encoded");
  EXPECT_THAT(run.result.err, HasSubstr("out.jpg: the pixels are compressed again: the new left "
                                        "edge is not on the border of a block (trimming would "
                                        "drop 13 columns at the left edge)"));
  EXPECT_EQ(run.report.at("width"), 93);

  std::vector<std::string> trim = words;
  trim.insert(trim.end(), {"--lossless", "trim"});
  run = Make(trim);
  EXPECT_EQ(run.report.at("pixels"), "moved");
  EXPECT_THAT(run.result.err, HasSubstr("out.jpg: 13 columns at the left edge dropped, so that "
                                        "nothing is compressed again"));
  EXPECT_EQ(run.report.at("width"), 80);
  EXPECT_TRUE(Out() == Mirrored(Cropped(In(), 0, 0, 80, 61)));
  trim.emplace_back("--dry-run");
  run = Make(trim);
  EXPECT_EQ(run.report.at("width"), 80);
  trim.emplace_back("--quiet");
  EXPECT_EQ(Make(trim).result.err, "");

  for (const std::vector<std::string>& more :
       {std::vector<std::string>{"--lossless", "off"}, {"--quality", "80"}}) {
    std::vector<std::string> off = words;
    off.insert(off.end(), more.begin(), more.end());
    run = Make(off);
    EXPECT_EQ(run.report.at("pixels"), "encoded");
    EXPECT_EQ(run.result.err, "");
  }
}

TEST_F(CliLossless, FourTurnsInPlace_Should_GiveTheSameBlocks) {
  SavePhoto(64, 96, 6);
  const CoefficientPicture before = In();
  const std::vector<std::string> turn = {"rotate", "--angle", "90", "--in-place",
                                         folder_ / "in.jpg"};
  for (int i = 0; i < 4; ++i) ASSERT_EQ(RunTool(turn).code, 0);
  EXPECT_TRUE(In() == Upright(before, 6));
}

TEST_F(CliLossless, OtherTypes_Should_NotBeConcerned) {
  SavePhoto(93, 61, 3);
  const ToolResult result =
      RunTool({"convert", folder_ / "in.jpg", folder_ / "out.png", "--lossless", "trim", "--json"});
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(JsonLines(result.out).at(0).at("width"), 93);
  EXPECT_EQ(RunTool({"convert", folder_ / "in.jpg", folder_ / "b.jpg", "--lossless", "yes"}).code,
            2);
}

}  // namespace
}  // namespace rasterkit::test
