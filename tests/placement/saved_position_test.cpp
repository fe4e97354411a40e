// A black square in a white picture keeps its place on the map in every saved file: libtiff reads
// the pixels, gdalinfo the position.

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <functional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tiffio.h>

#include <rasterkit/pictures/picture.h>
#include <rasterkit/placement/side_files.h>

#include "tests/placement/geo_tag_values.h"
#include "tests/placement/geo_tiff_files.h"
#include "tests/support/temp_folder.h"

namespace rasterkit::test {
namespace {

constexpr int kWidth = 120, kHeight = 90;
/// Center of a square of 5 x 5 pixels.
constexpr int kColumn = 71, kRow = 33;

struct NamedSteps {
  const char* name;
  std::function<void(Picture&)> apply;
};

const NamedSteps kSteps[] = {
    {"none", [](Picture&) {}},
    {"quarter", [](Picture& picture) { picture.Turn(1); }},
    {"half", [](Picture& picture) { picture.Turn(2); }},
    {"three quarters", [](Picture& picture) { picture.Turn(3); }},
    {"mirror", [](Picture& picture) { picture.Mirror(MirrorAxis::leftRight); }},
    {"flip", [](Picture& picture) { picture.Mirror(MirrorAxis::topBottom); }},
    {"90 degrees", [](Picture& picture) { picture.Rotate(90); }},
    {"10 degrees", [](Picture& picture) { picture.Rotate(10); }},
    {"17.3 degrees", [](Picture& picture) { picture.Rotate(17.3); }},
    {"-133 degrees", [](Picture& picture) { picture.Rotate(-133); }},
    {"crop",
     [](Picture& picture) {
       picture.Crop(CropStep{50, 10, 41, 52});
     }},
    {"shrink", [](Picture& picture) { picture.Resize(70, 60); }},
    {"grow", [](Picture& picture) { picture.Resize(301, 222); }},
    {"many",
     [](Picture& picture) {
       picture.Turn(1)
           .Resize(180, 240)
           .Rotate(17.3)
           .Crop(CropStep{20, 20, 200, 260})
           .Mirror(MirrorAxis::leftRight);
     }},
};

/// Center of darkness, in pixels from the top left corner of the picture.
std::optional<MapPoint> Center(const std::string& file) {
  TIFFSetWarningHandler(nullptr);
  TIFF* const tiff = TIFFOpen(file.c_str(), "r");
  if (tiff == nullptr) return std::nullopt;
  uint32_t width = 0, height = 0;
  TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &width);
  TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &height);
  std::vector<uint32_t> pixels(size_t{width} * height);
  const int isRead =
      TIFFReadRGBAImageOriented(tiff, width, height, pixels.data(), ORIENTATION_TOPLEFT, 1);
  TIFFClose(tiff);
  double sum = 0, columns = 0, rows = 0;
  for (uint32_t y = 0; y < height; ++y) {
    for (uint32_t x = 0; x < width; ++x) {
      const double dark = 255 - TIFFGetR(pixels[size_t{y} * width + x]);
      sum += dark;
      columns += dark * (x + 0.5);
      rows += dark * (y + 0.5);
    }
  }
  if (isRead == 0 || sum == 0) return std::nullopt;
  return MapPoint{columns / sum, rows / sum};
}

/// The position of pixel corners.
Affine AffineOf(const std::array<double, 6>& transform) {
  return {transform[1], transform[4], transform[2], transform[5], transform[0], transform[3]};
}

std::vector<uint8_t> MarkedTiff(const std::vector<TagValue>& tags) {
  std::vector<uint8_t> bytes = TiffWithTags(kWidth, kHeight, tags);
  constexpr size_t kHeader = 8;
  std::fill_n(bytes.begin() + kHeader, kWidth * kHeight, uint8_t{255});
  for (int y = kRow - 2; y <= kRow + 2; ++y) {
    std::fill_n(bytes.begin() + kHeader + y * kWidth + kColumn - 2, 5, uint8_t{0});
  }
  return bytes;
}

class SavedPosition : public testing::Test {
 protected:
  void SetUp() override {
    if (!HasProgram("gdalinfo")) GTEST_SKIP() << "gdalinfo is not installed";
  }

  TempFolder folder_;
};

TEST_F(SavedPosition, IsWhereTheSquareIs) {
  const Affine straight{0.5, 0, 0, -0.25, 440720.3, 3751320.7},
      turned{3, 0.5, 0.75, -2, 1000, 2000};
  for (const bool pixelIsPoint : {false, true}) {
    const Affine& affine = pixelIsPoint ? turned : straight;
    Placement placement = ReadPlacement("", KeyTags(pixelIsPoint), kWidth, kHeight);
    placement.affine = affine;
    const std::string source = folder_.Write("source.tif", MarkedTiff(TagsOf(placement)));
    const MapPoint expected = affine.At(kColumn, kRow);
    for (const NamedSteps& steps : kSteps) {
      SCOPED_TRACE(steps.name);
      Picture picture = Picture::Open(source);
      steps.apply(picture);
      picture.Save(folder_ / "out.tif");
      const GdalPlace place = AskGdal(folder_ / "out.tif", "--config GDAL_GEOREF_SOURCES INTERNAL");
      ASSERT_TRUE(place.transform);
      EXPECT_EQ(place.epsg, 25832);
      const auto center = Center(folder_ / "out.tif");
      ASSERT_TRUE(center);
      const auto stated = AffineOf(*place.transform).Back(expected);
      ASSERT_TRUE(stated);
      EXPECT_NEAR(center->x, stated->x, 0.5);
      EXPECT_NEAR(center->y, stated->y, 0.5);
      // The same picture without tags has a world file that says the same.
      picture.Save(folder_ / "plain.png");
      const GdalPlace beside = AskGdal(folder_ / "plain.png", "--config GDAL_PAM_ENABLED NO");
      ASSERT_TRUE(beside.transform);
      for (size_t i = 0; i < 6; ++i) {
        EXPECT_NEAR((*beside.transform)[i], (*place.transform)[i], 1e-7) << i;
      }
    }
  }
}

TEST_F(SavedPosition, OfAWorldFileGoesBesideTheOutput) {
  const std::string source = folder_.Write("plan.tif", MarkedTiff({}));
  folder_.Write("plan.wld", WorldFileText({0.5, 0, 0, -0.5, 100, 200}));
  folder_.Write("plan.prj", "PROJCS[\"Grid\"]");
  Picture picture = Picture::Open(source);
  picture.Crop(CropStep{50, 10, 41, 52});
  picture.Save(folder_ / "plan.png");
  EXPECT_EQ(ReadFile(folder_ / "plan.wld"), WorldFileText({0.5, 0, 0, -0.5, 100, 200}));
  EXPECT_EQ(ReadFile(folder_ / "plan.pgw"), WorldFileText({0.5, 0, 0, -0.5, 125, 195}));
  // Over its own name the shared file cannot follow; the particular one counts before it.
  picture.Save(source);
  EXPECT_EQ(ReadFile(folder_ / "plan.wld"), WorldFileText({0.5, 0, 0, -0.5, 100, 200}));
  EXPECT_EQ(ReadPlacement(source, {}, 41, 52).affine, (Affine{0.5, 0, 0, -0.5, 125, 195}));
}

TEST_F(SavedPosition, OfTagsStaysWhenMetadataAloneIsEdited) {
  Placement placement;
  placement.affine = Affine{0.5, 0, 0, -0.5, 100, 200};
  const std::string source = folder_.Write("a.tif", MarkedTiff(TagsOf(placement)));
  const std::string bare = folder_.Write("b.tif", MarkedTiff({}));
  // A world file beside a picture counts, and is no part of the edit.
  for (const char* name : {"a.tfw", "b.tfw"}) {
    folder_.Write(name, WorldFileText({1, 0, 0, -1, 5, 6}));
  }
  for (const std::string& file : {source, bare}) {
    MetadataEdit edit;
    edit.set = {{"Artist", "A. Person"}};
    Picture picture = Picture::Open(file);
    picture.Edit(edit).Save(folder_ / "out.tif");
    EXPECT_EQ(PositionTagsIn(folder_ / "out.tif"), PositionTagsIn(file));
    EXPECT_EQ(ReadFile(folder_ / "out.tfw"), WorldFileText({1, 0, 0, -1, 5, 6}));
    TIFF* const tiff = TIFFOpen((folder_ / "out.tif").c_str(), "r");
    ASSERT_NE(tiff, nullptr);
    uint16_t orientation = 0;
    EXPECT_EQ(TIFFGetField(tiff, TIFFTAG_ORIENTATION, &orientation), 0);
    const char* artist = nullptr;
    EXPECT_EQ(TIFFGetField(tiff, TIFFTAG_ARTIST, &artist), 1);
    TIFFClose(tiff);
  }
}

TEST_F(SavedPosition, OverAnOldWorldFileIsRefusedOrReplacesIt) {
  Placement placement;
  placement.affine = Affine{0.5, 0, 0, -0.5, 100, 200};
  Picture picture = Picture::Open(folder_.Write("a.tif", MarkedTiff(TagsOf(placement))));
  folder_.Write("q.tfw", WorldFileText({1, 0, 0, -1, 5, 6}));
  SaveOptions options;
  options.mayReplace = false;
  EXPECT_THROW(picture.Save(folder_ / "q.tif", options), FileExistsError);
  EXPECT_FALSE(std::filesystem::exists(folder_ / "q.tif"));
  options.mayReplace = true;
  picture.Save(folder_ / "q.tif", options);
  const Placement written =
      ReadPlacement(folder_ / "q.tif", PositionTagsIn(folder_ / "q.tif"), kWidth, kHeight);
  EXPECT_EQ(written.affine, placement.affine);
  EXPECT_THAT(written.warnings, testing::IsEmpty());
}

}  // namespace
}  // namespace rasterkit::test
