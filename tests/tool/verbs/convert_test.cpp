#include <algorithm>
#include <filesystem>
#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/jpeg/jpeg_decoder.h>
#include <rasterkit/codecs/jpeg/jpeg_encoder.h>
#include <rasterkit/raster/convert.h>

#include "tests/support/full_run.h"
#include "tests/support/profiles.h"
#include "tests/support/same_pixels.h"
#include "tests/support/sanitizers.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/run_tool.h"
#include "tests/tool/support/sample_files.h"

namespace rasterkit::test {
namespace {

using testing::HasSubstr;
using testing::Not;

class CliConvert : public testing::Test {
 protected:
  /// Runs `convert IN OUT OPTIONS...` in the folder and expects success.
  ToolResult Convert(const std::string& in, const std::string& out,
                     std::vector<std::string> options = {}) {
    std::vector<std::string> line = {"convert", folder_ / in, folder_ / out};
    line.insert(line.end(), options.begin(), options.end());
    ToolResult result = RunTool(line);
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(result.out.empty(),
              std::find(options.begin(), options.end(), "--json") == options.end());
    return result;
  }

  TempFolder folder_;
};

TEST_F(CliConvert, Pixels_Should_StayTheSame_When_TypeChangesWithoutLoss) {
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf24bit}) {
    const Raster raster = GradientRaster(format, 37, 19);
    SaveBmpFile(folder_ / "a.bmp", raster);
    Convert("a.bmp", "b.png", {"--overwrite"});
    Convert("b.png", "c.bmp", {"--overwrite"});
    EXPECT_TRUE(SamePixels(raster, LoadFile(folder_ / "b.png"))) << StoredBitsPerPixel(format);
    EXPECT_TRUE(SamePixels(raster, LoadFile(folder_ / "c.bmp"))) << StoredBitsPerPixel(format);
  }
}

TEST_F(CliConvert, Bits_Should_ChangeTheDepthAsTheLibraryDoes) {
  const Raster raster = GradientRaster(pf24bit, 37, 19);
  SaveBmpFile(folder_ / "a.bmp", raster);
  const std::pair<const char*, TPixelFormat> depths[] = {
      {"1", pf1bit},   {"4", pf4bit},   {"8", pf8bit},  {"15", pf15bit},
      {"16", pf16bit}, {"24", pf24bit}, {"32", pf32bit}};
  for (const auto& [bits, format] : depths) {
    Convert("a.bmp", "b.bmp", {"--bits", bits, "--overwrite"});
    EXPECT_TRUE(SamePixels(ConvertRaster(raster, format), LoadFile(folder_ / "b.bmp"))) << bits;
  }
}

TEST_F(CliConvert, Quality_Should_BeThatOfTheEncoder) {
  const Raster raster = GradientRaster(pf24bit, 37, 19);
  SaveBmpFile(folder_ / "a.bmp", raster);
  const Raster stored = LoadFile(folder_ / "a.bmp");
  Convert("a.bmp", "b.jpg");
  EXPECT_TRUE(SamePixels(LoadFile(folder_ / "b.jpg"), DecodeJpeg(EncodeJpeg(stored, 90))));
  Convert("a.bmp", "c.jpeg", {"--quality", "35"});
  EXPECT_TRUE(SamePixels(LoadFile(folder_ / "c.jpeg"), DecodeJpeg(EncodeJpeg(stored, 35))));
}

TEST_F(CliConvert, PngLevel_Should_ChangeTheSizeAlone) {
  const Raster raster = GradientRaster(pf24bit, 137, 119);
  SaveBmpFile(folder_ / "a.bmp", raster);
  Convert("a.bmp", "plain.png", {"--png-level", "0"});
  Convert("a.bmp", "small.png", {"--png-level", "12"});
  EXPECT_GT(std::filesystem::file_size(folder_ / "plain.png"), uint64_t{137 * 119 * 3});
  EXPECT_LT(std::filesystem::file_size(folder_ / "small.png"), uint64_t{137 * 119 * 3 / 4});
  EXPECT_TRUE(SamePixels(LoadFile(folder_ / "plain.png"), LoadFile(folder_ / "small.png")));
  // Pixels that would be copied are packed again.
  Convert("plain.png", "again.png", {"--png-level", "12"});
  EXPECT_EQ(std::filesystem::file_size(folder_ / "again.png"),
            std::filesystem::file_size(folder_ / "small.png"));
}

TEST_F(CliConvert, Resolution_Should_TravelAlong_When_TypesChange) {
  Raster raster = GradientRaster(pf24bit, 16, 8);
  raster.resolution = {300, 200};
  SaveBmpFile(folder_ / "a.bmp", raster);
  for (const std::string name : {"b.png", "b.jpg", "b.bmp"}) {
    Convert("a.bmp", name);
    const Resolution dpi = LoadFile(folder_ / name).resolution;
    EXPECT_NEAR(dpi.x, 300, 0.5) << name;
    EXPECT_NEAR(dpi.y, 200, 0.5) << name;
  }
}

TEST_F(CliConvert, Resolution_Should_BeExchangedWithTheSides_When_SetUpright) {
  Raster raster = GradientRaster(pf24bit, 16, 8);
  raster.resolution = {300, 200};
  SaveJpegFile(folder_ / "a.jpg", raster, 6);
  Convert("a.jpg", "b.png");
  const Raster upright = LoadFile(folder_ / "b.png");
  EXPECT_EQ(upright.Width(), 8);
  EXPECT_NEAR(upright.resolution.x, 200, 0.5);
  EXPECT_NEAR(upright.resolution.y, 300, 0.5);
}

TEST_F(CliConvert, Profile_Should_TravelAlong_When_TypesChange) {
  Raster raster = GradientRaster(pf24bit, 16, 8);
  raster.profile = RgbProfile();
  SaveJpegFile(folder_ / "a.jpg", raster);
  for (const std::string name : {"b.png", "b.bmp", "b.jpg"}) {
    EXPECT_EQ(Convert("a.jpg", name, {"--strict"}).err, "");
    const ColorProfile profile = LoadFile(folder_ / name).profile;
    ASSERT_NE(profile, nullptr) << name;
    EXPECT_EQ(*profile, *raster.profile) << name;
  }
}

TEST_F(CliConvert, Memory_Should_StayWithinPicturesAndFiles) {
  if (IsSanitized()) GTEST_SKIP() << "sanitizers take memory of their own";
  const int width = IsFullRun() ? 6000 : 3000, height = IsFullRun() ? 4000 : 2000;
  const uint64_t picture = uint64_t{3} * width * height;
  SaveJpegFile(folder_ / "a.jpg", GradientRaster(pf24bit, width, height), 6);
  const std::pair<const char*, const char*> ways[] = {{"a.jpg", "b.bmp"},
                                                      {"a.jpg", "b.png"},
                                                      {"a.jpg", "b.jpg"},
                                                      {"b.bmp", "c.png"},
                                                      {"b.png", "c.jpg"}};
  for (const auto& [in, out] : ways) {
    const ToolResult result = Convert(in, out);
    const uint64_t files =
        std::filesystem::file_size(folder_ / in) + std::filesystem::file_size(folder_ / out);
    EXPECT_LE(result.peakMemory, 2 * picture + files + (64u << 20)) << in << " to " << out;
  }
}

TEST_F(CliConvert, ExifAndPosition_Should_BeReported_When_TheTypeHoldsNone) {
  const std::string photo = std::string(RASTERKIT_SAMPLES) + "/orientation-6.jpg";
  const ToolResult text = RunTool({"convert", photo, folder_ / "a.bmp"});
  EXPECT_EQ(text.code, 0);
  EXPECT_THAT(text.err, HasSubstr("a.bmp: lost: "));
  const ToolResult strict = RunTool({"convert", photo, folder_ / "b.bmp", "--strict", "--json"});
  EXPECT_EQ(strict.code, 5);
  const auto line = JsonLines(strict.out).at(0);
  EXPECT_THAT(line["not_carried_over"], testing::IsSupersetOf({"exif", "gps"}));
  EXPECT_EQ(line["losses"].size(), line["not_carried_over"].size());
  EXPECT_FALSE(line["losses"][0]["why"].get<std::string>().empty());
  EXPECT_EQ(line["ok"], true);
  EXPECT_EQ(ReadBytes(folder_ / "a.bmp"), ReadBytes(folder_ / "b.bmp"))
      << "strict does not change the output";
  EXPECT_EQ(RunTool({"convert", photo, folder_ / "c.png", "--strict"}).code, 0) << "PNG holds both";
}

TEST_F(CliConvert, WorldFile_Should_GoAlong_When_TheTypeHasNoTags) {
  SavePngFile(folder_ / "plan.png", GradientRaster(pf1bit, 40, 30));
  WriteText(folder_ / "plan.PGW", "1\n0\n0\n-1\n0\n0\n");
  EXPECT_EQ(Convert("plan.png", "out.bmp", {"--strict"}).err, "");
  const auto facts = JsonLines(RunTool({"info", "--json", folder_ / "out.bmp"}).out).at(0);
  EXPECT_EQ(facts["geo"][0]["affine"], nlohmann::json({1.0, 0.0, 0.0, -1.0, 0.0, 0.0}));
}

TEST_F(CliConvert, NothingLost_Should_BeSilentAndExit0WithStrict) {
  SaveBmpFile(folder_ / "a.bmp", GradientRaster(pf24bit, 16, 8));
  EXPECT_EQ(Convert("a.bmp", "b.png", {"--strict"}).err, "");
}

TEST_F(CliConvert, Transparency_Should_BecomeTheBackground_When_WrittenAsJpeg) {
  Raster raster(pf32bit, 16, 16);
  raster.alphaFormat = afDefined;
  for (int y = 0; y < 16; ++y)
    for (int x = 0; x < 16; ++x) {
      uint8_t* pixel = raster.Row(y) + 4 * x;
      pixel[0] = pixel[1] = pixel[2] = pixel[3] = 0;
    }
  SavePngFile(folder_ / "a.png", raster);
  EXPECT_THAT(Convert("a.png", "white.jpg").err, HasSubstr("lost: the alpha channel"));
  Convert("a.png", "red.jpg", {"--background", "FF0000", "--quality", "100"});
  EXPECT_EQ(LoadFile(folder_ / "white.jpg").Row(8)[24], 255);
  EXPECT_LT(LoadFile(folder_ / "red.jpg").Row(8)[24], 5);
  EXPECT_GT(LoadFile(folder_ / "red.jpg").Row(8)[26], 250);
}

TEST_F(CliConvert, Transparency_Should_BecomeTheBackground_When_TheDepthHasNoAlpha) {
  Raster raster(pf32bit, 16, 16);
  raster.alphaFormat = afDefined;
  for (int y = 0; y < 16; ++y) std::fill_n(raster.Row(y), 4 * 16, uint8_t{0});
  SavePngFile(folder_ / "a.png", raster);
  const ToolResult result = Convert("a.png", "b.bmp", {"--bits", "24", "--background", "FF0000"});
  EXPECT_THAT(result.err, HasSubstr("lost: the alpha channel"));
  const Raster red = LoadFile(folder_ / "b.bmp");
  EXPECT_EQ(std::vector<uint8_t>(red.Row(8) + 24, red.Row(8) + 27),
            (std::vector<uint8_t>{0, 0, 255}));
}

TEST_F(CliConvert, ResolutionAndProfile_Should_Stay_When_TransparencyIsPaintedOver) {
  Raster raster = GradientRaster(pf32bit, 16, 8);
  raster.alphaFormat = afDefined;
  raster.resolution = {300, 200};
  raster.profile = RgbProfile();
  SavePngFile(folder_ / "a.png", raster);
  Convert("a.png", "b.jpg");
  const Raster painted = LoadFile(folder_ / "b.jpg");
  EXPECT_NEAR(painted.resolution.x, 300, 0.5);
  EXPECT_NEAR(painted.resolution.y, 200, 0.5);
  ASSERT_NE(painted.profile, nullptr);
  EXPECT_EQ(*painted.profile, *raster.profile);
}

TEST_F(CliConvert, TransparentColor_Should_BeShownAsItIs_When_WrittenAsBmpOrTiff) {
  Raster raster = GradientRaster(pf8bit, 21, 13);
  raster.transparentColor = TBitmap(raster.Clone()).PixelColor(3, 2);
  SavePngFile(folder_ / "a.png", raster);
  for (const char* name : {"b.bmp", "b.tif"}) {
    const ToolResult result = Convert("a.png", name, {"--background", "FF0000"});
    EXPECT_THAT(result.err, HasSubstr("transparent color")) << name;
    Convert(name, "c.png", {"--overwrite"});
    EXPECT_TRUE(SamePixels(raster, LoadFile(folder_ / "c.png"))) << name;
  }
}

TEST_F(CliConvert, Transparency_Should_Stay_When_WrittenAsPng) {
  const Raster raster = [] {
    Raster made = GradientRaster(pf32bit, 15, 9);
    made.alphaFormat = afDefined;
    return made;
  }();
  SavePngFile(folder_ / "a.png", raster);
  const ToolResult result = Convert("a.png", "b.png");
  EXPECT_EQ(result.err, "");
  EXPECT_TRUE(SamePixels(LoadFile(folder_ / "a.png"), LoadFile(folder_ / "b.png")));
}

TEST_F(CliConvert, FalseExtension_Should_NotMatter_When_TheContentIsAPicture) {
  const Raster raster = GradientRaster(pf24bit, 16, 8);
  SavePngFile(folder_ / "a.jpg", raster);
  Convert("a.jpg", "b.bmp");
  EXPECT_TRUE(SamePixels(raster, LoadFile(folder_ / "b.bmp")));
}

TEST_F(CliConvert, Json_Should_SayWhatWasWritten) {
  SaveBmpFile(folder_ / "a.bmp", GradientRaster(pf24bit, 16, 8));
  const auto line =
      JsonLines(Convert("a.bmp", "b.png", {"--json", "--bits", "8", "--angle", "90"}).out).at(0);
  EXPECT_EQ(line["schema"], 1);
  EXPECT_EQ(line["output"], folder_ / "b.png");
  EXPECT_EQ(line["type"], "png");
  EXPECT_EQ(line["width"], 8);
  EXPECT_EQ(line["height"], 16);
  EXPECT_EQ(line["bits"], 8);
}

TEST_F(CliConvert, UnreadableInputs_Should_Exit3AndWriteNothing) {
  WriteText(folder_ / "empty.png", "");
  WriteText(folder_ / "text.jpg", "no picture");
  for (const std::string& in :
       {folder_ / "missing.png", folder_ / "empty.png", folder_ / "text.jpg", folder_.Path()}) {
    const ToolResult result = RunTool({"convert", in, folder_ / "out.png"});
    EXPECT_EQ(result.code, 3) << in;
    EXPECT_THAT(result.err, HasSubstr(in));
  }
  EXPECT_THAT(folder_.Names(), Not(testing::Contains("out.png")));
}

}  // namespace
}  // namespace rasterkit::test
