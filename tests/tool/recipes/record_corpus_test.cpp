// A recipe that is recorded with one picture does to the pictures of the corpus what its verb does.

#include <filesystem>

#include <gtest/gtest.h>

#include "tests/support/corpus.h"
#include "tests/tool/support/run_tool.h"

namespace rasterkit::test {
namespace {

struct CorpusRecipe {
  std::string name;
  std::vector<std::string> words;
  std::vector<std::string> applied = {};
};

const std::string kPlan = RASTERKIT_SAMPLES "/plan.png";

class CliRecordCorpus : public testing::TestWithParam<CorpusRecipe> {
 protected:
  /// Evenly spread files of a kind.
  static std::vector<std::string> Some(const std::string& kind, size_t most) {
    const std::vector<CorpusEntry> entries = CorpusEntries(kind);
    std::vector<std::string> files;
    const size_t step = entries.size() / most + 1;
    for (size_t i = 0; i < entries.size(); i += step) {
      files.push_back((CorpusFolder() / entries[i].at("path")).string());
    }
    return files;
  }

  /// Writes what can be written into a folder, and returns how many.
  size_t Run(std::vector<std::string> line, const std::vector<std::string>& options,
             const std::vector<std::string>& files, const std::string& folder) const {
    line.insert(line.end(), files.begin(), files.end());
    line.insert(line.end(), options.begin(), options.end());
    line.insert(line.end(), {"--out-dir", folder, "--continue", "--no-sync", "--json"});
    size_t written = 0;
    for (const auto& outcome : JsonLines(RunTool(line).out)) written += outcome.at("ok") ? 1 : 0;
    return written;
  }

  /// `options` are those of both runs.
  size_t Compare(const std::string& name, const std::vector<std::string>& files,
                 const std::vector<std::string>& options) const {
    const CorpusRecipe& recipe = GetParam();
    std::vector<std::string> apply = {"apply", folder_ / "r.json"};
    std::vector<std::string> again = options;
    again.insert(again.end(), recipe.applied.begin(), recipe.applied.end());
    const std::string one = folder_ / (name + "-one"), two = folder_ / (name + "-two");
    const size_t written = Run(recipe.words, options, files, one);
    EXPECT_EQ(Run(apply, again, files, two), written);
    size_t compared = 0;
    for (const auto& entry : std::filesystem::directory_iterator(one)) {
      const std::string file = entry.path().filename().string();
      EXPECT_EQ(ReadBytes(entry.path().string()), ReadBytes(two + "/" + file)) << file;
      ++compared;
    }
    return compared;
  }

  TempFolder folder_;
};

TEST_P(CliRecordCorpus, Recipe_Should_DoWhatItsVerbDoes) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "no corpus (RASTERKIT_CORPUS)";
  const CorpusRecipe& recipe = GetParam();
  std::vector<std::string> line = recipe.words;
  line.insert(line.end(), {RASTERKIT_SAMPLES "/upright.png", folder_ / "sample.png", "--record",
                           folder_ / "r.json"});
  const ToolResult recorded = RunTool(line);
  ASSERT_EQ(recorded.code, 0) << recorded.err;
  std::vector<std::string> mixed;
  for (const char* kind : {"png", "bmp", "tiff", "gif", "webp"}) {
    for (const std::string& file : Some(kind, 25)) mixed.push_back(file);
  }
  size_t compared = Compare("mixed", mixed, {"--format", "png"});
  // JPEG files keep their type: many are moved or copied.
  compared += Compare("jpeg", Some("jpeg", 40), {});
  EXPECT_GE(compared, 70U);
}

INSTANTIATE_TEST_SUITE_P(
    Verbs, CliRecordCorpus,
    testing::Values(
        CorpusRecipe{"ConvertStripped", {"convert", "--strip-gps", "--bits", "24"}},
        CorpusRecipe{"Rotate", {"rotate", "--angle", "33.3", "--fill", "auto"}},
        CorpusRecipe{"Turn", {"rotate", "--angle", "-90"}},
        CorpusRecipe{"Mirror", {"mirror", "--horizontal"}},
        CorpusRecipe{"Crop", {"crop", "--rect", "12.5%,10%,61%,77.7%"}},
        CorpusRecipe{"Resize", {"resize", "--size", "45.5%x61%"}},
        CorpusRecipe{"ResizeHeight", {"resize", "--size", "x77", "--filter", "linear"}},
        CorpusRecipe{"Gray", {"gray"}}, CorpusRecipe{"Mono", {"mono", "--threshold", "otsu"}},
        CorpusRecipe{"Adjust", {"adjust", "--brightness", "12", "--sharpen", "20", "--red", "5"}},
        CorpusRecipe{"Opaque", {"opaque", "--background", "navy"}},
        CorpusRecipe{"Combine",
                     {"combine", "--with", kPlan, "--mode", "transparent", "--align", "none"},
                     {"--with", "over=" + kPlan}},
        CorpusRecipe{"Watermark", {"watermark", "--with", kPlan}, {"--with", "mark=" + kPlan}}),
    [](const auto& info) { return info.param.name; });

}  // namespace
}  // namespace rasterkit::test
