// Runs every verb that changes pictures on the corpus: each readable picture must be written,
// regardless of its type, depth and palette.

#include <filesystem>

#include <gtest/gtest.h>

#include "tests/support/corpus.h"
#include "tests/support/full_run.h"
#include "tests/tool/support/readable_pixels.h"
#include "tests/tool/support/run_tool.h"

namespace rasterkit::test {
namespace {

struct VerbLine {
  std::string name;
  std::vector<std::string> words;
};

class CorpusVerbs : public testing::TestWithParam<VerbLine> {
 protected:
  static std::vector<std::string> Files(const std::string& kind) {
    std::vector<std::string> files;
    for (const CorpusEntry& entry : CorpusEntries(kind))
      files.push_back((CorpusFolder() / entry.at("path")).string());
    return files;
  }

  /// Number of readable files.
  static size_t Readable(const std::vector<std::string>& files) {
    std::vector<std::string> line = {"info", "--json", "--verify"};
    line.insert(line.end(), files.begin(), files.end());
    size_t count = 0;
    for (const auto& facts : JsonLines(RunTool(line).out))
      count += HasReadablePixels(facts) ? 1 : 0;
    return count;
  }

  void Check(const std::string& kind) {
    const std::vector<std::string> files = Files(kind);
    ASSERT_FALSE(files.empty());
    std::vector<std::string> line = GetParam().words;
    line.insert(line.end(), {"--out-dir", folder_ / kind, "--continue", "--json"});
    const bool isIcon = line[0] == "icon";
    if (!isIcon) line.insert(line.end(), {"--type", "png"});
    line.insert(line.end(), files.begin(), files.end());
    const ToolResult result = RunTool(line);
    EXPECT_TRUE(result.code == 0 || result.code == 3 || result.code == 4) << result.code;
    size_t written = 0;
    for (const auto& outcome : JsonLines(result.out)) {
      if (!outcome.at("ok")) continue;
      ++written;
      EXPECT_TRUE(std::filesystem::exists(outcome.at("output").get<std::string>()));
    }
    if (MayRefuse()) return;
    // A crop reads no further than its rows: what is broken below them is not seen.
    if (line[0] == "crop") {
      EXPECT_GE(written, Readable(files)) << kind;
    } else {
      EXPECT_EQ(written, Readable(files)) << kind;
    }
  }

  /// Verbs that apply only to some pictures.
  static bool MayRefuse() {
    const std::string& verb = GetParam().words[0];
    return verb == "swap-alpha" || verb == "palette";
  }

  TempFolder folder_;
};

TEST_P(CorpusVerbs, Verb_Should_WriteEveryPictureThatCanBeRead) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "no corpus (RASTERKIT_CORPUS)";
  Check("png");
  if (!IsFullRun()) return;
  for (const char* kind : {"bmp", "gif", "webp", "jpeg", "tiff"}) Check(kind);
}

const std::string kMark = RASTERKIT_SAMPLES "/plan.png";

INSTANTIATE_TEST_SUITE_P(
    Verbs, CorpusVerbs,
    testing::Values(
        VerbLine{"Mirror", {"mirror", "--horizontal", "--vertical"}},
        VerbLine{"Crop", {"crop", "--rect", "0,0,1,1"}},
        VerbLine{"Resize", {"resize", "--size", "40x30"}},
        VerbLine{"ResizeSmooth", {"resize", "--size", "40x30", "--smooth"}},
        VerbLine{"Gray", {"gray"}}, VerbLine{"Mono", {"mono"}},
        VerbLine{"Brightness", {"brightness", "--percent", "30"}},
        VerbLine{"Contrast", {"contrast", "--percent", "-30"}},
        VerbLine{"Adjust", {"adjust", "--sharpen", "40", "--red", "10"}},
        VerbLine{"Whiten", {"whiten", "--threshold", "128", "--transparent"}},
        VerbLine{"Recolor", {"recolor", "--threshold", "128", "--color", "102030"}},
        VerbLine{"RecolorAlpha",
                 {"recolor", "--threshold", "128", "--color", "102030", "--alpha", "9"}},
        VerbLine{"KeyColor", {"key-color", "--color", "102030", "--transparent"}},
        VerbLine{"PdfWhite", {"pdf-white"}}, VerbLine{"Opaque", {"opaque"}},
        VerbLine{"SwapAlpha", {"swap-alpha"}},
        VerbLine{"Palette", {"palette", "--first", "102030"}},
        VerbLine{"CombineKey", {"combine", "--with", kMark, "--percent", "20"}},
        VerbLine{"CombineShadow", {"combine", "--with", kMark, "--mode", "shadow"}},
        VerbLine{"CombineIntoWhite", {"combine", "--with", kMark, "--mode", "into-white"}},
        VerbLine{"Watermark", {"watermark", "--with", kMark}},
        VerbLine{"Icon", {"icon", "--size", "32x32"}}),
    [](const auto& info) { return info.param.name; });

}  // namespace
}  // namespace rasterkit::test
