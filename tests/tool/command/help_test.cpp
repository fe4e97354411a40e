#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/tool/support/run_tool.h"

namespace rasterkit::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

const std::vector<std::string> kVerbs = {
    "info",      "convert",    "rotate",     "mirror",  "crop",    "resize",    "gray",
    "mono",      "brightness", "contrast",   "adjust",  "whiten",  "recolor",   "key-color",
    "pdf-white", "opaque",     "swap-alpha", "palette", "combine", "watermark", "icon",
    "compare",   "geotiff",    "exif",       "pdf",     "edit"};

TEST(CliHelp, Help_Should_NameVerbsExitCodesAndAnExample) {
  const ToolResult result = RunTool({"--help"});
  EXPECT_EQ(result.code, 0);
  for (const std::string& verb : kVerbs) EXPECT_THAT(result.out, HasSubstr("\n  " + verb + " "));
  for (const char* text : {"Exit codes", "Example", "--version"})
    EXPECT_THAT(result.out, HasSubstr(text));
  EXPECT_THAT(result.err, IsEmpty());
}

TEST(CliHelp, HelpOfEachVerb_Should_ShowAnExampleOfThatVerb) {
  for (const std::string& verb : kVerbs) {
    const ToolResult result = RunTool({verb, "--help"});
    EXPECT_EQ(result.code, 0) << verb;
    EXPECT_THAT(result.out, HasSubstr("rasterkit " + verb + " "));
    EXPECT_THAT(result.out, HasSubstr("Example"));
  }
}

TEST(CliHelp, UsageLine_Should_NameTheFiles) {
  EXPECT_THAT(RunTool({"crop", "--help"}).out,
              HasSubstr("Usage: rasterkit crop [OPTIONS] IN OUT\n"));
  EXPECT_THAT(RunTool({"info", "--help"}).out,
              HasSubstr("Usage: rasterkit info [OPTIONS] IN...\n"));
  EXPECT_THAT(RunTool({"compare", "--help"}).out,
              HasSubstr("Usage: rasterkit compare [OPTIONS] A B\n"));
  EXPECT_THAT(RunTool({"edit", "--help"}).out,
              HasSubstr("Usage: rasterkit edit [OPTIONS] [FILE]\n"));
  EXPECT_THAT(RunTool({"pdf", "--help"}).out,
              HasSubstr("Usage: rasterkit pdf [OPTIONS] IN [OUT]\n"));
}

TEST(CliHelp, OptionsOfAVerb_Should_SayWhatGoesTogether) {
  EXPECT_THAT(RunTool({"rotate", "--help"}).out, HasSubstr("(required)"));
  const std::string text = RunTool({"geotiff", "--help"}).out;
  EXPECT_THAT(text, HasSubstr("(needs --pixel-size) (not with --world-file)"));
}

TEST(CliHelp, Version_Should_BeNameAndNumber) {
  const ToolResult result = RunTool({"--version"});
  EXPECT_EQ(result.code, 0);
  EXPECT_THAT(result.out, testing::ContainsRegex("^rasterkit [0-9]+\\.[0-9]+\\.[0-9]+\n$"));
}

TEST(CliHelp, WrongUsage_Should_Exit2AndPrintNothingOnStdout) {
  const std::vector<std::vector<std::string>> lines = {
      {},
      {"no-such-verb"},
      {"info"},
      {"info", "--no-such-option", "a.bmp"},
      {"convert", "only-one.bmp"},
      {"convert", "a.bmp", "b.bmp", "c.bmp"},
      {"convert", "a.bmp", "b.xyz"},
      {"convert", "a.bmp", "b"},
      {"convert", "a.bmp", "b.jgw"},
      {"convert", "a.bmp", "b.png", "--bits", "7"},
      {"convert", "a.bmp", "b.jpg", "--quality", "0"},
      {"convert", "a.bmp", "b.jpg", "--quality", "101"},
      {"convert", "a.bmp", "b.png", "--angle", "much"},
      {"convert", "a.bmp", "b.png", "--angle", "nan"},
      {"convert", "a.bmp", "b.png", "--angle", "inf"},
      {"convert", "a.bmp", "b.png", "--background", "red"},
      {"convert", "a.bmp", "b.png", "--jobs", "0"},
      {"convert", "a.bmp", "b.png", "--type", "png"},
      {"convert", "--out-dir", "d", "--type", "gif", "a.bmp"},
      {"rotate", "a.bmp", "b.bmp"},
      {"adjust", "a.bmp", "b.bmp"},
      {"resize", "a.bmp", "b.bmp"},
      {"crop", "a.bmp", "b.bmp"},
      {"crop", "a.bmp", "b.bmp", "--dialog", "--jobs", "2"},
      {"mirror", "a.bmp", "b.bmp", "--dialog"},
      {"rotate", "a.bmp", "b.bmp", "--angle", "1", "--threads", "0"},
  };
  for (const auto& line : lines) {
    const ToolResult result = RunTool(line);
    EXPECT_EQ(result.code, 2) << testing::PrintToString(line);
    EXPECT_THAT(result.out, IsEmpty()) << testing::PrintToString(line);
    EXPECT_FALSE(result.err.empty()) << testing::PrintToString(line);
  }
}

}  // namespace
}  // namespace rasterkit::test
