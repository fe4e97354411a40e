#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/gif_file.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/dialog_run.h"

#include <nlohmann/json.hpp>

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class CliDialogSaveAs : public DialogTest {
 protected:
  CliDialogSaveAs() {
    Raster raster = GradientRaster(pf24bit, 60, 40);
    raster.resolution = {300.4, 72};
    SavePngFile(folder_ / "in.png", raster);
  }

  ToolResult SaveAs(const std::string& script, const std::vector<std::string>& options = {},
                    const std::string& file = "in.png") const {
    std::vector<std::string> line = {"save-as", folder_ / file};
    line.insert(line.end(), options.begin(), options.end());
    return Run(line, script);
  }

  /// Runs the verb, which must write the file, and returns its bytes.
  std::vector<uint8_t> Saved(const std::string& script, const std::string& name,
                             const std::vector<std::string>& options = {},
                             const std::string& file = "in.png") const {
    const ToolResult result = SaveAs(script, options, file);
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(result.out, (folder_ / name) + "\n");
    return std::filesystem::exists(folder_ / name) ? ReadBytes(folder_ / name)
                                                   : std::vector<uint8_t>();
  }

  /// The bytes that `convert` writes.
  std::vector<uint8_t> Converted(const std::string& name,
                                 const std::string& file = "in.png") const {
    const std::string plain = folder_ / ("plain-" + name);
    EXPECT_EQ(RunTool({"convert", folder_ / file, plain, "--overwrite"}).code, 0);
    return ReadBytes(plain);
  }
};

TEST_F(CliDialogSaveAs, Save_Should_WriteWhatConvertWrites_InEachKind) {
  for (const char* name : {"new.bmp", "new.jpg", "new.png", "new.tif"}) {
    EXPECT_EQ(Saved("type EditName " + std::string(name) + "; click SaveButton", name),
              Converted(name))
        << name;
  }
}

TEST_F(CliDialogSaveAs, Settings_Should_BeThoseOfTheWindow) {
  const std::vector<uint8_t> saved =
      Saved("type EditName new.jpg; press SliderQuality Home; click SaveButton", "new.jpg");
  EXPECT_LT(saved.size(), Converted("new.jpg").size());
}

TEST_F(CliDialogSaveAs, Recipe_Should_GiveTheSameBytes) {
  const std::string recipe = folder_ / "r.json";
  const std::vector<uint8_t> saved =
      Saved("type EditName new.jpg; press SliderQuality Home; click SaveButton", "new.jpg",
            {"--record", recipe});
  const std::vector<uint8_t> text = ReadBytes(recipe);
  EXPECT_EQ(nlohmann::json::parse(text.begin(), text.end()).at("save").at("type"), "jpeg");
  ASSERT_EQ(RunTool({"apply", recipe, folder_ / "in.png", "--out-dir", folder_ / "out"}).code, 0);
  EXPECT_EQ(ReadBytes(folder_ / "out/in.jpg"), saved);
  const ToolResult again = SaveAs("", {"--record", recipe});
  EXPECT_EQ(again.code, 4) << "before a window opens";
  EXPECT_THAT(again.err, HasSubstr("r.json: already exists"));
}

TEST_F(CliDialogSaveAs, Pixels_Should_ResizeAsResizeDoes) {
  const std::string recipe = folder_ / "r.json";
  const std::vector<uint8_t> saved = Saved(
      "type UnitBox pixels; type FlEdWidth 30; click ButtonOK | type EditName new.png; click "
      "SaveButton",
      "new.png", {"--pixels", "--record", recipe});
  ASSERT_EQ(RunTool({"resize", folder_ / "in.png", folder_ / "plain.png", "--size", "30x"}).code,
            0);
  EXPECT_EQ(saved, ReadBytes(folder_ / "plain.png"));
  ASSERT_EQ(RunTool({"apply", recipe, folder_ / "in.png", folder_ / "same.png"}).code, 0);
  EXPECT_EQ(saved, ReadBytes(folder_ / "same.png"));
}

TEST_F(CliDialogSaveAs, APhotograph_Should_BeSavedUpright) {
  SaveJpegFile(folder_ / "photo.jpg", GradientRaster(pf24bit, 64, 48), 6);
  EXPECT_EQ(Saved("type EditName new.jpg; click SaveButton", "new.jpg", {}, "photo.jpg"),
            Converted("new.jpg", "photo.jpg"));
  EXPECT_EQ(LoadFile(folder_ / "new.jpg").Width(), 48);
}

TEST_F(CliDialogSaveAs, AnExistingFile_Should_BeAskedAbout) {
  const std::vector<uint8_t> before = ReadBytes(folder_ / "in.png");
  SavePngFile(folder_ / "other.png", GradientRaster(pf8bit, 9, 7));
  const ToolResult kept =
      SaveAs("type EditName other.png; click SaveButton; key Escape | click No");
  EXPECT_EQ(kept.code, 1);
  EXPECT_EQ(LoadFile(folder_ / "other.png").Width(), 9);
  const ToolResult replaced = SaveAs("type EditName other.png; click SaveButton | click Yes");
  EXPECT_EQ(replaced.code, 0) << replaced.err;
  EXPECT_EQ(ReadBytes(folder_ / "other.png"), Converted("in.png"));
  EXPECT_EQ(ReadBytes(folder_ / "in.png"), before);
}

TEST_F(CliDialogSaveAs, Cancel_Should_Exit1) {
  for (const char* script : {"key Escape", "click CancelButton", "close"}) {
    const ToolResult result = SaveAs(script);
    EXPECT_EQ(result.code, 1) << script;
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "rasterkit: " + (folder_ / "in.png") + ": canceled\n") << script;
  }
  EXPECT_THAT(folder_.Names(), ElementsAre("in.png"));
}

TEST_F(CliDialogSaveAs, FileThatCannotBeRead_Should_Exit3_WithoutAWindow) {
  WriteText(folder_ / "broken.png", "no picture");
  for (const char* file : {"missing.png", "broken.png"}) {
    const ToolResult result = SaveAs("", {}, file);
    EXPECT_EQ(result.code, 3);
    EXPECT_THAT(result.err, HasSubstr(folder_ / file));
    EXPECT_THAT(result.err, testing::Not(HasSubstr("user:")));
    EXPECT_THAT(result.out, IsEmpty());
  }
}

TEST_F(CliDialogSaveAs, WhatIsLost_Should_BeSaid) {
  Raster raster = GradientRaster(pf32bit, 6, 4);
  raster.alphaFormat = afDefined;
  SavePngFile(folder_ / "alpha.png", raster);
  const std::string script = "type EditName new.jpg; click SaveButton";
  const ToolResult result = SaveAs(script, {}, "alpha.png");
  EXPECT_EQ(result.code, 0);
  EXPECT_THAT(result.err, HasSubstr((folder_ / "new.jpg") + ": lost: the alpha channel ("));
  std::filesystem::remove(folder_ / "new.jpg");
  const ToolResult strict = SaveAs(script, {"--strict"}, "alpha.png");
  EXPECT_EQ(strict.code, 5);
  EXPECT_EQ(strict.out, (folder_ / "new.jpg") + "\n");
}

TEST_F(CliDialogSaveAs, APlaceOnTheMap_Should_BeKept) {
  WriteText(folder_ / "in.pgw", "0.5\n0\n0\n-0.5\n4468000.25\n5333999.75\n");
  Saved("type EditName new.tif; click SaveButton", "new.tif");
  EXPECT_THAT(RunTool({"info", folder_ / "new.tif"}).out, HasSubstr("4468000"));
  std::filesystem::remove(folder_ / "new.tfw");
  Saved("type EditName new.png; click SaveButton", "new.png");
  EXPECT_THAT(RunTool({"info", folder_ / "new.png"}).out, HasSubstr("4468000"));
}

TEST_F(CliDialogSaveAs, TheWindow_Should_BeginWithTheKindOfTheContent) {
  SaveJpegFile(folder_ / "b.png", GradientRaster(pf24bit, 6, 4));
  SaveBmpFile(folder_ / "c", GradientRaster(pf24bit, 6, 4));
  WriteBytes(folder_ / "d.gif", PlainGif(6, 4).Bytes());
  Saved("click SaveButton", "b.jpg", {}, "b.png");
  Saved("click SaveButton", "c.bmp", {}, "c");
  Saved("click SaveButton", "d.png", {}, "d.gif");
}

TEST_F(CliDialogSaveAs, ARelativeName_Should_BeAnsweredInFull) {
  const std::string relative = std::filesystem::relative(folder_ / "in.png").string();
  const ToolResult result = Run({"save-as", relative}, "type EditName new.png; click SaveButton");
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_EQ(result.out, (folder_ / "new.png") + "\n");
  EXPECT_TRUE(std::filesystem::exists(folder_ / "new.png"));
}

TEST_F(CliDialogSaveAs, WrongUsage_Should_Exit2) {
  EXPECT_EQ(RunTool({"save-as"}).code, 2);
  EXPECT_EQ(RunTool({"save-as", folder_ / "in.png", folder_ / "out.png"}).code, 2);
}

}  // namespace
}  // namespace rasterkit::test
