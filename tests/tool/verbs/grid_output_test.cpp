// What the verbs make of grids of numbers: corners, missing values, and pictures to look at.

#include <cmath>
#include <cstring>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/pictures/document/document.h>
#include <rasterkit/pictures/picture.h>
#include <rasterkit/runtime/half.h>

#include "samples/grid_tiff.h"
#include "tests/pictures/document/made_document.h"
#include "tests/tool/support/run_tool.h"
#include "tests/tool/support/sample_files.h"

namespace rasterkit::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

constexpr int kUnsigned = 1, kSigned = 2, kFloat = 3;

class CliGridOutput : public testing::Test {
 protected:
  /// A square grid of one number, given as its bits.
  samples::GridTiff Grid(int bits, int sampleFormat, uint64_t number, int side = 20) {
    samples::GridTiff grid;
    grid.width = grid.height = side;
    grid.bits = bits;
    grid.sampleFormat = sampleFormat;
    for (int i = 0; i < side * side; ++i) {
      for (int k = 0; k < bits; k += 8) grid.values.push_back(static_cast<uint8_t>(number >> k));
    }
    return grid;
  }

  std::string Save(const samples::GridTiff& grid, const std::string& name = "in.tif") {
    WriteBytes(folder_ / name, samples::GridTiffBytes(grid));
    return folder_ / name;
  }

  std::string Run(std::vector<std::string> line, int code = 0) {
    const ToolResult result = RunTool(line);
    EXPECT_EQ(result.code, code) << result.err;
    return result.err;
  }

  std::string Rotate(const samples::GridTiff& grid, std::vector<std::string> more = {}) {
    std::vector<std::string> line{"rotate",  Save(grid), folder_ / "out.tif",
                                  "--angle", "30",       "--overwrite"};
    line.insert(line.end(), more.begin(), more.end());
    return Run(line);
  }

  template <class T>
  T Corner() {
    const Samples numbers = Picture::Open(folder_ / "out.tif").Numbers();
    T number{};
    std::memcpy(&number, numbers.Row(0), sizeof number);
    return number;
  }

  TempFolder folder_;
};

void Place(samples::GridTiff& grid, double left) {
  grid.pixelScale = {2, 2, 0};
  grid.tiePoints = {0, 0, 0, left, 200, 0};
}

TEST_F(CliGridOutput, CornersOfFloats_Should_BeNaN_When_NoNumberIsStated) {
  const uint32_t five = 0x40A00000;
  EXPECT_EQ(Rotate(Grid(32, kFloat, five)), "");
  EXPECT_TRUE(std::isnan(Corner<float>()));
  Rotate(Grid(32, kFloat, five), {"--filter", "linear"});
  EXPECT_TRUE(std::isnan(Corner<float>()));
  Rotate(Grid(32, kFloat, five), {"--fill", "000000"});
  EXPECT_EQ(Corner<float>(), 0);
}

TEST_F(CliGridOutput, CornersOfWholeNumbers_Should_BeNamed_When_NoNumberFillsThem) {
  const std::string end = ", which looks like a measurement";
  EXPECT_THAT(Rotate(Grid(16, kSigned, 500)), HasSubstr("warning: the corners are 32767" + end));
  EXPECT_EQ(Corner<int16_t>(), 32767);
  samples::GridTiff words = Grid(16, kUnsigned, 500);
  EXPECT_EQ(Rotate(words), "") << "a picture of 16-bit grays";
  words.noData = "-9999";
  EXPECT_THAT(Rotate(words), HasSubstr("the corners are 65535" + end));
  words.noData = "7";
  EXPECT_EQ(Rotate(words), "");
  EXPECT_EQ(Corner<uint16_t>(), 7);
  words.noData.clear();
  Place(words, 100);
  EXPECT_THAT(Rotate(words), HasSubstr("the corners are 65535" + end));
  EXPECT_THAT(Rotate(words, {"--fill", "000000"}), Not(HasSubstr("the corners are")));
  samples::GridTiff bytes = Grid(8, kUnsigned, 50);
  EXPECT_EQ(Rotate(bytes), "") << "a picture";
  bytes.noData = "-9999";
  EXPECT_THAT(Rotate(bytes), HasSubstr("the corners are 255" + end));
}

TEST_F(CliGridOutput, NumberThatNoHalfIs_Should_MeanTheOnesBesideIt) {
  constexpr uint16_t kCut = 0xF0E1, kNearest = 0xF0E2, kFive = 0x4500;
  ASSERT_EQ(HalfToDouble(kCut), -9992);
  ASSERT_EQ(HalfToDouble(kNearest), -10000);
  for (const uint16_t missing : {kCut, kNearest}) {
    samples::GridTiff grid = Grid(16, kFloat, missing);
    // The left half is measured.
    for (size_t i = 0; i < 400; ++i) {
      if (i % 20 >= 10) continue;
      grid.values[2 * i] = kFive & 255;
      grid.values[2 * i + 1] = kFive >> 8;
    }
    grid.noData = "-9999";
    const std::string err = Rotate(grid, {"--filter", "linear"});
    EXPECT_THAT(err, HasSubstr("-9992 and -10000 are taken for it"));
    EXPECT_EQ(Corner<uint16_t>(), kCut);
    const Samples numbers = Picture::Open(folder_ / "out.tif").Numbers();
    for (int y = 0; y < numbers.Height(); ++y) {
      for (int x = 0; x < numbers.Width(); ++x) {
        uint16_t number;
        std::memcpy(&number, numbers.Row(y) + 2 * static_cast<size_t>(x), 2);
        ASSERT_TRUE(number == kFive || number == kCut || number == kNearest) << number;
      }
    }
    const ToolResult shown = RunTool({"geotiff", "--json", folder_ / "in.tif"});
    const json line = JsonLines(shown.out).at(0);
    EXPECT_EQ(line["minimum"], 5);
    EXPECT_EQ(line["nodata_values"], 200);
    EXPECT_THAT(Run({"convert", folder_ / "in.tif", folder_ / "out.bmp", "--overwrite"}),
                HasSubstr("numbers from 5 to 5 are shown"));
  }
}

TEST_F(CliGridOutput, Thumbnail_Should_BeAPictureToLookAt) {
  samples::GridTiff grid = Grid(16, kUnsigned, 1000);
  for (size_t i = 0; i < 200; ++i) grid.values[2 * i] = 0x20, grid.values[2 * i + 1] = 0x03;
  Save(grid);
  for (const char* name : {"out.png", "out.tif", "out.jpg"}) {
    SCOPED_TRACE(name);
    const std::string err = Run({"thumbnail", folder_ / "in.tif", folder_ / name, "--size", "10",
                                 "--strict", "--overwrite"});
    EXPECT_THAT(err, HasSubstr("numbers from 800 to 1000 are shown as black to white"));
    const Picture small = Picture::Open(folder_ / name);
    EXPECT_EQ(small.Layout().bits, 8);
    EXPECT_EQ(small.Layout().bands, 1);
    EXPECT_LT(small.Bitmap()->PixelColor(5, 0) & 255, 10);
    EXPECT_GT(small.Bitmap()->PixelColor(5, 9) & 255, 245);
  }
}

TEST_F(CliGridOutput, Thumbnail_Should_StateNoNumberForMissingValues) {
  samples::GridTiff grid = Grid(16, kUnsigned, 1000);
  grid.values[0] = grid.values[1] = 0;
  grid.noData = "0";
  Save(grid);
  const std::string err = Run({"convert", folder_ / "in.tif", folder_ / "out.tif", "--bits", "8"});
  EXPECT_THAT(err, HasSubstr("the number 0 for missing values (it is shown white)"));
  Run({"thumbnail", folder_ / "in.tif", folder_ / "small.tif", "--size", "9", "--strict"});
  EXPECT_EQ(Picture::Open(folder_ / "small.tif").GetPlacement().noData, "");
}

TEST_F(CliGridOutput, Thumbnail_Should_HaveOnePage) {
  WriteMadeDocument(folder_ / "pages.tif", "wl");
  Run({"thumbnail", folder_ / "pages.tif", folder_ / "small.tif", "--size", "30", "--strict"});
  EXPECT_EQ(Document::Open(folder_ / "small.tif").Pages(), 1);
  Run({"thumbnail", folder_ / "pages.tif", folder_ / "small.tif", "--size", "30", "--page", "2",
       "--overwrite"});
  const Picture small = Picture::Open(folder_ / "small.tif");
  EXPECT_EQ(Document::Open(folder_ / "small.tif").Pages(), 1);
  EXPECT_EQ(small.Width(), 30);
  EXPECT_EQ(small.Height(), 18);
  EXPECT_THAT(Run({"thumbnail", folder_ / "pages.tif", folder_ / "all.tif", "--size", "30",
                   "--page", "all"},
                  2),
              HasSubstr("holds one picture"));
  Run({"thumbnail", folder_ / "pages.tif", "--out-dir", folder_ / "", "--size", "30", "--page",
       "1-2"});
  EXPECT_EQ(Document::Open(folder_ / "pages-2.tif").Pages(), 1);
}

TEST_F(CliGridOutput, RangeOfGrays_Should_BeSaid_Unless_Quiet) {
  Save(Grid(16, kUnsigned, 1000));
  const std::vector<std::string> line{"convert", folder_ / "in.tif", folder_ / "out.bmp",
                                      "--overwrite"};
  EXPECT_THAT(Run(line), HasSubstr("numbers from 1000 to 1000 are shown as black to white"));
  std::vector<std::string> quiet = line;
  quiet.emplace_back("--quiet");
  EXPECT_THAT(Run(quiet), Not(HasSubstr("are shown as")));
}

TEST_F(CliGridOutput, ComplexNumbers_Should_BeRefusedInWords) {
  constexpr int kComplexInteger = 5, kComplexFloat = 6;
  for (const auto& [bits, format] : {std::pair{32, kComplexInteger}, std::pair{64, kComplexInteger},
                                     std::pair{64, kComplexFloat}, std::pair{128, kComplexFloat}}) {
    samples::GridTiff grid = Grid(bits / 2, format, 1);
    grid.values.resize(2 * grid.values.size());
    grid.bits = bits;
    SCOPED_TRACE(bits);
    for (const bool isIsolated : {false, true}) {
      std::vector<std::string> line{"geotiff", Save(grid)};
      if (isIsolated) line.emplace_back("--isolate");
      EXPECT_THAT(Run(line, 3), HasSubstr("complex numbers are not supported"));
    }
  }
}

TEST_F(CliGridOutput, Combine_Should_Warn_When_TheSecondPictureIsOutside) {
  samples::GridTiff grid = Grid(16, kUnsigned, 1000);
  Place(grid, 100);
  Save(grid);
  const auto warns = [&](double left) {
    Place(grid, left);
    const std::string err = Run({"combine", folder_ / "in.tif", folder_ / "out.tif", "--with",
                                 Save(grid, "over.tif"), "--overwrite"});
    return err.find("lies wholly outside") != std::string::npos;
  };
  EXPECT_TRUE(warns(9000));
  EXPECT_TRUE(warns(140)) << "side by side";
  EXPECT_FALSE(warns(138));
  EXPECT_FALSE(warns(100));
  EXPECT_FALSE(warns(62));
  EXPECT_TRUE(warns(60));
}

}  // namespace
}  // namespace rasterkit::test
