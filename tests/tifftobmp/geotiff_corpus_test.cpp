// Real GeoTIFF and TIFF files: which of them are grids, and that their numbers are bit-exact.

#include <cstdio>
#include <cstring>
#include <fstream>
#include <optional>

#include <gtest/gtest.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/tifftobmp/geotiff_reader.h>
#include <rasterkit/tifftobmp/wic_bitmap.h>

#include "tests/support/corpus.h"
#include "tests/support/temp_folder.h"

namespace rasterkit {
namespace {

using test::CorpusEntry;

/// "key=value; " in the facts of an entry; empty if there is no such key.
std::string Fact(const CorpusEntry& entry, const std::string& key) {
  const std::string facts = "; " + entry.at("facts") + "; ";
  const size_t place = facts.find("; " + key + "=");
  if (place == std::string::npos) return "";
  const size_t start = place + key.size() + 3;
  return facts.substr(start, facts.find("; ", start) - start);
}

bool HasOnlyOneMeaningfulSample(const CorpusEntry& entry) {
  return Fact(entry, "photometric").rfind("min-is-", 0) == 0 &&
         Fact(entry, "extra_samples").find("alpha") == std::string::npos;
}

/// Format of the file's numbers; no value for pairs of numbers and for unusual depths.
std::optional<TWICFloatFormat> ExpectedFloatFormat(const CorpusEntry& entry) {
  if (!HasOnlyOneMeaningfulSample(entry)) return ffNoFloat;
  const std::string bits = entry.at("bits").substr(0, entry.at("bits").find('x'));
  const std::string numbers = Fact(entry, "sample_format");
  if (numbers.find("complex") != std::string::npos) return std::nullopt;
  if (bits == "32" && numbers == "IEEE floating point") return ffSingle;
  if (bits == "16") {
    return numbers.empty() || numbers == "unsigned integer" ? ffWord : ffSmallInt;
  }
  const bool isUsual = bits == "1" || bits == "4" || bits == "8" || bits == "32" || bits == "64";
  return isUsual ? std::optional(ffNoFloat) : std::nullopt;
}

struct Grid {
  bool wasRead = false;
  std::unique_ptr<TBitmap> bitmap;
  TWICFloatFormat floatFormat = ffNoFloat;
};

/// No value if the file was rejected.
std::optional<Grid> Read(const std::string& fileName) {
  Grid grid;
  try {
    grid.wasRead = ReadGeoTiffIntoBitmap(fileName, grid.bitmap, grid.floatFormat);
  } catch (const Error& error) {
    EXPECT_FALSE(error.Reason().empty());
    EXPECT_EQ(error.File(), fileName);
    EXPECT_EQ(grid.bitmap, nullptr);
    return std::nullopt;
  }
  return grid;
}

void ExpectGrid(const CorpusEntry& entry, const Grid& grid, TWICFloatFormat expected) {
  EXPECT_EQ(grid.floatFormat, expected);
  ASSERT_EQ(grid.wasRead, expected != ffNoFloat);
  ASSERT_EQ(grid.bitmap != nullptr, grid.wasRead);
  if (!grid.wasRead) return;
  EXPECT_EQ(grid.bitmap->PixelFormat(), expected == ffSingle ? pf32bit : pf16bit);
  EXPECT_EQ(std::to_string(grid.bitmap->Width()), entry.at("width"));
  EXPECT_EQ(std::to_string(grid.bitmap->Height()), entry.at("height"));
}

class GeoTiffCorpus : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    if (test::CorpusFolder().empty()) GTEST_SKIP() << "no corpus";
  }
};
INSTANTIATE_TEST_SUITE_P(Folders, GeoTiffCorpus, testing::Values("geotiff", "tiff"),
                         [](const auto& info) { return std::string(info.param); });

TEST_P(GeoTiffCorpus, Grids_Should_BeTold_From_Pictures) {
  int grids = 0, pictures = 0;
  for (const CorpusEntry& entry : test::CorpusEntries(GetParam())) {
    SCOPED_TRACE(entry.at("path"));
    const auto grid = Read((test::CorpusFolder() / entry.at("path")).string());
    if (entry.at("expected") == "must-be-refused") {
      EXPECT_FALSE(grid && grid->wasRead);
      continue;
    }
    EXPECT_TRUE(grid || entry.at("expected") == "loads-with-warning");
    const auto expected = ExpectedFloatFormat(entry);
    if (!grid || !expected) continue;
    ExpectGrid(entry, *grid, *expected);
    (grid->wasRead ? grids : pictures) += 1;
  }
  EXPECT_GE(grids, 5);
  EXPECT_GE(pictures, 10);
}

/// The first band as another reader decodes it: rows of samples, little-endian.
std::string RawBand(const std::string& fileName, const test::TempFolder& folder) {
  const std::string raw = folder / "band";
  const std::string command =
      "gdal_translate -q -of ENVI -b 1 '" + fileName + "' '" + raw + "' >/dev/null 2>&1";
  return std::system(command.c_str()) == 0 ? test::ReadFile(raw) : "";
}

bool SameNumbers(const std::string& raw, const TBitmap& bitmap) {
  const size_t rowBytes = bitmap.Content().RowBytes();
  if (raw.size() != rowBytes * static_cast<size_t>(bitmap.Height())) return false;
  for (int y = 0; y < bitmap.Height(); ++y) {
    const char* row = raw.data() + static_cast<size_t>(y) * rowBytes;
    if (std::memcmp(row, bitmap.ScanLine(y), rowBytes) != 0) return false;
  }
  return true;
}

TEST_P(GeoTiffCorpus, Numbers_Should_EqualThoseOfAnIndependentReader) {
  if (std::system("gdal_translate --version >/dev/null 2>&1") != 0) {
    GTEST_SKIP() << "gdal_translate is not installed";
  }
  const test::TempFolder folder;
  int compared = 0;
  for (const CorpusEntry& entry : test::CorpusEntries(GetParam())) {
    if (entry.at("expected") != "loads") continue;
    const std::string name = (test::CorpusFolder() / entry.at("path")).string();
    const auto grid = Read(name);
    if (!grid || !grid->wasRead) continue;
    const std::string raw = RawBand(name, folder);
    if (raw.empty()) continue;
    EXPECT_TRUE(SameNumbers(raw, *grid->bitmap)) << entry.at("path");
    ++compared;
  }
  EXPECT_GE(compared, 5);
}

TEST_P(GeoTiffCorpus, EveryFile_Should_LoadAsAPicture_Or_BeRefused) {
  for (const CorpusEntry& entry : test::CorpusEntries(GetParam())) {
    SCOPED_TRACE(entry.at("path"));
    TWICBitmap bitmap;
    bool wasLoaded = true;
    try {
      bitmap.LoadFromFile((test::CorpusFolder() / entry.at("path")).string());
    } catch (const Error&) {
      wasLoaded = false;
    }
    EXPECT_TRUE(wasLoaded || entry.at("expected") != "loads");
    EXPECT_FALSE(wasLoaded && entry.at("expected") == "must-be-refused");
    if (!wasLoaded) continue;
    EXPECT_FALSE(bitmap.Transparent());
    if (entry.at("expected") != "loads") continue;
    EXPECT_EQ(std::to_string(bitmap.Width()), entry.at("width"));
    EXPECT_EQ(std::to_string(bitmap.Height()), entry.at("height"));
  }
}

}  // namespace
}  // namespace rasterkit
