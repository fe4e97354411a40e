// Compares grids with GDAL. Each test is skipped if GDAL or the corpus is missing.

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <map>
#include <set>
#include <sstream>

#include <gmock/gmock.h>

#include <rasterkit/codecs/tiff/tiff_facts.h>
#include <rasterkit/runtime/files/stream.h>
#include <rasterkit/tifftobmp/geotiff_reader.h>

#include "tests/support/corpus.h"
#include "tests/tool/support/gdal_peer.h"

namespace rasterkit::test {
namespace {

using nlohmann::json;

/// The first band of a file as GDAL reads it.
struct PeerGrid {
  /// "Float32" (also for halves and complex floats), "UInt16", "Int16".
  std::string type;
  std::vector<uint8_t> values;
  json noData;
};

/// GDAL converts halves to floats; of complex numbers only the real parts are compared.
std::string RealType(const std::string& type) {
  if (type == "CInt16") return "Int16";
  return type == "CFloat32" ? "Float32" : type;
}

/// Nothing if GDAL cannot read the file.
std::optional<PeerGrid> ReadWithGdal(const std::string& file, const TempFolder& folder) {
  const json info = GdalInfo(file);
  if (!info.is_object()) return std::nullopt;
  const json& band = info["bands"][0];
  PeerGrid grid{RealType(band["type"]), {}, band.value("noDataValue", json())};
  const std::string raw = folder / "raw";
  std::filesystem::remove(raw);
  OutputOf("gdal_translate -q -of ENVI -b 1 -ot " + grid.type + " " + Quoted(file) + " " +
           Quoted(raw));
  if (!std::filesystem::exists(raw)) return std::nullopt;
  grid.values = ReadBytes(raw);
  return grid;
}

/// Statistics by a plain loop.
struct Summary {
  uint64_t values = 0;
  double minimum = 0, maximum = 0, mean = 0;
};

template <class T>
Summary SummaryOf(const PeerGrid& grid) {
  Summary result;
  double sum = 0;
  for (size_t at = 0; at + sizeof(T) <= grid.values.size(); at += sizeof(T)) {
    T value;
    std::memcpy(&value, &grid.values[at], sizeof value);
    const bool isNothing =
        grid.noData.is_number() && value == static_cast<T>(grid.noData.get<double>());
    if (isNothing || !std::isfinite(static_cast<double>(value))) continue;
    const auto number = static_cast<double>(value);
    result.minimum = result.values == 0 ? number : std::min(result.minimum, number);
    result.maximum = result.values == 0 ? number : std::max(result.maximum, number);
    sum += number;
    ++result.values;
  }
  result.mean = sum / static_cast<double>(std::max<uint64_t>(result.values, 1));
  return result;
}

Summary SummaryOfGrid(const PeerGrid& grid, bool isSigned) {
  if (grid.type == "Float32") return SummaryOf<float>(grid);
  if (grid.type == "Float64") return SummaryOf<double>(grid);
  if (grid.type == "Int32") return SummaryOf<int32_t>(grid);
  if (grid.type == "UInt32") return SummaryOf<uint32_t>(grid);
  // GDAL calls bytes with and without a sign by the same name.
  if (grid.type == "Byte") {
    return isSigned ? SummaryOf<int8_t>(grid) : SummaryOf<uint8_t>(grid);
  }
  return grid.type == "UInt16" ? SummaryOf<uint16_t>(grid) : SummaryOf<int16_t>(grid);
}

/// GDAL's name of a number type.
std::string NameOfGdal(const std::string& type) {
  static const std::map<std::string, std::string> kNames = {
      {"uint16", "UInt16"},   {"int16", "Int16"},     {"uint32", "UInt32"},
      {"int32", "Int32"},     {"uint8", "Byte"},      {"int8", "Byte"},
      {"float64", "Float64"}, {"float32", "Float32"}, {"float16", "Float32"}};
  const auto found = kNames.find(type);
  return found == kNames.end() ? type : found->second;
}

void CompareStatistics(const json& ours, const PeerGrid& grid, const std::string& file) {
  const Summary theirs = SummaryOfGrid(grid, ours["grid"] != "uint8");
  EXPECT_EQ(ours["values"], theirs.values) << file;
  if (theirs.values == 0) return;
  EXPECT_EQ(ours["minimum"], theirs.minimum) << file;
  EXPECT_EQ(ours["maximum"], theirs.maximum) << file;
  const double range = std::max(std::abs(theirs.minimum), std::abs(theirs.maximum));
  EXPECT_NEAR(ours["mean"].get<double>(), theirs.mean, 1e-12 * range) << file;
}

/// All values bit by bit, from the library's routine.
void CompareValues(const PeerGrid& grid, const std::string& file) {
  std::unique_ptr<TBitmap> bitmap;
  TWICFloatFormat format = ffNoFloat;
  ASSERT_TRUE(ReadGeoTiffIntoBitmap(file, bitmap, format)) << file;
  const size_t bytes =
      static_cast<size_t>(bitmap->Width()) * (bitmap->PixelFormat() == pf32bit ? 4 : 2);
  ASSERT_EQ(bytes * static_cast<size_t>(bitmap->Height()), grid.values.size()) << file;
  for (int y = 0; y < bitmap->Height(); ++y)
    ASSERT_EQ(std::memcmp(bitmap->ScanLine(y), &grid.values[static_cast<size_t>(y) * bytes], bytes),
              0)
        << file << " row " << y;
}

/// False if GDAL cannot read the file.
bool CompareGrid(const json& ours, const std::string& file, const TempFolder& folder) {
  const auto grid = ReadWithGdal(file, folder);
  if (!grid) return false;
  const std::string type = ours["grid"];
  EXPECT_EQ(grid->type, NameOfGdal(type)) << file;
  CompareStatistics(ours, *grid, file);
  // The types that the library's routine gives, with all their bits.
  const std::set<std::string> exported = {"float32", "uint16", "int16"};
  TFileStream stream(file);
  const TiffFacts facts = ReadTiffFacts(stream);
  const bool isWhole = facts.bitsPerSample % 16 == 0;
  if (exported.contains(type) && isWhole) CompareValues(*grid, file);
  return true;
}

/// GDAL's value at a column and row, or with `-geoloc` at a map point.
double ValueOfGdal(const std::string& options, const std::string& file, const json& point) {
  std::ostringstream command;
  command.precision(17);
  command << "gdallocationinfo -valonly -b 1 " << options << Quoted(file) << " "
          << point[0].get<double>() << " " << point[1].get<double>();
  const std::string text = OutputOf(command.str());
  return text.empty() ? std::nan("") : std::stod(text);
}

/// The tool's values at `pixels` in GDAL's format, each by its pixel and by its map point.
void CompareAnswers(const std::string& file, const std::vector<std::string>& pixels) {
  std::vector<std::string> line = {"geotiff", "--json", file};
  for (const std::string& pixel : pixels) line.insert(line.end(), {"--at", pixel});
  const json ours = JsonLines(RunTool(line).out).at(0);
  for (const json& answer : ours["at"]) {
    ASSERT_TRUE(answer["value"].is_number()) << file << answer;
    // gdallocationinfo prints only 15 digits of a float.
    const double value = answer["value"], tolerance = 1e-14 * std::abs(value);
    EXPECT_NEAR(value, ValueOfGdal("", file, answer["pixel"]), tolerance) << file << answer;
    if (!answer["map"].is_array()) continue;
    EXPECT_NEAR(value, ValueOfGdal("-geoloc ", file, answer["map"]), tolerance) << file << answer;
  }
}

const std::string kTerrain = std::string(RASTERKIT_SAMPLES) + "/terrain.tif";

TEST_F(GdalPeer, Gdal_Should_AgreeOnTheSampleTerrain) {
  const json ours = JsonLines(RunTool({"geotiff", "--json", kTerrain}).out).at(0);
  EXPECT_TRUE(CompareGrid(ours, kTerrain, folder_));
  EXPECT_GT(ours["nodata_values"], 0);
}

TEST_F(GdalPeer, Gdallocationinfo_Should_AgreeOnSingleValues) {
  CompareAnswers(kTerrain, {"0,0", "14,13", "38,22", "39,0"});
}

TEST_F(GdalCorpus, EveryGrid_Should_HaveTheValuesThatGdalReads) {
  std::set<std::string> types;
  int compared = 0;
  for (const char* folder : {"geotiff", "tiff", "worldfile"}) {
    for (const CorpusEntry& entry : CorpusEntries(folder)) {
      const std::string file = (CorpusFolder() / entry.at("path")).string();
      const ToolResult result = RunTool({"geotiff", "--json", file});
      if (result.code != 0) continue;
      const json ours = JsonLines(result.out).at(0);
      if (!CompareGrid(ours, file, folder_)) continue;
      types.insert(ours["grid"].get<std::string>());
      ++compared;
    }
  }
  EXPECT_GT(compared, 20);
  EXPECT_THAT(types, testing::IsSupersetOf({"float32", "uint16", "int16"}));
}

TEST_F(GdalCorpus, SingleValues_Should_BeThoseOfGdallocationinfo) {
  for (const char* name : {"geotiff/gdal__dem-hills.tiff", "geotiff/gdal__int16_big_endian.tif",
                           "geotiff/geotiff__zh_dem_25.tif", "geotiff/riotiler__green.tif"}) {
    const std::filesystem::path file = CorpusFolder() / name;
    if (std::filesystem::exists(file)) CompareAnswers(file, {"0,0", "7,12", "19,3"});
  }
}

TEST_F(GdalCorpus, EveryPositionOfATiff_Should_BeTheGeotransformThatGdalFinds) {
  int compared = 0;
  for (const CorpusEntry& entry : CorpusEntries("geotiff")) {
    const std::string file = (CorpusFolder() / entry.at("path")).string();
    const ToolResult result = RunTool({"geotiff", "--json", file});
    const auto lines = JsonLines(result.out);
    if (result.code != 0 || lines.at(0)["geo"].empty()) continue;
    const std::vector<double> affine = lines[0]["geo"][0]["affine"];
    ExpectSamePosition({affine[4] - affine[0] / 2 - affine[2] / 2, affine[0], affine[2],
                        affine[5] - affine[1] / 2 - affine[3] / 2, affine[1], affine[3]},
                       GeoTransform(GdalInfo(file)), entry.at("path"));
    ++compared;
  }
  EXPECT_GT(compared, 3);
}

}  // namespace
}  // namespace rasterkit::test
