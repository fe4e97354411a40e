// GIF and WebP files as inputs of the tool.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/same_pixels.h"
#include "tests/tool/support/run_tool.h"
#include "tests/tool/support/sample_files.h"
#include "tests/tool/support/tiff_samples.h"

namespace rasterkit::test {
namespace {

using nlohmann::json;
using testing::Contains;
using testing::HasSubstr;

/// Sample files of this project, which are also seeds of the fuzzers.
std::string Seed(const std::string& name) {
  return std::string(RASTERKIT_SAMPLES) + "/../fuzz/seeds/" + name;
}

json Facts(const std::string& file) {
  const ToolResult result = RunTool({"info", "--json", file});
  EXPECT_EQ(result.code, 0) << result.err;
  return JsonLines(result.out).at(0);
}

TEST(CliGifWebp, Info_Should_CountThePicturesOfAnAnimation) {
  const json gif = Facts(Seed("gif/two_pictures.gif"));
  EXPECT_EQ(gif["type"], "gif");
  EXPECT_EQ(gif["width"], 23);
  EXPECT_EQ(gif["bits"], 8);
  EXPECT_EQ(gif["pages"], 2);
  EXPECT_EQ(gif["grid"], "none");
  EXPECT_TRUE(gif["tiff"].is_null());
  const json webp = Facts(Seed("webp/animation.webp"));
  EXPECT_EQ(webp["type"], "webp");
  EXPECT_EQ(webp["bits"], 32);
  EXPECT_EQ(webp["transparent"], true);
  EXPECT_EQ(webp["pages"], 2);
  EXPECT_EQ(Facts(Seed("webp/lossy.webp"))["pages"], 1);
  EXPECT_THAT(RunTool({"info", Seed("gif/two_pictures.gif")}).out, HasSubstr(", 2 pictures, "));
}

TEST(CliGifWebp, Metadata_Should_BeNamedAndReportedWhenLeftBehind) {
  EXPECT_EQ(Facts(Seed("gif/comment.gif"))["metadata"], json({"comment"}));
  const json kinds = Facts(Seed("webp/metadata.webp"))["metadata"];
  EXPECT_THAT(kinds, Contains("exif"));
  TempFolder folder;
  const ToolResult result =
      RunTool({"convert", Seed("gif/comment.gif"), folder / "a.png", "--json"});
  EXPECT_EQ(JsonLines(result.out).at(0)["not_carried_over"], json({"frames"}));
  EXPECT_THAT(Facts(folder / "a.png")["metadata"], Contains("comment"));
}

TEST(CliGifWebp, Convert_Should_TakeTheFirstPictureAndSaySo) {
  TempFolder folder;
  for (const char* name : {"gif/two_pictures.gif", "webp/animation.webp"}) {
    for (const char* out : {"a.png", "a.tif", "a.bmp", "a.jpg"}) {
      const ToolResult result =
          RunTool({"convert", Seed(name), folder / out, "--json", "--overwrite"});
      EXPECT_EQ(result.code, 0) << result.err;
      const json line = JsonLines(result.out).at(0);
      EXPECT_THAT(line["not_carried_over"], Contains("frames"));
      EXPECT_THAT(line["losses"].dump(), HasSubstr("1 of 2"));
    }
    EXPECT_TRUE(SamePixels(LoadFile(Seed(name)), LoadFile(folder / "a.png"))) << name;
  }
}

TEST(CliGifWebp, CutOffFiles_Should_BeReadAsFarAsTheyGoOrRefusedInOwnWords) {
  TempFolder folder;
  for (const char* name : {"gif/bits8.gif", "webp/lossy_noise.webp"}) {
    const std::vector<uint8_t> whole = ReadBytes(Seed(name));
    ASSERT_GT(whole.size(), 100u);
    for (const size_t length : {size_t{12}, size_t{40}, whole.size() / 2, whole.size() - 1}) {
      WriteBytes(folder / "cut", {whole.begin(), whole.begin() + static_cast<ptrdiff_t>(length)});
      const ToolResult result = RunTool({"info", "--json", folder / "cut"});
      const json facts = JsonLines(result.out).at(0);
      EXPECT_EQ(result.code, facts["ok"] ? 0 : 3) << name << " " << length;
      ExpectOwnWords(result.err, folder / "cut");
      EXPECT_TRUE(!result.err.empty() || length == whole.size() - 1) << name << " " << length;
    }
  }
}

}  // namespace
}  // namespace rasterkit::test
