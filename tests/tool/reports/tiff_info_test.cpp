// `info` on TIFF files: layout, pages, grids, positions, damage.

#include <algorithm>
#include <tuple>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/tool/support/run_tool.h"
#include "tests/tool/support/tiff_samples.h"

namespace rasterkit::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;

class CliTiffInfo : public testing::Test {
 protected:
  json Facts(const TiffFile& file, int expectedCode = 0) {
    WriteBytes(file_, file.Bytes());
    return FactsOf(file_, expectedCode);
  }

  json FactsOf(const std::string& name, int expectedCode = 0) {
    const ToolResult result = RunTool({"info", "--json", name});
    EXPECT_EQ(result.code, expectedCode) << result.err;
    ExpectOwnWords(result.err, name);
    const auto lines = JsonLines(result.out);
    EXPECT_EQ(lines.size(), 1u);
    return lines.empty() ? json() : lines[0];
  }

  std::string Text(const TiffFile& file) {
    WriteBytes(file_, file.Bytes());
    const ToolResult result = RunTool({"info", file_});
    EXPECT_EQ(result.code, 0) << result.err;
    return result.out;
  }

  TempFolder folder_;
  std::string file_ = folder_ / "a.tif";
};

TEST_F(CliTiffInfo, Json_Should_TellTheLayout) {
  TiffFile file = ColorTiff(37, 21);
  file.mode = "wb8";
  file.isPlanar = true;
  file.tileWidth = file.tileHeight = 16;
  file.compression = COMPRESSION_LZW;
  const json facts = Facts(file);
  EXPECT_EQ(facts["ok"], true);
  EXPECT_EQ(facts["type"], "tiff");
  EXPECT_EQ(facts["width"], 37);
  EXPECT_EQ(facts["height"], 21);
  EXPECT_EQ(facts["bits"], 24);
  EXPECT_EQ(facts["palette_entries"], 0);
  EXPECT_EQ(facts["transparent"], false);
  EXPECT_EQ(facts["grid"], "none");
  EXPECT_EQ(facts["pages"], 1);
  EXPECT_EQ(facts["bytes"], ReadBytes(file_).size());
  const json expected = {{"pixels", "8-bit RGB"},
                         {"bits_per_sample", 8},
                         {"samples", 3},
                         {"compression", "LZW"},
                         {"layout", "tiles"},
                         {"planar", true},
                         {"byte_order", "big"},
                         {"bigtiff", true},
                         {"secondary_pages", 0},
                         {"nodata", nullptr},
                         {"coordinate_system", false},
                         {"tie_points", 0}};
  EXPECT_EQ(facts["tiff"], expected);
}

TEST_F(CliTiffInfo, Pixels_Should_BeSaidInWords) {
  const auto words = [&](const TiffFile& file) { return Facts(file)["tiff"]["pixels"]; };
  TiffFile file = GrayTiff(9, 5, 1);
  EXPECT_EQ(words(file), "1-bit black and white");
  EXPECT_EQ(words(GrayTiff(9, 5, 4)), "4-bit gray");
  EXPECT_EQ(words(GrayTiff(9, 5, 16)), "16-bit gray");
  file = GrayTiff(9, 5, 16);
  file.sampleFormat = SAMPLEFORMAT_INT;
  EXPECT_EQ(words(file), "16-bit signed gray");
  file.sampleFormat = SAMPLEFORMAT_IEEEFP;
  EXPECT_EQ(words(file), "16-bit float gray");
  file = ColorTiff(9, 5);
  file.samples = 4;
  file.extraSamples = {EXTRASAMPLE_UNASSALPHA};
  file.pixels.resize(file.PixelBytes());
  EXPECT_EQ(words(file), "8-bit RGB, 4 samples");
  file.photometric = PHOTOMETRIC_SEPARATED;
  file.extraSamples = {};
  EXPECT_EQ(words(file), "8-bit CMYK");
  file = GrayTiff(9, 5, 4);
  file.photometric = PHOTOMETRIC_PALETTE;
  file.colorMap.assign(48, 0);
  EXPECT_EQ(words(file), "4-bit palette");
}

TEST_F(CliTiffInfo, BitsAndPalette_Should_BeThoseOfTheLoadedPicture) {
  const std::tuple<int, int, int> depths[] = {{1, 1, 2}, {4, 4, 16}, {8, 8, 256}, {16, 16, 0}};
  for (const auto& [stored, bits, entries] : depths) {
    const json facts = Facts(GrayTiff(9, 5, static_cast<uint16_t>(stored)));
    EXPECT_EQ(facts["bits"], bits);
    EXPECT_EQ(facts["palette_entries"], entries) << bits;
  }
}

TEST_F(CliTiffInfo, Grid_Should_BeNamedWithItsNoData) {
  const std::tuple<uint16_t, uint16_t, const char*> kinds[] = {
      {32, SAMPLEFORMAT_IEEEFP, "float32"},
      {16, SAMPLEFORMAT_UINT, "uint16"},
      {16, SAMPLEFORMAT_INT, "int16"},
      {16, SAMPLEFORMAT_IEEEFP, "float16"}};
  for (const auto& [bits, format, name] : kinds) {
    TiffFile file = GrayTiff(9, 5, bits);
    file.sampleFormat = format;
    file.setTags = [](TIFF* tiff) { SetNoData(tiff, "-9999"); };
    const json facts = Facts(file);
    EXPECT_EQ(facts["grid"], name);
    EXPECT_EQ(facts["tiff"]["nodata"], "-9999");
    EXPECT_THAT(Text(file),
                HasSubstr(std::string("grid of ") + name + " numbers, no data is -9999"));
  }
}

TEST_F(CliTiffInfo, ResolutionOrientationAndMetadata_Should_BeTold) {
  TiffFile file = ColorTiff(9, 5);
  file.setTags = [](TIFF* tiff) {
    TIFFSetField(tiff, TIFFTAG_ORIENTATION, 6);
    TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_CENTIMETER);
    TIFFSetField(tiff, TIFFTAG_XRESOLUTION, 100.0);
    TIFFSetField(tiff, TIFFTAG_YRESOLUTION, 50.0);
    TIFFSetField(tiff, TIFFTAG_SOFTWARE, "plotter");
  };
  const json facts = Facts(file);
  EXPECT_NEAR(facts["dpi"][0].get<double>(), 254, 1e-3);
  EXPECT_NEAR(facts["dpi"][1].get<double>(), 127, 1e-3);
  EXPECT_EQ(facts["orientation"], 6);
  EXPECT_EQ(facts["rotation"], 0) << "the photo query knows JPEG files only";
  EXPECT_EQ(facts["width"], 9) << "sizes are those of the file";
  EXPECT_EQ(facts["metadata"], json({"text"}));
  EXPECT_TRUE(facts["gps"].is_null());
}

TEST_F(CliTiffInfo, Pages_Should_BeCounted_When_SomeAreSmallerCopies) {
  WritePages(file_, {{8, 6}, {4, 3}, {2, 2}}, {1});
  const json facts = FactsOf(file_);
  EXPECT_EQ(facts["pages"], 3);
  EXPECT_EQ(facts["width"], 8);
  EXPECT_EQ(facts["tiff"]["secondary_pages"], 1);
  EXPECT_THAT(RunTool({"info", file_}).out, HasSubstr("3 pages, 1 of them a smaller copy or mask"));
}

TEST_F(CliTiffInfo, Positions_Should_BeListed_When_TagsAndWorldFileAgree) {
  TiffFile file = ColorTiff(40, 30);
  file.setTags = [](TIFF* tiff) { SetPosition(tiff, 0.5, 4468000, 5334000); };
  WriteText(folder_ / "a.tfw", "0.5\n0\n0\n-0.5\n4468000.25\n5333999.75\n");
  const json facts = Facts(file);
  ASSERT_EQ(facts["geo"].size(), 2u);
  EXPECT_EQ(facts["geo"][0]["source"], "worldfile");
  EXPECT_EQ(facts["geo"][1]["source"], "geotiff");
  const json affine = {0.5, 0.0, 0.0, -0.5, 4468000.25, 5333999.75};
  EXPECT_EQ(facts["geo"][0]["affine"], affine);
  EXPECT_EQ(facts["geo"][1]["affine"], affine);
  EXPECT_EQ(facts["tiff"]["tie_points"], 1);
  EXPECT_TRUE(facts["warnings"].empty()) << facts["warnings"];
}

TEST_F(CliTiffInfo, Positions_Should_WarnWithTheFilesName_When_TheyDisagree) {
  TiffFile file = ColorTiff(40, 30);
  file.setTags = [](TIFF* tiff) { SetPosition(tiff, 0.5, 4468000, 5334000); };
  WriteBytes(file_, file.Bytes());
  WriteText(folder_ / "a.tfw", "0.5\n0\n0\n-0.5\n4468000\n5334000\n");
  const ToolResult result = RunTool({"info", file_});
  EXPECT_EQ(result.code, 0);
  EXPECT_THAT(result.err, HasSubstr(file_ + ": warning: worldfile (" + (folder_ / "a.tfw") +
                                    ") and geotiff disagree by up to 0.707 pixels"));
  WriteText(folder_ / "a.tfw", "half a meter\n");
  EXPECT_THAT(RunTool({"info", file_}).err, HasSubstr("a.tfw: line 1: "));
}

TEST_F(CliTiffInfo, LooseTiePoints_Should_BeTold_When_NoPixelSizeIsGiven) {
  TiffFile file = ColorTiff(40, 30);
  file.setTags = [](TIFF* tiff) {
    DefineMapTags(tiff);
    const double points[12] = {0, 0, 0, 10, 50, 0, 40, 30, 0, 11, 49, 0};
    TIFFSetField(tiff, 33922, 12, points);
  };
  EXPECT_EQ(Facts(file)["geo"], json::array());
  EXPECT_THAT(Text(file), HasSubstr("2 tie points without a pixel size"));
}

TEST_F(CliTiffInfo, Text_Should_ReadAsASentence) {
  TiffFile file = ColorTiff(40, 30);
  file.compression = COMPRESSION_ADOBE_DEFLATE;
  EXPECT_EQ(Text(file), file_ + ": tiff, 40 x 30 pixels, 24 bits, " +
                            std::to_string(file.Bytes().size()) +
                            " bytes\n  8-bit RGB, Deflate, strips, little-endian\n");
  EXPECT_THAT(Text(GrayTiff(9, 5, 1)), HasSubstr("9 x 5 pixels, 1 bit, 2 palette entries"));
}

TEST_F(CliTiffInfo, FalseExtension_Should_NotMatter) {
  WriteBytes(folder_ / "a.jpg", ColorTiff(9, 5).Bytes());
  EXPECT_EQ(FactsOf(folder_ / "a.jpg")["type"], "tiff");
}

TEST_F(CliTiffInfo, DamagedRows_Should_BeFoundByVerify) {
  TiffFile file = GrayTiff(300, 200, 8);
  file.rowsPerStrip = 10;
  file.compression = COMPRESSION_ADOBE_DEFLATE;
  std::vector<uint8_t> bytes = file.Bytes();
  ASSERT_GT(bytes.size(), 2000u);
  // Compressed rows come first; libtiff writes the directory after them.
  std::fill(bytes.begin() + 400, bytes.begin() + 600, uint8_t{0xAA});
  WriteBytes(file_, bytes);
  EXPECT_EQ(FactsOf(file_)["warnings"], json::array()) << "only the header is read";
  const json facts = JsonLines(RunTool({"info", "--json", "--verify", file_}).out).at(0);
  EXPECT_EQ(facts["ok"], true) << facts;
  EXPECT_EQ(facts["verified"], false) << facts;
  EXPECT_FALSE(facts["warnings"].empty());
}

TEST_F(CliTiffInfo, UnreadableFiles_Should_BeRefusedInOwnWordsAndKeepWhatIsKnown) {
  const std::vector<uint8_t> whole = GrayTiff(300, 200, 8).Bytes();
  for (const size_t length : {size_t{8}, size_t{9}}) {
    WriteBytes(file_, {whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)});
    const json facts = FactsOf(file_, 3);
    EXPECT_EQ(facts["ok"], false) << length;
    EXPECT_EQ(facts["type"], "tiff");
    EXPECT_EQ(facts["bytes"], length);
    for (const char* field : {"width", "height", "bits", "pages", "grid"})
      EXPECT_TRUE(facts[field].is_null()) << field;
  }
  WriteBytes(file_, WithUnknownCompression(GrayTiff(30, 20, 8).Bytes()));
  const ToolResult result = RunTool({"info", "--json", "--verify", file_});
  EXPECT_EQ(result.code, 3);
  const json facts = JsonLines(result.out).at(0);
  EXPECT_EQ(facts["tiff"]["pixels"], "8-bit gray") << "the directory can be read";
  EXPECT_EQ(facts["tiff"]["compression"], "compression 60000");
}

TEST_F(CliTiffInfo, Pipe_Should_BeReadLikeAFile) {
  const std::vector<uint8_t> bytes = ColorTiff(9, 5).Bytes();
  const json facts =
      JsonLines(RunToolOnPipe({"info", "--json"}, folder_ / "pipe", bytes).out).at(0);
  EXPECT_EQ(facts["type"], "tiff");
  EXPECT_EQ(facts["tiff"]["samples"], 3);
  EXPECT_EQ(facts["bytes"], bytes.size());
}

}  // namespace
}  // namespace rasterkit::test
