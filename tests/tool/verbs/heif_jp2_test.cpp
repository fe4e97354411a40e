// HEIC and JPEG 2000 files as inputs of the tool.

#include <algorithm>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/same_pixels.h"
#include "tests/tool/support/run_tool.h"
#include "tests/tool/support/sample_files.h"

namespace rasterkit::test {
namespace {

using nlohmann::json;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;

std::string Seed(const std::string& name) {
  return std::string(RASTERKIT_SAMPLES) + "/../fuzz/seeds/jp2/" + name;
}

std::string Heic(const std::string& name) {
  return std::string(RASTERKIT_SAMPLES) + "/../tests/pictures/heif/" + name;
}

/// Skips the test where libheif is absent; the message must name its package then.
#define REQUIRE_LIBHEIF()                                                              \
  do {                                                                                 \
    const ToolResult asked = RunTool({"info", Heic("turn-1.heic")});                   \
    if (asked.code != 0) {                                                             \
      EXPECT_THAT(asked.err, HasSubstr("HEIC files need libheif (Debian: libheif1)")); \
      GTEST_SKIP() << "libheif is not installed";                                      \
    }                                                                                  \
  } while (false)

json Facts(const std::string& file, std::vector<std::string> options = {}) {
  std::vector<std::string> line = {"info", "--json", file};
  line.insert(line.end(), options.begin(), options.end());
  const ToolResult result = RunTool(line);
  EXPECT_EQ(result.code, 0) << result.err;
  return JsonLines(result.out).at(0);
}

TEST(CliHeif, Info_Should_StateTheUprightPicture) {
  REQUIRE_LIBHEIF();
  for (const auto& options : {std::vector<std::string>{}, {"--isolate"}, {"--verify"}}) {
    const json facts = Facts(Heic("photo.heic"), options);
    EXPECT_EQ(facts["type"], "heif");
    EXPECT_EQ(facts["width"], 48);
    EXPECT_EQ(facts["height"], 64);
    EXPECT_EQ(facts["bits"], 24);
    EXPECT_TRUE(facts["orientation"].is_null());
    EXPECT_EQ(facts["rotation"], 0);
    EXPECT_EQ(facts["gps"]["latitude"], 48.5);
    EXPECT_EQ(facts["make"], "Rasterkit");
    EXPECT_EQ(facts["dpi"], json({300, 300}));
    EXPECT_EQ(facts["metadata"], json({"exif", "xmp", "profile"}));
    EXPECT_THAT(facts["warnings"], IsEmpty());
  }
  EXPECT_EQ(Facts(Heic("several.heic"))["pages"], 2);
}

TEST(CliHeif, Verbs_Should_ReadIt) {
  REQUIRE_LIBHEIF();
  const TempFolder folder;
  const ToolResult plain = RunTool({"convert", Heic("turn-6.heic"), folder / "a.png", "--strict"});
  EXPECT_EQ(plain.code, 0) << plain.err;
  const Raster picture = LoadFile(folder / "a.png");
  EXPECT_EQ(picture.Width(), 48);
  EXPECT_EQ(RunTool({"mirror", Heic("turn-6.heic"), folder / "b.png", "--horizontal"}).code, 0);
  EXPECT_EQ(RunTool({"mirror", folder / "b.png", folder / "c.png", "--horizontal"}).code, 0);
  EXPECT_TRUE(SamePixels(picture, LoadFile(folder / "c.png")));
  EXPECT_EQ(RunTool({"resize", Heic("turn-6.heic"), folder / "d.jpg", "--size", "24x32"}).code, 0);
  EXPECT_EQ(Facts(folder / "d.jpg")["width"], 24);
  EXPECT_EQ(RunTool({"gray", Heic("turn-6.heic"), folder / "e.tif"}).code, 0);
  EXPECT_EQ(RunTool({"compare", Heic("turn-6.heic"), folder / "a.png"}).code, 0);
  EXPECT_EQ(RunTool({"compare", Heic("turn-1.heic"), folder / "a.png"}).code, 1);
}

TEST(CliHeif, File_Should_BeUnreadable_When_ItIsCut) {
  REQUIRE_LIBHEIF();
  const TempFolder folder;
  std::vector<uint8_t> bytes = ReadBytes(Heic("photo.heic"));
  bytes.resize(bytes.size() / 2);
  const std::string cut = folder / "cut.heic";
  WriteBytes(cut, bytes);
  const ToolResult result = RunTool({"convert", cut, folder / "a.png"});
  EXPECT_EQ(result.code, 3);
  EXPECT_THAT(result.err, HasSubstr("cut.heic: HEIF: "));
  EXPECT_TRUE(std::all_of(result.err.begin(), result.err.end(), [](char c) {
    return c == '\n' || (c >= ' ' && c <= '~');
  })) << result.err;
  EXPECT_FALSE(std::filesystem::exists(folder / "a.png"));
}

TEST(CliJp2, Info_Should_StateTheHeader) {
  json facts = Facts(Seed("color.j2k"));
  EXPECT_EQ(facts["type"], "jp2");
  EXPECT_EQ(facts["width"], 19);
  EXPECT_EQ(facts["height"], 11);
  EXPECT_EQ(facts["bits"], 24);
  facts = Facts(Seed("words.j2k"), {"--isolate"});
  EXPECT_EQ(facts["bits"], 16);
  EXPECT_EQ(facts["grid"], "uint16");
  EXPECT_EQ(Facts(Seed("alpha.jp2"))["transparent"], true);
  EXPECT_EQ(Facts(Seed("palette.jp2"))["palette_entries"], 4);
  EXPECT_EQ(Facts(Seed("boxes.jp2"), {"--verify"})["make"], "Rasterkit");
}

TEST(CliJp2, Convert_Should_ReadEverySeed) {
  const TempFolder folder;
  for (const auto& entry : std::filesystem::directory_iterator(Seed(""))) {
    const std::string name = entry.path().filename().string();
    const ToolResult result =
        RunTool({"convert", entry.path().string(), folder / (name + ".tif"), "--json"});
    EXPECT_EQ(result.code, 0) << name << result.err;
    EXPECT_EQ(Facts(folder / (name + ".tif"))["width"], 19) << name;
  }
}

TEST(CliJp2, OtherBoxes_Should_BeNamedAsLost) {
  const TempFolder folder;
  const ToolResult result =
      RunTool({"convert", Seed("boxes.jp2"), folder / "a.png", "--strict", "--json"});
  EXPECT_EQ(result.code, 5);
  EXPECT_THAT(JsonLines(result.out).at(0)["not_carried_over"], Contains("hidden-pictures"));
}

TEST(CliJp2, Geotiff_Should_ShowTheGrid) {
  for (const auto& options : {std::vector<std::string>{}, {"--isolate"}}) {
    std::vector<std::string> line = {"geotiff", "--json", Seed("words.j2k"), "--at", "3,2"};
    line.insert(line.end(), options.begin(), options.end());
    const ToolResult result = RunTool(line);
    ASSERT_EQ(result.code, 0) << result.err;
    const json grid = JsonLines(result.out).at(0);
    EXPECT_EQ(grid["grid"], "uint16");
    EXPECT_EQ(grid["width"], 19);
    EXPECT_TRUE(grid["at"][0]["value"].is_number());
  }
  const TempFolder folder;
  ASSERT_EQ(RunTool({"convert", Seed("words.j2k"), folder / "a.tif"}).code, 0);
  const auto valueOf = [](const std::string& file) {
    return JsonLines(RunTool({"geotiff", "--json", file, "--at", "3,2"}).out)
        .at(0)["at"][0]["value"];
  };
  EXPECT_EQ(valueOf(Seed("words.j2k")), valueOf(folder / "a.tif"));
  const ToolResult colors = RunTool({"geotiff", Seed("color.j2k")});
  EXPECT_EQ(colors.code, 1);
  EXPECT_THAT(colors.out, HasSubstr("3 samples"));
}

TEST(CliJp2, ExifAndPalette_Should_ReadIt) {
  const ToolResult result = RunTool({"exif", "--json", Seed("boxes.jp2")});
  ASSERT_EQ(result.code, 0) << result.err;
  const json make = {{"directory", "main"}, {"tag", 271}, {"name", "Make"}, {"value", "Rasterkit"}};
  EXPECT_THAT(JsonLines(result.out).at(0)["fields"], Contains(make));
  const ToolResult palette = RunTool({"palette", "--json", Seed("palette.jp2")});
  ASSERT_EQ(palette.code, 0) << palette.err;
  EXPECT_EQ(JsonLines(palette.out).at(0)["entries"].size(), 4u);
}

TEST(CliHeif, ExifAndPalette_Should_ReadIt) {
  REQUIRE_LIBHEIF();
  const ToolResult result = RunTool({"exif", "--json", Heic("photo.heic")});
  ASSERT_EQ(result.code, 0) << result.err;
  const json photo = JsonLines(result.out).at(0);
  EXPECT_EQ(photo["width"], 48);
  EXPECT_EQ(photo["gps"]["latitude"], 48.5);
  const ToolResult palette = RunTool({"palette", Heic("photo.heic")});
  EXPECT_EQ(palette.code, 1) << palette.err;
  EXPECT_THAT(palette.out, HasSubstr("24-bit, no palette"));
}

TEST(CliJp2, Outputs_Should_BeRefused) {
  const TempFolder folder;
  for (const char* name : {"a.jp2", "a.j2k", "a.heic", "a.avif"}) {
    const ToolResult result = RunTool({"convert", Seed("color.j2k"), folder / name});
    EXPECT_EQ(result.code, 2) << name << result.err;
    EXPECT_THAT(result.err, HasSubstr(".png")) << name;
    EXPECT_THAT(folder.Names(), IsEmpty());
  }
}

}  // namespace
}  // namespace rasterkit::test
