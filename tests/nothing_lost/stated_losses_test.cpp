// The corpus through every verb: what an output lacks is what the tool says.

#include <filesystem>
#include <set>

#include <gtest/gtest.h>

#include "tests/nothing_lost/stated_facts.h"
#include "tests/support/corpus.h"
#include "tests/support/full_run.h"
#include "tests/tool/support/gdal_peer.h"

namespace rasterkit::test {
namespace {

using nlohmann::json;

struct VerbLine {
  std::string name;
  std::vector<std::string> words;
};

/// Verbs that apply only to some pictures.
bool MayRefuseAll(const std::string& verb) {
  return verb == "swap-alpha" || verb == "palette";
}

class StatedLosses : public testing::TestWithParam<VerbLine> {
 protected:
  void SetUp() override {
    if (CorpusFolder().empty()) GTEST_SKIP() << "no corpus (RASTERKIT_CORPUS)";
  }

  /// One file in `step` of the readable ones of a kind.
  static std::vector<std::string> Files(const std::string& kind, size_t step) {
    std::vector<std::string> files;
    size_t number = 0;
    for (const CorpusEntry& entry : CorpusEntries(kind)) {
      if (IsFullRun() || number++ % step == 0) {
        files.push_back((CorpusFolder() / entry.at("path")).string());
      }
    }
    return files;
  }

  /// Runs the verb with --strict on each file alone: the exit code must fit the stated losses.
  json RunStrict(const std::string& file, const std::string& output) {
    std::vector<std::string> line = GetParam().words;
    line.insert(line.end(), {file, output, "--strict", "--json", "--overwrite"});
    const ToolResult result = RunTool(line);
    const std::vector<json> lines = JsonLines(result.out);
    EXPECT_EQ(lines.size(), 1u) << file << result.err;
    if (lines.empty()) return {};
    if (!lines[0].at("ok")) {
      EXPECT_TRUE(result.code == 3 || result.code == 4) << file << " " << result.code;
      return {};
    }
    EXPECT_EQ(result.code, lines[0].at("losses").empty() ? 0 : 5) << file << result.err;
    EXPECT_TRUE(std::filesystem::exists(output)) << file;
    return lines[0];
  }

  static std::set<std::string> Kinds(const json& line) {
    std::set<std::string> kinds;
    for (const json& loss : line.at("losses")) kinds.insert(loss.at("kind").get<std::string>());
    return kinds;
  }

  /// What exiftool finds in the input but not in the output must be stated.
  static void Compare(const std::string& name, const json& before, const json& after,
                      const std::set<std::string>& losses) {
    const std::pair<const char*, const char*> kGroups[] = {
        {"GPS:GPSLatitude", "gps"},        {"XMP-dc:", "xmp"},         {"IPTC:", "iptc"},
        {"ICC-header:", "profile"},        {"IFD0:Make", "exif"},      {"ExifIFD:", "exif"},
        {"GeoTiff:", "coordinate-system"}, {"File:Comment", "comment"}};
    for (const auto& [group, kind] : kGroups) {
      if (!HasGroup(before, group) || HasGroup(after, group)) continue;
      EXPECT_TRUE(losses.contains(kind)) << name << ": " << group << " is gone";
    }
    for (const auto& [group, kind] : {std::pair("GPS:GPSLatitude", "gps"), {"IPTC:", "iptc"}}) {
      if (!losses.contains(kind)) continue;
      EXPECT_FALSE(HasGroup(after, group)) << name << ": " << group << " is not lost";
    }
  }

  /// A file without a JPEG or TIFF extension of its own gets one that can be written.
  static std::string OutputName(size_t number, const std::string& kind, const std::string& file) {
    const std::string stem = std::to_string(number);
    if (kind == "jpeg" || kind == "exif") return stem + ".jpg";
    const std::string extension = std::filesystem::path(file).extension().string();
    return stem + (extension == ".png" || extension == ".bmp" ? extension : ".tif");
  }

  void RunAll(const std::string& kind, size_t step) {
    for (const std::string& file : Files(kind, step)) {
      const std::string name = OutputName(number_++, kind, file);
      const json line = RunStrict(file, outputs_ / name);
      if (line.is_null()) continue;
      std::filesystem::create_symlink(file, inputs_ / name);
      losses_[name] = Kinds(line);
    }
  }

  void CompareAll() {
    if (!HasProgram("exiftool")) return;
    const auto before = TagsInFolder(inputs_.Path()), after = TagsInFolder(outputs_.Path());
    for (const auto& [name, kinds] : losses_) {
      if (!before.contains(name)) continue;
      ASSERT_TRUE(after.contains(name)) << name;
      const std::string file = std::filesystem::read_symlink(inputs_ / name).string();
      Compare(name + " " + file, before.at(name), after.at(name), kinds);
      ExpectUpright(file, after.at(name));
    }
  }

  static void ExpectUpright(const std::string& file, const json& after) {
    const json orientation = TagOf(after, {"IFD0:Orientation", "XMP-tiff:Orientation"});
    if (!orientation.is_null()) {
      EXPECT_EQ(orientation, 1) << file;
    }
  }

  TempFolder inputs_;
  size_t number_ = 0;
  std::map<std::string, std::set<std::string>> losses_;
  TempFolder outputs_;
};

TEST_P(StatedLosses, Should_BeThoseThatAnotherProgramFinds) {
  for (const char* kind : {"exif", "jpeg", "png", "tiff"}) RunAll(kind, 9);
  RunAll("geotiff", 5);
  if (!MayRefuseAll(GetParam().words[0])) {
    EXPECT_GT(losses_.size(), 0u);
  }
  CompareAll();
}

const std::string kMark = RASTERKIT_SAMPLES "/plan.png";

INSTANTIATE_TEST_SUITE_P(
    Verbs, StatedLosses,
    testing::Values(VerbLine{"Convert", {"convert"}},
                    VerbLine{"Quarter", {"rotate", "--angle", "90"}},
                    VerbLine{"Angle", {"rotate", "--angle", "33.3"}},
                    VerbLine{"Mirror", {"mirror", "--vertical"}},
                    VerbLine{"Crop", {"crop", "--rect", "0,0,1,1"}},
                    VerbLine{"Resize", {"resize", "--size", "40x30"}}, VerbLine{"Gray", {"gray"}},
                    VerbLine{"Mono", {"mono"}},
                    VerbLine{"Brightness", {"brightness", "--percent", "30"}},
                    VerbLine{"Contrast", {"contrast", "--percent", "-30"}},
                    VerbLine{"Whiten", {"whiten", "--threshold", "128"}},
                    VerbLine{"Recolor", {"recolor", "--threshold", "128", "--color", "102030"}},
                    VerbLine{"KeyColor", {"key-color", "--color", "102030"}},
                    VerbLine{"PdfWhite", {"pdf-white"}}, VerbLine{"Opaque", {"opaque"}},
                    VerbLine{"SwapAlpha", {"swap-alpha"}},
                    VerbLine{"Palette", {"palette", "--first", "102030"}},
                    VerbLine{"Watermark", {"watermark", "--with", kMark}},
                    VerbLine{"Adjust", {"adjust", "--sharpen", "40", "--red", "10"}},
                    VerbLine{"Combine", {"combine", "--with", kMark}}),
    [](const auto& info) { return info.param.name; });

}  // namespace
}  // namespace rasterkit::test
