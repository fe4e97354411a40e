// Converts every file of the corpus to PNG, regardless of its name and damage.

#include <filesystem>
#include <sstream>

#include <gtest/gtest.h>

#include "tests/support/corpus.h"
#include "tests/tool/support/readable_pixels.h"
#include "tests/tool/support/run_tool.h"
#include "tests/tool/support/tiff_samples.h"

namespace rasterkit::test {
namespace {

using nlohmann::json;

class CorpusConversion : public testing::TestWithParam<std::string> {
 protected:
  void Check(const std::string& file) {
    const json facts = JsonLines(RunTool({"info", "--json", "--verify", file}).out).at(0);
    const ToolResult result = RunTool({"convert", file, out_, "--overwrite", "--json"});
    EXPECT_EQ(result.code, HasReadablePixels(facts) ? 0 : 3) << file << ": " << result.err;
    CheckWords(result.err, file);
    EXPECT_EQ(std::filesystem::exists(out_), result.code == 0) << file;
    if (result.code == 0) CheckOutput(facts);
    std::filesystem::remove(out_);
  }

  /// Start of each line on stderr: a line printed by another library would not have it.
  void CheckWords(const std::string& err, const std::string& file) {
    std::istringstream lines(err);
    for (std::string line; std::getline(lines, line);)
      EXPECT_TRUE(line.rfind("rasterkit: " + file + ": ", 0) == 0 ||
                  line.rfind("rasterkit: " + out_ + ": lost: ", 0) == 0 ||
                  line.rfind("rasterkit: " + out_ + ": numbers from ", 0) == 0)
          << line;
  }

  void CheckOutput(const json& facts) {
    const json written = JsonLines(RunTool({"info", "--json", out_}).out).at(0);
    EXPECT_EQ(written.at("ok"), true) << facts.at("file");
    const bool isOnItsSide = !facts.at("orientation").is_null() && facts["orientation"] > 4;
    EXPECT_EQ(written.at("width"), facts.at(isOnItsSide ? "height" : "width")) << facts.at("file");
    EXPECT_EQ(written.at("height"), facts.at(isOnItsSide ? "width" : "height")) << facts.at("file");
  }

  TempFolder folder_;
  const std::string out_ = folder_ / "out.png";
};

TEST_P(CorpusConversion, Convert_Should_WriteThePictureOrRefuseInOwnWords) {
  const auto folder = CorpusFolder();
  if (folder.empty()) GTEST_SKIP() << "no corpus (RASTERKIT_CORPUS)";
  const std::vector<CorpusEntry> entries = CorpusEntries(GetParam());
  ASSERT_FALSE(entries.empty());
  for (const CorpusEntry& entry : entries) Check((folder / entry.at("path")).string());
}

INSTANTIATE_TEST_SUITE_P(Folders, CorpusConversion,
                         testing::Values("tiff", "geotiff", "gif", "webp", "worldfile", "wrongext"),
                         [](const auto& info) { return info.param; });

}  // namespace
}  // namespace rasterkit::test
