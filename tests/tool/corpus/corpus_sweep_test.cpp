// Compares `info --json` with the index of the corpus.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <optional>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include <rasterkit/jpegexif/photo_queries.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/corpus.h"
#include "tests/tool/support/readable_pixels.h"
#include "tests/tool/support/run_tool.h"

namespace rasterkit::test {
namespace {

using nlohmann::json;

/// Files where Rasterkit rightly differs from the index, with the reason.
const std::map<std::string, std::string> kExceptions = {
    {"exif/exifsample__Canon_DIGITAL_IXUS_400.jpg", "only the XMP packet states an orientation"},
    {"exif/exifsample__image01088.jpg", "only the XMP packet states an orientation"},
    {"exif/exifsample__image01137.jpg", "only the XMP packet states an orientation"},
    {"exif/me__Nikon_D5000.jpg",
     "only the XMP packet states an orientation; the EXIF block has a whole position, its entries "
     "out of order"},
    {"exif/openimagei__corrupt-iptc-8011.jpg", "the sound rows are given, the rest is white"},
    {"geotiff/riotiler__cog_gcps.tif", "the index does not count its smaller copies"},
    {"geotiff/riotiler__cog_nodata_nan.tif", "the index does not count its smaller copy"},
    {"jpeg/irsjpg__786b67badc535fc95a4a76c29a0e0146.jpg",
     "cut off after the first scans, which make a coarse picture"},
    {"tiff/cimg__BigTIFFSubIFD8.tif", "the index also counts directories beside the chain"},
    {"tiff/cimg__bad-interoperability.tiff", "the index counts the EXIF directory as a page"},
    {"tiff/tm__BigTIFFSubIFD4.tif", "the index also counts directories beside the chain"},
    {"worldfile/geotools__s2_13bands_wld.tif", "the index counts one sample of 13"},
};

/// World files are beside their pictures.
std::vector<CorpusEntry> Pictures(const std::string& folder) {
  std::vector<CorpusEntry> entries = CorpusEntries(folder);
  entries.erase(std::remove_if(entries.begin(), entries.end(),
                               [](const CorpusEntry& entry) {
                                 return entry.at("exercises").find("pair: world") !=
                                        std::string::npos;
                               }),
                entries.end());
  return entries;
}

class CorpusSweep : public testing::TestWithParam<std::string> {
 protected:
  /// Checks a field unless the file is an exception.
  void Expect(bool holds, const CorpusEntry& entry, const std::string& what) {
    const std::string& path = entry.at("path");
    if (!holds) deviations_.insert(path);
    EXPECT_TRUE(holds || kExceptions.count(path) != 0) << path << ": " << what;
  }

  /// An exception that is not needed must be removed.
  void CheckExceptions() {
    for (const auto& [path, reason] : kExceptions) {
      if (path.rfind(GetParam() + "/", 0) != 0) continue;
      EXPECT_EQ(deviations_.count(path), 1u) << path << " is no exception any more: " << reason;
    }
  }

  void CheckLoading(const CorpusEntry& entry, const json& facts) {
    const bool ok = facts.at("ok") && (!facts.contains("verified") || HasReadablePixels(facts));
    if (entry.at("expected") == "loads")
      Expect(ok, entry, "should load: " + facts.at("error").dump());
    if (entry.at("expected") == "must-be-refused") Expect(!ok, entry, "should be refused");
    if (!ok) Expect(facts.at("error").is_string(), entry, "refused without an error");
  }

  void CheckSize(const CorpusEntry& entry, const json& facts) {
    if (!facts.at("ok") || entry.at("width").empty()) return;
    // The index states metafile sizes in pixels of the original device.
    if (!facts.at("metafile").is_null()) return;
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
    constexpr double kTolerance = 1e-6;
    Expect(std::abs(facts["gps"]["latitude"].get<double>() - latitude) < kTolerance, entry,
           "latitude " + facts["gps"]["latitude"].dump());
    Expect(std::abs(facts["gps"]["longitude"].get<double>() - longitude) < kTolerance, entry,
           "longitude " + facts["gps"]["longitude"].dump());
  }

  /// The number after `name=` among the other facts of the index.
  static std::optional<int> Fact(const CorpusEntry& entry, const std::string& name) {
    const std::string& facts = entry.at("facts");
    const size_t at = facts.find(name + "=");
    if (at == std::string::npos) return std::nullopt;
    return std::atoi(facts.c_str() + at + name.size() + 1);
  }

  void CheckPages(const CorpusEntry& entry, const json& facts) {
    if (!facts.at("ok")) return;
    const bool isTiff = facts.at("type") == "tiff";
    const int pages = Fact(entry, isTiff ? "directories" : "frames").value_or(1);
    Expect(facts.at("pages") == pages, entry, "pages " + facts.at("pages").dump());
  }

  /// The index states depths as "8x3": bits per sample and samples per pixel.
  void CheckSamples(const CorpusEntry& entry, const json& facts) {
    int bits = 0, samples = 0;
    if (facts.at("tiff").is_null() ||
        std::sscanf(entry.at("bits").c_str(), "%dx%d", &bits, &samples) != 2)
      return;
    Expect(facts["tiff"]["bits_per_sample"] == bits && facts["tiff"]["samples"] == samples, entry,
           "samples " + facts["tiff"].dump());
  }

  void CheckGeoTransform(const CorpusEntry& entry, const json& facts) {
    const std::string& text = entry.at("facts");
    const size_t at = text.find("geotransform=");
    if (at == std::string::npos || !facts.at("ok") || facts.at("geo").empty()) return;
    double t[6] = {};
    if (std::sscanf(text.c_str() + at, "geotransform=%lf,%lf,%lf,%lf,%lf,%lf", &t[0], &t[1], &t[2],
                    &t[3], &t[4], &t[5]) != 6)
      return;
    // The index counts from the corner of the first pixel, the tool from its center.
    const double expected[6] = {
        t[1], t[4], t[2], t[5], t[0] + (t[1] + t[2]) / 2, t[3] + (t[4] + t[5]) / 2};
    for (int i = 0; i < 6; ++i) {
      const double said = facts["geo"].back()["affine"][static_cast<size_t>(i)];
      Expect(std::abs(said - expected[i]) <= 1e-6 * std::max(1.0, std::abs(expected[i])), entry,
             "position " + facts["geo"].dump());
    }
  }

  std::set<std::string> deviations_;

  /// `rotation` is the result of the photo query.
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
  const std::vector<CorpusEntry> entries = Pictures(GetParam());
  ASSERT_FALSE(entries.empty());
  std::vector<std::string> line = {"info", "--json", "--verify"};
  for (const CorpusEntry& entry : entries) line.push_back((folder / entry.at("path")).string());
  const ToolResult result = RunTool(line);
  EXPECT_TRUE(result.code == 0 || result.code == 3) << result.code;
  const std::vector<json> facts = JsonLines(result.out);
  ASSERT_EQ(facts.size(), entries.size()) << "a line for every file, in any state";
  for (size_t i = 0; i < entries.size(); ++i) {
    CheckLoading(entries[i], facts[i]);
    if (!facts[i].value("verified", true)) continue;
    CheckSize(entries[i], facts[i]);
    CheckOrientation(entries[i], facts[i]);
    CheckPosition(entries[i], facts[i]);
    CheckPages(entries[i], facts[i]);
    CheckSamples(entries[i], facts[i]);
    CheckGeoTransform(entries[i], facts[i]);
    CheckRotation((folder / entries[i].at("path")).string(), entries[i], facts[i]);
  }
  CheckExceptions();
}

INSTANTIATE_TEST_SUITE_P(Folders, CorpusSweep,
                         testing::Values("bmp", "jpeg", "exif", "png", "tiff", "geotiff", "gif",
                                         "webp", "worldfile", "wrongext"),
                         [](const auto& info) { return info.param; });

}  // namespace
}  // namespace rasterkit::test
