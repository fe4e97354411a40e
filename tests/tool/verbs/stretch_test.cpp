// How numbers of more than 8 bits are shown, and grids that are combined as numbers.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "samples/grid_tiff.h"
#include "tests/tool/support/run_tool.h"
#include "tests/tool/support/sample_files.h"
#include "tests/tool/support/tiff_samples.h"

namespace rasterkit::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;

class CliStretch : public testing::Test {
 protected:
  /// A grid of 16-bit words.
  std::string Save(const std::string& name, const std::vector<int>& values, int width,
                   double left = 100, int sampleFormat = 1, int bits = 16) {
    samples::GridTiff grid;
    grid.width = width;
    grid.height = static_cast<int>(values.size()) / width;
    grid.bits = bits;
    grid.sampleFormat = sampleFormat;
    grid.noData = "9";
    grid.pixelScale = {2, 2, 0};
    grid.tiePoints = {0, 0, 0, left, 200, 0};
    for (const int value : values) {
      for (int i = 0; i < bits / 8; ++i) {
        grid.values.push_back(static_cast<uint8_t>(static_cast<unsigned>(value) >> (8 * i)));
      }
    }
    WriteBytes(folder_ / name, samples::GridTiffBytes(grid));
    return folder_ / name;
  }

  std::vector<int> Shown(const std::vector<std::string>& options, const std::string& in) {
    std::vector<std::string> line = {"convert", in, folder_ / "out.bmp", "--overwrite", "-v"};
    line.insert(line.end(), options.begin(), options.end());
    const ToolResult result = RunTool(line);
    EXPECT_EQ(result.code, 0) << result.err;
    err_ = result.err;
    const Raster raster = LoadFile(folder_ / "out.bmp");
    std::vector<int> grays;
    for (int x = 0; x < raster.Width(); ++x) grays.push_back(raster.PixelColor(x, 0) & 255);
    return grays;
  }

  json Grid(const std::string& file, std::vector<std::string> options = {}) {
    options.insert(options.begin(), {"geotiff", "--json", file});
    const ToolResult result = RunTool(options);
    EXPECT_EQ(result.code, 0) << result.err;
    return JsonLines(result.out).at(0);
  }

  TempFolder folder_;
  std::string err_;
};

TEST_F(CliStretch, EachSpelling_Should_ShowItsRange) {
  const std::string in = Save("in.tif", {1000, 1100, 1200, 1600, 9}, 5);
  EXPECT_EQ(Shown({}, in), (std::vector{0, 43, 85, 255, 255}));
  EXPECT_THAT(err_, HasSubstr("numbers from 1000 to 1600 are shown as black to white"));
  EXPECT_THAT(err_, HasSubstr("16 to 8 bits per sample"));
  EXPECT_EQ(Shown({"--stretch", "minmax"}, in), (std::vector{0, 43, 85, 255, 255}));
  const std::vector<int> percent{0, 0, 255, 255, 255};
  EXPECT_EQ(Shown({"--stretch", "percent", "25"}, in), percent);
  EXPECT_EQ(Shown({"--stretch", "percent 25"}, in), percent);
  EXPECT_EQ(Shown({"--stretch", "percent:25"}, in), percent);
  EXPECT_EQ(Shown({"--stretch=percent", "25"}, in), percent);
  const std::vector<int> fixed{255, 128, 0, 0, 255};
  EXPECT_EQ(Shown({"--stretch", "fixed", "1200,1000"}, in), fixed);
  EXPECT_EQ(Shown({"--stretch", "fixed:1200,1000"}, in), fixed);
  EXPECT_EQ(Shown({"--stretch", "full"}, in), (std::vector{4, 4, 5, 6, 255}));
}

TEST_F(CliStretch, OutputThatHoldsTheNumbers_Should_KeepThemWithAWarning) {
  const std::string in = Save("in.tif", {1000, 1100, 1200, 1600, 9}, 5);
  ToolResult result = RunTool({"convert", in, folder_ / "out.png", "--stretch", "minmax"});
  EXPECT_EQ(result.code, 0);
  EXPECT_THAT(result.err, HasSubstr("--stretch changes nothing"));
  result = RunTool({"convert", in, folder_ / "8.png", "--stretch", "minmax", "--bits", "8"});
  EXPECT_THAT(result.err, testing::Not(HasSubstr("--stretch changes nothing")));
  EXPECT_EQ(LoadFile(folder_ / "8.png").PixelColor(1, 0) & 255, 43);
}

TEST_F(CliStretch, WrongValues_Should_BeWrongUsage) {
  const std::string in = Save("in.tif", {1000, 1600}, 2);
  for (const char* value : {"max", "percent", "percent:50", "percent:-1", "fixed:1", "fixed:1,1",
                            "fixed:1,2,3", "full:1", "percent:a"}) {
    const ToolResult result =
        RunTool({"convert", "--stretch", value, in, folder_ / "out.png", "--overwrite"});
    EXPECT_EQ(result.code, 2) << value;
    EXPECT_THAT(result.err, HasSubstr("a stretch is minmax")) << value;
  }
}

TEST_F(CliStretch, Bits8_Should_StretchThePart) {
  const std::string in = Save("in.tif", {1000, 1100, 1200, 1600, 1600}, 5);
  const ToolResult result = RunTool(
      {"crop", in, folder_ / "out.png", "--rect", "1,0,3,1", "--bits", "8", "--stretch", "minmax"});
  EXPECT_EQ(result.code, 0) << result.err;
  const Raster raster = LoadFile(folder_ / "out.png");
  EXPECT_EQ(raster.Format(), pf8bit);
  EXPECT_EQ(raster.PixelColor(0, 0) & 255, 0) << "the range is that of the part";
  EXPECT_EQ(raster.PixelColor(1, 0) & 255, 51);
  EXPECT_EQ(raster.PixelColor(2, 0) & 255, 255);
}

TEST_F(CliStretch, PlacedGrids_Should_StayNumbersWithTheirPosition) {
  // The upper grid begins one pixel east; 9 is no data in both.
  const std::string under = Save("under.tif", {1, 2, 3, 9}, 4);
  const std::string over = Save("over.tif", {70000, 9, 80000}, 3, 102, 1, 32);
  const std::string out = folder_ / "out.tif";
  ToolResult result = RunTool({"combine", under, out, "--with", over, "-v"});
  ASSERT_EQ(result.code, 0) << result.err;
  EXPECT_THAT(result.err, HasSubstr("wider type"));
  const json grid = Grid(out, {"--at", "0,0", "--at", "1,0", "--at", "2,0", "--at", "3,0"});
  EXPECT_EQ(grid["grid"], "uint32");
  EXPECT_EQ(grid["nodata"], "9");
  EXPECT_EQ(grid["geo"][0]["affine"], Grid(under)["geo"][0]["affine"]);
  std::vector<int> values;
  for (const json& answer : grid["at"]) values.push_back(answer["value"]);
  EXPECT_EQ(values, (std::vector{1, 70000, 3, 80000}));
  result = RunTool({"combine", under, folder_ / "key.png", "--with", over, "--mode", "key"});
  EXPECT_EQ(result.code, 0) << result.err;
  result = RunTool(
      {"combine", under, folder_ / "a.tif", "--with", over, "--mode", "grid", "--align", "none"});
  EXPECT_EQ(result.code, 4);
  EXPECT_THAT(result.err, HasSubstr("must have the same size"));
}

TEST_F(CliStretch, ComparedGrids_Should_DifferByTheirNumbers) {
  const std::string a = Save("a.tif", {1000, 1100, 1200, 1600}, 4);
  // Grays of their own ranges would be the same.
  const std::string shifted = Save("b.tif", {2000, 2100, 2200, 2600}, 4);
  const std::string near = Save("c.tif", {1000, 1101, 1200, 1600}, 4);
  EXPECT_EQ(RunTool({"compare", a, a}).code, 0);
  ToolResult result = RunTool({"compare", a, shifted});
  EXPECT_EQ(result.code, 1);
  EXPECT_THAT(result.out, HasSubstr("different: 4 pixels of 4 x 1, by up to 159 of 255"));
  result = RunTool({"compare", a, near});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.out, "different: 1 pixels of 4 x 1, by less than 1 of 255, the first at 1,0\n");
  EXPECT_EQ(RunTool({"compare", a, near, "--tolerance", "1"}).code, 0);
  EXPECT_EQ(RunTool({"compare", a, near, "--exact"}).code, 1);
}

TEST_F(CliStretch, CornersOfATurnedGrid_Should_BeNoData) {
  const std::string in = Save("in.tif", {1000, 1100, 1200, 1600}, 2);
  const std::string out = folder_ / "out.tif";
  ASSERT_EQ(RunTool({"rotate", in, out, "--angle", "45"}).code, 0);
  json grid = Grid(out);
  EXPECT_EQ(grid["grid"], "uint16");
  EXPECT_GT(grid["nodata_values"], 0);
  EXPECT_GE(grid["minimum"], 1000);
  EXPECT_EQ(grid["maximum"], 1600);
  ASSERT_EQ(RunTool({"rotate", in, out, "--angle", "45", "--fill", "000000", "--overwrite"}).code,
            0);
  grid = Grid(out);
  EXPECT_EQ(grid["nodata_values"], 0);
  EXPECT_EQ(grid["minimum"], 0);
}

TEST_F(CliStretch, LongIntegers_Should_BeShownToTheLastDigit) {
  samples::GridTiff grid;
  grid.width = 2;
  grid.height = 1;
  grid.bits = 64;
  for (const int sampleFormat : {1, 2}) {
    grid.sampleFormat = sampleFormat;
    // 2^63 + 1 or its negative counterpart, and 2^53 + 1.
    grid.values = {1, 0, 0, 0, 0, 0, 0, 0x80, 1, 0, 0, 0, 0, 0, 0x20, 0};
    const std::string file = folder_ / "long.tif";
    WriteBytes(file, samples::GridTiffBytes(grid));
    const ToolResult text = RunTool({"geotiff", file, "--at", "1,0"});
    EXPECT_THAT(text.out, HasSubstr(": 9007199254740993\n"));
    const json shown = Grid(file, {"--at", "1,0"});
    EXPECT_EQ(shown["at"][0]["value"], int64_t{9007199254740993});
    if (sampleFormat == 1) {
      EXPECT_EQ(shown["grid"], "uint64");
      EXPECT_EQ(shown["maximum"], uint64_t{9223372036854775809u});
      EXPECT_THAT(text.out, HasSubstr("maximum 9223372036854775809"));
    } else {
      EXPECT_EQ(shown["grid"], "int64");
      EXPECT_EQ(shown["minimum"], int64_t{-9223372036854775807});
      EXPECT_THAT(text.out, HasSubstr("minimum -9223372036854775807"));
    }
  }
}

TEST_F(CliStretch, BytesWithNoData_Should_BeAGrid) {
  const std::string file = Save("bytes.tif", {9, 20, 30, 9}, 2, 100, 1, 8);
  const json grid = Grid(file, {"--at", "1,0"});
  EXPECT_EQ(grid["grid"], "uint8");
  EXPECT_EQ(grid["minimum"], 20);
  EXPECT_EQ(grid["maximum"], 30);
  EXPECT_EQ(grid["nodata_values"], 2);
  EXPECT_EQ(grid["at"][0]["value"], 20);
}

TEST_F(CliStretch, Bands_Should_AllBeShown) {
  TiffFile file = GrayTiff(2, 1, 16);
  file.samples = 2;
  file.extraSamples = {EXTRASAMPLE_UNSPECIFIED};
  file.pixels = {1, 0, 2, 0, 3, 0, 4, 0};
  WriteBytes(folder_ / "bands.tif", file.Bytes());
  const json grid = Grid(folder_ / "bands.tif", {"--at", "1,0"});
  EXPECT_EQ(grid["minimum"], 1);
  EXPECT_EQ(grid["maximum"], 3);
  ASSERT_EQ(grid["bands"].size(), 2u);
  EXPECT_EQ(grid["bands"][1]["minimum"], 2);
  EXPECT_EQ(grid["bands"][1]["maximum"], 4);
  EXPECT_EQ(grid["at"][0]["values"], json({3, 4}));
  const ToolResult text = RunTool({"geotiff", folder_ / "bands.tif", "--at", "1,0"});
  EXPECT_THAT(text.out, HasSubstr("uint16, 2 bands"));
  EXPECT_THAT(text.out, HasSubstr(": 3 | 4\n"));
}

}  // namespace
}  // namespace rasterkit::test
