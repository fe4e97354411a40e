// --name and --format: how outputs in a folder are called.

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/test_pictures.h"
#include "tests/tool/support/run_tool.h"
#include "tests/tool/support/sample_files.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class CliOutputNames : public testing::Test {
 protected:
  CliOutputNames() {
    for (const char* name : {"a.bmp", "b.bmp"}) {
      SaveBmpFile(folder_ / name, GradientRaster(pf24bit, 9, 5));
    }
  }

  ToolResult Run(const std::string& verb, std::vector<std::string> more) {
    std::vector<std::string> line = {verb, folder_ / "a.bmp", folder_ / "b.bmp", "--out-dir",
                                     folder_ / "out"};
    line.insert(line.end(), more.begin(), more.end());
    return RunTool(line);
  }

  std::vector<std::string> Outputs() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_ / "out")) {
      names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
  }

  TempFolder folder_;
};

TEST_F(CliOutputNames, Name_Should_FollowThePattern) {
  const ToolResult result =
      Run("gray", {"--name", "{stem}-{verb}-{number:3}.{ext}", "--format", "png", "--jobs", "2"});
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_THAT(Outputs(), ElementsAre("a-gray-001.png", "b-gray-002.png"));
}

TEST_F(CliOutputNames, Extension_Should_BeThatOfTheInput_When_FormatIsNotGiven) {
  EXPECT_EQ(Run("gray", {"--name", "{stem}_{page}.{ext}"}).code, 0);
  EXPECT_THAT(Outputs(), ElementsAre("a_1.bmp", "b_1.bmp"));
}

TEST_F(CliOutputNames, Extension_Should_BeThatOfThePattern) {
  EXPECT_EQ(Run("gray", {"--name", "{name}.jpeg", "--format", "jpg"}).code, 0);
  EXPECT_THAT(Outputs(), ElementsAre("a.bmp.jpeg", "b.bmp.jpeg"));
}

/// Nothing is written, not even the folder.
TEST_F(CliOutputNames, WrongName_Should_BeWrongUsage) {
  const std::pair<std::vector<std::string>, const char*> wrong[] = {
      {{"--name", "{stem}{foo}"}, "unknown field {foo}"},
      {{"--name", "../{stem}.png"}, "no '/'"},
      {{"--name", "one.{ext}"}, "would both be written to"},
      {{"--name", "{verb}"}, "the name must end in"},
      {{"--name", ".."}, "no name of a file"},
      {{"--name", "{stem}.jpg", "--format", "png"}, "does not end in .png as --format says"},
      {{"--name", "{stem}"}, "the name must end in"},
      {{"--format", "gif"}, "the name must end in"},
      {{"--format", "png", "--type", "png"}, "excludes"}};
  for (const auto& [options, message] : wrong) {
    const ToolResult result = Run("gray", options);
    EXPECT_EQ(result.code, 2) << options[1];
    EXPECT_THAT(result.err, HasSubstr(message)) << options[1];
    EXPECT_THAT(folder_.Names(), ElementsAre("a.bmp", "b.bmp"));
  }
  const ToolResult alone =
      RunTool({"gray", folder_ / "a.bmp", folder_ / "c.png", "--name", "{stem}.png"});
  EXPECT_EQ(alone.code, 2);
  EXPECT_THAT(alone.err, HasSubstr("--name requires --out-dir"));
}

TEST_F(CliOutputNames, Type_Should_MeanFormat) {
  EXPECT_EQ(Run("gray", {"--type", ".png"}).code, 0);
  EXPECT_THAT(Outputs(), ElementsAre("a.png", "b.png"));
  EXPECT_THAT(RunTool({"gray", "--help"}).out, testing::Not(HasSubstr("--type")));
}

TEST_F(CliOutputNames, GeoTiffAndIcon_Should_HaveTheirExtensions) {
  EXPECT_EQ(RunTool({"icon", folder_ / "a.bmp", "--out-dir", folder_ / "out", "--name",
                     "{stem}-{verb}.{ext}"})
                .code,
            0);
  EXPECT_EQ(RunTool({"geotiff", folder_ / "a.bmp", "--out-dir", folder_ / "out", "--name",
                     "{stem}-{verb}.{ext}", "--origin", "1,2", "--pixel-size", "1"})
                .code,
            0);
  EXPECT_THAT(Outputs(), ElementsAre("a-geotiff.tif", "a-icon.ico"));
}

}  // namespace
}  // namespace rasterkit::test
