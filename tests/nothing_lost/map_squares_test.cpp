// Black squares at known map positions stay there, whatever is done to the picture.

#include <array>
#include <cmath>
#include <filesystem>

#include <gtest/gtest.h>

#include <rasterkit/codecs/decode_frame.h>
#include <rasterkit/codecs/tiff/tiff_encoder.h>

#include "tests/support/test_pictures.h"
#include "tests/tool/support/gdal_peer.h"
#include "tests/tool/support/sample_files.h"

namespace rasterkit::test {
namespace {

constexpr int kWidth = 200, kHeight = 140, kSquare = 5;
constexpr double kLeft = 500000, kTop = 5400000, kPixel = 0.5;

struct Place {
  double x = 0, y = 0;
};

/// Left and top of the squares, in pixels.
constexpr std::array<std::array<int, 2>, 4> kSquares = {{{60, 50}, {120, 60}, {70, 90}, {130, 85}}};

Raster PictureOfSquares() {
  Raster raster(pf24bit, kWidth, kHeight);
  for (int y = 0; y < kHeight; ++y) std::fill_n(raster.Row(y), raster.Stride(), uint8_t{255});
  for (const auto& [left, top] : kSquares) {
    for (int y = top; y < top + kSquare; ++y) {
      std::fill_n(raster.Row(y) + 3 * left, 3 * kSquare, uint8_t{0});
    }
  }
  raster.ClearPadding();
  return raster;
}

/// Map position of the middle of a square.
Place MiddleOf(const std::array<int, 2>& square) {
  return {kLeft + (square[0] + kSquare / 2.0) * kPixel,
          kTop - (square[1] + kSquare / 2.0) * kPixel};
}

/// Squares at an edge may be cut.
constexpr size_t kThoseThatAreWhole = ~size_t{0};

struct Operation {
  std::string name;
  std::vector<std::string> words;
  /// Squares that stay inside, and those of a picture that was turned upright.
  size_t squares = kSquares.size(), lyingSquares = kSquares.size();
  /// Whole pixels move.
  bool isMove = false;
};

class MapSquares : public testing::TestWithParam<Operation> {
 protected:
  void WriteWorldFile(const std::string& name) {
    WriteText(folder_ / name, "0.5\n0\n0\n-0.5\n500000.25\n5399999.75\n");
  }

  /// Six numbers of the output, in the order of a world file, from the file beside it.
  std::array<double, 6> PositionBeside(const std::string& name) {
    const std::vector<uint8_t> bytes = ReadBytes(folder_ / name);
    std::array<double, 6> numbers{};
    const char* at = reinterpret_cast<const char*>(bytes.data());
    const std::string text(at, bytes.size());
    size_t start = 0;
    for (double& number : numbers) {
      size_t used = 0;
      number = std::stod(text.substr(start), &used);
      start += used;
    }
    return numbers;
  }

  /// Centers of the dark spots nearest to where the squares must be, weighted by darkness.
  void CheckSquares(const Raster& raster, const std::array<double, 6>& affine, size_t squares) {
    const double determinant = affine[0] * affine[3] - affine[1] * affine[2];
    ASSERT_NE(determinant, 0);
    size_t found = 0;
    for (const auto& square : kSquares) {
      const Place map = MiddleOf(square);
      const double dx = map.x - affine[4], dy = map.y - affine[5];
      const double column = (affine[3] * dx - affine[2] * dy) / determinant;
      const double row = (affine[0] * dy - affine[1] * dx) / determinant;
      const double half = kSquare / 2.0;
      const bool isWhole = column >= half && row >= half && column + half < raster.Width() &&
                           row + half < raster.Height();
      if (squares == kThoseThatAreWhole && !isWhole) continue;
      const double reach = 6 * std::max(1.0, kPixel / std::sqrt(std::abs(determinant)));
      double weight = 0, sumX = 0, sumY = 0;
      for (int y = std::max(0, static_cast<int>(row - reach));
           y <= std::min(raster.Height() - 1, static_cast<int>(row + reach)); ++y) {
        for (int x = std::max(0, static_cast<int>(column - reach));
             x <= std::min(raster.Width() - 1, static_cast<int>(column + reach)); ++x) {
          const double dark = 255 - (raster.PixelColor(x, y) & 0xFF);
          weight += dark;
          sumX += dark * x;
          sumY += dark * y;
        }
      }
      if (weight == 0 && squares != kThoseThatAreWhole) continue;
      ++found;
      EXPECT_NEAR(sumX / weight, column, 0.5);
      EXPECT_NEAR(sumY / weight, row, 0.5);
    }
    if (squares == kThoseThatAreWhole) {
      EXPECT_GE(found, 1u);
    } else {
      EXPECT_EQ(found, squares);
    }
  }

  void RunAndCheck(const std::string& in, const std::string& out, const std::string& worldFile,
                   size_t squares) {
    std::vector<std::string> line = GetParam().words;
    line.insert(line.end(), {folder_ / in, folder_ / out, "--world-file", "--strict", "--overwrite",
                             "--sampling", "4:4:4", "--quality", "95"});
    const ToolResult result = RunTool(line);
    ASSERT_EQ(result.code, 0) << result.err;
    const std::array<double, 6> affine = PositionBeside(worldFile);
    CheckSquares(PictureOfFrame(DecodeFrame(folder_ / out)), affine, squares);
    if (!HasProgram("gdalinfo")) return;
    const std::vector<double> theirs = GeoTransform(GdalInfo(folder_ / out));
    ASSERT_EQ(theirs.size(), 6u) << out;
    const double corner[] = {affine[4] - (affine[0] + affine[2]) / 2,
                             affine[5] - (affine[1] + affine[3]) / 2};
    EXPECT_NEAR(theirs[0], corner[0], 1e-6) << out;
    EXPECT_NEAR(theirs[3], corner[1], 1e-6) << out;
    EXPECT_NEAR(theirs[1], affine[0], 1e-9) << out;
    EXPECT_NEAR(theirs[2], affine[2], 1e-9) << out;
  }

  TempFolder folder_;
};

TEST_P(MapSquares, WorldFile) {
  SavePngFile(folder_ / "in.png", PictureOfSquares());
  WriteWorldFile("in.pgw");
  RunAndCheck("in.png", "out.png", "out.pgw", GetParam().squares);
}

TEST_P(MapSquares, GeoTiff) {
  TMemoryStream stream;
  TiffWriteOptions options;
  options.geo = TiffGeoTags{{kPixel, kPixel, 0}, {0, 0, 0, kLeft, kTop, 0}};
  EncodeTiff(PictureOfSquares(), stream, options);
  WriteBytes(folder_ / "in.tif", stream.TakeBytes());
  RunAndCheck("in.tif", "out.tif", "out.tfw", GetParam().squares);
}

/// World files count pixels as they are stored, before the orientation turns them.
TEST_P(MapSquares, LyingPhotograph) {
  SaveJpegFile(folder_ / "in.jpg", PictureOfSquares(), 6);
  WriteWorldFile("in.jgw");
  RunAndCheck("in.jpg", "out.png", "out.pgw", GetParam().lyingSquares);
  RunAndCheck("in.jpg", "out.jpg", "out.jgw", GetParam().lyingSquares);
}

/// Blocks that are moved, and the rest of blocks that is dropped for it.
TEST_P(MapSquares, MovedPhotograph) {
  for (const int orientation : {1, 3, 6, 7}) {
    SCOPED_TRACE(orientation);
    SaveJpegFile(folder_ / "in.jpg", PictureOfSquares(), orientation);
    WriteWorldFile("in.jgw");
    std::vector<std::string> line = GetParam().words;
    line.insert(line.end(), {folder_ / "in.jpg", folder_ / "out.jpg", "--strict", "--overwrite",
                             "--lossless", "trim", "--json"});
    const ToolResult result = RunTool(line);
    ASSERT_EQ(result.code, 0) << result.err;
    const auto report = JsonLines(result.out).at(0);
    const bool isMove = GetParam().isMove || (GetParam().words.front() == "convert");
    if (isMove && orientation != 1) EXPECT_EQ(report.at("pixels"), "moved");
    const Raster raster = PictureOfFrame(DecodeFrame(folder_ / "out.jpg"));
    EXPECT_EQ(report.at("width"), raster.Width());
    EXPECT_EQ(report.at("height"), raster.Height());
    CheckSquares(raster, PositionBeside("out.jgw"), kThoseThatAreWhole);
  }
}

TEST_P(MapSquares, Bitmap) {
  SaveBmpFile(folder_ / "in.bmp", PictureOfSquares());
  WriteWorldFile("in.bpw");
  RunAndCheck("in.bmp", "out.bmp", "out.bpw", GetParam().squares);
}

/// Tags alone: another program reads them.
TEST_P(MapSquares, Tags) {
  if (!HasProgram("gdalinfo")) GTEST_SKIP() << "gdalinfo is not installed";
  SavePngFile(folder_ / "in.png", PictureOfSquares());
  WriteWorldFile("in.pgw");
  std::vector<std::string> line = {"convert", folder_ / "in.png", folder_ / "in.tif"};
  ASSERT_EQ(RunTool(line).code, 0);
  for (const char* name : {"in.pgw", "in.tfw"}) std::filesystem::remove(folder_ / name);
  line = GetParam().words;
  line.insert(line.end(), {folder_ / "in.tif", folder_ / "out.tif", "--strict"});
  const ToolResult result = RunTool(line);
  ASSERT_EQ(result.code, 0) << result.err;
  EXPECT_FALSE(std::filesystem::exists(folder_ / "out.tfw"));
  const std::vector<double> theirs = GeoTransform(GdalInfo(folder_ / "out.tif"));
  ASSERT_EQ(theirs.size(), 6u);
  const std::array<double, 6> affine = {theirs[1],
                                        theirs[4],
                                        theirs[2],
                                        theirs[5],
                                        theirs[0] + (theirs[1] + theirs[2]) / 2,
                                        theirs[3] + (theirs[4] + theirs[5]) / 2};
  CheckSquares(PictureOfFrame(DecodeFrame(folder_ / "out.tif")), affine, GetParam().squares);
}

INSTANTIATE_TEST_SUITE_P(
    Verbs, MapSquares,
    testing::Values(Operation{"Convert", {"convert"}},
                    Operation{"Quarter", {"rotate", "--angle", "90"}, 4, 4, true},
                    Operation{"Half", {"rotate", "--angle", "180"}, 4, 4, true},
                    Operation{"Ten", {"rotate", "--angle", "10"}},
                    Operation{"SeventeenPoint3", {"rotate", "--angle", "17.3"}},
                    Operation{"Minus123", {"rotate", "--angle", "-123.4"}},
                    Operation{"TurnedAndNorthUp", {"rotate", "--north-up"}},
                    Operation{"Mirror", {"mirror", "--horizontal"}, 4, 4, true},
                    Operation{"MirrorDown", {"mirror", "--vertical"}, 4, 4, true},
                    Operation{"Crop", {"crop", "--rect", "31,55,60,57"}, 1, 2, true},
                    Operation{"Shrink", {"resize", "--size", "61%"}},
                    Operation{"Grow", {"resize", "--size", "233%"}},
                    Operation{"Uneven", {"resize", "--size", "301x90"}},
                    Operation{"Gray", {"gray"}},
                    Operation{"Brightness", {"brightness", "--percent", "-10"}}),
    [](const auto& info) { return info.param.name; });

}  // namespace
}  // namespace rasterkit::test
