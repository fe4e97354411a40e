// The verb geotiff with an output: writes a picture as a TIFF file with its map position.

#include <array>
#include <filesystem>

#include <fmt/core.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/decode_frame.h>
#include <rasterkit/codecs/tiff/tiff_facts.h>
#include <rasterkit/runtime/files/stream.h>

#include "samples/grid_tiff.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/run_tool.h"
#include "tests/tool/support/sample_files.h"

namespace rasterkit::test {
namespace {

using testing::DoubleNear;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TiffFacts FactsOf(const std::string& file) {
  TFileStream stream(file);
  return ReadTiffFacts(stream);
}

/// The picture of a TIFF file.
Raster PictureIn(const std::string& file) {
  TFileStream stream(file);
  return PictureOfFrame(DecodeFrame(stream));
}

class CliGeoTiffWrite : public testing::Test {
 protected:
  CliGeoTiffWrite() { SavePngFile(folder_ / "plan.png", picture_); }

  ToolResult Write(std::vector<std::string> options = {}) {
    options.insert(options.begin(), {"geotiff", folder_ / "plan.png", out_});
    return RunTool(options);
  }

  /// The position with the numbers that the file must hold exactly.
  void ExpectPosition(double x, double y, double width, double height) {
    const TiffFacts facts = FactsOf(out_);
    EXPECT_THAT(facts.pixelScale, ElementsAre(width, height, 0));
    EXPECT_THAT(facts.tiePoints, ElementsAre(0, 0, 0, x, y, 0));
    EXPECT_THAT(facts.transformation, IsEmpty());
  }

  void ExpectRefusal(const std::string& worldFile, const std::string& reason, int code = 4) {
    WriteText(folder_ / "plan.pgw", worldFile);
    const ToolResult result = Write();
    EXPECT_EQ(result.code, code) << worldFile;
    EXPECT_THAT(result.err, HasSubstr("plan.pgw"));
    EXPECT_THAT(result.err, HasSubstr(reason));
    EXPECT_FALSE(std::filesystem::exists(out_)) << worldFile;
  }

  TempFolder folder_;
  Raster picture_ = GradientRaster(pf24bit, 31, 17);
  std::string out_ = folder_ / "plan.tif";
};

TEST_F(CliGeoTiffWrite, WorldFile_Should_BecomeTheCorner_When_ItStatesACenter) {
  WriteText(folder_ / "plan.pgw", "0.5\n0.0\n0.0\n-0.25\n4468000.25\n5333999.875\n");
  const ToolResult result = Write();
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_THAT(result.err, IsEmpty());
  ExpectPosition(4468000, 5334000, 0.5, 0.25);
  EXPECT_TRUE(SamePixels(picture_, PictureIn(out_)));
}

TEST_F(CliGeoTiffWrite, WorldFile_Should_KeepEveryBit_When_NumbersAreNotRound) {
  WriteText(folder_ / "plan.pgw", "0.1\n0\n0\n-0.3\n-179.9499969\n89.9499969\n");
  EXPECT_EQ(Write().code, 0);
  ExpectPosition(-179.9499969 - 0.5 * 0.1, 89.9499969 + 0.5 * 0.3, 0.1, 0.3);
}

TEST_F(CliGeoTiffWrite, WorldFile_Should_CountWithItsUpperCaseName) {
  WriteText(folder_ / "plan.PGW", "1\n0\n0\n-1\n10\n20\n");
  EXPECT_EQ(Write().code, 0);
  ExpectPosition(9.5, 20.5, 1, 1);
}

TEST_F(CliGeoTiffWrite, WorldFile_Should_BeTheNamedOne_When_BothAreThere) {
  WriteText(folder_ / "plan.pgw", "1\n0\n0\n-1\n10\n20\n");
  WriteText(folder_ / "other.wld", "2\r\n0\r\n0\r\n-2\r\n100\r\n200\r\n");
  const ToolResult result = Write({"--world-file", folder_ / "other.wld", "--strict"});
  ExpectPosition(99, 201, 2, 2);
  EXPECT_EQ(result.code, 0) << result.err;
}

TEST_F(CliGeoTiffWrite, WorldFile_Should_BeCarriedOver_When_TheNamedOneLiesBesideThePicture) {
  WriteText(folder_ / "plan.pgw", "1\n0\n0\n-1\n10\n20\n");
  EXPECT_EQ(Write({"--world-file", folder_ / "./plan.pgw", "--strict"}).code, 0);
}

TEST_F(CliGeoTiffWrite, WorldFile_Should_BeRefused_When_ItHasDecimalCommas) {
  ExpectRefusal("0,5\n0\n0\n-0,5\n10,25\n20.75\n", "line 1: \"0,5\" has a comma", 3);
}

TEST_F(CliGeoTiffWrite, TinyPixels_Should_KeepTheirTags) {
  WriteText(folder_ / "plan.pgw", "0.00001\n0\n0\n-0.00001\n11.5\n48.25\n");
  EXPECT_EQ(Write().code, 0);
  ExpectPosition(11.5 - 0.5 * 0.00001, 48.25 + 0.5 * 0.00001, 0.00001, 0.00001);
  EXPECT_TRUE(SamePixels(picture_, PictureIn(out_)));
  for (const char* size : {"0.01", "0.01,5", "5,0.01", "1e-300", "0.0100001"}) {
    EXPECT_EQ(Write({"--origin", "1,2", "--pixel-size", size, "--overwrite"}).code, 0) << size;
    EXPECT_THAT(FactsOf(out_).pixelScale, testing::SizeIs(3)) << size;
    EXPECT_THAT(FactsOf(out_).tiePoints,
                ElementsAre(0, 0, 0, DoubleNear(1, 1e-15), DoubleNear(2, 1e-15), 0))
        << size;
  }
}

TEST_F(CliGeoTiffWrite, TinyPixels_Should_GiveTheSameFileBesideTheTags) {
  EXPECT_EQ(Write({"--origin", "1,2", "--pixel-size", "0.5"}).code, 0);
  const auto coarse = ReadBytes(out_).size();
  EXPECT_EQ(Write({"--origin", "1,2", "--pixel-size", "0.005", "--overwrite"}).code, 0);
  EXPECT_EQ(ReadBytes(out_).size(), coarse);
}

TEST_F(CliGeoTiffWrite, WorldFile_Should_BecomeATransformation_When_ItTurnsOrMirrors) {
  for (const std::array<double, 6>& n : {std::array{0.38, -0.01, 0.01, -0.38, 700000.5, 4287500.5},
                                         {0.0, 1.0, 1.0, 0.0, 10.0, 20.0},
                                         {1.0, 0.0, 1e-9, -1.0, 10.0, 20.0},
                                         {-1.0, 0.0, 0.0, -1.0, 10.0, 20.0},
                                         {1.0, 0.0, 0.0, 1.0, 10.0, 20.0}}) {
    WriteText(folder_ / "plan.pgw",
              fmt::format("{}\n{}\n{}\n{}\n{}\n{}\n", n[0], n[1], n[2], n[3], n[4], n[5]));
    const ToolResult result = Write({"--overwrite"});
    ASSERT_EQ(result.code, 0) << result.err;
    const TiffFacts facts = FactsOf(out_);
    EXPECT_THAT(facts.pixelScale, IsEmpty());
    ASSERT_EQ(facts.transformation.size(), 16u);
    EXPECT_EQ(facts.transformation[0], n[0]);
    EXPECT_EQ(facts.transformation[1], n[2]);
    EXPECT_EQ(facts.transformation[4], n[1]);
    EXPECT_EQ(facts.transformation[5], n[3]);
    EXPECT_NEAR(facts.transformation[3], n[4] - n[0] / 2 - n[2] / 2, 1e-9);
    EXPECT_NEAR(facts.transformation[7], n[5] - n[1] / 2 - n[3] / 2, 1e-9);
  }
}

TEST_F(CliGeoTiffWrite, WorldFile_Should_BeUnreadable_When_ItGivesNoPosition) {
  for (const char* text : {"", "1\n0\n0\n-1\n10\n", "1\n0\n0\n-1\nten\n20\n", "nan 0 0 -1 10 20",
                           "1 0 0 -1 inf 20", "1 0 0 -1 1e999 20", "1;0;0;-1;10;20", "\x89PNG",
                           "0 0 0 -1 10 20", "1 0 0 0 10 20", "1 0 0 -0.0 10 20"}) {
    ExpectRefusal(text, "plan.pgw: ", 3);
  }
}

TEST_F(CliGeoTiffWrite, MissingPosition_Should_Exit4AndSayHowToGiveOne) {
  const ToolResult result = Write();
  EXPECT_EQ(result.code, 4);
  EXPECT_THAT(result.err, HasSubstr("--origin"));
  EXPECT_FALSE(std::filesystem::exists(out_));
}

TEST_F(CliGeoTiffWrite, NamedWorldFile_Should_BeSaidToBeMissing_When_ItIsNotThere) {
  const std::string absent = folder_ / "absent.pgw";
  const ToolResult result = Write({"--world-file", absent});
  EXPECT_EQ(result.code, 3);
  EXPECT_THAT(result.err, HasSubstr(absent));
  EXPECT_FALSE(std::filesystem::exists(out_));
}

TEST_F(CliGeoTiffWrite, OriginAndPixelSize_Should_BeStoredAsGiven) {
  EXPECT_EQ(Write({"--origin", "-4468000.125,5334000", "--pixel-size", "0.05"}).code, 0);
  ExpectPosition(-4468000.125, 5334000, 0.05, 0.05);
  EXPECT_EQ(Write({"--origin", "0,-7e3", "--pixel-size", "3,2.5", "--overwrite"}).code, 0);
  ExpectPosition(0, -7000, 3, 2.5);
}

TEST_F(CliGeoTiffWrite, OriginAndPixelSize_Should_WinOverAWorldFile) {
  WriteText(folder_ / "plan.pgw", "1\n0\n0\n-1\n10\n20\n");
  const ToolResult result = Write({"--origin", "5,6", "--pixel-size", "2", "--strict", "--json"});
  EXPECT_EQ(result.code, 0) << result.err;
  ExpectPosition(5, 6, 2, 2);
  const auto geo = JsonLines(RunTool({"info", "--json", out_}).out).at(0)["geo"];
  for (const auto& position : geo) {
    EXPECT_EQ(position["affine"], nlohmann::json({2.0, 0.0, 0.0, -2.0, 6.0, 5.0})) << "all agree";
  }
}

TEST_F(CliGeoTiffWrite, EveryDepth_Should_KeepItsPixels) {
  for (const TPixelFormat format : kEveryFormat) {
    const Raster picture = GradientRaster(format, 37, 11);
    SaveBmpFile(folder_ / "a.bmp", picture);
    const Raster loaded = LoadFile(folder_ / "a.bmp");
    for (const char* size : {"1", "0.001"}) {
      const ToolResult result = RunTool({"geotiff", folder_ / "a.bmp", out_, "--origin", "1,2",
                                         "--pixel-size", size, "--overwrite", "--json"});
      EXPECT_EQ(result.code, 0) << result.err;
      EXPECT_EQ(JsonLines(result.out)[0]["type"], "tiff");
      TBitmap wanted(loaded.Clone()), written(PictureIn(out_));
      wanted.SetPixelFormat(pf32bit);
      written.SetPixelFormat(pf32bit);
      EXPECT_TRUE(SamePixels(wanted.Content(), written.Content())) << format;
    }
  }
}

TEST_F(CliGeoTiffWrite, Photograph_Should_StandUpright_When_OriginAndSizeAreGiven) {
  SaveJpegFile(folder_ / "photo.jpg", GrayRaster(20, 10), 6);
  const ToolResult result = RunTool(
      {"geotiff", folder_ / "photo.jpg", out_, "--origin", "1,2", "--pixel-size", "0.5", "--json"});
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_EQ(PictureIn(out_).Width(), 10);
  EXPECT_EQ(PictureIn(out_).Height(), 20);
  EXPECT_EQ(JsonLines(result.out)[0]["width"], 10);
}

TEST_F(CliGeoTiffWrite, Photograph_Should_TakeItsWorldFileAlong_When_ItIsTurnedUpright) {
  SaveJpegFile(folder_ / "photo.jpg", GrayRaster(20, 10), 6);
  WriteText(folder_ / "photo.jgw", "1\n0\n0\n-1\n10\n20\n");
  const ToolResult result = RunTool({"geotiff", folder_ / "photo.jpg", out_});
  EXPECT_EQ(result.code, 0) << result.err;
  // The first stored row, which runs east at y = 20, is the last column now; it runs down.
  const auto facts = JsonLines(RunTool({"info", "--json", out_}).out).at(0);
  EXPECT_EQ(facts["geo"][0]["affine"], nlohmann::json({0.0, 1.0, 1.0, 0.0, 10.0, 11.0}));
  SaveJpegFile(folder_ / "photo.jpg", GrayRaster(20, 10), 1);
  EXPECT_EQ(RunTool({"geotiff", folder_ / "photo.jpg", out_, "--overwrite"}).code, 0);
  ExpectPosition(9.5, 20.5, 1, 1);
}

class CliGeoTiffRewrite : public CliGeoTiffWrite {
 protected:
  /// A gray 8-bit TIFF with tags of its own.
  void SaveTiff(samples::GridTiff grid) {
    grid.width = 3;
    grid.height = 2;
    grid.bits = 8;
    grid.sampleFormat = 1;
    grid.values = {0, 50, 100, 150, 200, 250};
    WriteBytes(in_, samples::GridTiffBytes(grid));
  }

  /// The six numbers of the output's position.
  nlohmann::json Geo() {
    return JsonLines(RunTool({"info", "--json", out_}).out).at(0)["geo"][0]["affine"];
  }

  ToolResult Rewrite() { return RunTool({"geotiff", in_, out_, "--overwrite"}); }

  samples::GridTiff grid_;
  std::string in_ = folder_ / "in.tif";
};

TEST_F(CliGeoTiffRewrite, Tags_Should_Count_When_ThereIsNoWorldFile) {
  grid_.pixelScale = {2, 3, 0};
  grid_.tiePoints = {1, 2, 0, 100, 200, 0};
  SaveTiff(grid_);
  EXPECT_EQ(Rewrite().code, 0);
  EXPECT_EQ(Geo(), nlohmann::json({2.0, 0.0, 0.0, -3.0, 99.0, 204.5}));
}

TEST_F(CliGeoTiffRewrite, Tags_Should_MoveByHalfAPixel_When_PixelsArePoints) {
  grid_.pixelScale = {2, 3, 0};
  grid_.tiePoints = {0, 0, 0, 100, 200, 0};
  grid_.pixelIsPoint = true;
  SaveTiff(grid_);
  EXPECT_EQ(Rewrite().code, 0);
  EXPECT_EQ(Geo(), nlohmann::json({2.0, 0.0, 0.0, -3.0, 100.0, 200.0}));
}

TEST_F(CliGeoTiffRewrite, Matrix_Should_StayAsItIs) {
  grid_.transformation = {2, 0, 0, 100, 0, -3, 0, 200, 0, 0, 1, 0, 0, 0, 0, 1};
  SaveTiff(grid_);
  EXPECT_EQ(Rewrite().code, 0);
  EXPECT_EQ(Geo(), nlohmann::json({2.0, 0.0, 0.0, -3.0, 101.0, 198.5}));
  grid_.transformation[1] = 0.5;
  SaveTiff(grid_);
  const ToolResult result = Rewrite();
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_THAT(FactsOf(out_).pixelScale, IsEmpty());
  EXPECT_EQ(FactsOf(out_).transformation, grid_.transformation);
}

TEST_F(CliGeoTiffRewrite, WorldFile_Should_WinOverTags_WithAWarningWhenTheyDisagree) {
  grid_.pixelScale = {2, 3, 0};
  grid_.tiePoints = {0, 0, 0, 100, 200, 0};
  SaveTiff(grid_);
  WriteText(folder_ / "in.tfw", "2\n0\n0\n-3\n101\n198.5\n");
  const ToolResult same = Rewrite();
  EXPECT_EQ(same.code, 0);
  EXPECT_EQ(same.err.find("disagree"), std::string::npos) << same.err;
  ExpectPosition(100, 200, 2, 3);
  WriteText(folder_ / "in.tfw", "2\n0\n0\n-3\n100\n200\n");
  const ToolResult shifted = Rewrite();
  EXPECT_THAT(shifted.err, HasSubstr("disagree by up to 0.707 pixels"));
  ExpectPosition(99, 201.5, 2, 3);
}

TEST_F(CliGeoTiffRewrite, StoredOrientation_Should_TurnThePositionToo) {
  grid_.pixelScale = {2, 3, 0};
  grid_.tiePoints = {0, 0, 0, 100, 200, 0};
  grid_.orientation = 3;
  SaveTiff(grid_);
  const ToolResult result = Rewrite();
  EXPECT_EQ(result.code, 0) << result.err;
  // The last stored pixel of 3 x 2 comes first.
  const auto facts = JsonLines(RunTool({"info", "--json", out_}).out).at(0);
  EXPECT_EQ(facts["geo"][0]["affine"], nlohmann::json({-2.0, 0.0, 0.0, 3.0, 105.0, 195.5}));
  EXPECT_EQ(facts["orientation"], 1);
}

TEST_F(CliGeoTiffWrite, ExistingOutput_Should_StayAndExit4_When_OverwriteIsNotGiven) {
  WriteText(folder_ / "plan.pgw", "1\n0\n0\n-1\n10\n20\n");
  WriteText(out_, "precious");
  const ToolResult result = Write();
  EXPECT_EQ(result.code, 4);
  EXPECT_THAT(result.err, HasSubstr("--overwrite"));
  EXPECT_EQ(ReadBytes(out_).size(), 8u);
  EXPECT_EQ(Write({"--overwrite"}).code, 0);
}

TEST_F(CliGeoTiffWrite, FullDisk_Should_LeaveTheOldFileWholeAndExit4) {
  SavePngFile(folder_ / "plan.png", GradientRaster(pf24bit, 310, 170));
  for (const char* size : {"1", "0.001"}) {
    WriteText(out_, "old");
    ToolSetup setup;
    setup.fileSizeLimit = 1000;
    const ToolResult result = RunTool({"geotiff", folder_ / "plan.png", out_, "--origin", "1,2",
                                       "--pixel-size", size, "--overwrite"},
                                      setup);
    EXPECT_EQ(result.code, 4) << size;
    EXPECT_EQ(ReadBytes(out_).size(), 3u) << size;
    EXPECT_THAT(folder_.Names(), ElementsAre("plan.png", "plan.tif"));
  }
}

TEST_F(CliGeoTiffWrite, ManyPictures_Should_EachTakeTheirWorldFile) {
  WriteText(folder_ / "plan.pgw", "1\n0\n0\n-1\n10\n20\n");
  SaveBmpFile(folder_ / "b.bmp", picture_);
  WriteText(folder_ / "b.bpw", "2\n0\n0\n-2\n30\n40\n");
  const ToolResult result = RunTool({"geotiff", "--out-dir", folder_ / "out", "--json", "--jobs",
                                     "2", folder_ / "plan.png", folder_ / "b.bmp"});
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_EQ(JsonLines(result.out).size(), 2u);
  EXPECT_THAT(FactsOf(folder_ / "out/plan.tif").tiePoints, ElementsAre(0, 0, 0, 9.5, 20.5, 0));
  EXPECT_THAT(FactsOf(folder_ / "out/b.tif").tiePoints, ElementsAre(0, 0, 0, 29, 41, 0));
}

TEST_F(CliGeoTiffWrite, WrongUsage_Should_Exit2AndWriteNothing) {
  const std::string in = folder_ / "plan.png";
  const std::vector<std::vector<std::string>> lines = {
      {},
      {in, folder_ / "out.gif", "--origin", "1,2", "--pixel-size", "1"},
      {in, folder_ / "out.tfw", "--origin", "1,2", "--pixel-size", "1"},
      {in, out_, folder_ / "third.tif"},
      {in, out_, "--origin", "1,2"},
      {in, out_, "--pixel-size", "1"},
      {in, out_, "--origin", "1", "--pixel-size", "1"},
      {in, out_, "--origin", "1,2,3", "--pixel-size", "1"},
      {in, out_, "--origin", "1,nan", "--pixel-size", "1"},
      {in, out_, "--origin", "1,two", "--pixel-size", "1"},
      {in, out_, "--origin", "1,2", "--pixel-size", "0"},
      {in, out_, "--origin", "1,2", "--pixel-size", "-1"},
      {in, out_, "--origin", "1,2", "--pixel-size", "1,-1"},
      {in, out_, "--origin", "1,2", "--pixel-size", "1,2,3"},
      {in, out_, "--origin", "1,2", "--pixel-size", "inf"},
      {in, out_, "--origin", "1,2", "--pixel-size", ""},
      {in, out_, "--world-file", "a.pgw", "--origin", "1,2", "--pixel-size", "1"},
      {in, out_, "--point", "1,2=3,4"},
      {in, out_, "--point", "1,2=3,4", "--point", "1,2=5,6"},
      {in, out_, "--point", "1,2=3,4", "--point", "7,8=3,4"},
      {in, out_, "--point", "1,2=3,4", "--point", "2,3=4,5", "--point", "3,4=5,6"},
      {in, out_, "--point", "1,2=3,4", "--point", "2,3=4,5", "--pixel-size", "1"},
      {in, out_, "--point", "1,2=3,4", "--origin", "1,2", "--pixel-size", "1"},
      {in, out_, "--point", "1,2=3,4", "--point", "2,4=4,5", "--world-file", "a.pgw"},
      {in, out_, "--point", "1,2", "--pixel-size", "1"},
      {in, out_, "--point", "1,2=3", "--pixel-size", "1"},
      {in, out_, "--point", "1=2,3,4", "--pixel-size", "1"},
      {in, out_, "--point", "1,2=3,nan", "--pixel-size", "1"},
      {in, out_, "--point", "1,2=3,4=5", "--pixel-size", "1"},
      {in, "--point", "1,2=3,4"},
      {in, out_, "--at", "1,2"},
      {in, out_, "--at-map", "1,2"},
      {in, "--at", "1.5,2"},
      {in, "--at", "1"},
      {in, "--at", "99999999999,0"},
      {in, "--at-map", "1,x"},
      {in, "--origin", "1,2", "--pixel-size", "1"},
      {in, "--world-file", "a.pgw"},
      {"--out-dir", folder_ / "d", in, in},
      {"--out-dir", folder_ / "d", in, "b.png", "--origin", "1,2", "--pixel-size", "1"},
  };
  for (std::vector<std::string> line : lines) {
    line.insert(line.begin(), "geotiff");
    const ToolResult result = RunTool(line);
    EXPECT_EQ(result.code, 2) << testing::PrintToString(line) << result.err;
    EXPECT_THAT(result.out, IsEmpty()) << testing::PrintToString(line);
    EXPECT_FALSE(result.err.empty()) << testing::PrintToString(line);
  }
  EXPECT_THAT(folder_.Names(), ElementsAre("plan.png"));
}

TEST_F(CliGeoTiffWrite, UnreadableInput_Should_Exit3) {
  WriteText(folder_ / "bad.png", "no picture");
  const ToolResult result =
      RunTool({"geotiff", folder_ / "bad.png", out_, "--origin", "1,2", "--pixel-size", "1"});
  EXPECT_EQ(result.code, 3);
  EXPECT_THAT(result.err, HasSubstr("bad.png"));
  EXPECT_FALSE(std::filesystem::exists(out_));
}

}  // namespace
}  // namespace rasterkit::test
