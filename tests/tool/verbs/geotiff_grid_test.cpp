// The verb geotiff with one file and no output: the contents of a grid.

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/tifftobmp/geotiff_reader.h>

#include "samples/grid_tiff.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/run_tool.h"
#include "tests/tool/support/sample_files.h"

namespace rasterkit::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

class CliGeoTiffGrid : public testing::Test {
 protected:
  CliGeoTiffGrid() {
    grid_.width = 3;
    grid_.height = 2;
  }

  void Save(const std::vector<float>& values) {
    grid_.values.clear();
    for (const float value : values) {
      const auto bits = std::bit_cast<uint32_t>(value);
      for (int i = 0; i < 4; ++i) grid_.values.push_back(static_cast<uint8_t>(bits >> (8 * i)));
    }
    WriteBytes(file_, samples::GridTiffBytes(grid_));
  }

  void SaveWords(int sampleFormat, const std::vector<int>& values) {
    grid_.bits = 16;
    grid_.sampleFormat = sampleFormat;
    grid_.values.clear();
    for (const int value : values) {
      grid_.values.push_back(static_cast<uint8_t>(value));
      grid_.values.push_back(static_cast<uint8_t>(value >> 8));
    }
    WriteBytes(file_, samples::GridTiffBytes(grid_));
  }

  json Show(std::vector<std::string> options = {}, int code = 0) {
    options.insert(options.begin(), {"geotiff", "--json", file_});
    const ToolResult result = RunTool(options);
    EXPECT_EQ(result.code, code) << result.err;
    const auto lines = JsonLines(result.out);
    EXPECT_EQ(lines.size(), 1u);
    return lines.empty() ? json() : lines[0];
  }

  TempFolder folder_;
  std::string file_ = folder_ / "grid.tif";
  samples::GridTiff grid_;
};

TEST_F(CliGeoTiffGrid, Floats_Should_HaveSizeTypeAndRange) {
  Save({1.5f, -2.25f, 3, 4, 0.1f, 6});
  const json grid = Show();
  EXPECT_EQ(grid["schema"], 1);
  EXPECT_EQ(grid["file"], file_);
  EXPECT_EQ(grid["ok"], true);
  EXPECT_TRUE(grid["error"].is_null());
  EXPECT_EQ(grid["grid"], "float32");
  EXPECT_EQ(grid["width"], 3);
  EXPECT_EQ(grid["height"], 2);
  EXPECT_EQ(grid["minimum"], -2.25);
  EXPECT_EQ(grid["maximum"], 6);
  EXPECT_EQ(grid["mean"], (1.5 - 2.25 + 3 + (4 + static_cast<double>(0.1f) + 6)) / 6);
  EXPECT_EQ(grid["values"], 6);
  EXPECT_TRUE(grid["nodata"].is_null());
  EXPECT_EQ(grid["geo"], json::array());
  EXPECT_EQ(grid["at"], json::array());
}

TEST_F(CliGeoTiffGrid, Text_Should_SayTheSame) {
  grid_.noData = "-9999";
  grid_.pixelScale = {2, 2, 0};
  grid_.tiePoints = {0, 0, 0, 100, 200, 0};
  Save({1.5f, -9999, 3, 4, 0.1f, 6});
  const ToolResult result = RunTool({"geotiff", file_, "--at", "1,1", "--at", "1,0"});
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.out, file_ +
                            ": grid of 3 x 2, float32\n"
                            "  minimum 0.1, maximum 6, mean 2.92\n"
                            "  5 values, 1 without data; no data is -9999\n"
                            "  pixel scale and tie point: pixel 0,0 has its center at 101,199; "
                            "one column on adds 2,0, one row down adds 0,-2\n"
                            "  at 1,1 (map 103,197): 0.1\n"
                            "  at 1,0 (map 103,199): -9999, no data\n");
}

TEST_F(CliGeoTiffGrid, Words_Should_BeReadBySign) {
  SaveWords(1, {1, 2, 3, 65535, 40000, 0});
  json grid = Show();
  EXPECT_EQ(grid["grid"], "uint16");
  EXPECT_EQ(grid["minimum"], 0);
  EXPECT_EQ(grid["maximum"], 65535);
  SaveWords(2, {1, 2, 3, -32768, 32767, 0});
  grid = Show();
  EXPECT_EQ(grid["grid"], "int16");
  EXPECT_EQ(grid["minimum"], -32768);
  EXPECT_EQ(grid["maximum"], 32767);
}

TEST_F(CliGeoTiffGrid, NumbersWhoseLeastIsWhite_Should_StayAsTheyAre) {
  grid_.noData = "11";
  grid_.isWhiteZero = true;
  for (const int sampleFormat : {1, 2}) {
    SaveWords(sampleFormat, {0, 11, 400, 11, 5, 470});
    const json grid = Show({"--at", "2,0"});
    EXPECT_EQ(grid["grid"], sampleFormat == 1 ? "uint16" : "int16");
    EXPECT_EQ(grid["minimum"], 0);
    EXPECT_EQ(grid["maximum"], 470);
    EXPECT_EQ(grid["nodata_values"], 2);
    EXPECT_EQ(grid["at"][0]["value"], 400);
  }
}

TEST_F(CliGeoTiffGrid, Halves_Should_BeReadAsNumbers) {
  // 1, -2, the least above 0, the greatest, infinity, not a number
  SaveWords(3, {0x3c00, 0xc000, 0x0001, 0x7bff, 0x7c00, 0x7e00});
  const json grid = Show({"--at", "2,0"});
  EXPECT_EQ(grid["grid"], "float16");
  EXPECT_EQ(grid["minimum"], -2);
  EXPECT_EQ(grid["maximum"], 65504);
  EXPECT_EQ(grid["values"], 4);
  EXPECT_EQ(grid["not_finite_values"], 2);
  EXPECT_EQ(grid["at"][0]["value"], std::ldexp(1.0, -24));
}

TEST_F(CliGeoTiffGrid, Values_Should_BeThoseOfTheLibrarysRoutine) {
  const std::vector<int> words = {1, 2, 3, 65535, 40000, 0};
  for (const int sampleFormat : {1, 2}) {
    SaveWords(sampleFormat, words);
    std::unique_ptr<TBitmap> bitmap;
    TWICFloatFormat format = ffNoFloat;
    ASSERT_TRUE(ReadGeoTiffIntoBitmap(file_, bitmap, format));
    EXPECT_EQ(format, sampleFormat == 1 ? ffWord : ffSmallInt);
    for (int i = 0; i < 6; ++i) {
      uint16_t word = 0;
      std::memcpy(&word, bitmap->ScanLine(i / 3) + i % 3 * 2, 2);
      const std::string pixel = std::to_string(i % 3) + "," + std::to_string(i / 3);
      const json value = Show({"--at", pixel})["at"][0]["value"];
      EXPECT_EQ(value, sampleFormat == 1 ? word : static_cast<int16_t>(word)) << pixel;
    }
  }
}

TEST_F(CliGeoTiffGrid, MissingRows_Should_BeWarnedAbout) {
  grid_.height = 1000;
  Save(std::vector<float>(1500, 7.5f));
  const ToolResult result = RunTool({"geotiff", "--json", file_});
  EXPECT_EQ(result.code, 0);
  EXPECT_THAT(result.err, testing::ContainsRegex("end early, 5[0-9]+ of 1000 rows are complete"));
  EXPECT_FALSE(JsonLines(result.out).at(0)["warnings"].empty());
}

TEST_F(CliGeoTiffGrid, NoData_Should_StayOutOfTheStatistics) {
  grid_.noData = "-9999";
  Save({-9999, 2, 4, -9999, 6, -9998.999f});
  const json grid = Show({"--at", "0,0", "--at", "1,0"});
  EXPECT_EQ(grid["nodata"], "-9999");
  EXPECT_EQ(grid["nodata_values"], 2);
  EXPECT_EQ(grid["values"], 4);
  EXPECT_EQ(grid["minimum"], static_cast<double>(-9998.999f));
  EXPECT_EQ(grid["at"][0]["value"], -9999);
  EXPECT_EQ(grid["at"][0]["nodata"], true);
  EXPECT_EQ(grid["at"][1]["nodata"], false);
}

TEST_F(CliGeoTiffGrid, NoData_Should_BeTheNearestFloat_When_TheTextIsDecimal) {
  const float lowest = std::numeric_limits<float>::lowest();
  for (const char* text : {"-3.4028234663852886e+38", "-3.40282346638529e+38", "-3.4028235e+38"}) {
    grid_.noData = text;
    Save({lowest, 1, 2, 3, 4, 5});
    EXPECT_EQ(Show()["nodata_values"], 1) << text;
    EXPECT_EQ(Show()["minimum"], 1) << text;
  }
  grid_.noData = "0.1";
  Save({0.1f, 1, 2, 3, 4, 5});
  EXPECT_EQ(Show()["nodata_values"], 1);
}

TEST_F(CliGeoTiffGrid, NoData_Should_BeNothing_When_TheTypeCannotHoldIt) {
  grid_.noData = "-9999";
  SaveWords(1, {55537, 2, 3, 4, 5, 6});
  EXPECT_EQ(Show()["nodata_values"], 0);
  grid_.noData = "-1.7976931348623157e+308";
  Save({std::numeric_limits<float>::lowest(), 1, 2, 3, 4, 5});
}

TEST_F(CliGeoTiffGrid, NaN_Should_BeNoDataWhenTheFileSaysSo_AndElseNotFinite) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const float infinity = std::numeric_limits<float>::infinity();
  Save({nan, 1, -infinity, infinity, 2, 3});
  json grid = Show({"--at", "0,0", "--at", "2,0"});
  EXPECT_EQ(grid["not_finite_values"], 3);
  EXPECT_EQ(grid["values"], 3);
  EXPECT_EQ(grid["minimum"], 1);
  EXPECT_EQ(grid["maximum"], 3);
  EXPECT_EQ(grid["at"][0]["value"], "nan");
  EXPECT_EQ(grid["at"][1]["value"], "-inf");
  grid_.noData = "nan";
  Save({nan, 1, -infinity, infinity, 2, 3});
  grid = Show({"--at", "0,0"});
  EXPECT_EQ(grid["nodata_values"], 1);
  EXPECT_EQ(grid["not_finite_values"], 2);
  EXPECT_EQ(grid["at"][0]["nodata"], true);
}

TEST_F(CliGeoTiffGrid, Statistics_Should_BeNull_When_NothingWasMeasured) {
  grid_.noData = "7";
  Save({7, 7, 7, 7, 7, 7});
  const json grid = Show();
  for (const char* field : {"minimum", "maximum", "mean"})
    EXPECT_TRUE(grid[field].is_null()) << field;
  EXPECT_EQ(grid["values"], 0);
  EXPECT_EQ(grid["nodata_values"], 6);
}

TEST_F(CliGeoTiffGrid, NoData_Should_BeWarnedAbout_When_ItIsNoNumber) {
  grid_.noData = "none";
  Save({1, 2, 3, 4, 5, 6});
  EXPECT_THAT(RunTool({"geotiff", file_}).err, HasSubstr("'none'"));
  EXPECT_EQ(Show()["values"], 6);
}

TEST_F(CliGeoTiffGrid, NoData_Should_NotSteerTheTerminal) {
  grid_.noData = "1\x1B[2J";
  Save({1, 2, 3, 4, 5, 6});
  for (const char* verb : {"geotiff", "info"}) {
    const ToolResult result = RunTool({verb, file_});
    EXPECT_EQ(result.code, 0);
    EXPECT_THAT(result.out, HasSubstr("no data is 1\\u001b[2J"));
    EXPECT_THAT(result.out + result.err, Not(HasSubstr("\x1B")));
  }
}

TEST_F(CliGeoTiffGrid, At_Should_CountColumnsAndRowsFromTheUpperLeft) {
  Save({1, 2, 3, 4, 5, 6});
  const json at = Show({"--at", "0,0", "--at", "2,0", "--at", "0,1", "--at", "2,1"})["at"];
  EXPECT_EQ(at[0]["value"], 1);
  EXPECT_EQ(at[1]["value"], 3);
  EXPECT_EQ(at[2]["value"], 4);
  EXPECT_EQ(at[3]["value"], 6);
  EXPECT_EQ(at[3]["pixel"], json({2, 1}));
  EXPECT_TRUE(at[3]["map"].is_null());
}

TEST_F(CliGeoTiffGrid, At_Should_Exit1_When_APointLiesOutside) {
  Save({1, 2, 3, 4, 5, 6});
  for (const char* outside : {"3,0", "0,2", "-1,0", "0,-1", "2147483647,0", "-2147483647,0"}) {
    const json at = Show({"--at", outside, "--at", "1,1"}, 1)["at"];
    EXPECT_TRUE(at[0]["value"].is_null()) << outside;
    EXPECT_EQ(at[1]["value"], 5);
  }
  const ToolResult text = RunTool({"geotiff", file_, "--at", "3,0"});
  EXPECT_EQ(text.code, 1);
  EXPECT_THAT(text.out, HasSubstr("at 3,0: outside"));
}

TEST_F(CliGeoTiffGrid, AtMap_Should_FindThePixelAroundThePoint) {
  grid_.pixelScale = {2, 3, 0};
  grid_.tiePoints = {0, 0, 0, 100, 200, 0};
  Save({1, 2, 3, 4, 5, 6});
  const json at = Show({"--at-map", "100,200", "--at-map", "101.9,197.1", "--at-map", "102,197",
                        "--at-map", "105.99,194.01"})["at"];
  EXPECT_EQ(at[0]["value"], 1);
  EXPECT_EQ(at[1]["value"], 1);
  EXPECT_EQ(at[2]["value"], 5);
  EXPECT_EQ(at[3]["value"], 6);
  EXPECT_EQ(at[3]["pixel"], json({2, 1}));
  EXPECT_EQ(at[3]["map"], json({105.99, 194.01}));
  for (const char* outside : {"106,195", "99.99,199", "101,200.01", "101,194", "1e300,0"})
    EXPECT_TRUE(Show({"--at-map", outside}, 1)["at"][0]["value"].is_null()) << outside;
}

TEST_F(CliGeoTiffGrid, AtMap_Should_CountFromCenters_When_PixelsArePoints) {
  grid_.pixelScale = {2, 3, 0};
  grid_.tiePoints = {0, 0, 0, 100, 200, 0};
  grid_.pixelIsPoint = true;
  Save({1, 2, 3, 4, 5, 6});
  const json grid = Show({"--at-map", "100.9,198.6", "--at-map", "101.1,198.4"});
  EXPECT_EQ(grid["at"][0]["value"], 1);
  EXPECT_EQ(grid["at"][1]["value"], 5);
  EXPECT_EQ(grid["geo"][0]["affine"], json({2, 0, 0, -3, 100, 200}));
}

TEST_F(CliGeoTiffGrid, AtMap_Should_FollowATurnedGrid) {
  // columns run north, rows run east
  grid_.transformation = {0, 2, 0, 100, 2, 0, 0, 200, 0, 0, 1, 0, 0, 0, 0, 1};
  Save({1, 2, 3, 4, 5, 6});
  const json grid = Show({"--at-map", "103,201", "--at-map", "101,205"});
  EXPECT_EQ(grid["geo"][0]["source"], "geotiff-transformation");
  EXPECT_EQ(grid["geo"][0]["affine"], json({0, 2, 2, 0, 101, 201}));
  EXPECT_EQ(grid["at"][0]["value"], 4);
  EXPECT_EQ(grid["at"][1]["value"], 3);
}

TEST_F(CliGeoTiffGrid, AtMap_Should_GoByTheWorldFile_When_ThereIsOne) {
  Save({1, 2, 3, 4, 5, 6});
  WriteText(folder_ / "grid.tfw", "10\n0\n0\n-10\n5\n95\n");
  const json grid = Show({"--at-map", "15,85"});
  EXPECT_EQ(grid["geo"][0]["source"], "worldfile");
  EXPECT_EQ(grid["geo"][0]["file"], folder_ / "grid.tfw");
  EXPECT_EQ(grid["at"][0]["value"], 5);
}

TEST_F(CliGeoTiffGrid, BadWorldFile_Should_BeIgnoredWithAWarning) {
  grid_.pixelScale = {2, 3, 0};
  grid_.tiePoints = {0, 0, 0, 100, 200, 0};
  Save({1, 2, 3, 4, 5, 6});
  WriteText(folder_ / "grid.tfw", "no numbers");
  const json grid = Show({"--at-map", "101,199"});
  EXPECT_EQ(grid["geo"][0]["source"], "geotiff");
  EXPECT_EQ(grid["at"][0]["value"], 1);
  EXPECT_THAT(grid["warnings"].dump(), HasSubstr("grid.tfw: line 1: "));
}

TEST_F(CliGeoTiffGrid, Disagreement_Should_BeWarnedAbout) {
  grid_.pixelScale = {2, 3, 0};
  grid_.tiePoints = {0, 0, 0, 100, 200, 0};
  Save({1, 2, 3, 4, 5, 6});
  WriteText(folder_ / "grid.tfw", "2\n0\n0\n-3\n103\n198.5\n");
  EXPECT_THAT(RunTool({"geotiff", file_}).err, HasSubstr("disagree by up to 1 pixels"));
}

TEST_F(CliGeoTiffGrid, AtMap_Should_Exit1_When_ThereIsNoPosition) {
  Save({1, 2, 3, 4, 5, 6});
  const ToolResult result = RunTool({"geotiff", file_, "--at-map", "1,2"});
  EXPECT_EQ(result.code, 1);
  EXPECT_THAT(result.err, HasSubstr("no position"));
  // a scale of 0 is invalid
  grid_.pixelScale = {0, 0, 0};
  grid_.tiePoints = {0, 0, 0, 100, 200, 0};
  Save({1, 2, 3, 4, 5, 6});
  EXPECT_EQ(RunTool({"geotiff", file_, "--at-map", "1,2"}).code, 1);
}

TEST_F(CliGeoTiffGrid, Colors_Should_BeNoGridAndExit1) {
  grid_.bits = 8;
  grid_.sampleFormat = 1;
  grid_.values = {0, 50, 100, 150, 200, 250};
  WriteBytes(file_, samples::GridTiffBytes(grid_));
  const json grid = Show({}, 1);
  EXPECT_EQ(grid["ok"], true);
  EXPECT_EQ(grid["grid"], "none");
  const ToolResult text = RunTool({"geotiff", file_});
  EXPECT_EQ(text.code, 1);
  EXPECT_THAT(text.out, HasSubstr("no grid"));
  EXPECT_THAT(text.out, HasSubstr("1 sample, 8 bits"));
  SavePngFile(folder_ / "a.png", GradientRaster(pf24bit, 5, 4));
  EXPECT_EQ(RunTool({"geotiff", folder_ / "a.png"}).code, 1);
}

TEST_F(CliGeoTiffGrid, UnreadableFiles_Should_Exit3) {
  WriteText(folder_ / "a.tif", "no picture at all");
  EXPECT_EQ(RunTool({"geotiff", folder_ / "a.tif"}).code, 3);
  EXPECT_EQ(RunTool({"geotiff", folder_ / "absent.tif"}).code, 3);
  EXPECT_EQ(RunTool({"geotiff", folder_.Path()}).code, 3);
  const ToolResult result = RunTool({"geotiff", "--json", folder_ / "a.tif"});
  EXPECT_EQ(JsonLines(result.out).at(0)["ok"], false);
  EXPECT_THAT(result.err, HasSubstr("a.tif"));
}

}  // namespace
}  // namespace rasterkit::test
