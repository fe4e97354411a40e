// Metafiles as inputs and outputs of the tool.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/emf_file.h"
#include "tests/support/environment.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"
#include "tests/support/wmf_file.h"
#include "tests/tool/support/run_tool.h"
#include "tests/tool/support/sample_files.h"

namespace rasterkit::test {
namespace {

using namespace detail;
using nlohmann::json;
using testing::HasSubstr;

constexpr TColor kBlue = 0xFF0000;

/// 25 x 20 mm; the top left quarter is blue.
std::vector<uint8_t> QuarterEmf() {
  EmfFile file;
  file.description = std::u16string(u"Drawer\0Ground floor\0", 20);
  file.Add(EmfType::createBrush, {1, 0, kBlue, 0}).Add(EmfType::selectObject, {1});
  file.Add(EmfType::selectObject, {0x80000008});
  file.Add(EmfType::polygon16, FieldBytes{0, 0, 0, 0, 4}.Words({0, 0, 50, 0, 50, 40, 0, 40}));
  return file.Bytes();
}

std::vector<uint8_t> SmallWmf() {
  WmfFile file;
  file.box = {{0, 0, 1440, 720}};
  file.unitsPerInch = 1440;
  return file.Add(WmfFunction::rectangle, {700, 1400, 0, 0}).Bytes();
}

std::vector<uint8_t> NewerRecordsAlone() {
  EmfFile file;
  return file.Add(EmfType::comment, {20, kEmfPlusMark, 0x4009, 16, 4, 0}).Bytes();
}

class CliMetafile : public testing::Test {
 protected:
  std::string Write(const std::string& name, const std::vector<uint8_t>& bytes) {
    WriteBytes(folder_ / name, bytes);
    return folder_ / name;
  }
  json Facts(const std::string& file, int code = 0) {
    const ToolResult result = RunTool({"info", "--json", file});
    EXPECT_EQ(result.code, code) << result.err;
    return JsonLines(result.out).at(0);
  }
  ToolResult Convert(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "convert");
    return RunTool(arguments);
  }
  TempFolder folder_;
};

TEST_F(CliMetafile, Info_Should_TellSizeAndRecords) {
  const json emf = Facts(Write("a.emf", QuarterEmf()));
  EXPECT_EQ(emf["type"], "emf");
  EXPECT_EQ(emf["ok"], true);
  EXPECT_EQ(emf["width"], 94);
  EXPECT_EQ(emf["height"], 76);
  EXPECT_EQ(emf["metafile"]["width_mm"], 25);
  EXPECT_EQ(emf["metafile"]["records"], 6);
  EXPECT_EQ(emf["metafile"]["emf_plus"], "none");
  EXPECT_EQ(emf["metafile"]["program"], "Drawer");
  EXPECT_EQ(emf["metafile"]["title"], "Ground floor");
  const json wmf = Facts(Write("a.wmf", SmallWmf()));
  EXPECT_EQ(wmf["metafile"]["placeable"], true);
  EXPECT_EQ(wmf["metafile"]["height_mm"], 12.7);
  EXPECT_TRUE(wmf["metafile"]["title"].is_null());
  EXPECT_THAT(RunTool({"info", folder_ / "a.emf"}).out,
              HasSubstr("emf, 25.0 x 20.0 mm, 94 x 76 pixels at 96 dpi, 6 records"));
  EXPECT_THAT(RunTool({"info", folder_ / "a.wmf"}).out, HasSubstr("placeable wmf, 25.4 x 12.7 mm"));
}

TEST_F(CliMetafile, Verify_Should_TellThatNothingCanBeDrawn) {
  const std::string file = Write("a.emf", NewerRecordsAlone());
  EXPECT_EQ(Facts(file)["ok"], true);
  const ToolResult result = RunTool({"info", "--json", "--verify", file});
  EXPECT_EQ(result.code, 3);
  const json facts = JsonLines(result.out).at(0);
  EXPECT_EQ(facts["verified"], false);
  EXPECT_THAT(facts["error"].get<std::string>(), HasSubstr("EMF+"));
  EXPECT_EQ(facts["metafile"]["emf_plus"], "only");
}

TEST_F(CliMetafile, Info_Should_TellDamage) {
  EmfFile file;
  file.hasEnd = false;
  const json facts = Facts(Write("a.emf", file.Bytes()));
  EXPECT_THAT(facts["warnings"].dump(), HasSubstr("the data end before the last record"));
  EmfFile unframed;
  unframed.frame = {0, 0, 0, 0};
  EXPECT_THAT(Facts(Write("b.emf", unframed.Bytes()))["warnings"].dump(),
              HasSubstr("the frame is empty"));
  EXPECT_EQ(Facts(Write("c.wmf", WmfFile().Bytes()))["metafile"]["placeable"], false);
}

TEST_F(CliMetafile, Convert_Should_DrawAt96PixelsAnInch) {
  const ToolResult result = Convert({Write("a.emf", QuarterEmf()), folder_ / "a.png"});
  EXPECT_EQ(result.code, 0) << result.err;
  const Raster picture = LoadFile(folder_ / "a.png");
  EXPECT_EQ(picture.Width(), 94);
  EXPECT_EQ(picture.PixelColor(10, 10), kBlue);
  EXPECT_EQ(picture.PixelColor(90, 70), clWhite);
  EXPECT_NEAR(picture.resolution.x, 96, 0.1);
}

/// 6.3 x 6.3 m: 24,000 pixels per side.
std::vector<uint8_t> HugeEmf() {
  EmfFile file;
  file.frame = {0, 0, 635'000, 635'000};
  return file.Add(EmfType::rectangle, {10, 10, 40, 30}).Bytes();
}

TEST_F(CliMetafile, Info_Should_TellTheSize_When_ThePictureWouldBeHuge) {
  const json facts = Facts(Write("a.emf", HugeEmf()));
  EXPECT_EQ(facts["width"], 24'000);
  EXPECT_EQ(facts["height"], 24'000);
  EXPECT_EQ(facts["metafile"]["width_mm"], 6350);
}

TEST_F(CliMetafile, Convert_Should_DrawHugePicturesOnlyAsLargeAsAsked) {
  const std::string huge = Write("a.emf", HugeEmf());
  const ToolResult refused = Convert({huge, folder_ / "a.png"});
  EXPECT_EQ(refused.code, 3);
  EXPECT_THAT(refused.err, HasSubstr("a.emf: metafile: the drawing has 24000 x 24000 pixels"));
  EXPECT_FALSE(std::filesystem::exists(folder_ / "a.png"));
  EXPECT_EQ(Convert({huge, folder_ / "b.png", "--dpi", "1"}).code, 0);
  EXPECT_EQ(LoadFile(folder_ / "b.png").Width(), 250);
  EXPECT_EQ(Convert({huge, folder_ / "c.png", "--size", "120x"}).code, 0);
  EXPECT_EQ(LoadFile(folder_ / "c.png").Height(), 120);
}

TEST_F(CliMetafile, Convert_Should_DrawAtAnyDpiThatFitsTheFile) {
  const std::string huge = Write("a.emf", HugeEmf());
  // 8250 pixels per side; 256 MiB are 8192.
  const ToolResult refused = Convert({huge, folder_ / "a.png", "--dpi", "33"});
  EXPECT_EQ(refused.code, 3);
  EXPECT_THAT(refused.err, HasSubstr("a.emf: metafile: at 33 dpi the drawing has 8250 x 8250 "));
  EXPECT_THAT(refused.err, HasSubstr("--size"));
  EXPECT_FALSE(std::filesystem::exists(folder_ / "a.png"));
}

TEST_F(CliMetafile, Convert_Should_TakeDpiSizeAndBackground) {
  const std::string file = Write("a.emf", QuarterEmf());
  EXPECT_EQ(Convert({file, folder_ / "dpi.png", "--dpi", "254"}).code, 0);
  const Raster fine = LoadFile(folder_ / "dpi.png");
  EXPECT_EQ(fine.Width(), 250);
  EXPECT_EQ(fine.Height(), 200);
  EXPECT_NEAR(fine.resolution.x, 254, 0.1);
  EXPECT_EQ(Convert({file, folder_ / "size.png", "--size", "500x"}).code, 0);
  const Raster wide = LoadFile(folder_ / "size.png");
  EXPECT_EQ(wide.Width(), 500);
  EXPECT_NEAR(wide.Height(), 400, 5);
  EXPECT_NEAR(wide.resolution.x, 508, 1);
  EXPECT_NEAR(wide.resolution.y, wide.Height() * 25.4 / 20, 1);
  EXPECT_EQ(Convert({file, folder_ / "red.png", "--background", "FF0000"}).code, 0);
  EXPECT_EQ(LoadFile(folder_ / "red.png").PixelColor(90, 70), 0x0000FF);
  EXPECT_EQ(Convert({file, folder_ / "b.png", "--size", "5x5", "--dpi", "100"}).code, 2);
  EXPECT_EQ(Convert({file, folder_ / "b.png", "--dpi", "0"}).code, 2);
  EXPECT_EQ(Convert({file, folder_ / "b.png", "--size", "5"}).code, 2);
}

TEST_F(CliMetafile, Convert_Should_WarnWhenTheSizeIsNotTheMetafiles) {
  SavePngFile(folder_ / "a.png", GrayRaster(9, 5));
  const ToolResult result = Convert({folder_ / "a.png", folder_ / "b.png", "--dpi", "300"});
  EXPECT_EQ(result.code, 0);
  EXPECT_THAT(result.err, HasSubstr("this picture keeps its size"));
  EXPECT_EQ(LoadFile(folder_ / "b.png").Width(), 9);
}

TEST_F(CliMetafile, Convert_Should_CopyMetafilesOfTheSameKind) {
  EXPECT_EQ(Convert({Write("a.emf", QuarterEmf()), folder_ / "b.emf"}).code, 0);
  EXPECT_EQ(ReadBytes(folder_ / "b.emf"), ReadBytes(folder_ / "a.emf"));
  EXPECT_EQ(Convert({Write("wrong.emf", SmallWmf()), folder_ / "b.wmf"}).code, 0);
  EXPECT_EQ(ReadBytes(folder_ / "b.wmf"), ReadBytes(folder_ / "wrong.emf"));
  EXPECT_EQ(Convert({Write("plus.emf", NewerRecordsAlone()), folder_ / "c.emf"}).code, 0);
  const ToolResult plain = Convert({Write("a.wmf", SmallWmf()), folder_ / "d.wmf", "--strict"});
  EXPECT_EQ(plain.code, 0);
  EXPECT_EQ(plain.err, "");
  EmfFile cut;
  cut.hasEnd = false;
  const ToolResult damaged = Convert({Write("cut.emf", cut.Bytes()), folder_ / "e.emf"});
  EXPECT_EQ(damaged.code, 0);
  EXPECT_THAT(damaged.err, HasSubstr("the data end before the last record"));
}

TEST_F(CliMetafile, Convert_Should_PutThePictureOfAnEmfFileIntoAWmfFile) {
  const ToolResult result = Convert({Write("a.emf", QuarterEmf()), folder_ / "a.wmf", "--json"});
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_EQ(JsonLines(result.out).at(0)["not_carried_over"], json({"records"}));
  EXPECT_EQ(Facts(folder_ / "a.wmf")["metafile"]["width_mm"], 25);
  Convert({folder_ / "a.emf", folder_ / "direct.png"});
  Convert({folder_ / "a.wmf", folder_ / "around.png"});
  EXPECT_EQ(LoadFile(folder_ / "around.png").PixelColor(10, 10), kBlue);
  EXPECT_EQ(LoadFile(folder_ / "around.png").PixelColor(90, 70), clWhite);
}

TEST_F(CliMetafile, Convert_Should_MakeAnEnhancedMetafileOfAWindowsMetafile) {
  const std::string file = Write("a.wmf", SmallWmf());
  EXPECT_EQ(Convert({file, folder_ / "a.emf"}).code, 0);
  EXPECT_EQ(Convert({file, folder_ / "old.png"}).code, 0);
  EXPECT_EQ(Convert({folder_ / "a.emf", folder_ / "new.png"}).code, 0);
  EXPECT_TRUE(SameColors(LoadFile(folder_ / "old.png"), LoadFile(folder_ / "new.png")));
}

TEST_F(CliMetafile, Convert_Should_RefuseWhatCannotBecomeAMetafile) {
  SavePngFile(folder_ / "a.png", GrayRaster(9, 5));
  const ToolResult pixels = Convert({folder_ / "a.png", folder_ / "b.emf"});
  EXPECT_EQ(pixels.code, 4);
  EXPECT_THAT(pixels.err, HasSubstr("cannot be written as a metafile"));
  const ToolResult text = Convert({Write("text.emf", {'x', 'y'}), folder_ / "d.emf"});
  EXPECT_EQ(text.code, 3);
  EXPECT_THAT(text.err, HasSubstr("text.emf: the data is not a picture of a known type"));
  EXPECT_EQ(Convert({Write("plus.emf", NewerRecordsAlone()), folder_ / "e.wmf"}).code, 4);
  for (const char* name : {"b.emf", "c.emf", "d.emf", "e.wmf"}) {
    EXPECT_FALSE(std::filesystem::exists(folder_ / name)) << name;
  }
}

TEST_F(CliMetafile, Convert_Should_RefuseToTurnRecords) {
  const ToolResult turned =
      Convert({Write("a.emf", QuarterEmf()), folder_ / "b.emf", "--angle", "90"});
  EXPECT_EQ(turned.code, 2);
  EXPECT_THAT(turned.err, HasSubstr("a metafile cannot be turned"));
  EXPECT_FALSE(std::filesystem::exists(folder_ / "b.emf"));
  EXPECT_EQ(Convert({folder_ / "a.emf", folder_ / "c.emf", "--angle", "0"}).code, 0);
}

TEST_F(CliMetafile, Convert_Should_WarnThatRecordsTakeNoOptionsOfPixels) {
  const std::string file = Write("a.emf", QuarterEmf());
  const std::vector<std::vector<std::string>> choices = {
      {"--dpi", "300"}, {"--size", "50x"}, {"--bits", "8"}, {"--background", "FF0000"}};
  for (const std::vector<std::string>& choice : choices) {
    const ToolResult result =
        Convert({file, folder_ / "b.emf", "--overwrite", choice[0], choice[1]});
    EXPECT_EQ(result.code, 0) << choice[0];
    EXPECT_THAT(result.err, HasSubstr("apply only to outputs of pixels")) << choice[0];
    EXPECT_EQ(ReadBytes(folder_ / "b.emf"), ReadBytes(file)) << choice[0];
  }
  EXPECT_EQ(Convert({file, folder_ / "c.emf", "--background", "FFFFFF"}).err, "");
}

TEST_F(CliMetafile, Convert_Should_WriteMetafilesIntoAFolder_When_TheTypeIsOne) {
  Write("a.emf", QuarterEmf());
  Write("b.wmf", SmallWmf());
  const ToolResult result = Convert({folder_ / "a.emf", folder_ / "b.wmf", "--out-dir",
                                     folder_ / "out", "--type", "emf", "--jobs", "2"});
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_EQ(ReadBytes(folder_ / "out/a.emf"), QuarterEmf());
  EXPECT_EQ(Facts(folder_ / "out/b.emf")["type"], "emf");
}

/// "Text" in a font that does not exist.
std::vector<uint8_t> TextWmf() {
  WmfFile file;
  file.box = {{0, 0, 200, 100}};
  FieldBytes font = FieldBytes().Words({-40, 0, 0, 0, 400}).Longs({0, 0});
  file.Add(WmfFunction::createFontIndirect, font.Text(std::string_view("Nowhere")).FillTo(50));
  file.Add(WmfFunction::selectObject, {0});
  FieldBytes text = FieldBytes().Word(4).Text(std::string_view("Text")).Words({20, 20});
  return file.Add(WmfFunction::textOut, text).Bytes();
}

TEST_F(CliMetafile, Convert_Should_BeSilent_When_FontsAreNotSetUp) {
  const std::string file = Write("a.wmf", TextWmf());
  const auto configuration = [&](const std::string& name, const std::string& text) {
    return Write(name, std::vector<uint8_t>(text.begin(), text.end()));
  };
  const std::vector<std::string> configurations = {
      "/dev/null",
      folder_ / "nowhere.conf",
      configuration("empty.conf", ""),
      configuration("cut.conf", "<?xml version=\"1.0\"?><fontconfig><dir>/usr/sh"),
      configuration("text.conf", "fonts are in the cupboard"),
      configuration("none.conf", "<?xml version=\"1.0\"?><fontconfig></fontconfig>"),
      configuration("away.conf",
                    "<?xml version=\"1.0\"?><fontconfig><dir>/nowhere</dir></fontconfig>")};
  for (const std::string& name : configurations) {
    const Environment environment({{"FONTCONFIG_FILE", name},
                                   {"HOME", "/nowhere"},
                                   {"XDG_CACHE_HOME", "/nowhere"},
                                   {"XDG_CONFIG_HOME", "/nowhere"}});
    const ToolResult result = Convert({file, folder_ / "a.png", "--overwrite"});
    EXPECT_EQ(result.code, 0) << name;
    EXPECT_THAT(result.err, testing::MatchesRegex("rasterkit: [^\n]*: lost: the records [^\n]*\n"))
        << name;
  }
}

TEST_F(CliMetafile, OtherVerbs_Should_TakeTheDrawing) {
  const std::string file = Write("a.emf", QuarterEmf());
  EXPECT_EQ(RunTool({"rotate", file, folder_ / "a.png", "--angle", "90"}).code, 0);
  EXPECT_EQ(LoadFile(folder_ / "a.png").Height(), 94);
  EXPECT_EQ(RunTool({"gray", file, folder_ / "b.bmp"}).code, 0);
  EXPECT_EQ(RunTool({"rotate", file, folder_ / "c.emf", "--angle", "90"}).code, 2);
}

}  // namespace
}  // namespace rasterkit::test
