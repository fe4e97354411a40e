// Each verb that changes a picture, recorded and applied: the bytes must be the same.

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/test_pictures.h"
#include "tests/tool/recipes/recorded_line.h"
#include "tests/tool/support/sample_files.h"

namespace rasterkit::test {
namespace {

const std::string kPlan = RASTERKIT_SAMPLES "/plan.png";

class CliRecordVerbs : public testing::TestWithParam<RecordedLine> {
 protected:
  /// Samples by name, and pictures that no sample shows.
  std::string Input(const std::string& name) {
    const std::string file = folder_ / name;
    if (name == "alpha.png") {
      Raster raster = GradientRaster(pf32bit, 41, 23);
      raster.alphaFormat = afDefined;
      SavePngFile(file, raster);
    } else if (name == "colors.png") {
      SavePngFile(file, GradientRaster(pf8bit, 41, 23));
    } else if (name == "skewed.png") {
      const ToolResult result =
          RunTool({"rotate", kPlan, file, "--angle", "3", "--filter", "linear"});
      EXPECT_EQ(result.code, 0) << result.err;
    } else {
      return RASTERKIT_SAMPLES "/" + name;
    }
    return file;
  }

  TempFolder folder_;
};

TEST_P(CliRecordVerbs, Recipe_Should_GiveTheSameBytes) {
  ExpectSameByRecipe(GetParam(), Input(GetParam().input), folder_);
}

INSTANTIATE_TEST_SUITE_P(
    Moves, CliRecordVerbs,
    testing::Values(
        RecordedLine{"Convert", {"convert"}},
        RecordedLine{"ConvertOptions",
                     {"convert", "--quality", "70", "--sampling", "4:4:4", "--angle", "10",
                      "--fill", "red", "--filter", "linear"}},
        RecordedLine{"ConvertTiff", {"convert", "--compression", "deflate"}, "plan.png", "out.tif"},
        RecordedLine{
            "ConvertPacked", {"convert", "--png-level", "9", "--bits", "4"}, "plan.png", "out.png"},
        RecordedLine{"ConvertDepth15", {"convert", "--bits", "15"}, "plan.png", "out.bmp"},
        RecordedLine{"ConvertAlphaToJpeg", {"convert", "--background", "teal"}, "alpha.png"},
        RecordedLine{"ConvertAlphaTo24",
                     {"convert", "--background", "teal", "--bits", "24"},
                     "alpha.png",
                     "out.png"},
        RecordedLine{"ConvertStripped", {"convert", "--strip"}},
        RecordedLine{"ConvertWithoutPosition", {"convert", "--strip-gps"}},
        RecordedLine{"ConvertWithoutNotes", {"convert", "--strip-maker-note", "--strip=all"}},
        RecordedLine{"ConvertNotLossless", {"convert", "--lossless", "off"}},
        RecordedLine{
            "ConvertStretched", {"convert", "--stretch", "percent", "2"}, "terrain.tif", "out.png"},
        RecordedLine{"Rotate", {"rotate", "--angle", "12.3", "--fill", "C0C0C0"}},
        RecordedLine{"RotateQuarter", {"rotate", "--angle", "90"}},
        RecordedLine{"RotateOnBackground", {"rotate", "--angle", "7", "--background", "white"}},
        RecordedLine{"RotateNorthUp", {"rotate", "--north-up"}, "plan.png", "out.png"},
        RecordedLine{"RotateDeskew", {"rotate", "--deskew"}, "skewed.png", "out.png"},
        RecordedLine{"Mirror", {"mirror", "--horizontal", "--vertical"}},
        RecordedLine{"Crop", {"crop", "--rect", "3,2,40,30"}},
        RecordedLine{"CropPercent", {"crop", "--rect", "10.5%,10%,33.3%,80%"}},
        RecordedLine{"Resize", {"resize", "--size", "31x17"}},
        RecordedLine{"ResizeOneSide", {"resize", "--size", "31x"}},
        RecordedLine{"ResizePercent", {"resize", "--size", "50%x33.3%", "--filter", "nearest"}},
        RecordedLine{"ResizeShrunk",
                     {"resize", "--size", "12%", "--shrink-on-load"},
                     "orientation-6.jpg",
                     "out.jpg",
                     {"--shrink-on-load"}}),
    [](const auto& info) { return info.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Colors, CliRecordVerbs,
    testing::Values(
        RecordedLine{"Gray", {"gray"}}, RecordedLine{"GrayTrueColor", {"gray", "--true-color"}},
        RecordedLine{
            "Mono", {"mono", "--threshold", "99", "--dark", "003080"}, "alpha.png", "out.png"},
        RecordedLine{"MonoOtsu", {"mono", "--threshold", "otsu"}, "orientation-6.jpg", "out.tif"},
        RecordedLine{"Brightness", {"brightness", "--percent", "30"}},
        RecordedLine{"Contrast", {"contrast", "--percent", "-30"}},
        RecordedLine{"Adjust", {"adjust", "--sharpen", "40", "--red", "10", "--contrast", "5"}},
        RecordedLine{"Whiten",
                     {"whiten", "--threshold", "128", "--transparent"},
                     "orientation-6.jpg",
                     "out.png"},
        RecordedLine{
            "Recolor",
            {"recolor", "--threshold", "128", "--color", "102030", "--darker", "--alpha", "9"},
            "orientation-6.jpg",
            "out.png"},
        RecordedLine{
            "KeyColor", {"key-color", "--color", "102030", "--transparent"}, "plan.png", "out.png"},
        RecordedLine{"PdfWhite", {"pdf-white"}, "plan.png", "out.png"},
        RecordedLine{"Opaque", {"opaque", "--background", "olive"}, "alpha.png", "out.png"},
        RecordedLine{"OpaqueNumbers", {"opaque"}, "terrain.tif", "out.tif"},
        RecordedLine{"SwapAlpha", {"swap-alpha"}, "alpha.png", "out.png"},
        RecordedLine{"Palette",
                     {"palette", "--first", "102030", "--set", "3=FF0000"},
                     "colors.png",
                     "out.png"}),
    [](const auto& info) { return info.param.name; });

INSTANTIATE_TEST_SUITE_P(
    SecondPictures, CliRecordVerbs,
    testing::Values(
        RecordedLine{"Combine",
                     {"combine", "--with", kPlan, "--percent", "20", "--align", "none"},
                     "orientation-6.jpg",
                     "out.jpg",
                     {"--with", "over=" + kPlan}},
        RecordedLine{"CombineAlpha",
                     {"combine", "--with", kPlan, "--mode", "shadow", "--gray", "--align", "none"},
                     "alpha.png",
                     "out.png",
                     {"--with", "over=" + kPlan}},
        RecordedLine{"CombineGrids",
                     {"combine", "--with", RASTERKIT_SAMPLES "/terrain.tif", "--align", "map"},
                     "terrain.tif",
                     "out.tif",
                     {"--with", "over=" RASTERKIT_SAMPLES "/terrain.tif"}},
        RecordedLine{"CombineStretched",
                     {"combine", "--with", RASTERKIT_SAMPLES "/terrain.tif", "--mode", "overwrite",
                      "--stretch", "percent:10", "--align", "none"},
                     "plan.png",
                     "out.png",
                     {"--with", "over=" RASTERKIT_SAMPLES "/terrain.tif"}},
        RecordedLine{"Watermark",
                     {"watermark", "--with", kPlan},
                     "orientation-6.jpg",
                     "out.jpg",
                     {"--with", "mark=" + kPlan}}),
    [](const auto& info) { return info.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Metadata, CliRecordVerbs,
    testing::Values(
        RecordedLine{"ExifSet",
                     {"exif", "--set", "Artist=A. Person", "--gps", "48.1375,11.575,520", "--date",
                      "2019-07-04T13:05:09"}},
        RecordedLine{"ExifRemove", {"exif", "--remove", "GPS", "--strip-thumbnail"}},
        RecordedLine{"ExifStrip", {"exif", "--strip=all", "--set", "ImageDescription=plan"}},
        RecordedLine{"ExifCopy",
                     {"exif", "--copy-from", RASTERKIT_SAMPLES "/orientation-3.jpg", "--strip",
                      "--keep-orientation", "--set", "Artist=B"},
                     "orientation-6.jpg",
                     "out.jpg",
                     {"--with", "metadata=" RASTERKIT_SAMPLES "/orientation-3.jpg"}},
        RecordedLine{"ExifCopyOrientation",
                     {"exif", "--copy-from", RASTERKIT_SAMPLES "/orientation-3.jpg"},
                     "orientation-6.jpg",
                     "out.jpg",
                     {"--with", "metadata=" RASTERKIT_SAMPLES "/orientation-3.jpg"}},
        RecordedLine{"GeoTiff",
                     {"geotiff", "--origin", "4468000,5334000.25", "--pixel-size", "0.05,0.1"},
                     "orientation-6.jpg",
                     "out.tif"},
        RecordedLine{"GeoTiffPoints",
                     {"geotiff", "--point", "10,8=4468000,5334000", "--point",
                      "60,9=4468190,5334001", "--point", "11,40=4467998,5333864"},
                     "orientation-6.jpg",
                     "out.tif"},
        RecordedLine{"GeoTiffOwn", {"geotiff", "--strip"}, "plan.png", "out.tif"}),
    [](const auto& info) { return info.param.name; });

/// A palette for several pictures goes on in the pictures that have it.
TEST(CliRecordPalette, CommonPalette_Should_BeTakenFromAPictureThatHasIt) {
  const TempFolder folder;
  const std::string a = folder / "a.png", b = folder / "b.png", recipe = folder / "r.json";
  SavePngFile(a, GradientRaster(pf24bit, 41, 23));
  SavePngFile(b, GradientRaster(pf24bit, 17, 60));
  ASSERT_EQ(
      RunTool({"palette", "--common", a, b, "--out-dir", folder / "one", "--record", recipe}).code,
      0);
  const ToolResult applied = RunTool({"apply", recipe, a, b, "--out-dir", folder / "two", "--with",
                                      "palette=" + (folder / "one") + "/b.png"});
  ASSERT_EQ(applied.code, 0) << applied.err;
  for (const char* name : {"/a.png", "/b.png"}) {
    EXPECT_EQ(ReadBytes((folder / "one") + name), ReadBytes((folder / "two") + name)) << name;
    EXPECT_EQ(LoadFile((folder / "two") + name).Format(), pf8bit) << name;
  }
}

}  // namespace
}  // namespace rasterkit::test
