// `convert` and `rotate` from and to TIFF.

#include <cmath>
#include <cstring>
#include <limits>
#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/rotation/orient.h>
#include <rasterkit/codecs/tiff/tiff_facts.h>
#include <rasterkit/raster/convert.h>
#include <rasterkit/runtime/files/stream.h>

#include "tests/support/profiles.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/run_tool.h"
#include "tests/tool/support/sample_files.h"
#include "tests/tool/support/tiff_samples.h"

namespace rasterkit::test {
namespace {

using nlohmann::json;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

TiffFacts FactsOfFile(const std::string& file) {
  TFileStream stream(file);
  return ReadTiffFacts(stream);
}

class CliTiffConvert : public testing::Test {
 protected:
  /// Runs `VERB IN OUT --json OPTIONS...` in the folder and expects success; the line of JSON.
  json Run(const std::string& verb, const std::string& in, const std::string& out,
           const std::vector<std::string>& options = {}) {
    std::vector<std::string> line = {verb, folder_ / in, folder_ / out, "--json", "--overwrite"};
    line.insert(line.end(), options.begin(), options.end());
    const ToolResult result = RunTool(line);
    EXPECT_EQ(result.code, 0) << result.err;
    const auto lines = JsonLines(result.out);
    return lines.empty() ? json() : lines[0];
  }

  /// The six numbers of the position that counts.
  json Geo(const std::string& name) {
    return JsonLines(RunTool({"info", "--json", folder_ / name}).out).at(0)["geo"][0]["affine"];
  }

  json Convert(const std::string& in, const std::string& out,
               const std::vector<std::string>& options = {}) {
    return Run("convert", in, out, options);
  }

  void Save(const std::string& name, const TiffFile& file) {
    WriteBytes(folder_ / name, file.Bytes());
  }

  /// Row of 8-bit grays of a file.
  std::vector<int> FirstRow(const std::string& name) {
    const Raster raster = LoadFile(folder_ / name);
    EXPECT_EQ(raster.Format(), pf8bit);
    return {raster.Row(0), raster.Row(0) + raster.Width()};
  }

  TempFolder folder_;
};

TEST_F(CliTiffConvert, Pixels_Should_StayTheSame_When_WrittenAsTiffAndBack) {
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf24bit}) {
    const Raster raster = GradientRaster(format, 37, 19);
    SaveBmpFile(folder_ / "a.bmp", raster);
    const json line = Convert("a.bmp", "b.tif");
    EXPECT_EQ(line["type"], "tiff");
    EXPECT_EQ(line["bits"], StoredBitsPerPixel(format));
    EXPECT_EQ(line["not_carried_over"], json::array());
    Convert("b.tif", "c.bmp");
    EXPECT_TRUE(SamePixels(raster, LoadFile(folder_ / "c.bmp"))) << StoredBitsPerPixel(format);
  }
}

TEST_F(CliTiffConvert, AlphaChannel_Should_Stay_When_WrittenAsTiff) {
  Raster raster = GradientRaster(pf32bit, 15, 9);
  raster.alphaFormat = afDefined;
  SavePngFile(folder_ / "a.png", raster);
  EXPECT_EQ(Convert("a.png", "b.tiff")["not_carried_over"], json::array());
  Convert("b.tiff", "c.png");
  EXPECT_TRUE(SamePixels(LoadFile(folder_ / "a.png"), LoadFile(folder_ / "c.png")));
}

TEST_F(CliTiffConvert, WordsOfColor_Should_BecomeThreeBytes_When_WrittenAsTiff) {
  const Raster raster = GradientRaster(pf24bit, 20, 10);
  SaveBmpFile(folder_ / "a.bmp", raster);
  for (const auto& [bits, format] : {std::pair{"15", pf15bit}, {"16", pf16bit}}) {
    Convert("a.bmp", "b.tif", {"--bits", bits});
    Convert("b.tif", "c.bmp");
    EXPECT_TRUE(SamePixels(ConvertRaster(ConvertRaster(raster, format), pf24bit),
                           LoadFile(folder_ / "c.bmp")));
  }
}

TEST_F(CliTiffConvert, Compression_Should_BeTheOneAskedFor) {
  SaveBmpFile(folder_ / "color.bmp", GradientRaster(pf24bit, 60, 40));
  SaveBmpFile(folder_ / "plan.bmp", GradientRaster(pf1bit, 60, 40));
  const std::tuple<const char*, const char*, int> cases[] = {{"color.bmp", "standard", 5},
                                                             {"color.bmp", "none", 1},
                                                             {"color.bmp", "lzw", 5},
                                                             {"color.bmp", "deflate", 8},
                                                             {"color.bmp", "packbits", 32773},
                                                             {"plan.bmp", "standard", 4},
                                                             {"plan.bmp", "g4", 4},
                                                             {"plan.bmp", "lzw", 5}};
  for (const auto& [in, name, number] : cases) {
    Convert(in, "out.tif", {"--compression", name});
    EXPECT_EQ(FactsOfFile(folder_ / "out.tif").compression, number) << in << " " << name;
    Convert("out.tif", "back.bmp");
    EXPECT_TRUE(SamePixels(LoadFile(folder_ / in), LoadFile(folder_ / "back.bmp"))) << name;
  }
  Convert("color.bmp", "out.tif");
  EXPECT_EQ(FactsOfFile(folder_ / "out.tif").compression, 5);
}

TEST_F(CliTiffConvert, G4_Should_BecomeDeflateWithAWarning_When_ThePictureHasColors) {
  SaveBmpFile(folder_ / "a.bmp", GradientRaster(pf24bit, 60, 40));
  const json line = Convert("a.bmp", "b.tif", {"--compression", "g4"});
  EXPECT_THAT(line["warnings"].dump(), HasSubstr("black and white only; written with Deflate"));
  EXPECT_EQ(FactsOfFile(folder_ / "b.tif").compression, 8);
  EXPECT_EQ(RunTool({"compare", folder_ / "a.bmp", folder_ / "b.tif"}).code, 0);
  EXPECT_EQ(Convert("a.bmp", "b.tif", {"--compression", "g4", "--bits", "1"})["bits"], 1);
  EXPECT_EQ(RunTool({"convert", folder_ / "a.bmp", folder_ / "c.tif", "--compression", "zip"}).code,
            2);
}

TEST_F(CliTiffConvert, Threads_Should_NotChangeAByte) {
  TiffFile file = ColorTiff(700, 500);
  file.tileWidth = file.tileHeight = 64;
  file.compression = COMPRESSION_ADOBE_DEFLATE;
  Save("a.tif", file);
  Convert("a.tif", "one.tif", {"--threads", "1"});
  for (const char* threads : {"2", "7", "100"}) {
    Convert("a.tif", "many.tif", {"--threads", threads});
    EXPECT_EQ(ReadBytes(folder_ / "one.tif"), ReadBytes(folder_ / "many.tif")) << threads;
  }
}

TEST_F(CliTiffConvert, Orientation_Should_BeAppliedAndGone) {
  for (int orientation = 1; orientation <= 8; ++orientation) {
    TiffFile file = ColorTiff(23, 14);
    Save("plain.tif", file);
    file.setTags = [orientation](TIFF* tiff) {
      TIFFSetField(tiff, TIFFTAG_ORIENTATION, orientation);
      TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
      TIFFSetField(tiff, TIFFTAG_XRESOLUTION, 300.0);
      TIFFSetField(tiff, TIFFTAG_YRESOLUTION, 200.0);
    };
    Save("a.tif", file);
    Convert("plain.tif", "plain.bmp");
    TBitmap expected(LoadFile(folder_ / "plain.bmp"));
    Reorient(expected, orientation);
    for (const char* out : {"b.png", "b.tif", "b.bmp"}) {
      Convert("a.tif", out);
      Convert(out, "pixels.bmp");
      EXPECT_TRUE(SamePixels(expected.Content(), LoadFile(folder_ / "pixels.bmp")))
          << orientation << " " << out;
    }
    const TiffFacts facts = FactsOfFile(folder_ / "b.tif");
    EXPECT_EQ(facts.orientation.value_or(1), 1);
    const json dpi = JsonLines(RunTool({"info", "--json", folder_ / "b.tif"}).out).at(0)["dpi"];
    EXPECT_NEAR(dpi[0].get<double>(), orientation < 5 ? 300 : 200, 1e-3);
  }
}

TEST_F(CliTiffConvert, Rotate_Should_TurnWhatIsSeen) {
  TiffFile file = ColorTiff(23, 14);
  file.setTags = [](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_ORIENTATION, 6); };
  Save("a.tif", file);
  // Orientation 6 is a quarter turn clockwise; one counter-clockwise undoes it.
  EXPECT_EQ(Run("rotate", "a.tif", "b.tif", {"--angle", "90"})["width"], 23);
  file.setTags = {};
  Save("plain.tif", file);
  Convert("b.tif", "b.bmp");
  Convert("plain.tif", "plain.bmp");
  EXPECT_TRUE(SamePixels(LoadFile(folder_ / "plain.bmp"), LoadFile(folder_ / "b.bmp")));
}

TEST_F(CliTiffConvert, ResolutionAndProfile_Should_TravelAlong) {
  Raster raster = GradientRaster(pf24bit, 16, 8);
  raster.resolution = {300, 200};
  raster.profile = RgbProfile();
  SavePngFile(folder_ / "a.png", raster);
  EXPECT_EQ(Convert("a.png", "b.tif")["not_carried_over"], json::array());
  EXPECT_EQ(Convert("b.tif", "c.png")["not_carried_over"], json::array());
  const Raster back = LoadFile(folder_ / "c.png");
  EXPECT_NEAR(back.resolution.x, 300, 0.5);
  EXPECT_NEAR(back.resolution.y, 200, 0.5);
  ASSERT_NE(back.profile, nullptr);
  EXPECT_EQ(*back.profile, *raster.profile);
}

// ---- positions --------------------------------------------------------------------------------

TEST_F(CliTiffConvert, WorldFile_Should_BecomeTags_When_ThePictureStaysAsStored) {
  SavePngFile(folder_ / "plan.png", GradientRaster(pf1bit, 40, 30));
  WriteText(folder_ / "plan.PGW", "0.5\n0\n0\n-0.25\n4468000.25\n5333999.875\n");
  EXPECT_EQ(Convert("plan.png", "plan.tif")["not_carried_over"], json::array());
  const TiffFacts facts = FactsOfFile(folder_ / "plan.tif");
  EXPECT_EQ(facts.pixelScale, (std::vector<double>{0.5, 0.25, 0}));
  EXPECT_EQ(facts.tiePoints, (std::vector<double>{0, 0, 0, 4468000, 5334000, 0}));
}

TEST_F(CliTiffConvert, Tags_Should_StayToTheLastBit_When_ThePictureStaysAsStored) {
  TiffFile file = ColorTiff(40, 30);
  file.setTags = [](TIFF* tiff) { SetPosition(tiff, 0.1, 4468000, 5334000); };
  Save("a.tif", file);
  EXPECT_EQ(Convert("a.tif", "b.tif", {"--angle", "360"})["not_carried_over"], json::array());
  const TiffFacts facts = FactsOfFile(folder_ / "b.tif");
  EXPECT_EQ(facts.pixelScale, (std::vector<double>{0.1, 0.1, 0}));
  EXPECT_EQ(facts.tiePoints, (std::vector<double>{0, 0, 0, 4468000, 5334000, 0}));
}

TEST_F(CliTiffConvert, Position_Should_FollowThePixels_When_ThePictureIsTurned) {
  TiffFile file = ColorTiff(40, 30);
  file.setTags = [](TIFF* tiff) { SetPosition(tiff, 0.5, 4468000, 5334000); };
  Save("a.tif", file);
  EXPECT_EQ(Run("rotate", "a.tif", "b.tif", {"--angle", "30"})["losses"], json::array());
  EXPECT_TRUE(FactsOfFile(folder_ / "b.tif").pixelScale.empty());
  EXPECT_EQ(FactsOfFile(folder_ / "b.tif").transformation.size(), 16u);
  EXPECT_EQ(Convert("a.tif", "b.png")["losses"], json::array()) << "a world file goes along";
  file.setTags = [](TIFF* tiff) {
    SetPosition(tiff, 0.5, 4468000, 5334000);
    TIFFSetField(tiff, TIFFTAG_ORIENTATION, 3);
  };
  Save("a.tif", file);
  EXPECT_EQ(Convert("a.tif", "b.tif")["losses"], json::array());
  EXPECT_EQ(Geo("b.tif"), json({-0.5, 0.0, 0.0, 0.5, 4468019.75, 5333985.25}));
}

TEST_F(CliTiffConvert, Position_Should_BecomeATransformation_When_ItTurnsOrMirrorsThePicture) {
  SavePngFile(folder_ / "a.png", GradientRaster(pf1bit, 40, 30));
  for (const char* numbers :
       {"0.5\n0.1\n0\n-0.5\n1\n2\n", "0.5\n0\n0\n0.5\n1\n2\n", "-0.5\n0\n0\n-0.5\n1\n2\n"}) {
    WriteText(folder_ / "a.pgw", numbers);
    EXPECT_EQ(Convert("a.png", "b.tif")["losses"], json::array()) << numbers;
    EXPECT_TRUE(FactsOfFile(folder_ / "b.tif").pixelScale.empty()) << numbers;
    EXPECT_EQ(FactsOfFile(folder_ / "b.tif").transformation.size(), 16u) << numbers;
  }
}

TEST_F(CliTiffConvert, BadWorldFile_Should_BeSaid_And_ThePictureWritten) {
  SavePngFile(folder_ / "a.png", GradientRaster(pf1bit, 40, 30));
  WriteText(folder_ / "a.pgw", "no numbers");
  const json line = Convert("a.png", "b.tif");
  EXPECT_THAT(line["warnings"].dump(), HasSubstr("a.pgw: line 1: "));
  EXPECT_TRUE(FactsOfFile(folder_ / "b.tif").pixelScale.empty());
  EXPECT_EQ(RunTool({"convert", folder_ / "a.png", folder_ / "c.tif", "--strict"}).code, 5);
}

TEST_F(CliTiffConvert, TiePointsAndCoordinateSystem_Should_BeKept) {
  TiffFile file = ColorTiff(9, 5);
  file.setTags = SetLooseTiePoints;
  Save("a.tif", file);
  EXPECT_EQ(Convert("a.tif", "b.tif", {"--compression", "lzw"})["losses"], json::array());
  EXPECT_EQ(FactsOfFile(folder_ / "b.tif").tiePoints, FactsOfFile(folder_ / "a.tif").tiePoints);
  EXPECT_TRUE(FactsOfFile(folder_ / "b.tif").hasCoordinateSystem);
}

TEST_F(CliTiffConvert, WorldFile_Should_CountWithAWarning_When_TheTagsDisagree) {
  TiffFile file = ColorTiff(40, 30);
  file.setTags = [](TIFF* tiff) { SetPosition(tiff, 0.5, 0, 0); };
  Save("a.tif", file);
  WriteText(folder_ / "a.tfw", "0.5\n0\n0\n-0.5\n100.25\n199.75\n");
  const json line = Convert("a.tif", "b.tif");
  EXPECT_EQ(line["not_carried_over"], json::array());
  EXPECT_THAT(line["warnings"].dump(), HasSubstr("and geotiff disagree by up to"));
  EXPECT_EQ(FactsOfFile(folder_ / "b.tif").tiePoints, (std::vector<double>{0, 0, 0, 100, 200, 0}));
}

// ---- numbers and pages ------------------------------------------------------------------------

template <class T>
TiffFile NumberTiff(const std::vector<T>& numbers, uint16_t format) {
  TiffFile file = GrayTiff(static_cast<uint32_t>(numbers.size()), 1, 8 * sizeof(T));
  file.sampleFormat = format;
  std::memcpy(file.pixels.data(), numbers.data(), file.pixels.size());
  return file;
}

TEST_F(CliTiffConvert, Floats_Should_BeStretchedWithANote) {
  Save("a.tif", NumberTiff<float>({-10, 0, 41}, SAMPLEFORMAT_IEEEFP));
  const json line = Convert("a.tif", "b.png");
  EXPECT_EQ(line["bits"], 8);
  EXPECT_EQ(line["not_carried_over"], json({"bits"}));
  EXPECT_THAT(line["notes"].dump(), HasSubstr("numbers from -10 to 41 are shown"));
  EXPECT_THAT(FirstRow("b.png"), ElementsAre(0, 50, 255));
  EXPECT_EQ(RunTool({"convert", folder_ / "a.tif", folder_ / "c.png", "--strict"}).code, 5);
}

TEST_F(CliTiffConvert, NoData_Should_BeWhiteAndNotCount) {
  TiffFile file = NumberTiff<float>({-9999, 0, 50, 51}, SAMPLEFORMAT_IEEEFP);
  file.setTags = [](TIFF* tiff) { SetNoData(tiff, "-9999"); };
  Save("a.tif", file);
  const json line = Convert("a.tif", "b.png");
  EXPECT_THAT(line["not_carried_over"], testing::UnorderedElementsAre("no-data", "bits"));
  EXPECT_THAT(line["notes"].dump(), HasSubstr("numbers from 0 to 51 are shown"));
  EXPECT_THAT(FirstRow("b.png"), ElementsAre(255, 0, 250, 255));
  TiffFile words = NumberTiff<int16_t>({-32768, 0, 51}, SAMPLEFORMAT_INT);
  words.setTags = [](TIFF* tiff) { SetNoData(tiff, "-32768"); };
  Save("a.tif", words);
  Convert("a.tif", "b.png");
  EXPECT_THAT(FirstRow("b.png"), ElementsAre(255, 0, 255));
}

TEST_F(CliTiffConvert, Words_Should_BeShownByTheirRangeWithANote) {
  Save("a.tif", NumberTiff<uint16_t>({0, 257, 32768, 65535}, SAMPLEFORMAT_UINT));
  const json words = Convert("a.tif", "b.png");
  EXPECT_EQ(words["bits"], 16) << "PNG holds 16 bits";
  EXPECT_EQ(words["losses"], json::array());
  EXPECT_THAT(FirstRow("b.png"), ElementsAre(0, 1, 128, 255));
  Save("a.tif", NumberTiff<int16_t>({-100, 0, 155}, SAMPLEFORMAT_INT));
  EXPECT_THAT(Convert("a.tif", "b.png")["notes"].dump(), HasSubstr("-100 to 155"));
  EXPECT_THAT(FirstRow("b.png"), ElementsAre(0, 100, 255));
}

TEST_F(CliTiffConvert, WideNumbers_Should_BeShownByGeotiffAndStayNumbers) {
  const auto check = [&](TiffFile file, const char* noData, const char* type, double least,
                         double most) {
    file.setTags = [noData](TIFF* tiff) { SetNoData(tiff, noData); };
    Save("a.tif", file);
    EXPECT_EQ(Convert("a.tif", "b.tif", {"--compression", "deflate"})["losses"], json::array());
    for (const char* name : {"a.tif", "b.tif"}) {
      const ToolResult result = RunTool({"geotiff", "--json", folder_ / name});
      ASSERT_EQ(result.code, 0) << type << result.err;
      const json grid = JsonLines(result.out).at(0);
      EXPECT_EQ(grid["grid"], type) << name;
      EXPECT_EQ(grid["minimum"], least) << type << name;
      EXPECT_EQ(grid["maximum"], most) << type << name;
      EXPECT_EQ(grid["nodata_values"], 1) << type << name;
    }
  };
  check(NumberTiff<int32_t>({-70000, 5, 70000, -1}, SAMPLEFORMAT_INT), "-1", "int32", -70000,
        70000);
  check(NumberTiff<uint32_t>({7, 4000000000, 9}, SAMPLEFORMAT_UINT), "4000000000", "uint32", 7, 9);
  check(NumberTiff<double>({-1e300, 0.5, -9999}, SAMPLEFORMAT_IEEEFP), "-9999", "float64", -1e300,
        0.5);
  check(NumberTiff<int8_t>({-100, 5, 100, -128}, SAMPLEFORMAT_INT), "-128", "int8", -100, 100);
}

TEST_F(CliTiffConvert, FirstPage_Should_BeTakenWithANoteOfHowManyThereAre) {
  WritePages(folder_ / "a.tif", {{8, 6}, {4, 3}, {2, 2}}, {1});
  const json line = Convert("a.tif", "b.png");
  EXPECT_EQ(line["width"], 8);
  EXPECT_EQ(line["not_carried_over"], json({"pages"}));
  EXPECT_THAT(line["losses"][0]["what"].get<std::string>(), HasSubstr("1 of 2"));
  WritePages(folder_ / "map.tif", {{8, 6}, {4, 3}}, {1});
  EXPECT_EQ(Convert("map.tif", "b.png")["not_carried_over"], json::array())
      << "a smaller copy is nothing of its own";
}

// ---- outputs ----------------------------------------------------------------------------------

TEST_F(CliTiffConvert, FullDisk_Should_LeaveTheOldFileWholeAndExit4) {
  SaveBmpFile(folder_ / "a.bmp", GradientRaster(pf24bit, 60, 40));
  WriteText(folder_ / "b.tif", "old");
  for (const char* name : {"b.tif", "new.tif"}) {
    const ToolResult result = RunTool({"convert", folder_ / "a.bmp", folder_ / name, "--overwrite"},
                                      {.fileSizeLimit = 200, .stdoutFile = ""});
    EXPECT_EQ(result.code, 4);
    ExpectOwnWords(result.err, folder_ / name);
    EXPECT_FALSE(result.err.empty());
  }
  EXPECT_EQ(ReadBytes(folder_ / "b.tif"), (std::vector<uint8_t>{'o', 'l', 'd'}));
  EXPECT_THAT(folder_.Names(), ElementsAre("a.bmp", "b.tif"));
}

TEST_F(CliTiffConvert, InputAsOutput_Should_BeSafe) {
  Save("a.tif", ColorTiff(60, 40));
  EXPECT_EQ(RunTool({"rotate", folder_ / "a.tif", folder_ / "a.tif", "--angle", "90"}).code, 4);
  EXPECT_EQ(Run("rotate", "a.tif", "a.tif", {"--angle", "90"})["width"], 40);
  EXPECT_EQ(FactsOfFile(folder_ / "a.tif").width, 40u);
  EXPECT_THAT(folder_.Names(), ElementsAre("a.tif"));
}

TEST_F(CliTiffConvert, UnreadableFiles_Should_Exit3InOwnWordsAndWriteNothing) {
  const std::vector<uint8_t> whole = ColorTiff(60, 40).Bytes();
  for (const size_t length : {size_t{4}, size_t{8}, whole.size() / 2, whole.size() - 30}) {
    WriteBytes(folder_ / "a.tif", {whole.begin(), whole.begin() + static_cast<ptrdiff_t>(length)});
    const ToolResult result = RunTool({"convert", folder_ / "a.tif", folder_ / "b.png"});
    EXPECT_EQ(result.code, 3) << length;
    ExpectOwnWords(result.err, folder_ / "a.tif");
  }
  EXPECT_THAT(folder_.Names(), Not(Contains("b.png")));
}

TEST_F(CliTiffConvert, Pipe_Should_BeReadToItsEnd) {
  Save("a.tif", ColorTiff(60, 40));
  Convert("a.tif", "a.bmp");
  const ToolResult result = RunToolOnPipe({"convert", "--out-dir", folder_.Path(), "--type", "bmp"},
                                          folder_ / "pipe", ReadBytes(folder_ / "a.tif"));
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_TRUE(SamePixels(LoadFile(folder_ / "a.bmp"), LoadFile(folder_ / "pipe.bmp")));
}

TEST_F(CliTiffConvert, ManyInputs_Should_BecomeTiff_When_TypeIsTif) {
  SavePngFile(folder_ / "a.png", GrayRaster(9, 5));
  SaveBmpFile(folder_ / "b.bmp", GrayRaster(7, 4));
  const ToolResult result = RunTool({"convert", "--out-dir", folder_ / "out", "--type", "tif",
                                     folder_ / "a.png", folder_ / "b.bmp"});
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_EQ(FactsOfFile(folder_ / "out/a.tif").width, 9u);
  EXPECT_EQ(FactsOfFile(folder_ / "out/b.tif").width, 7u);
}

}  // namespace
}  // namespace rasterkit::test
