// What the verbs keep, lose and say, and the options for it.

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/graphics/bitmap.h>

#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/run_tool.h"
#include "tests/tool/support/sample_files.h"

namespace rasterkit::test {
namespace {

using nlohmann::json;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class CliKeeping : public testing::Test {
 protected:
  /// Runs a verb on a file of the folder and returns the line of its result.
  json Run(const std::string& verb, const std::string& in, const std::string& out,
           std::vector<std::string> more = {}, int code = 0) {
    std::vector<std::string> line = {verb, folder_ / in, folder_ / out, "--json"};
    line.insert(line.end(), more.begin(), more.end());
    const ToolResult result = RunTool(line);
    EXPECT_EQ(result.code, code) << result.err;
    err_ = result.err;
    return result.out.empty() ? json() : JsonLines(result.out).at(0);
  }

  json Facts(const std::string& name) {
    return JsonLines(RunTool({"info", "--json", folder_ / name}).out).at(0);
  }

  void AddPhoto(const std::string& name) {
    std::filesystem::copy_file(RASTERKIT_SAMPLES "/orientation-6.jpg", folder_ / name);
  }

  /// A picture of 40 x 30 pixels with a world file.
  void AddMap(const std::string& base, const std::string& numbers) {
    SavePngFile(folder_ / (base + ".png"), GradientRaster(pf24bit, 40, 30));
    WriteText(folder_ / (base + ".pgw"), numbers);
  }

  TempFolder folder_;
  std::string err_;
};

Raster FilledRaster(int width, int height, TColor color) {
  TBitmap bitmap;
  bitmap.ResetPixels(pf24bit, width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      uint8_t* const pixel = bitmap.ScanLine(y) + 3 * x;
      pixel[0] = static_cast<uint8_t>(color >> 16);
      pixel[1] = static_cast<uint8_t>(color >> 8);
      pixel[2] = static_cast<uint8_t>(color);
    }
  }
  return bitmap.Content().Clone();
}

constexpr const char* kNumbers = "2\n0\n0\n-2\n1001\n1999\n";

TEST_F(CliKeeping, Photograph_Should_StayConsistent_When_ItIsTurned) {
  AddPhoto("a.jpg");
  const json before = Facts("a.jpg");
  const json line = Run("rotate", "a.jpg", "b.jpg", {"--angle", "90", "--strict"});
  EXPECT_EQ(line["losses"], json::array());
  const json after = Facts("b.jpg");
  EXPECT_EQ(after["orientation"], 1);
  EXPECT_EQ(after["gps"], before["gps"]);
  EXPECT_EQ(after["dpi"], before["dpi"]);
  EXPECT_EQ(after["width"], before["width"]) << "upright, and then turned";
}

TEST_F(CliKeeping, CompressedPixels_Should_BeCopied_When_NothingChangesThem) {
  std::filesystem::copy_file(RASTERKIT_SAMPLES "/orientation-1.jpg", folder_ / "a.jpg");
  Run("convert", "a.jpg", "b.jpg", {"--strip-gps", "--strict"});
  EXPECT_TRUE(Facts("b.jpg")["gps"].is_null());
  EXPECT_TRUE(SamePixels(LoadFile(folder_ / "a.jpg"), LoadFile(folder_ / "b.jpg")));
  const auto tail = [&](const std::string& name) {
    const auto bytes = ReadBytes(folder_ / name);
    return std::vector<uint8_t>(bytes.end() - 2000, bytes.end());
  };
  EXPECT_EQ(tail("a.jpg"), tail("b.jpg"));
  Run("convert", "a.jpg", "c.jpg", {"--quality", "50"});
  EXPECT_FALSE(SamePixels(LoadFile(folder_ / "a.jpg"), LoadFile(folder_ / "c.jpg")));
}

TEST_F(CliKeeping, Strip_Should_DropMetadataWithoutALoss) {
  AddPhoto("a.jpg");
  const json line = Run("convert", "a.jpg", "b.jpg", {"--strip", "--strict"});
  EXPECT_EQ(line["losses"], json::array());
  EXPECT_THAT(Facts("b.jpg")["metadata"], Not(Contains("exif")));
}

TEST_F(CliKeeping, DryRun_Should_SayAllAndWriteNothing) {
  AddPhoto("a.jpg");
  const auto before = folder_.Names();
  const json line = Run("resize", "a.jpg", "b.bmp", {"--size", "50%", "--dry-run"});
  EXPECT_EQ(line["dry_run"], true);
  EXPECT_EQ(line["width"], Facts("a.jpg")["height"].get<int>() / 2);
  EXPECT_GT(line["bytes"].get<uint64_t>(), 0u);
  EXPECT_GT(line["memory"].get<uint64_t>(), 0u);
  EXPECT_THAT(line["kept"], Contains("resolution"));
  EXPECT_EQ(folder_.Names(), before);
  const ToolResult text =
      RunTool({"resize", folder_ / "a.jpg", folder_ / "b.bmp", "--size", "50%", "--dry-run"});
  EXPECT_THAT(text.out, HasSubstr("at most"));
  EXPECT_THAT(text.out, HasSubstr("kept: "));
  EXPECT_EQ(folder_.Names(), before);
}

TEST_F(CliKeeping, DryRun_Should_ForeseeTheBytes) {
  AddPhoto("a.jpg");
  for (const char* out : {"b.png", "b.jpg", "b.tif", "b.bmp"}) {
    const json plan = Run("rotate", "a.jpg", out, {"--angle", "180", "--dry-run"});
    const json done = Run("rotate", "a.jpg", out, {"--angle", "180"});
    EXPECT_GE(plan["bytes"].get<uint64_t>(), ReadBytes(folder_ / out).size()) << out;
    EXPECT_EQ(plan["losses"], done["losses"]) << out;
    EXPECT_EQ(plan["width"], done["width"]) << out;
    EXPECT_EQ(plan["bits"], done["bits"]) << out;
  }
}

TEST_F(CliKeeping, InPlace_Should_ReplaceEachInput) {
  AddPhoto("a.jpg");
  AddPhoto("b.jpg");
  const ToolResult result =
      RunTool({"gray", "--in-place", folder_ / "a.jpg", folder_ / "b.jpg", "--strict"});
  EXPECT_EQ(result.code, 0) << result.err;
  for (const char* name : {"a.jpg", "b.jpg"}) {
    EXPECT_EQ(Facts(name)["bits"], 8);
    EXPECT_EQ(Facts(name)["orientation"], 1);
  }
  EXPECT_EQ(folder_.Names(), (std::vector<std::string>{"a.jpg", "a.jpg~", "b.jpg", "b.jpg~"}));
  EXPECT_EQ(RunTool({"gray", "--in-place", folder_ / "a.jpg", "--out-dir", folder_.Path()}).code,
            2);
}

TEST_F(CliKeeping, WorldFile_Should_FollowThePixels) {
  AddMap("map", kNumbers);
  Run("crop", "map.png", "part.png", {"--rect", "3,2,10,10", "--strict"});
  EXPECT_EQ(Facts("part.png")["geo"][0]["affine"], json({2.0, 0.0, 0.0, -2.0, 1007.0, 1995.0}));
  Run("rotate", "map.png", "turned.png", {"--angle", "90", "--strict"});
  EXPECT_EQ(Facts("turned.png")["geo"][0]["affine"], json({0.0, -2.0, -2.0, 0.0, 1079.0, 1999.0}));
  Run("mirror", "map.png", "mirrored.png", {"--horizontal", "--strict"});
  EXPECT_EQ(Facts("mirrored.png")["geo"][0]["affine"],
            json({-2.0, 0.0, 0.0, -2.0, 1079.0, 1999.0}));
  Run("resize", "map.png", "small.png", {"--size", "50%", "--strict"});
  EXPECT_EQ(Facts("small.png")["geo"][0]["affine"], json({4.0, 0.0, 0.0, -4.0, 1002.0, 1998.0}));
}

TEST_F(CliKeeping, PositionFrom_Should_ChooseTheSource) {
  AddMap("map", kNumbers);
  Run("convert", "map.png", "map.tif", {"--strict"});
  WriteText(folder_ / "map.tfw", "4\n0\n0\n-4\n0\n0\n");
  Run("convert", "map.tif", "tags.tif", {"--position-from", "tags"});
  EXPECT_EQ(Facts("tags.tif")["geo"][0]["affine"], json({2.0, 0.0, 0.0, -2.0, 1001.0, 1999.0}));
  Run("convert", "map.tif", "file.tif", {"--position-from", "worldfile"});
  EXPECT_EQ(Facts("file.tif")["geo"][0]["affine"], json({4.0, 0.0, 0.0, -4.0, 0.0, 0.0}));
  const json facts = Facts("map.tif");
  ASSERT_EQ(facts["geo"].size(), 2u);
  EXPECT_EQ(facts["geo"][0]["difference"], 0.0);
  EXPECT_GT(facts["geo"][1]["difference"].get<double>(), 100);
}

TEST_F(CliKeeping, WorldFileOption_Should_WriteOneInAnyCase) {
  AddMap("map", kNumbers);
  Run("convert", "map.png", "a.tif", {});
  std::filesystem::remove(folder_ / "a.tfw");
  Run("convert", "a.tif", "b.tif");
  EXPECT_FALSE(std::filesystem::exists(folder_ / "b.tfw"));
  Run("convert", "a.tif", "c.tif", {"--world-file"});
  EXPECT_TRUE(std::filesystem::exists(folder_ / "c.tfw"));
}

TEST_F(CliKeeping, MapRect_Should_BeRoundedToPixelsAndSaySo) {
  AddMap("map", kNumbers);
  // The left edge of the picture is at 1000, its top at 2000; a pixel has 2 units.
  Run("crop", "map.png", "part.png", {"--map-rect", "1004.9,1979,1021,1993.2"});
  EXPECT_THAT(err_, HasSubstr("2,3,8,7 in pixels"));
  EXPECT_EQ(Facts("part.png")["width"], 8);
  EXPECT_EQ(Facts("part.png")["height"], 7);
  EXPECT_EQ(Facts("part.png")["geo"][0]["affine"], json({2.0, 0.0, 0.0, -2.0, 1005.0, 1993.0}));
  Run("crop", "map.png", "none.png", {"--map-rect", "0,0,10,10"}, 4);
  SavePngFile(folder_ / "plain.png", GradientRaster(pf24bit, 9, 9));
  Run("crop", "plain.png", "none.png", {"--map-rect", "0,0,10,10"}, 4);
  EXPECT_THAT(err_, HasSubstr("no position"));
}

TEST_F(CliKeeping, RectInPercent_Should_CutThatPart) {
  SavePngFile(folder_ / "a.png", GradientRaster(pf24bit, 40, 30));
  Run("crop", "a.png", "p.png", {"--rect", "10%,10%,80%,80%"});
  Run("crop", "a.png", "q.png", {"--rect", "4,3,32,24"});
  EXPECT_TRUE(SamePixels(LoadFile(folder_ / "p.png"), LoadFile(folder_ / "q.png")));
}

TEST_F(CliKeeping, NorthUp_Should_TurnThePictureIntoTheFrameOfTheMap) {
  AddMap("map", "0\n-2\n-2\n0\n1001\n1999\n");
  Run("rotate", "map.png", "north.png", {"--north-up", "--strict"});
  const json affine = Facts("north.png")["geo"][0]["affine"];
  EXPECT_EQ(affine[1], 0.0);
  EXPECT_EQ(affine[2], 0.0);
  EXPECT_GT(affine[0].get<double>(), 0);
  EXPECT_LT(affine[3].get<double>(), 0);
  EXPECT_EQ(RunTool({"rotate", folder_ / "map.png", folder_ / "x.png"}).code, 2);
}

TEST_F(CliKeeping, Combine_Should_AlignByTheMap) {
  SavePngFile(folder_ / "under.png", FilledRaster(20, 20, clWhite));
  WriteText(folder_ / "under.pgw", "1\n0\n0\n-1\n0.5\n19.5\n");
  SavePngFile(folder_ / "over.png", FilledRaster(4, 4, clBlack));
  WriteText(folder_ / "over.pgw", "1\n0\n0\n-1\n10.5\n9.5\n");
  Run("combine", "under.png", "out.png", {"--with", folder_ / "over.png"});
  EXPECT_THAT(err_, HasSubstr("map"));
  const Raster out = LoadFile(folder_ / "out.png");
  EXPECT_EQ(out.PixelColor(9, 10), clWhite);
  EXPECT_EQ(out.PixelColor(10, 10), clBlack);
  EXPECT_EQ(out.PixelColor(13, 13), clBlack);
  EXPECT_EQ(out.PixelColor(14, 14), clWhite);
  Run("combine", "under.png", "all.png", {"--with", folder_ / "over.png", "--align", "none"});
  EXPECT_EQ(LoadFile(folder_ / "all.png").PixelColor(0, 0), clBlack);
}

TEST_F(CliKeeping, Quiet_Should_HideNotesAndKeepLosses) {
  AddMap("map", kNumbers);
  const std::vector<std::string> line = {"crop", folder_ / "map.png", folder_ / "b.png",
                                         "--map-rect", "1004,1979,1021,1993"};
  std::vector<std::string> quiet = line;
  quiet.insert(quiet.end(), {"-q", "--overwrite"});
  EXPECT_THAT(RunTool(line).err, HasSubstr("in pixels"));
  EXPECT_THAT(RunTool(quiet).err, IsEmpty());
  std::vector<std::string> verbose = line;
  verbose.insert(verbose.end(), {"-v", "--overwrite"});
  const std::string err = RunTool(verbose).err;
  EXPECT_THAT(err, HasSubstr("position: world file"));
  EXPECT_THAT(err, HasSubstr("kept: "));
}

TEST_F(CliKeeping, CommonPalette_Should_HaveTheColorsOfAllPictures) {
  SavePngFile(folder_ / "a.png", FilledRaster(5, 5, RGB(255, 0, 0)));
  SavePngFile(folder_ / "b.png", FilledRaster(5, 5, RGB(0, 0, 255)));
  const ToolResult result =
      RunTool({"palette", "--common", folder_ / "a.png", folder_ / "b.png", "--json"});
  ASSERT_EQ(result.code, 0) << result.err;
  const json line = JsonLines(result.out).at(0);
  EXPECT_EQ(line["exact"], true);
  ASSERT_EQ(line["entries"].size(), 2u);
  EXPECT_EQ(line["entries"][0]["color"], "FF0000");
  EXPECT_EQ(line["entries"][1]["color"], "0000FF");
  EXPECT_EQ(RunTool({"palette", "--common", folder_ / "a.png", folder_ / "b.png", "--out-dir",
                     folder_ / "out"})
                .code,
            0);
  const Raster a = LoadFile(folder_ / "out/a.png"), b = LoadFile(folder_ / "out/b.png");
  EXPECT_EQ(a.palette, b.palette);
  EXPECT_EQ(a.PixelColor(2, 2), RGB(255, 0, 0));
  EXPECT_EQ(b.PixelColor(2, 2), RGB(0, 0, 255));
}

TEST_F(CliKeeping, CommonPalette_Should_BeClose_When_ThereAreTooManyColors) {
  SavePngFile(folder_ / "a.png", GradientRaster(pf24bit, 90, 70));
  SavePngFile(folder_ / "b.png", FilledRaster(5, 5, RGB(0, 0, 255)));
  const ToolResult result =
      RunTool({"palette", "--common", folder_ / "a.png", folder_ / "b.png", "--json"});
  ASSERT_EQ(result.code, 0) << result.err;
  EXPECT_EQ(JsonLines(result.out).at(0)["exact"], false);
  EXPECT_EQ(JsonLines(result.out).at(0)["entries"].size(), 256u);
}

TEST_F(CliKeeping, Mono_Should_ChooseTheThreshold_When_Asked) {
  Raster raster = FilledRaster(20, 10, RGB(60, 60, 60));
  for (int y = 0; y < 10; ++y) {
    for (int i = 30; i < 60; ++i) raster.Row(y)[i] = 90;
  }
  SavePngFile(folder_ / "a.png", raster);
  Run("mono", "a.png", "b.png", {"--threshold", "otsu"});
  const Raster mono = LoadFile(folder_ / "b.png");
  EXPECT_EQ(mono.PixelColor(2, 2), clBlack);
  EXPECT_EQ(mono.PixelColor(15, 2), clWhite);
}

TEST_F(CliKeeping, PdfFile_Should_BeReferredToItsVerb) {
  WriteText(folder_ / "a.pdf", "%PDF-1.4\n%%EOF\n");
  Run("convert", "a.pdf", "b.png", {}, 3);
  EXPECT_THAT(err_, HasSubstr("rasterkit pdf"));
}

TEST_F(CliKeeping, Sampling_Should_BeThatOfTheOption) {
  SavePngFile(folder_ / "a.png", GradientRaster(pf24bit, 64, 48));
  // The sampling factors of the first component, in the frame header.
  const auto factors = [&](const std::string& sampling) {
    Run("convert", "a.png", "b.jpg", {"--sampling", sampling, "--overwrite"});
    const auto bytes = ReadBytes(folder_ / "b.jpg");
    for (size_t i = 0; i + 12 < bytes.size(); ++i) {
      if (bytes[i] == 0xFF && bytes[i + 1] == 0xC0) return int{bytes[i + 11]};
    }
    return 0;
  };
  EXPECT_EQ(factors("4:4:4"), 0x11);
  EXPECT_EQ(factors("4:2:2"), 0x21);
  EXPECT_EQ(factors("4:2:0"), 0x22);
  EXPECT_EQ(factors("4:4:0"), 0x12);
  EXPECT_EQ(factors("4:1:1"), 0x41);
}

}  // namespace
}  // namespace rasterkit::test
