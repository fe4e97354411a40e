// gdalinfo and gdal_translate confirm what is read and written.

#include <cmath>
#include <filesystem>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/placement/placement.h>
#include <rasterkit/placement/side_files.h>

#include "tests/placement/geo_tag_values.h"
#include "tests/placement/geo_tiff_files.h"
#include "tests/support/corpus.h"
#include "tests/support/temp_folder.h"

namespace rasterkit::test {
namespace {

std::array<double, 6> TransformOf(const Affine& affine) {
  const MapPoint corner = affine.Corner();
  return {corner.x, affine.xPerColumn, affine.xPerRow, corner.y, affine.yPerColumn, affine.yPerRow};
}

/// gdalinfo prints at most 16 digits, and 15 after the point.
void ExpectSame(const std::array<double, 6>& ours, const std::array<double, 6>& theirs,
                const std::string& what) {
  const double largest = std::max({std::abs(ours[0]), std::abs(ours[3]), 1.0});
  for (size_t i = 0; i < ours.size(); ++i) {
    EXPECT_NEAR(ours[i], theirs[i], 1e-14 * largest) << what << " number " << i;
  }
}

class PlacementPeers : public testing::Test {
 protected:
  void SetUp() override {
    for (const char* program : {"gdalinfo", "gdal_translate"}) {
      if (!HasProgram(program)) GTEST_SKIP() << program << " is not installed";
    }
  }

  TempFolder folder_;
};

/// Draws positions; the seed is in every message.
class Draws {
 public:
  double Number(double from, double to) {
    return std::uniform_real_distribution<double>(from, to)(random_);
  }
  Affine Position(bool isStraight) {
    return {Number(0.01, 90),
            isStraight ? 0 : Number(-5, 5),
            isStraight ? 0 : Number(-5, 5),
            Number(-90, -0.01),
            Number(0, 1e6),
            Number(0, 1e7)};
  }
  std::string Seed() const { return "seed " + std::to_string(seed_); }

 private:
  unsigned seed_ = std::random_device()();
  std::mt19937_64 random_{seed_};
};

constexpr const char* kTagsAlone =
    "--config GDAL_GEOREF_SOURCES INTERNAL --config GDAL_PAM_ENABLED NO";

TEST_F(PlacementPeers, ReadOurTags) {
  Draws draws;
  for (int i = 0; i < 24; ++i) {
    Placement placement = ReadPlacement("", KeyTags(i % 2 == 0), 20, 10);
    placement.affine = draws.Position(i % 3 == 0);
    if (i % 4 == 3) placement.affine->yPerRow = -placement.affine->yPerRow;
    const std::string file = folder_.Write("a.tif", TiffWithTags(20, 10, TagsOf(placement)));
    const GdalPlace place = AskGdal(file, kTagsAlone);
    ASSERT_TRUE(place.transform) << draws.Seed();
    ExpectSame(TransformOf(*placement.affine), *place.transform, draws.Seed());
    EXPECT_EQ(place.epsg, 25832);
  }
}

TEST_F(PlacementPeers, ReadOurControlPoints) {
  for (const bool pixelIsPoint : {false, true}) {
    Placement placement = ReadPlacement("", KeyTags(pixelIsPoint), 20, 10);
    placement.controlPoints = {
        {0, 0, 0, 100, 200, 0}, {20, 0, 0, 140, 200, 0}, {3.25, 10, 0, 106.5, 180, 0}};
    const std::string file = folder_.Write("a.tif", TiffWithTags(20, 10, TagsOf(placement)));
    const GdalPlace place = AskGdal(file, kTagsAlone);
    ASSERT_EQ(place.points.size(), 3u);
    for (size_t i = 0; i < 3; ++i) {
      EXPECT_EQ(place.points[i][0], placement.controlPoints[i].column);
      EXPECT_EQ(place.points[i][1], placement.controlPoints[i].row);
      EXPECT_EQ(place.points[i][2], placement.controlPoints[i].x);
      EXPECT_EQ(place.points[i][3], placement.controlPoints[i].y);
    }
  }
}

TEST_F(PlacementPeers, ReadOurRationalModelAfterACrop) {
  Placement placement;
  placement.rationalModel.assign(92, 0.25);
  placement.rationalModel[2] = 100;
  placement.rationalModel[3] = 200;
  Changes changes;
  FollowPixels(placement, {{1, 0, 0, 1, 7, 11}, 400, 200, 20, 10}, changes);
  const std::string file = folder_.Write("a.tif", TiffWithTags(20, 10, TagsOf(placement)));
  const GdalPlace place = AskGdal(file, kTagsAlone);
  ASSERT_TRUE(place.hasRationalModel);
  EXPECT_EQ(place.lineOffset, 89);
  EXPECT_EQ(place.sampleOffset, 193);
}

TEST_F(PlacementPeers, ReadOurWorldFilesUnderEveryName) {
  Draws draws;
  const std::string tiff = folder_.Write("source.tif", TiffWithTags(20, 10, {}));
  for (const char* format :
       {"GTiff tif", "GTiff tiff", "JPEG jpg", "JPEG jpeg", "PNG png", "BMP bmp"}) {
    const std::string driver = std::string(format).substr(0, std::string(format).find(' '));
    const std::string extension = std::string(format).substr(driver.size() + 1);
    const std::string picture = folder_ / ("./a." + extension);
    OutputOf("gdal_translate -q -of " + driver + " --config GDAL_PAM_ENABLED NO '" + tiff + "' '" +
             picture + "'");
    for (const std::string& name : WorldFileNames(picture)) {
      // GDAL has no upper case of these two alone.
      const Affine affine = draws.Position(false);
      const std::string text = WorldFileText(affine);
      { std::ofstream(name) << text; }
      const GdalPlace place = AskGdal(picture, "--config GDAL_PAM_ENABLED NO");
      std::filesystem::remove(name);
      const bool isWld = name.ends_with(".wld") || name.ends_with(".WLD");
      if (driver == "BMP" && !place.transform) {
        EXPECT_TRUE(isWld || name.ends_with("bmpw") || name.ends_with("BMPW")) << name;
        continue;
      }
      ASSERT_TRUE(place.transform) << name;
      ExpectSame(TransformOf(affine), *place.transform, name + " " + draws.Seed());
    }
  }
}

TEST_F(PlacementPeers, WorldFilesOfGdalAreFound) {
  const std::string tiff = folder_.Write(
      "source.tif",
      TiffWithTags(20, 10,
                   {DoublesTag(33550, {2, 3, 0}), DoublesTag(33922, {0, 0, 0, 1000.25, 5000, 0})}));
  for (const char* format : {"GTiff tif", "JPEG jpg", "JPEG jpeg", "PNG png", "BMP bmp"}) {
    const std::string driver = std::string(format).substr(0, std::string(format).find(' '));
    const std::string picture = folder_ / ("out." + std::string(format).substr(driver.size() + 1));
    const std::string worldFile = driver == "GTiff" ? "-co TFW=YES" : "-co WORLDFILE=YES";
    OutputOf("gdal_translate -q -of " + driver + " " + worldFile + " '" + tiff + "' '" + picture +
             "'");
    const Placement placement = ReadPlacement(picture, {}, 20, 10);
    ASSERT_TRUE(placement.affine) << picture;
    EXPECT_NEAR(placement.affine->x, 1001.25, 1e-9) << picture;
    EXPECT_NEAR(placement.affine->y, 4998.5, 1e-9) << picture;
    EXPECT_THAT(placement.warnings, testing::IsEmpty()) << picture;
    for (const std::string& name : WorldFileNames(picture)) std::filesystem::remove(name);
  }
}

TEST_F(PlacementPeers, AuxXmlOfGdalIsRead) {
  const std::string tiff = folder_.Write("source.tif", TiffWithTags(20, 10, {}));
  const std::string picture = folder_ / "out.jpg";
  OutputOf(
      "gdal_translate -q -of JPEG -a_srs EPSG:25832 -a_ullr 1000 5000 1040 4970 -a_nodata 7 '" +
      tiff + "' '" + picture + "'");
  ASSERT_TRUE(std::filesystem::exists(picture + ".aux.xml"));
  const Placement placement = ReadPlacement(picture, {}, 20, 10);
  EXPECT_EQ(placement.affine, (Affine{2, 0, 0, -3, 1001, 4998.5}));
  EXPECT_EQ(placement.system.Description(), "EPSG:25832 (ETRS89 / UTM zone 32N)");
  EXPECT_EQ(std::stod(placement.noData), 7);
  OutputOf(
      "gdal_translate -q -of PNG -a_srs EPSG:4326 -gcp 0 0 7 51 -gcp 20 0 8 51 -gcp 0 10 7 50 '" +
      tiff + "' '" + folder_ / "points.png" + "'");
  const Placement points = ReadPlacement(folder_ / "points.png", {}, 20, 10);
  ASSERT_EQ(points.controlPoints.size(), 3u);
  EXPECT_EQ(points.controlPoints[1].column, 20);
  EXPECT_EQ(points.controlPoints[1].x, 8);
  EXPECT_EQ(points.system.Epsg(), 4326);
}

TEST_F(PlacementPeers, AgreeOnTheTagsOfTheCorpus) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "no corpus";
  int positions = 0, points = 0, codes = 0;
  for (const char* folder : {"geotiff", "tiff", "worldfile"}) {
    for (const auto& entry : std::filesystem::directory_iterator(CorpusFolder() / folder)) {
      const std::string file = entry.path().string();
      const std::vector<TagValue> tags = PositionTagsIn(file);
      if (tags.empty()) continue;
      const GdalPlace place = AskGdal(file, kTagsAlone);
      if (!place.isRead) continue;
      Placement placement = ReadPlacement("", tags, place.width, place.height);
      for (const Placement& ours :
           {placement, ReadPlacement("", TagsOf(placement), place.width, place.height)}) {
        if (place.transform && ours.affine) {
          ExpectSame(TransformOf(*ours.affine), *place.transform, file);
          ++positions;
        }
        EXPECT_EQ(ours.affine.has_value(), place.transform.has_value()) << file;
        if (!place.points.empty()) {
          ASSERT_EQ(ours.controlPoints.size(), place.points.size()) << file;
          for (size_t i = 0; i < place.points.size(); ++i, ++points) {
            EXPECT_NEAR(ours.controlPoints[i].column, place.points[i][0], 1e-9) << file;
            EXPECT_NEAR(ours.controlPoints[i].y, place.points[i][3], 1e-9) << file;
          }
        }
        // Other programs also find codes by comparing definitions.
        if (const auto epsg = ours.system.Epsg()) {
          EXPECT_EQ(epsg, place.epsg) << file;
          ++codes;
        }
      }
    }
  }
  EXPECT_GT(positions, 50);
  EXPECT_GT(points, 10);
  EXPECT_GT(codes, 40);
}

}  // namespace
}  // namespace rasterkit::test
