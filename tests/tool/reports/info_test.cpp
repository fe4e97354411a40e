#include <algorithm>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <rasterkit/codecs/jpeg/jpeg_encoder.h>

#include "samples/exif_block.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/run_tool.h"
#include "tests/tool/support/sample_files.h"

namespace rasterkit::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

class CliInfo : public testing::Test {
 protected:
  /// The one line of `info --json` about a file, and the exit code.
  json Facts(const std::string& file, int expectedCode = 0) {
    const ToolResult result = RunTool({"info", "--json", file});
    EXPECT_EQ(result.code, expectedCode) << result.err;
    const auto lines = JsonLines(result.out);
    EXPECT_EQ(lines.size(), 1u);
    return lines.empty() ? json() : lines[0];
  }

  void ExpectRefused(const std::string& file, const std::string& fault) {
    const json facts = Facts(file, 3);
    EXPECT_EQ(facts["ok"], false) << facts;
    ASSERT_TRUE(facts["error"].is_string()) << facts;
    EXPECT_THAT(facts["error"].get<std::string>(), HasSubstr(fault));
    for (const char* field : {"width", "height", "bits", "pages"})
      EXPECT_TRUE(facts[field].is_null()) << field;
    EXPECT_THAT(RunTool({"info", file}).err, HasSubstr(file));
  }

  TempFolder folder_;
};

TEST_F(CliInfo, Json_Should_HaveEveryField_When_TheFileIsABitmap) {
  Raster raster = GradientRaster(pf8bit, 31, 17);
  raster.resolution = {300, 150};
  SaveBmpFile(folder_ / "a.bmp", raster);
  const json facts = Facts(folder_ / "a.bmp");
  EXPECT_EQ(facts["schema"], 1);
  EXPECT_EQ(facts["file"], folder_ / "a.bmp");
  EXPECT_EQ(facts["ok"], true);
  EXPECT_TRUE(facts["error"].is_null());
  EXPECT_EQ(facts["type"], "bmp");
  EXPECT_EQ(facts["width"], 31);
  EXPECT_EQ(facts["height"], 17);
  EXPECT_EQ(facts["bits"], 8);
  EXPECT_EQ(facts["palette_entries"], 256);
  EXPECT_EQ(facts["transparent"], false);
  EXPECT_NEAR(facts["dpi"][0].get<double>(), 300, 0.02);
  EXPECT_NEAR(facts["dpi"][1].get<double>(), 150, 0.02);
  EXPECT_TRUE(facts["orientation"].is_null());
  EXPECT_EQ(facts["rotation"], 0);
  EXPECT_TRUE(facts["gps"].is_null());
  EXPECT_EQ(facts["geo"], json::array());
  EXPECT_EQ(facts["grid"], "none");
  EXPECT_EQ(facts["pages"], 1);
  EXPECT_EQ(facts["bytes"], ReadBytes(folder_ / "a.bmp").size());
}

TEST_F(CliInfo, Json_Should_GiveTheQuerysRotationAndTheRawOrientation) {
  const int rotations[] = {0, 0, 180, 0, 0, 270, 0, 90};
  for (int orientation = 1; orientation <= 8; ++orientation) {
    SaveJpegFile(folder_ / "a.jpg", GrayRaster(21, 13), orientation);
    const json facts = Facts(folder_ / "a.jpg");
    EXPECT_EQ(facts["orientation"], orientation);
    EXPECT_EQ(facts["rotation"], rotations[orientation - 1]) << orientation;
    EXPECT_EQ(facts["width"], 21) << "sizes are those of the file, not of the upright picture";
    EXPECT_EQ(facts["bits"], 8);
    EXPECT_EQ(facts["metadata"], json({"exif"}));
  }
}

TEST_F(CliInfo, Json_Should_GiveSignedPosition_When_SouthWestAndBelowTheSea) {
  const std::vector<uint8_t> jpeg = EncodeJpeg(GrayRaster(9, 7), 90);
  for (const auto order : {samples::ByteOrder::intel, samples::ByteOrder::motorola}) {
    WriteBytes(folder_ / "a.jpg",
               samples::WithExif(jpeg, order, 1, samples::Place{-23.5505, -46.6333, -12.5}));
    const json gps = Facts(folder_ / "a.jpg")["gps"];
    EXPECT_NEAR(gps["latitude"].get<double>(), -23.5505, 1e-6);
    EXPECT_NEAR(gps["longitude"].get<double>(), -46.6333, 1e-6);
    EXPECT_NEAR(gps["altitude"].get<double>(), -12.5, 1e-9);
  }
}

TEST_F(CliInfo, Position_Should_HaveNoSign_When_ItIsZero) {
  // Marked as south, west and below sea level, and too small for the rationals.
  WriteBytes(folder_ / "a.jpg",
             samples::WithExif(EncodeJpeg(GrayRaster(9, 7), 90), samples::ByteOrder::intel, 1,
                               samples::Place{-1e-12, -1e-12, -1e-12}));
  EXPECT_THAT(RunTool({"info", folder_ / "a.jpg"}).out, HasSubstr("GPS 0.000000, 0.000000, 0.0 m"));
}

TEST_F(CliInfo, Json_Should_FindTheExifBlock_When_AnXmpPacketComesFirst) {
  std::vector<uint8_t> jpeg =
      samples::WithExif(EncodeJpeg(GrayRaster(9, 7), 90), samples::ByteOrder::motorola, 6,
                        samples::Place{48, 11, 500});
  const std::string name = "http://ns.adobe.com/xap/1.0/";
  const std::string packet = "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"/>";
  std::vector<uint8_t> xmp = {0xFF, 0xE1, 0, static_cast<uint8_t>(name.size() + packet.size() + 3)};
  xmp.insert(xmp.end(), name.begin(), name.end());
  xmp.push_back(0);
  xmp.insert(xmp.end(), packet.begin(), packet.end());
  jpeg.insert(jpeg.begin() + 2, xmp.begin(), xmp.end());
  WriteBytes(folder_ / "a.jpg", jpeg);
  const json facts = Facts(folder_ / "a.jpg");
  EXPECT_EQ(facts["orientation"], 6);
  EXPECT_EQ(facts["rotation"], 0) << "the query takes the first APP1 section for the EXIF one";
  EXPECT_NEAR(facts["gps"]["latitude"].get<double>(), 48, 1e-6);
  EXPECT_EQ(facts["metadata"], json({"exif", "xmp"}));
}

TEST_F(CliInfo, Json_Should_GiveTheWorldFileBesideThePicture) {
  SavePngFile(folder_ / "plan.png", GradientRaster(pf1bit, 40, 30));
  WriteText(folder_ / "plan.pgw", "0.5\n0\n0\n-0.5\n4468000.25\n5333999.75\n");
  const json geo = Facts(folder_ / "plan.png")["geo"];
  ASSERT_EQ(geo.size(), 1u);
  EXPECT_EQ(geo[0]["source"], "worldfile");
  EXPECT_EQ(geo[0]["affine"], json({0.5, 0.0, 0.0, -0.5, 4468000.25, 5333999.75}));
}

TEST_F(CliInfo, Type_Should_FollowTheContent_When_TheNameLies) {
  SavePngFile(folder_ / "a.jpg", GradientRaster(pf24bit, 5, 4));
  EXPECT_EQ(Facts(folder_ / "a.jpg")["type"], "png");
  SaveJpegFile(folder_ / "a.png", GradientRaster(pf24bit, 5, 4));
  EXPECT_EQ(Facts(folder_ / "a.png")["type"], "jpeg");
  SaveBmpFile(folder_ / "no-extension", GradientRaster(pf24bit, 5, 4));
  EXPECT_EQ(Facts(folder_ / "no-extension")["type"], "bmp");
}

TEST_F(CliInfo, Type_Should_BeNamed_When_TheKindIsKnownButNotReadYet) {
  using namespace std::string_literals;
  const std::pair<const char*, std::string> kinds[] = {
      {"tiff", "II*\0\10\0\0\0"s},      {"tiff", "MM\0*\0\0\0\10"s},
      {"pdf", "%PDF-1.7\n"s},           {"gif", "GIF89a\1\0\1\0"s},
      {"wmf", "\xD7\xCD\xC6\x9A\0\0"s}, {"webp", "RIFF\x24\0\0\0WEBPVP8 "s}};
  for (const auto& [type, start] : kinds) {
    WriteText(folder_ / "file", start + std::string(100, '\0'));
    const json facts = Facts(folder_ / "file", 3);
    EXPECT_EQ(facts["type"], type) << facts;
    EXPECT_EQ(facts["ok"], false);
  }
}

TEST_F(CliInfo, BadFiles_Should_BeRefusedWithFileAndFault) {
  ExpectRefused(folder_ / "missing.png", "No such file");
  ExpectRefused(folder_.Path(), "");
  WriteText(folder_ / "empty.jpg", "");
  ExpectRefused(folder_ / "empty.jpg", "");
  WriteText(folder_ / "text.bmp", "this is no picture at all, in spite of its name");
  ExpectRefused(folder_ / "text.bmp", "");
}

TEST_F(CliInfo, UnreadableFile_Should_BeRefused) {
  if (geteuid() == 0) GTEST_SKIP() << "root reads everything";
  SavePngFile(folder_ / "a.png", GrayRaster(3, 3));
  std::filesystem::permissions(folder_ / "a.png", std::filesystem::perms::none);
  ExpectRefused(folder_ / "a.png", "ermission");
}

TEST_F(CliInfo, Verify_Should_DecodeThePixels) {
  SavePngFile(folder_ / "whole.png", GradientRaster(pf24bit, 60, 40));
  SaveJpegFile(folder_ / "whole.jpg", GradientRaster(pf24bit, 60, 40));
  std::vector<uint8_t> png = ReadBytes(folder_ / "whole.png");
  // The first row of the compressed pixels, and not its header.
  png[60] ^= 0xFF;
  WriteBytes(folder_ / "bad.png", png);
  EXPECT_FALSE(Facts(folder_ / "whole.png").contains("verified"));
  for (const char* name : {"whole.png", "whole.jpg"}) {
    const ToolResult result = RunTool({"info", "--json", "--verify", folder_ / name});
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(JsonLines(result.out).at(0)["verified"], true) << name;
    EXPECT_EQ(JsonLines(result.out).at(0)["ok"], true) << name;
  }
  const ToolResult bad = RunTool({"info", "--json", "--verify", folder_ / "bad.png"});
  const json facts = JsonLines(bad.out).at(0);
  EXPECT_EQ(facts["ok"], true) << "the header can be read";
  EXPECT_EQ(facts["width"], 60);
  EXPECT_TRUE(facts["verified"] == false || !facts["warnings"].empty()) << facts;
  EXPECT_EQ(bad.code, facts["verified"] ? 0 : 3);
}

TEST_F(CliInfo, Verify_Should_SayWhatIsDamaged) {
  SavePngFile(folder_ / "cut.png", GradientRaster(pf24bit, 60, 40));
  std::vector<uint8_t> png = ReadBytes(folder_ / "cut.png");
  png.resize(png.size() / 2);
  WriteBytes(folder_ / "cut.png", png);
  for (const bool isIsolated : {false, true}) {
    std::vector<std::string> line = {"info", "--json", "--verify", folder_ / "cut.png"};
    if (isIsolated) line.emplace_back("--isolate");
    const ToolResult result = RunTool(line);
    const json facts = JsonLines(result.out).at(0);
    EXPECT_EQ(result.code, 3);
    EXPECT_EQ(facts["ok"], true) << "the header can be read";
    EXPECT_EQ(facts["verified"], false);
    ASSERT_EQ(facts["damage"].size(), 1u) << facts;
    EXPECT_THAT(facts["damage"][0].get<std::string>(), HasSubstr("40 rows are complete"));
    EXPECT_THAT(result.err, HasSubstr("the pixels are damaged: PNG"));
  }
  const ToolResult text = RunTool({"info", "--verify", folder_ / "cut.png"});
  EXPECT_THAT(text.out, Not(HasSubstr("can be read")));
  EXPECT_THAT(text.out, HasSubstr("the pixels are damaged"));
}

TEST_F(CliInfo, AbsurdClaims_Should_BeRefusedWithoutTakingTheMemory) {
  // 300 bytes that state 65535 x 65535 pixels of 24 bits.
  std::vector<uint8_t> bmp = {'B', 'M', 44, 1,   0,   0, 0, 0,   0,   0, 54, 0, 0, 0, 40,
                              0,   0,   0,  255, 255, 0, 0, 255, 255, 0, 0,  1, 0, 24};
  bmp.resize(300);
  WriteBytes(folder_ / "huge.bmp", bmp);
  std::vector<uint8_t> jpeg = EncodeJpeg(GradientRaster(pf24bit, 8, 8), 50);
  const uint8_t frame[] = {0xFF, 0xC0, 0, 17, 8};
  const auto place = std::search(jpeg.begin(), jpeg.end(), std::begin(frame), std::end(frame));
  ASSERT_NE(place, jpeg.end());
  const uint8_t side[] = {0xFD, 0xE8, 0xFD,
                          0xE8};  // 65,000, the most that the codec takes is 65,500
  std::copy(std::begin(side), std::end(side), place + 5);
  WriteBytes(folder_ / "huge.jpg", jpeg);
  for (const char* name : {"huge.bmp", "huge.jpg"}) {
    EXPECT_LT(RunTool({"info", folder_ / name}).peakMemory, 64u << 20) << name;
    const ToolResult result = RunTool({"info", "--verify", folder_ / name});
    EXPECT_EQ(result.code, 3) << name;
    EXPECT_THAT(result.err, HasSubstr(folder_ / name));
    EXPECT_LT(result.peakMemory, 512u << 20) << name;
  }
  EXPECT_THAT(RunTool({"info", "--verify", folder_ / "huge.jpg"}).err, HasSubstr("4294967296"))
      << "the limit is named";
}

TEST_F(CliInfo, ManyFiles_Should_GiveALineEachInOrder_When_SomeAreBad) {
  SavePngFile(folder_ / "1.png", GrayRaster(3, 4));
  WriteText(folder_ / "2.png", "nothing");
  SavePngFile(folder_ / "3.png", GrayRaster(5, 6));
  const ToolResult result =
      RunTool({"info", "--json", folder_ / "1.png", folder_ / "2.png", folder_ / "3.png"});
  EXPECT_EQ(result.code, 3);
  const auto lines = JsonLines(result.out);
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_EQ(lines[0]["width"], 3);
  EXPECT_EQ(lines[1]["ok"], false);
  EXPECT_EQ(lines[2]["width"], 5);
}

TEST_F(CliInfo, Text_Should_NameTypeSizeAndOrientation) {
  SaveJpegFile(folder_ / "a.jpg", GradientRaster(pf24bit, 21, 13), 6);
  const ToolResult result = RunTool({"info", folder_ / "a.jpg"});
  EXPECT_EQ(result.code, 0);
  for (const char* text : {"jpeg", "21 x 13", "24 bits", "orientation 6", "rotation 270"})
    EXPECT_THAT(result.out, HasSubstr(text));
}

TEST_F(CliInfo, UnwritableStdout_Should_NotAnswer0) {
  SavePngFile(folder_ / "a.png", GrayRaster(3, 4));
  EXPECT_EQ(
      RunTool({"info", folder_ / "a.png"}, {.fileSizeLimit = {}, .stdoutFile = "/dev/full"}).code,
      4);
}

}  // namespace
}  // namespace rasterkit::test
