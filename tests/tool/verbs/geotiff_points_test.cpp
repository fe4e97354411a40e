// geotiff --point: positions from points of the picture and of the map.

#include <cstdio>
#include <cstdlib>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/test_pictures.h"
#include "tests/tool/support/gdal_peer.h"
#include "tests/tool/support/run_tool.h"
#include "tests/tool/support/sample_files.h"

namespace rasterkit::test {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;

class CliGeoTiffPoints : public testing::Test {
 protected:
  CliGeoTiffPoints() { SavePngFile(in_, GradientRaster(pf24bit, 200, 100)); }

  ToolResult Place(const std::vector<std::string>& points, std::vector<std::string> more = {},
                   const std::string& out = "out.tif") {
    std::vector<std::string> line = {"geotiff", in_, folder_ / out, "--overwrite"};
    for (const std::string& point : points) line.insert(line.end(), {"--point", point});
    line.insert(line.end(), more.begin(), more.end());
    return RunTool(line);
  }
  json AffineOf(const std::string& name) {
    const auto facts = JsonLines(RunTool({"info", "--json", folder_ / name}).out).at(0);
    return facts["geo"][0]["affine"];
  }

  TempFolder folder_;
  std::string in_ = folder_ / "plan.png";
};

TEST_F(CliGeoTiffPoints, TwoPoints_Should_GiveASimilarity) {
  const ToolResult result = Place({"0,0=1000,5000", "200,100=1100,4950"});
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_EQ(AffineOf("out.tif"), json({0.5, 0.0, 0.0, -0.5, 1000.25, 4999.75}));
  EXPECT_THAT(result.err, HasSubstr("point 0,0=1000,5000: off by 0 in x and 0 in y, 0 pixels"));
  EXPECT_THAT(result.err, HasSubstr("root mean square: 0 map units, 0 pixels"));
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(Place({"0,0=1000,5000", "200,100=1100,4950"}, {"-q"}).err, "");
}

/// The middle of the square is off by 4 in x; least squares spread this over the points.
TEST_F(CliGeoTiffPoints, MorePoints_Should_GiveTheLeastSquares) {
  const ToolResult result = Place(
      {"0,0=0,0", "100,0=100,0", "0,100=0,-100", "100,100=100,-100", "50,50=54,-50"}, {"--json"});
  EXPECT_EQ(result.code, 0) << result.err;
  const json fit = JsonLines(result.out).at(0)["fit"];
  EXPECT_EQ(fit["points"].size(), 5u);
  EXPECT_NEAR(fit["points"][0]["residual"][0].get<double>(), 0.8, 1e-12);
  EXPECT_NEAR(fit["points"][4]["residual"][0].get<double>(), -3.2, 1e-12);
  EXPECT_NEAR(fit["points"][4]["distance"].get<double>(), 3.2, 1e-12);
  EXPECT_NEAR(fit["points"][4]["distance_pixels"].get<double>(), 3.2, 1e-12);
  EXPECT_EQ(fit["points"][4]["pixel"], json({50.0, 50.0}));
  EXPECT_EQ(fit["points"][4]["map"], json({54.0, -50.0}));
  EXPECT_NEAR(fit["rms"].get<double>(), 1.6, 1e-12);
  EXPECT_NEAR(fit["rms_pixels"].get<double>(), 1.6, 1e-12);
  const json affine = AffineOf("out.tif");
  EXPECT_NEAR(affine[4].get<double>(), 1.3, 1e-12);
  EXPECT_NEAR(affine[0].get<double>(), 1, 1e-12);
}

TEST_F(CliGeoTiffPoints, OnePoint_Should_NeedAPixelSize) {
  EXPECT_EQ(Place({"10,20=1000,2000"}, {"--pixel-size", "0.5,0.25"}).code, 0);
  EXPECT_EQ(AffineOf("out.tif"), json({0.5, 0.0, 0.0, -0.25, 995.25, 2004.875}));
  const ToolResult alone = Place({"10,20=1000,2000"});
  EXPECT_EQ(alone.code, 2);
  EXPECT_THAT(alone.err, HasSubstr("--pixel-size"));
}

TEST_F(CliGeoTiffPoints, PointsOnALine_Should_BeRefusedInWords) {
  const ToolResult picture = Place({"0,0=0,0", "10,10=10,1", "20,20=5,9"});
  EXPECT_EQ(picture.code, 2);
  EXPECT_THAT(picture.err, HasSubstr("the points lie on one line in the picture"));
  const ToolResult map = Place({"0,0=0,0", "10,0=1,1", "20,20=5,5"});
  EXPECT_EQ(map.code, 2);
  EXPECT_THAT(map.err, HasSubstr("the points lie on one line on the map"));
  EXPECT_THAT(folder_.Names(), ElementsAre("plan.png"));
}

TEST_F(CliGeoTiffPoints, OtherTypes_Should_GetAWorldFile) {
  EXPECT_EQ(Place({"0,0=1000,5000", "200,100=1100,4950"}, {}, "out.jpg").code, 0);
  EXPECT_THAT(folder_.Names(), ElementsAre("out.jgw", "out.jpg", "plan.png"));
  EXPECT_EQ(AffineOf("out.jpg"), json({0.5, 0.0, 0.0, -0.5, 1000.25, 4999.75}));
}

TEST_F(CliGeoTiffPoints, LikelyMistakes_Should_BeWarnings) {
  const ToolResult outside = Place({"0,0=1000,5000", "201,100=1100,4950"});
  EXPECT_EQ(outside.code, 0);
  EXPECT_THAT(outside.err, HasSubstr("point 201,100 lies outside the picture of 200 x 100 pixels"));
  const ToolResult mirrored = Place({"0,0=0,0", "10,0=10,0", "0,10=0,10"});
  EXPECT_EQ(mirrored.code, 0);
  EXPECT_THAT(mirrored.err, HasSubstr("as in a mirror"));
}

/// Another program computes the same position from the same points.
TEST_F(CliGeoTiffPoints, Position_Should_BeThatOfGdal) {
  if (!HasProgram("gdal_translate") || !HasProgram("gdalinfo") || !HasProgram("gdaltransform")) {
    GTEST_SKIP() << "gdal-bin is not installed";
  }
  const double points[][4] = {{3, 5, 4468010, 5334090},
                              {190, 9, 4468197.5, 5334085},
                              {12, 95, 4468018.25, 5334001},
                              {180, 88, 4468187, 5334007.5},
                              {100, 50, 4468105, 5334045}};
  std::vector<std::string> ours;
  std::string gcps;
  for (const auto& [column, row, x, y] : points) {
    char text[200];
    std::snprintf(text, sizeof text, "%g,%g=%.17g,%.17g", column, row, x, y);
    ours.emplace_back(text);
    std::snprintf(text, sizeof text, " -gcp %g %g %.17g %.17g", column, row, x, y);
    gcps += text;
  }
  EXPECT_EQ(Place(ours).code, 0);
  const std::string command = "gdal_translate -q" + gcps + " '" + in_ + "' '" +
                              (folder_ / "gcps.tif") +
                              "' && { echo 0 0; echo 200 100; echo 7 93; } "
                              "| gdaltransform -order 1 '" +
                              (folder_ / "gcps.tif") + "' > '" + (folder_ / "theirs") +
                              "' && { echo 0 0; echo 200 100; echo 7 93; } "
                              "| gdaltransform '" +
                              (folder_ / "out.tif") + "' > '" + (folder_ / "ours") + "'";
  ASSERT_EQ(std::system(command.c_str()), 0);
  const auto numbers = [&](const char* name) {
    const std::vector<uint8_t> bytes = ReadBytes(folder_ / name);
    std::istringstream text(std::string(bytes.begin(), bytes.end()));
    std::vector<double> found;
    for (double number = 0; text >> number;) found.push_back(number);
    return found;
  };
  const std::vector<double> theirs = numbers("theirs"), found = numbers("ours");
  ASSERT_EQ(theirs.size(), 9u);
  ASSERT_EQ(found.size(), 9u);
  for (size_t i = 0; i < theirs.size(); ++i) EXPECT_NEAR(theirs[i], found[i], 1e-6);
}

}  // namespace
}  // namespace rasterkit::test
