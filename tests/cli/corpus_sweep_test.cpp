// Real files of other people: what `info --json` says of each, beside what the corpus' index says.

#include <cmath>
#include <cstdio>
#include <map>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include <rasterkit/host/runtime/errors.h>
#include <rasterkit/jpegexif/photo_queries.h>

#include "tests/cli/run_tool.h"
#include "tests/support/corpus.h"

namespace rasterkit::test {
namespace {

using nlohmann::json;

/// Files whose index entry is not what Rasterkit says, and why that is right.
const std::map<std::string, std::string> kExceptions = {
    {"exif/exifsample__Canon_DIGITAL_IXUS_400.jpg", "only the XMP packet states an orientation"},
    {"exif/exifsample__image01088.jpg", "only the XMP packet states an orientation"},
    {"exif/exifsample__image01137.jpg", "only the XMP packet states an orientation"},
    {"exif/me__Nikon_D5000.jpg",
     "only the XMP packet states an orientation; the EXIF block has a whole position, its entries "
     "out of order"},
    {"exif/openimagei__corrupt-iptc-8011.jpg", "the sound rows are given, the rest is white"},
    {"jpeg/irsjpg__786b67badc535fc95a4a76c29a0e0146.jpg",
     "cut off behind the first scans, which make a coarse picture"},
};

class CorpusSweep : public testing::TestWithParam<std::string> {
 protected:
  /// Checks a field unless the file is an exception.
  void Expect(bool holds, const CorpusEntry& entry, const std::string& what) {
    const std::string& path = entry.at("path");
    if (!holds) deviations_.insert(path);
    EXPECT_TRUE(holds || kExceptions.count(path) != 0) << path << ": " << what;
  }

  /// An exception that no longer is one has to go.
  void CheckExceptions() {
    for (const auto& [path, reason] : kExceptions) {
      if (path.rfind(GetParam() + "/", 0) != 0) continue;
      EXPECT_EQ(deviations_.count(path), 1u) << path << " is no exception any more: " << reason;
    }
  }

  void CheckLoading(const CorpusEntry& entry, const json& facts) {
    const bool ok = facts.at("ok");
    if (entry.at("expected") == "loads")
      Expect(ok, entry, "should load: " + facts.at("error").dump());
    if (entry.at("expected") == "must-be-refused") Expect(!ok, entry, "should be refused");
    if (!ok) Expect(facts.at("error").is_string(), entry, "refused without an error");
  }

  void CheckSize(const CorpusEntry& entry, const json& facts) {
    if (!facts.at("ok") || entry.at("width").empty()) return;
    Expect(facts.at("width") == std::stoi(entry.at("width")), entry,
           "width " + facts.at("width").dump());
    Expect(facts.at("height") == std::stoi(entry.at("height")), entry,
           "height " + facts.at("height").dump());
  }

  void CheckOrientation(const CorpusEntry& entry, const json& facts) {
    if (!facts.at("ok")) return;
    const std::string& text = entry.at("orientation");
    const bool isKnown = !text.empty() && text != "0";
    const json expected = isKnown ? json(std::stoi(text)) : json();
    Expect(facts.at("orientation") == expected, entry,
           "orientation " + facts.at("orientation").dump());
  }

  void CheckPosition(const CorpusEntry& entry, const json& facts) {
    const std::string& text = entry.at("gps");
    if (!facts.at("ok")) return;
    if (text.empty())
      return Expect(facts.at("gps").is_null(), entry, "has a position: " + facts.at("gps").dump());
    double latitude = 0, longitude = 0;
    std::sscanf(text.c_str(), "%lf,%lf", &latitude, &longitude);
    if (!facts.at("gps").is_object()) return Expect(false, entry, "has no position");
    constexpr double tolerance = 1e-6;
    Expect(std::abs(facts["gps"]["latitude"].get<double>() - latitude) < tolerance, entry,
           "latitude " + facts["gps"]["latitude"].dump());
    Expect(std::abs(facts["gps"]["longitude"].get<double>() - longitude) < tolerance, entry,
           "longitude " + facts["gps"]["longitude"].dump());
  }

  std::set<std::string> deviations_;

  /// The tool's rotation is the photo query's, whatever that is.
  void CheckRotation(const std::string& file, const CorpusEntry& entry, const json& facts) {
    if (!facts.at("ok") || facts.at("type") != "jpeg") return;
    int rotation = 0;
    try {
      GetJpgRotation(file, rotation);
      Expect(facts.at("rotation") == rotation, entry, "rotation " + facts.at("rotation").dump());
    } catch (const Error&) {
      Expect(facts.at("rotation").is_null(), entry, "rotation where the query raises an error");
    }
  }
};

TEST_P(CorpusSweep, Info_Should_SayWhatTheIndexSays) {
  const auto folder = CorpusFolder();
  if (folder.empty()) GTEST_SKIP() << "no corpus (RASTERKIT_CORPUS)";
  const std::vector<CorpusEntry> entries = CorpusEntries(GetParam());
  ASSERT_FALSE(entries.empty());
  std::vector<std::string> line = {"info", "--json"};
  for (const CorpusEntry& entry : entries) line.push_back((folder / entry.at("path")).string());
  const ToolResult result = RunTool(line);
  EXPECT_TRUE(result.code == 0 || result.code == 3) << result.code;
  const std::vector<json> facts = JsonLines(result.out);
  ASSERT_EQ(facts.size(), entries.size()) << "a line for every file, whatever it is like";
  for (size_t i = 0; i < entries.size(); ++i) {
    CheckLoading(entries[i], facts[i]);
    CheckSize(entries[i], facts[i]);
    CheckOrientation(entries[i], facts[i]);
    CheckPosition(entries[i], facts[i]);
    CheckRotation((folder / entries[i].at("path")).string(), entries[i], facts[i]);
  }
  CheckExceptions();
}

INSTANTIATE_TEST_SUITE_P(Folders, CorpusSweep,
                         testing::Values("bmp", "jpeg", "exif", "png", "wrongext"),
                         [](const auto& info) { return info.param; });

}  // namespace
}  // namespace rasterkit::test
