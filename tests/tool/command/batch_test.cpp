#include <filesystem>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/run_tool.h"
#include "tests/tool/support/sample_files.h"

namespace rasterkit::test {
namespace {

using testing::HasSubstr;

/// Twelve pictures of different sizes in in/; the fifth one can be damaged.
class CliBatch : public testing::Test {
 protected:
  CliBatch() {
    std::filesystem::create_directory(folder_ / "in");
    for (int i = 0; i < 12; ++i) {
      names_.push_back(fmt::format("{}/picture-{:02}.png", folder_ / "in", i));
      SavePngFile(names_.back(), GrayRaster(20 + i, 30));
    }
  }

  ToolResult Convert(std::vector<std::string> options) {
    std::vector<std::string> line = {"convert", "--out-dir", folder_ / "out"};
    line.insert(line.end(), options.begin(), options.end());
    line.insert(line.end(), names_.begin(), names_.end());
    return RunTool(line);
  }

  size_t OutputCount() const {
    size_t count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder_ / "out"))
      ++count;
    return count;
  }

  TempFolder folder_;
  std::vector<std::string> names_;
};

TEST_F(CliBatch, Jobs_Should_GiveTheSameFilesAndOrder_When_SeveralRunAtOnce) {
  for (const char* jobs : {"1", "4", "64"}) {
    const ToolResult result = Convert({"--type", "bmp", "--jobs", jobs, "--json", "--overwrite"});
    ASSERT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(result.err, "") << "no progress bar outside a terminal";
    const auto lines = JsonLines(result.out);
    ASSERT_EQ(lines.size(), names_.size());
    for (size_t i = 0; i < lines.size(); ++i) {
      EXPECT_EQ(lines[i]["file"], names_[i]);
      EXPECT_EQ(lines[i]["width"], 20 + i);
      EXPECT_TRUE(SamePixels(LoadFile(names_[i]), LoadFile(lines[i]["output"])));
    }
  }
}

TEST_F(CliBatch, Names_Should_StayAndTypeToo_When_TypeIsNotGiven) {
  ASSERT_EQ(Convert({}).code, 0);
  EXPECT_EQ(LoadFile(folder_ / "out/picture-03.png").Width(), 23);
}

TEST_F(CliBatch, Type_Should_BeTakenWithItsDotToo) {
  ASSERT_EQ(Convert({"--type", ".bmp"}).code, 0);
  EXPECT_EQ(LoadFile(folder_ / "out/picture-03.bmp").Width(), 23);
}

TEST_F(CliBatch, FirstFailure_Should_EndTheWork_When_ContinueIsNotGiven) {
  WriteText(names_[5], "broken");
  const ToolResult result = Convert({"--type", "bmp"});
  EXPECT_EQ(result.code, 3);
  EXPECT_THAT(result.err, HasSubstr(names_[5]));
  EXPECT_EQ(OutputCount(), 5u);
}

TEST_F(CliBatch, Failures_Should_BePassedOver_When_ContinueIsGiven) {
  WriteText(names_[5], "broken");
  WriteText(names_[7], "");
  const ToolResult result = Convert({"--type", "bmp", "--continue", "--jobs", "3", "--json"});
  EXPECT_EQ(result.code, 3);
  EXPECT_EQ(OutputCount(), 10u);
  const auto lines = JsonLines(result.out);
  ASSERT_EQ(lines.size(), 12u);
  EXPECT_EQ(lines[5]["ok"], false);
  EXPECT_EQ(lines[6]["ok"], true);
}

TEST_F(CliBatch, ExistingOutputs_Should_Exit4_When_OverwriteIsNotGiven) {
  ASSERT_EQ(Convert({"--type", "bmp"}).code, 0);
  EXPECT_EQ(Convert({"--type", "bmp"}).code, 4);
  EXPECT_EQ(Convert({"--type", "bmp", "--overwrite"}).code, 0);
}

TEST_F(CliBatch, SameOutputTwice_Should_BeWrongUsageAndWriteNothing) {
  std::filesystem::create_directory(folder_ / "other");
  SavePngFile(folder_ / "other/picture-03.png", GrayRaster(3, 3));
  names_.push_back(folder_ / "other/picture-03.png");
  const ToolResult result = Convert({"--type", "bmp"});
  EXPECT_EQ(result.code, 2);
  EXPECT_THAT(result.err, HasSubstr("picture-03.png"));
  EXPECT_FALSE(std::filesystem::exists(folder_ / "out"));
  names_ = {names_[0], names_[0]};
  EXPECT_EQ(Convert({"--type", "bmp"}).code, 2);
}

TEST_F(CliBatch, FolderThatCannotBeMade_Should_Exit4) {
  WriteText(folder_ / "out", "a file");
  EXPECT_EQ(Convert({"--type", "bmp"}).code, 4);
}

TEST_F(CliBatch, Rotate_Should_TakeManyInputsToo) {
  std::vector<std::string> line = {"rotate", "--angle", "90", "--out-dir", folder_ / "out"};
  line.insert(line.end(), names_.begin(), names_.end());
  ASSERT_EQ(RunTool(line).code, 0);
  EXPECT_EQ(LoadFile(folder_ / "out/picture-03.png").Height(), 23);
}

}  // namespace
}  // namespace rasterkit::test
