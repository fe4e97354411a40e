// --record: which file is written, when, and what it says.

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/test_pictures.h"
#include "tests/tool/support/run_tool.h"
#include "tests/tool/support/sample_files.h"

#include <nlohmann/json.hpp>

namespace rasterkit::test {
namespace {

using testing::HasSubstr;

class CliRecord : public testing::Test {
 protected:
  void SetUp() override {
    SavePngFile(folder_ / "a.png", GradientRaster(pf24bit, 41, 23));
    SavePngFile(folder_ / "b.png", GradientRaster(pf24bit, 30, 60));
  }

  nlohmann::json RecipeOf(const std::vector<std::string>& words, const std::string& out = "o.png") {
    std::vector<std::string> line = words;
    line.insert(line.end(), {folder_ / "a.png", folder_ / out, "--record", recipe_, "--overwrite"});
    const ToolResult result = RunTool(line);
    EXPECT_EQ(result.code, 0) << result.err;
    const std::vector<uint8_t> bytes = ReadBytes(recipe_);
    return nlohmann::json::parse(bytes.begin(), bytes.end());
  }

  bool HasRecipe() const { return std::filesystem::exists(recipe_); }

  TempFolder folder_;
  const std::string recipe_ = folder_ / "r.json";
};

TEST_F(CliRecord, Units_Should_StayAsTyped) {
  const auto crop = RecipeOf({"crop", "--rect", "10%,20%,30%,40.5%"}).at("steps");
  ASSERT_EQ(crop.size(), 1U);
  EXPECT_EQ(crop[0].at("unit"), "percent");
  EXPECT_EQ(crop[0].at("right"), 40);
  EXPECT_EQ(crop[0].at("bottom"), 60.5);
  const auto resize = RecipeOf({"resize", "--size", "x10"}).at("steps");
  ASSERT_EQ(resize.size(), 1U);
  EXPECT_EQ(resize[0].at("unit"), "px");
  EXPECT_EQ(resize[0].at("height"), 10);
  EXPECT_FALSE(resize[0].contains("width"));
}

TEST_F(CliRecord, MapUnits_Should_Stay) {
  const ToolResult result =
      RunTool({"crop", RASTERKIT_SAMPLES "/plan.png", folder_ / "o.png", "--map-rect",
               "500000,5400000,500010,5400008", "--record", recipe_, "--dry-run"});
  EXPECT_FALSE(HasRecipe()) << "a dry run writes nothing: " << result.err;
  const std::vector<std::string> line = {"geotiff",  folder_ / "a.png", folder_ / "a.tif",
                                         "--origin", "1000,2000",       "--pixel-size",
                                         "2"};
  ASSERT_EQ(RunTool(line).code, 0);
  const ToolResult cropped = RunTool({"crop", folder_ / "a.tif", folder_ / "part.tif", "--map-rect",
                                      "1010,1980,1031,1999.5", "--record", recipe_});
  ASSERT_EQ(cropped.code, 0) << cropped.err;
  const std::vector<uint8_t> bytes = ReadBytes(recipe_);
  const auto step = nlohmann::json::parse(bytes.begin(), bytes.end()).at("steps").at(0);
  EXPECT_EQ(step.at("unit"), "map");
  EXPECT_EQ(step.at("top"), 1999.5);
  EXPECT_EQ(step.at("bottom"), 1980);
  ASSERT_EQ(RunTool({"apply", recipe_, folder_ / "a.tif", folder_ / "again.tif"}).code, 0);
  EXPECT_EQ(ReadBytes(folder_ / "part.tif"), ReadBytes(folder_ / "again.tif"));
}

TEST_F(CliRecord, Saving_Should_BeAsTyped_AndNoMore) {
  const auto usual = RecipeOf({"mirror", "--vertical"});
  EXPECT_EQ(usual.at("schema"), 1);
  EXPECT_THAT(usual.at("made_with").get<std::string>(), testing::StartsWith("rasterkit "));
  EXPECT_TRUE(usual.at("save").empty()) << usual.dump();
  const auto save = RecipeOf({"mirror", "--vertical", "--quality", "77", "--sampling", "4:2:2",
                              "--lossless", "off", "--strip-gps", "--bits", "8"},
                             "o.jpg")
                        .at("save");
  EXPECT_EQ(save.at("type"), "jpeg");
  EXPECT_EQ(save.at("quality"), 77);
  EXPECT_EQ(save.at("sampling"), "4:2:2");
  EXPECT_EQ(save.at("lossless"), "off");
  EXPECT_EQ(save.at("metadata"), "without-gps");
  EXPECT_EQ(save.at("depth"), 8);
}

TEST_F(CliRecord, FoundAngle_Should_BeInTheRecipe) {
  const std::string skewed = folder_ / "skewed.png";
  ASSERT_EQ(RunTool({"rotate", RASTERKIT_SAMPLES "/plan.png", skewed, "--angle", "3", "--filter",
                     "linear"})
                .code,
            0);
  const ToolResult result =
      RunTool({"rotate", "--deskew", skewed, folder_ / "o.png", "--record", recipe_});
  ASSERT_EQ(result.code, 0) << result.err;
  const std::vector<uint8_t> bytes = ReadBytes(recipe_);
  const auto step = nlohmann::json::parse(bytes.begin(), bytes.end()).at("steps").at(0);
  EXPECT_EQ(step.at("step"), "rotate");
  EXPECT_NEAR(step.at("degrees").get<double>(), -3, 0.5);
}

TEST_F(CliRecord, ExistingFile_Should_Stay_BeforeAnythingIsWritten) {
  WriteText(recipe_, "mine");
  const std::vector<std::string> line = {"mirror",          "--vertical", folder_ / "a.png",
                                         folder_ / "o.png", "--record",   recipe_};
  const ToolResult result = RunTool(line);
  EXPECT_EQ(result.code, 4);
  EXPECT_THAT(result.err, HasSubstr("r.json: already exists (--overwrite replaces it)"));
  EXPECT_FALSE(std::filesystem::exists(folder_ / "o.png"));
  EXPECT_EQ(ReadBytes(recipe_), (std::vector<uint8_t>{'m', 'i', 'n', 'e'}));
}

TEST_F(CliRecord, PlacesThatCannotBeWritten_Should_BeSaidFirst) {
  const std::string out = folder_ / "o.png";
  const std::pair<std::string, int> places[] = {{folder_ / "missing/r.json", 4},
                                                {folder_.Path(), 4},
                                                {folder_ / "a.png", 2},
                                                {out, 2},
                                                {"-", 2}};
  for (const auto& [place, code] : places) {
    const ToolResult result =
        RunTool({"mirror", "--vertical", folder_ / "a.png", out, "--record", place, "--overwrite"});
    EXPECT_EQ(result.code, code) << place << result.err;
    EXPECT_FALSE(std::filesystem::exists(out)) << place;
  }
}

TEST_F(CliRecord, Failure_Should_LeaveNoRecipe) {
  const ToolResult result =
      RunTool({"crop", "--rect", "0,0,30,30", folder_ / "a.png", folder_ / "b.png", "--out-dir",
               folder_ / "out", "--continue", "--record", recipe_});
  EXPECT_EQ(result.code, 4) << "a.png has 23 rows";
  EXPECT_TRUE(std::filesystem::exists(folder_ / "out/b.png"));
  EXPECT_FALSE(HasRecipe());
}

TEST_F(CliRecord, Losses_Should_StillGiveARecipe) {
  const ToolResult result = RunTool({"convert", RASTERKIT_SAMPLES "/orientation-6.jpg",
                                     folder_ / "o.bmp", "--strict", "--record", recipe_});
  EXPECT_EQ(result.code, 5);
  EXPECT_TRUE(HasRecipe());
}

TEST_F(CliRecord, SeveralPictures_Should_GiveOneRecipe) {
  const ToolResult result =
      RunTool({"resize", "--size", "50%", folder_ / "a.png", folder_ / "b.png", "--out-dir",
               folder_ / "out", "--jobs", "2", "--format", "tif", "--record", recipe_});
  ASSERT_EQ(result.code, 0) << result.err;
  ASSERT_EQ(RunTool({"apply", recipe_, folder_ / "a.png", folder_ / "b.png", "--out-dir",
                     folder_ / "again"})
                .code,
            0);
  for (const char* name : {"/a.tif", "/b.tif"}) {
    EXPECT_EQ(ReadBytes((folder_ / "out") + name), ReadBytes((folder_ / "again") + name));
  }
}

TEST_F(CliRecord, StepsOfEachPicture_Should_NeedOnePicture) {
  const ToolResult result = RunTool({"rotate", "--deskew", folder_ / "a.png", folder_ / "b.png",
                                     "--out-dir", folder_ / "out", "--record", recipe_});
  EXPECT_EQ(result.code, 2);
  EXPECT_FALSE(std::filesystem::exists(folder_ / "out"));
}

TEST_F(CliRecord, FilterOfEachPicture_Should_NeedOnePicture) {
  const ToolResult result =
      RunTool({"resize", "--smooth", "--size", "35x35", folder_ / "a.png", folder_ / "b.png",
               "--out-dir", folder_ / "out", "--record", recipe_});
  EXPECT_EQ(result.code, 2);
  EXPECT_FALSE(std::filesystem::exists(folder_ / "out"));
  EXPECT_EQ(RunTool({"resize", "--smooth", "--size", "35x35", folder_ / "a.png", folder_ / "o.png",
                     "--record", recipe_})
                .code,
            0);
}

/// A file whose name says another type than it has.
TEST_F(CliRecord, TypesThatDiffer_Should_BeLeftOut) {
  std::filesystem::copy_file(folder_ / "b.png", folder_ / "b.jpg");
  const ToolResult result = RunTool({"mirror", "--vertical", folder_ / "a.png", folder_ / "b.jpg",
                                     "--out-dir", folder_ / "out", "--record", recipe_});
  ASSERT_EQ(result.code, 0) << result.err;
  const std::vector<uint8_t> bytes = ReadBytes(recipe_);
  EXPECT_FALSE(nlohmann::json::parse(bytes.begin(), bytes.end()).at("save").contains("type"));
  ASSERT_EQ(RunTool({"apply", recipe_, folder_ / "a.png", folder_ / "b.jpg", "--out-dir",
                     folder_ / "again"})
                .code,
            0);
  for (const char* name : {"/a.png", "/b.jpg"}) {
    EXPECT_EQ(ReadBytes((folder_ / "out") + name), ReadBytes((folder_ / "again") + name));
  }
}

TEST_F(CliRecord, FilesThatAreRead_Should_NotBeReplaced) {
  const std::string a = folder_ / "a.png", b = folder_ / "b.png", out = folder_ / "o.png";
  const std::string photo = folder_ / "photo.jpg", other = folder_ / "other.jpg";
  for (const std::string& file : {photo, other}) {
    std::filesystem::copy_file(RASTERKIT_SAMPLES "/orientation-1.jpg", file);
  }
  WriteText(recipe_,
            R"({"schema": 1, "steps": [{"step": "combine", "revision": 1, "slot": "over"}]})");
  std::filesystem::create_symlink(recipe_, folder_ / "link.json");
  const std::vector<std::vector<std::string>> lines = {
      {"combine", a, out, "--with", b, "--record", b},
      {"watermark", a, out, "--with", b, "--record", b},
      {"exif", photo, folder_ / "o.jpg", "--copy-from", other, "--record", other},
      {"apply", recipe_, a, out, "--with", "over=" + b, "--record", recipe_},
      {"apply", recipe_, a, out, "--with", "over=" + b, "--record", folder_ / "link.json"},
      {"apply", recipe_, a, out, "--with", "over=" + b, "--record", b}};
  for (std::vector<std::string> line : lines) {
    const std::string file = line.back();
    const std::vector<uint8_t> before = ReadBytes(file);
    line.emplace_back("--overwrite");
    const ToolResult result = RunTool(line);
    EXPECT_EQ(result.code, 2) << line[0] << result.err;
    EXPECT_THAT(result.err, HasSubstr(file + ": is read and cannot be the recipe of --record"));
    EXPECT_EQ(ReadBytes(file), before) << line[0];
    EXPECT_FALSE(std::filesystem::exists(out)) << line[0];
  }
}

TEST_F(CliRecord, AllMetadata_Should_GoWithWhatItIncludes) {
  for (const char* more : {"--strip-gps", "--strip-maker-note"}) {
    const auto recipe = RecipeOf({"mirror", "--vertical", "--strip", more});
    EXPECT_EQ(recipe.at("save").at("metadata"), "nothing") << more;
    EXPECT_EQ(recipe.at("steps").size(), 1U) << more;
  }
  const auto profile = RecipeOf({"mirror", "--vertical", "--strip=all"});
  EXPECT_FALSE(profile.at("save").contains("metadata")) << "the profile goes, too";
}

TEST_F(CliRecord, VerbsWithoutARecipe_Should_SayWhy) {
  const std::vector<std::vector<std::string>> lines = {
      {"thumbnail", "--size", "10", folder_ / "a.png", folder_ / "o.png"},
      {"icon", folder_ / "a.png", folder_ / "o.ico"},
      {"pages", folder_ / "a.png", folder_ / "o.tif"},
      {"pdf", folder_ / "a.pdf", folder_ / "o.png"},
      {"exif", "--thumbnail", folder_ / "a.png", folder_ / "o.jpg"},
      {"geotiff", "--world-file", folder_ / "a.pgw", folder_ / "a.png", folder_ / "o.tif"},
      {"convert", folder_ / "a.png", folder_ / "o.emf"},
      {"exif", folder_ / "a.png"},
      {"palette", folder_ / "a.png"},
      {"geotiff", folder_ / "a.png"}};
  for (std::vector<std::string> line : lines) {
    line.insert(line.end(), {"--record", recipe_});
    const ToolResult result = RunTool(line);
    EXPECT_EQ(result.code, 2) << line[0];
    EXPECT_THAT(result.err, HasSubstr("record")) << line[0];
    EXPECT_FALSE(HasRecipe()) << line[0];
  }
}

TEST_F(CliRecord, OptionsThatARecipeDoesNotHold_Should_BeNamed) {
  const ToolResult result =
      RunTool({"convert", folder_ / "a.png", folder_ / "o.png", "--position-from", "none",
               "--world-file", "--record", recipe_});
  EXPECT_EQ(result.code, 0);
  EXPECT_THAT(result.err, HasSubstr("r.json: does not hold --position-from, --world-file, which "
                                    "'rasterkit apply' needs too"));
}

}  // namespace
}  // namespace rasterkit::test
