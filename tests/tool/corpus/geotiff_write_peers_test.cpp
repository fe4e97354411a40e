// Reads the tool's GeoTIFF files with other programs. Each test is skipped if its program or the
// corpus is missing.

#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>

#include "tests/support/corpus.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/gdal_peer.h"
#include "tests/tool/support/sample_files.h"

namespace rasterkit::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;

std::vector<double> NumbersOf(const std::string& worldFile) {
  std::ifstream in(worldFile);
  std::vector<double> numbers;
  for (double number = 0; in >> number;) numbers.push_back(number);
  return numbers;
}

TEST_F(GdalPeer, Gdalinfo_Should_ReadThePositionThatWasWritten) {
  const std::string in = folder_ / "a.png", out = folder_ / "a.tif";
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf24bit, pf32bit}) {
    SavePngFile(in, GradientRaster(format, 37, 11));
    for (const std::string text : {"0.00001", "0.01", "0.0100001", "0.3", "25"}) {
      ASSERT_EQ(RunTool({"geotiff", in, out, "--overwrite", "--origin", "-179.9999969,5333999.7",
                         "--pixel-size", text})
                    .code,
                0);
      const json info = GdalInfo(out);
      const double size = std::stod(text);
      ExpectSamePosition({-179.9999969, size, 0, 5333999.7, 0, -size}, GeoTransform(info), text);
      EXPECT_EQ(info["size"], json({37, 11}));
      EXPECT_EQ(info["driverShortName"], "GTiff");
    }
  }
}

TEST(ListgeoPeer, Listgeo_Should_ReadTheTagsThatWereWritten) {
  if (!HasProgram("listgeo")) GTEST_SKIP() << "listgeo is not installed";
  TempFolder folder;
  SavePngFile(folder / "a.png", GradientRaster(pf8bit, 37, 11));
  ASSERT_EQ(RunTool({"geotiff", folder / "a.png", folder / "a.tif", "--origin",
                     "4468000.5,5334000.25", "--pixel-size", "0.5,0.25"})
                .code,
            0);
  const std::string text = OutputOf("listgeo " + Quoted(folder / "a.tif"));
  EXPECT_THAT(text, testing::ContainsRegex("ModelTiepointTag \\(2,3\\):\n +0 +0 +0 +\n"
                                           " +4468000.5 +5334000.25 +0 +\n"));
  EXPECT_THAT(text, testing::ContainsRegex("ModelPixelScaleTag \\(1,3\\):\n +0.5 +0.25 +0 +\n"));
}

TEST_F(GdalCorpus, EveryWorldFile_Should_BecomeTheGeotransformOfAGeoTiff) {
  int written = 0;
  for (const auto& entry : std::filesystem::directory_iterator(CorpusFolder() / "worldfile")) {
    const std::filesystem::path worldFile = entry.path();
    const std::string extension = worldFile.extension();
    if (extension != ".wld" && extension.back() != 'w') continue;
    std::string picture;
    for (const char* type : {".png", ".gif", ".jpg", ".tif", ".tiff"})
      if (std::filesystem::exists(std::filesystem::path(worldFile).replace_extension(type)))
        picture = std::filesystem::path(worldFile).replace_extension(type);
    ASSERT_FALSE(picture.empty()) << worldFile;
    const std::string out = folder_ / "out.tif";
    std::filesystem::remove(out);
    std::filesystem::remove(folder_ / "out.tfw");
    const ToolResult result =
        RunTool({"geotiff", picture, out, "--world-file", worldFile.string()});
    if (worldFile.stem() == "gdal__test") {
      EXPECT_EQ(result.code, 3);
      EXPECT_THAT(result.err, HasSubstr("has a comma"));
      continue;
    }
    ASSERT_EQ(result.code, 0) << result.err;
    const std::vector<double> n = NumbersOf(worldFile);
    ASSERT_EQ(n.size(), 6u) << worldFile;
    const json info = GdalInfo(out), before = GdalInfo(picture);
    ExpectSamePosition(
        {n[4] - n[0] / 2 - n[2] / 2, n[0], n[2], n[5] - n[1] / 2 - n[3] / 2, n[1], n[3]},
        GeoTransform(info), worldFile);
    EXPECT_EQ(info["size"], before["size"]) << picture;
    ++written;
  }
  EXPECT_GT(written, 20);
}

}  // namespace
}  // namespace rasterkit::test
