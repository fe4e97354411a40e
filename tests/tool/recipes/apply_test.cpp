#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/metadata/facts_of_metadata.h>
#include <rasterkit/pictures/document/document.h>
#include <rasterkit/pictures/recipes/recipe_output.h>
#include <rasterkit/pictures/recipes/recipe_text.h>

#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/run_tool.h"
#include "tests/tool/support/sample_files.h"

namespace rasterkit::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

class CliApply : public testing::Test {
 protected:
  void SetUp() override {
    for (const char* name : {"a.png", "b.png", "c.png"}) {
      SavePngFile(folder_ / name, GradientRaster(pf24bit, 41, 23));
    }
    SavePngFile(folder_ / "small.png", GradientRaster(pf24bit, 10, 8));
  }

  /// Writes a recipe of these steps; `rest` are further keys.
  std::string Recipe(const std::string& steps, const std::string& rest = R"("save": {})") const {
    WriteText(folder_ / "r.json", R"({"schema": 1, "steps": [)" + steps + "], " + rest + "}");
    return folder_ / "r.json";
  }

  std::string Files(const std::string& name) const { return folder_ / name; }

  ToolResult Apply(const std::vector<std::string>& words) const {
    std::vector<std::string> line = {"apply"};
    line.insert(line.end(), words.begin(), words.end());
    return RunTool(line);
  }

  bool Exists(const std::string& name) const { return std::filesystem::exists(folder_ / name); }

  const std::string kCrop =
      R"({"step": "crop", "revision": 1, "unit": "px", "left": 20, "top": 2, "right": 30,
          "bottom": 9})";
  TempFolder folder_;
};

TEST_F(CliApply, Steps_Should_BeMadeInTheirOrder) {
  const std::string recipe = Recipe(kCrop + R"(, {"step": "turn", "revision": 1, "quarters": 1})");
  ASSERT_EQ(Apply({recipe, folder_ / "a.png", folder_ / "out.png"}).code, 0);
  ASSERT_EQ(RunTool({"crop", folder_ / "a.png", folder_ / "part.png", "--rect", "20,2,10,7"}).code,
            0);
  ASSERT_EQ(RunTool({"rotate", folder_ / "part.png", folder_ / "same.png", "--angle", "90"}).code,
            0);
  EXPECT_TRUE(SamePixels(LoadFile(folder_ / "same.png"), LoadFile(folder_ / "out.png")));
}

TEST_F(CliApply, ManyPictures_Should_BeWrittenIntoAFolder) {
  const ToolResult result =
      Apply({Recipe(kCrop), folder_ / "a.png", folder_ / "b.png", folder_ / "c.png", "--out-dir",
             folder_ / "out", "--jobs", "3", "--json", "--name", "{stem}-{verb}.{ext}"});
  ASSERT_EQ(result.code, 0) << result.err;
  EXPECT_EQ(JsonLines(result.out).size(), 3U);
  for (const char* name : {"out/a-apply.png", "out/b-apply.png", "out/c-apply.png"}) {
    ASSERT_TRUE(Exists(name)) << name;
    EXPECT_EQ(LoadFile(folder_ / name).Width(), 10) << name;
  }
}

TEST_F(CliApply, StepThatDoesNotFit_Should_BeNamed_AndStopThatPictureAlone) {
  const ToolResult result = Apply({Recipe(kCrop), folder_ / "a.png", folder_ / "small.png",
                                   folder_ / "c.png", "--out-dir", folder_ / "out", "--continue"});
  EXPECT_EQ(result.code, 4);
  EXPECT_THAT(result.err, AllOf(HasSubstr("small.png: "), HasSubstr("r.json: /steps/0: ")));
  EXPECT_TRUE(Exists("out/a.png"));
  EXPECT_FALSE(Exists("out/small.png"));
  EXPECT_TRUE(Exists("out/c.png"));
}

TEST_F(CliApply, DryRun_Should_SayWhatWouldBeDone) {
  const ToolResult result = Apply({Recipe(kCrop, R"("save": {"type": "jpeg"})"), folder_ / "a.png",
                                   "--out-dir", folder_ / "out", "--dry-run", "--json"});
  ASSERT_EQ(result.code, 0) << result.err;
  const auto lines = JsonLines(result.out);
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0].at("width"), 10);
  EXPECT_EQ(lines[0].at("height"), 7);
  EXPECT_EQ(lines[0].at("type"), "jpeg");
  EXPECT_GT(lines[0].at("memory"), 0);
  EXPECT_FALSE(Exists("out/a.jpg"));
}

TEST_F(CliApply, TypeOfTheRecipe_Should_GiveTheExtensions_UnlessOneIsTyped) {
  const std::string recipe = Recipe(kCrop, R"("save": {"type": "jpeg", "quality": 50})");
  ASSERT_EQ(Apply({recipe, folder_ / "a.png", "--out-dir", folder_ / "jpg"}).code, 0);
  EXPECT_TRUE(Exists("jpg/a.jpg"));
  ASSERT_EQ(
      Apply({recipe, folder_ / "a.png", "--out-dir", folder_ / "tif", "--format", "tif"}).code, 0);
  EXPECT_TRUE(Exists("tif/a.tif"));
  ASSERT_EQ(Apply({recipe, folder_ / "a.png", folder_ / "one.bmp"}).code, 0);
  EXPECT_EQ(ReadBytes(folder_ / "one.bmp").front(), 'B');
  ASSERT_EQ(Apply({recipe, folder_ / "b.png", "--in-place", "--no-backup"}).code, 0);
  EXPECT_EQ(ReadBytes(folder_ / "b.png").at(1), 'P');
}

TEST_F(CliApply, TypedOptions_Should_WinOverTheRecipe) {
  const std::string recipe =
      Recipe("", R"("save": {"type": "jpeg", "quality": 20, "depth": 8, "background": "#FF0000"})");
  const std::string wanted = folder_ / "wanted.jpg", got = folder_ / "got.jpg";
  ASSERT_EQ(RunTool({"convert", folder_ / "a.png", wanted, "--quality", "85", "--bits", "24"}).code,
            0);
  ASSERT_EQ(Apply({recipe, folder_ / "a.png", got, "--quality", "85", "--bits", "24"}).code, 0);
  EXPECT_EQ(ReadBytes(wanted), ReadBytes(got));
  ASSERT_EQ(Apply({recipe, folder_ / "a.png", got, "--overwrite"}).code, 0);
  EXPECT_NE(ReadBytes(wanted), ReadBytes(got)) << "without options the recipe counts";
}

TEST_F(CliApply, Stretch_Should_WinOverThatOfTheRecipe) {
  const std::string grid = RASTERKIT_SAMPLES "/terrain.tif";
  const std::string recipe = Recipe(R"({"step": "stretch", "revision": 1, "kind": "full"})");
  ASSERT_EQ(
      RunTool({"convert", grid, folder_ / "wanted.png", "--bits", "8", "--stretch", "percent:5"})
          .code,
      0);
  const std::string got = folder_ / "got.png";
  ASSERT_EQ(Apply({recipe, grid, got, "--bits", "8", "--stretch", "percent:5"}).code, 0);
  EXPECT_EQ(ReadBytes(folder_ / "wanted.png"), ReadBytes(got));
  ASSERT_EQ(Apply({recipe, grid, got, "--bits", "8", "--overwrite"}).code, 0);
  EXPECT_NE(ReadBytes(folder_ / "wanted.png"), ReadBytes(got));
}

TEST_F(CliApply, FaultOfARecipe_Should_BeNamed_BeforeAnyPictureIsOpened) {
  const std::pair<std::string, std::string> faults[] = {
      {"{\n  \"schema\": 1,\n  oops", "line 3, column 3: "},
      {R"({"schema": 1, "steps": [{"step": "brightness"}]})", "/steps/0/step: "},
      {R"({"schema": 2, "steps": []})", "/schema: "},
      {R"({"schema": 1, "steps": [{"step": "adjust", "revision": 1, "red": 300}]})",
       "/steps/0/red: 300 is above 100"},
      {R"({"schema": 1, "steps": [], "note": 1})", "/note: unknown key"},
      {"", "line 1, column 1: "}};
  for (const auto& [text, fault] : faults) {
    WriteText(folder_ / "bad.json", text);
    const ToolResult result =
        Apply({folder_ / "bad.json", folder_ / "missing.png", folder_ / "out.png"});
    EXPECT_EQ(result.code, 3) << text;
    EXPECT_THAT(result.err, HasSubstr("rasterkit: " + (folder_ / "bad.json") + ": " + fault));
    EXPECT_FALSE(Exists("out.png"));
  }
  const ToolResult missing = Apply({folder_ / "no.json", folder_ / "a.png", folder_ / "out.png"});
  EXPECT_EQ(missing.code, 3);
  EXPECT_THAT(missing.err, HasSubstr("no.json: "));
  const ToolResult picture = Apply({folder_ / "a.png", folder_ / "b.png", folder_ / "out.png"});
  EXPECT_EQ(picture.code, 3);
  EXPECT_THAT(picture.err, HasSubstr("a.png: "));
}

TEST_F(CliApply, FileThatIsTooLargeForARecipe_Should_NotBeReadWhole) {
  const std::string file = folder_ / "large.json";
  WriteText(file, "{");
  std::filesystem::resize_file(file, uint64_t{1} << 33);
  const ToolResult result = Apply({file, folder_ / "a.png", folder_ / "out.png"});
  EXPECT_EQ(result.code, 3);
  EXPECT_THAT(result.err, HasSubstr("at most 1048576 bytes"));
  EXPECT_LT(result.peakMemory, uint64_t{1} << 28);
}

TEST_F(CliApply, OtherRevision_Should_BeRefused_UnlessAnyWillDo) {
  const std::string recipe = Recipe(R"({"step": "turn", "revision": 77, "quarters": 1})");
  const ToolResult refused = Apply({recipe, folder_ / "a.png", folder_ / "out.png"});
  EXPECT_EQ(refused.code, 3);
  EXPECT_THAT(refused.err, HasSubstr("/steps/0/revision: "));
  EXPECT_FALSE(Exists("out.png"));
  EXPECT_EQ(Apply({recipe, folder_ / "a.png", folder_ / "out.png", "--any-revision"}).code, 0);
  EXPECT_EQ(LoadFile(folder_ / "out.png").Width(), 23);
}

TEST_F(CliApply, Slots_Should_BeFilledOnce_BeforeAnyPictureIsOpened) {
  const std::string recipe = Recipe(R"({"step": "combine", "revision": 1, "slot": "mark"})");
  const std::string missing = folder_ / "missing.png", out = folder_ / "out.png";
  const std::string mark = "mark=" + (folder_ / "b.png");
  const ToolResult unfilled = Apply({recipe, missing, out});
  EXPECT_EQ(unfilled.code, 2);
  EXPECT_THAT(unfilled.err, HasSubstr("--with mark=FILE"));
  const ToolResult unknown = Apply({recipe, missing, out, "--with", mark, "--with", "marc=x.png"});
  EXPECT_EQ(unknown.code, 2);
  EXPECT_THAT(unknown.err, AllOf(HasSubstr("no slot 'marc'"), HasSubstr("did you mean mark?")));
  EXPECT_EQ(Apply({recipe, missing, out, "--with", mark, "--with", mark}).code, 2);
  for (const char* text : {"mark", "=b.png", "mark="}) {
    EXPECT_EQ(Apply({recipe, missing, out, "--with", text}).code, 2) << text;
  }
  EXPECT_EQ(Apply({recipe, folder_ / "a.png", out, "--with", "mark=" + missing}).code, 3);
  EXPECT_FALSE(Exists("out.png"));
  EXPECT_EQ(Apply({recipe, folder_ / "a.png", out, "--with", mark}).code, 0);
  const ToolResult none = Apply({Recipe(kCrop), folder_ / "a.png", out, "--with", mark});
  EXPECT_EQ(none.code, 2);
  EXPECT_THAT(none.err, HasSubstr("it has none"));
}

TEST_F(CliApply, RecipeAlone_Should_BeWrongUsage) {
  EXPECT_EQ(Apply({}).code, 2);
  EXPECT_EQ(Apply({Recipe(kCrop)}).code, 2);
  EXPECT_EQ(Apply({Recipe(kCrop), folder_ / "a.png"}).code, 2);
}

TEST_F(CliApply, Streams_Should_HaveTheTypeOfTheRecipe) {
  ToolSetup setup;
  setup.stdinFile = folder_ / "a.png";
  setup.stdoutFile = folder_ / "out";
  WriteText(setup.stdoutFile, "");
  const std::string recipe = Recipe(kCrop, R"("save": {"type": "bmp"})");
  ASSERT_EQ(RunTool({"apply", recipe, "-", "-"}, setup).code, 0);
  EXPECT_EQ(LoadFile(folder_ / "out").Width(), 10);
  EXPECT_EQ(ReadBytes(folder_ / "out").front(), 'B');
}

/// What is to be gone must not be left on another page.
TEST_F(CliApply, Strips_Should_ReachAllPages) {
  const std::string photo = folder_ / "photo.jpg", pages = folder_ / "pages.tif";
  ASSERT_EQ(
      RunTool({"exif", RASTERKIT_SAMPLES "/orientation-1.jpg", photo, "--set", "Artist=Ada"}).code,
      0);
  ASSERT_EQ(RunTool({"pages", photo, photo, pages}).code, 0);
  const auto hasName = [](const std::string& file) {
    const std::vector<uint8_t> bytes = ReadBytes(file);
    return std::string(bytes.begin(), bytes.end()).find("Ada") != std::string::npos;
  };
  ASSERT_TRUE(hasName(pages));
  for (const std::string& recipe : {Recipe("", R"("save": {"metadata": "nothing"})")}) {
    ASSERT_EQ(Apply({recipe, pages, folder_ / "out.tif", "--overwrite"}).code, 0);
    EXPECT_FALSE(hasName(folder_ / "out.tif"));
  }
  const std::string recipe = Recipe(R"({"step": "edit", "revision": 1, "strip_all": true})");
  ASSERT_EQ(Apply({recipe, pages, folder_ / "out.tif", "--overwrite"}).code, 0);
  EXPECT_FALSE(hasName(folder_ / "out.tif"));
}

/// The library and the tool have one way of writing a page of a document.
TEST_F(CliApply, PageOfADocument_Should_BeWrittenAsByTheLibrary) {
  MetadataEdit edit;
  edit.set = {{"Artist", "Ada"}};
  edit.gps = GpsPosition{47.5, 8.25, {}};
  Document document;
  for (const char* name : {"a.png", "b.png", "c.png"}) {
    document.Append(Picture::Open(folder_ / name).Edit(edit));
  }
  const std::string pages = folder_ / "pages.tif", out = folder_ / "out.tif";
  document.Save(pages);
  const auto statesPosition = [](const std::string& file, int page) {
    return FactsOf(Document::Open(file).Page(page).GetMetadata()).gps.has_value();
  };
  for (const std::string keep : {"keep", "without-gps", "nothing"}) {
    SCOPED_TRACE(keep);
    const std::string file = Recipe(kCrop, R"("save": {"metadata": ")" + keep + "\"}");
    ASSERT_EQ(Apply({file, pages, out, "--page", "2", "--overwrite"}).code, 0);
    const std::vector<uint8_t> written = ReadBytes(out);
    const std::string text(written.begin(), written.end());
    EXPECT_EQ(text.find("Ada") == std::string::npos, keep == "nothing");
    for (int page = 1; page <= 3; ++page) {
      EXPECT_EQ(statesPosition(out, page), keep == "keep") << page;
    }
    const std::vector<uint8_t> json = ReadBytes(file);
    const rasterkit::Recipe recipe = ReadRecipe({json.begin(), json.end()});
    const RecipeOutput output(Document::Open(pages).Page(2), recipe);
    const SaveOptions options = SaveOptionsOf(recipe.save);
    const Report planned = output.Plan(folder_ / "same.tif", options);
    output.Save(folder_ / "same.tif", options);
    EXPECT_EQ(ReadBytes(folder_ / "same.tif"), written);
    EXPECT_EQ(planned.width, 10);
    EXPECT_GE(planned.bytes, written.size());
    TMemoryStream stream;
    output.Save(stream, options);
    EXPECT_EQ(stream.TakeBytes(), written);
    SaveOptions alone = options;
    alone.onlyThisPage = true;
    output.Save(folder_ / "alone.tif", alone);
    EXPECT_EQ(Document::Open(folder_ / "alone.tif").Pages(), 1);
  }
}

/// One more pixel than a side can have would take hours, and a disk.
TEST_F(CliApply, HugeSize_Should_BeRefused) {
  const std::string out = folder_ / "out.png";
  const ToolResult pixels = Apply(
      {Recipe(R"({"step": "resize", "revision": 1, "unit": "px", "width": 1000001, "height": 1})"),
       folder_ / "a.png", out});
  EXPECT_EQ(pixels.code, 3);
  EXPECT_THAT(pixels.err, HasSubstr("/steps/0/width: a side has at most 1000000 pixels"));
  const ToolResult percent =
      Apply({Recipe(R"({"step": "resize", "revision": 1, "unit": "percent", "width": 1e9})"),
             folder_ / "a.png", out});
  EXPECT_EQ(percent.code, 4);
  EXPECT_THAT(percent.err,
              HasSubstr("r.json: /steps/0: 410000000 x 230000000 is not a valid size"));
  const ToolResult paper = Apply({Recipe(R"({"step": "resize", "revision": 1, "unit": "mm",
      "width": 1000, "height": 1, "dpi": 90000})"),
                                  folder_ / "a.png", out});
  EXPECT_EQ(paper.code, 4);
  EXPECT_THAT(paper.err, HasSubstr("3543307 x 3543 is not a valid size: width and height"));
  const ToolResult typed = RunTool({"resize", folder_ / "a.png", out, "--size", "100000000%"});
  EXPECT_EQ(typed.code, 4);
  EXPECT_THAT(typed.err, HasSubstr("41000000 x 23000000 is not a valid size"));
  EXPECT_FALSE(Exists("out.png"));
}

/// Pixels are copied where they can be, and encoded where another file type needs it.
TEST_F(CliApply, MetadataAlone_Should_ReachFilesOfOtherTypes) {
  const std::string photo = RASTERKIT_SAMPLES "/orientation-6.jpg", recipe = folder_ / "exif.json";
  ASSERT_EQ(
      RunTool({"exif", photo, folder_ / "q.jpg", "--set", "Artist=Ada", "--record", recipe}).code,
      0);
  ASSERT_EQ(Apply({recipe, photo, folder_ / "same.jpg"}).code, 0);
  EXPECT_EQ(ReadBytes(folder_ / "q.jpg"), ReadBytes(folder_ / "same.jpg"));
  const ToolResult png = Apply({recipe, photo, folder_ / "e.png"});
  ASSERT_EQ(png.code, 0) << png.err;
  for (const auto& [from, to] : {std::pair("q.jpg", "q.bmp"), std::pair("e.png", "e.bmp")}) {
    ASSERT_EQ(RunTool({"convert", folder_ / from, folder_ / to}).code, 0);
  }
  EXPECT_TRUE(SamePixels(LoadFile(folder_ / "q.bmp"), LoadFile(folder_ / "e.bmp")))
      << "it stands upright in both";
  EXPECT_EQ(Apply({recipe, photo, folder_ / "small.jpg", "--quality", "20"}).code, 0);
  EXPECT_EQ(Apply({recipe, photo, folder_ / "gray.jpg", "--bits", "8"}).code, 0);
  EXPECT_LT(ReadBytes(folder_ / "small.jpg").size(), ReadBytes(folder_ / "q.jpg").size());
  for (const char* type : {"bmp", "tiff"}) {
    const std::string out = std::string("lying.") + type;
    const ToolResult lying = Apply({recipe, photo, folder_ / out});
    EXPECT_EQ(lying.code, 4);
    EXPECT_THAT(lying.err, HasSubstr(std::string(type) + " file cannot state how to turn them"));
    EXPECT_FALSE(Exists(out));
  }
}

TEST_F(CliApply, ExtensionThatMeansTheTypeOfTheRecipe_Should_Stay) {
  const std::string recipe = Recipe("", R"("save": {"type": "jpeg"})");
  for (const char* name : {"p.jpeg", "q.JPG", "r.png"}) {
    ASSERT_EQ(RunTool({"convert", folder_ / "a.png", folder_ / name}).code, 0);
  }
  const std::string out = folder_ / "out";
  ASSERT_EQ(
      Apply({recipe, folder_ / "p.jpeg", folder_ / "q.JPG", folder_ / "r.png", "--out-dir", out})
          .code,
      0);
  for (const char* name : {"out/p.jpeg", "out/q.JPG", "out/r.jpg"}) EXPECT_TRUE(Exists(name));
  ASSERT_EQ(Apply({recipe, folder_ / "p.jpeg", "--out-dir", out, "--format", "jpg"}).code, 0);
  EXPECT_TRUE(Exists("out/p.jpg")) << "as typed";
  const std::string tiff = Recipe("", R"("save": {"type": "tiff"})");
  ASSERT_EQ(RunTool({"convert", folder_ / "a.png", folder_ / "t.tiff"}).code, 0);
  ASSERT_EQ(Apply({tiff, folder_ / "t.tiff", "--out-dir", out}).code, 0);
  EXPECT_TRUE(Exists("out/t.tiff"));
}

/// Errors of another kind than a step that does not fit name the recipe as well.
TEST_F(CliApply, LimitThatAStepExceeds_Should_NameRecipeAndStep) {
  const std::string recipe =
      Recipe(R"({"step": "resize", "revision": 1, "unit": "px", "width": 5000, "height": 5000})");
  const ToolResult result =
      Apply({recipe, folder_ / "a.png", folder_ / "out.png", "--max-pixels", "1000000"});
  EXPECT_EQ(result.code, 4);
  EXPECT_THAT(result.err, AllOf(HasSubstr("r.json: /steps/0: "), HasSubstr("--max-pixels")));
}

}  // namespace
}  // namespace rasterkit::test
