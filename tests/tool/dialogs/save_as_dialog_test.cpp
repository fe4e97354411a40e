#include <filesystem>
#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/files/windows_bitmap.h>
#include <rasterkit/codecs/picture_type.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/pictures/load_bitmap.h>

#include "tests/support/gif_file.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/dialog_run.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class CliDialogSaveAs : public DialogTest {
 protected:
  CliDialogSaveAs() {
    Raster raster = GradientRaster(pf24bit, 60, 40);
    raster.resolution = {300, 300};
    SavePngFile(folder_ / "in.png", raster);
  }

  ToolResult SaveAs(const std::string& script, const std::vector<std::string>& options = {},
                    const std::string& file = "in.png") {
    std::vector<std::string> line = {"save-as", folder_ / file};
    line.insert(line.end(), options.begin(), options.end());
    return Run(line, script);
  }
  /// Runs the verb and returns the file that it must have written.
  std::string Saved(const std::string& script, const std::string& name,
                    const std::vector<std::string>& options = {},
                    const std::string& file = "in.png") {
    const ToolResult result = SaveAs(script, options, file);
    EXPECT_EQ(result.code, 0) << result.err;
    // JPEG files of this quality have less color resolution.
    if (!name.ends_with(".jpg")) EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out, (folder_ / name) + "\n");
    return folder_ / name;
  }
  /// A picture of any kind, in the depth of the file.
  Raster Loaded(const std::string& file) {
    std::unique_ptr<TBitmap> bitmap = LoadBitmap(file, Isolation::none);
    return bitmap->Content().Clone();
  }
  /// The picture in the file that the library's own routine writes.
  Raster WrittenByLibrary(int bits, int quality, const std::string& extension,
                          const std::string& file = "in.png") {
    std::unique_ptr<TBitmap> bitmap;
    EXPECT_TRUE(LoadWindowsBitmap(folder_ / file, 0, bitmap));
    SaveWindowsBitmap(*bitmap, bits, quality, folder_ / ("library" + extension));
    return Loaded(folder_ / ("library" + extension));
  }

  const std::string kNameIt = "type EditFilename new; ";
};

TEST_F(CliDialogSaveAs, Save_Should_WriteWhatTheLibraryWrites_InEachKind) {
  for (const auto& [filter, extension] :
       {std::pair{"Windows", ".bmp"}, {"JPeg", ".jpg"}, {"PNG", ".png"}, {"TIFF", ".tif"}}) {
    const std::string file = Saved(kNameIt + "type FilterComboBox " + filter + "; click OKButton",
                                   std::string("new") + extension);
    EXPECT_TRUE(SamePixels(WrittenByLibrary(24, 90, extension), Loaded(file))) << extension;
  }
}

TEST_F(CliDialogSaveAs, ColorsAndQuality_Should_BeThoseOfTheLibrary) {
  for (const auto& [colors, bits] : {std::pair{"Black", 1}, {"16", 4}, {"256", 8}, {"True", 24}}) {
    std::filesystem::remove(folder_ / "new.png");
    const std::string file =
        Saved(kNameIt + "click ButtonOptions; click OKButton | type CoBoColors " + colors +
                  "; click nbPost",
              "new.png");
    EXPECT_TRUE(SamePixels(WrittenByLibrary(bits, 90, ".png"), Loaded(file))) << bits;
  }
  const std::string file =
      Saved(kNameIt +
                "type FilterComboBox JPeg; click ButtonOptions; click OKButton "
                "| press TrackBarComp Home; click nbPost",
            "new.jpg");
  EXPECT_TRUE(SamePixels(WrittenByLibrary(24, 10, ".jpg"), Loaded(file)));
}

TEST_F(CliDialogSaveAs, TheResolution_Should_StandInTheFile) {
  for (const auto& [filter, extension] :
       {std::pair{"Windows", ".bmp"}, {"JPeg", ".jpg"}, {"PNG", ".png"}, {"TIFF", ".tif"}}) {
    const std::string file = Saved(kNameIt + "type FilterComboBox " + filter +
                                       "; click ButtonOptions; click OKButton "
                                       "| type SpEdDpi 150; click nbPost",
                                   std::string("new") + extension);
    std::unique_ptr<TBitmap> bitmap;
    ASSERT_TRUE(LoadWindowsBitmap(file, 0, bitmap));
    EXPECT_NEAR(bitmap->Dpi().x, 150, 0.05) << extension;
    EXPECT_NEAR(bitmap->Dpi().y, 150, 0.05) << extension;
  }
}

TEST_F(CliDialogSaveAs, AResolutionThatIsLeftAlone_Should_StayAsItIs) {
  Raster raster = GradientRaster(pf24bit, 6, 4);
  raster.resolution = {300.4, 72};
  SavePngFile(folder_ / "odd.png", raster);
  const std::string file = Saved(kNameIt + "click ButtonOptions; click OKButton | click nbPost",
                                 "new.png", {}, "odd.png");
  EXPECT_NEAR(LoadFile(file).resolution.x, 300.4, 0.05);
  EXPECT_NEAR(LoadFile(file).resolution.y, 72, 0.05);
}

TEST_F(CliDialogSaveAs, APictureWithoutResolution_Should_GetNone_UnlessTheUserSetsOne) {
  SavePngFile(folder_ / "plain.png", GradientRaster(pf24bit, 6, 4));
  std::string file = Saved(kNameIt + "click ButtonOptions; click OKButton | click nbPost",
                           "new.png", {}, "plain.png");
  EXPECT_FALSE(LoadFile(file).resolution.IsKnown());
  file = Saved(
      "type EditFilename other; click ButtonOptions; click OKButton "
      "| type SpEdDpi 72; click nbPost",
      "other.png", {}, "plain.png");
  EXPECT_NEAR(LoadFile(file).resolution.x, 72, 0.05);
}

TEST_F(CliDialogSaveAs, ADepthThatTheListHasNot_Should_Stay_When_NobodyOpensTheOptions) {
  Raster raster = GradientRaster(pf32bit, 6, 4);
  raster.alphaFormat = afDefined;
  SavePngFile(folder_ / "alpha.png", raster);
  const std::string file = Saved(kNameIt + "click OKButton", "new.png", {}, "alpha.png");
  EXPECT_TRUE(SamePixels(LoadFile(folder_ / "alpha.png"), LoadFile(file)));
}

TEST_F(CliDialogSaveAs,
       ADepthThatTheListHasNot_Should_BecomeTrueColor_When_TheOptionsAreConfirmed) {
  Raster raster = GradientRaster(pf32bit, 6, 4);
  raster.alphaFormat = afDefined;
  SavePngFile(folder_ / "alpha.png", raster);
  const ToolResult result =
      SaveAs(kNameIt + "click ButtonOptions; click OKButton | click nbPost", {}, "alpha.png");
  EXPECT_EQ(result.code, 0);
  EXPECT_THAT(result.err, HasSubstr((folder_ / "new.png") + ": lost: the alpha channel ("));
  EXPECT_EQ(LoadFile(folder_ / "new.png").Format(), pf24bit);
}

TEST_F(CliDialogSaveAs, Pixels_Should_ResizeAsResizeDoes) {
  const std::string file =
      Saved(kNameIt + "click ButtonOptions; click OKButton | type FlEdWidth 30; click nbPost",
            "new.png", {"--pixels"});
  EXPECT_TRUE(SamePixels(WithoutDialog("resize", LoadFile(folder_ / "in.png"), {"--size", "30x20"}),
                         LoadFile(file)));
}

TEST_F(CliDialogSaveAs, PixelsThatAreLeftAlone_Should_Stay) {
  const std::string file = Saved(kNameIt + "click ButtonOptions; click OKButton | click nbPost",
                                 "new.png", {"--pixels"});
  EXPECT_TRUE(SamePixels(WrittenByLibrary(24, 90, ".png"), Loaded(file)));
}

TEST_F(CliDialogSaveAs, PixelsOfNone_Should_BeRefused) {
  const ToolResult result =
      SaveAs(kNameIt + "click ButtonOptions; click OKButton | type FlEdWidth 0; click nbPost",
             {"--pixels"});
  EXPECT_EQ(result.code, 4);
  EXPECT_EQ(result.out, "");
  EXPECT_THAT(result.err, HasSubstr("0 x 0 is not a valid size"));
  EXPECT_FALSE(std::filesystem::exists(folder_ / "new.png"));
}

TEST_F(CliDialogSaveAs, APhotograph_Should_BeAskedAboutAndSavedUpright) {
  SaveJpegFile(folder_ / "photo.jpg", GradientRaster(pf24bit, 60, 40), 6);
  const ToolResult result =
      SaveAs(kNameIt + "click ButtonOptions; click OKButton | type FlEdWidth 20; click nbPost",
             {"--pixels"}, "photo.jpg");
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_EQ(LoadFile(folder_ / "new.jpg").Width(), 20);
  EXPECT_EQ(LoadFile(folder_ / "new.jpg").Height(), 30);
}

TEST_F(CliDialogSaveAs, AnExistingFile_Should_BeAskedAbout) {
  const std::vector<uint8_t> before = ReadBytes(folder_ / "in.png");
  const std::string options =
      "click ButtonOptions; click OKButton; key Escape | type CoBoColors "
      "Black; click nbPost | click ";
  const ToolResult kept = SaveAs(options + "No");
  EXPECT_EQ(kept.code, 1);
  EXPECT_EQ(ReadBytes(folder_ / "in.png"), before);
  const Raster wanted = WrittenByLibrary(1, 90, ".png");
  EXPECT_EQ(SaveAs("click ButtonOptions; click OKButton | type CoBoColors Black; click nbPost "
                   "| click Yes")
                .code,
            0);
  EXPECT_TRUE(SamePixels(wanted, Loaded(folder_ / "in.png")));
}

TEST_F(CliDialogSaveAs, Cancel_Should_Exit1) {
  for (const char* script : {"key Escape", "click CancelButton", "close"}) {
    const ToolResult result = SaveAs(script);
    EXPECT_EQ(result.code, 1);
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
    EXPECT_THAT(result.out, IsEmpty());
  }
}

TEST_F(CliDialogSaveAs, WhatIsLost_Should_BeSaid) {
  Raster raster = GradientRaster(pf32bit, 6, 4);
  raster.alphaFormat = afDefined;
  SavePngFile(folder_ / "alpha.png", raster);
  const std::string script = kNameIt + "type FilterComboBox JPeg; click OKButton";
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
  Saved(kNameIt + "type FilterComboBox TIFF; click OKButton", "new.tif");
  EXPECT_THAT(RunTool({"info", folder_ / "new.tif"}).out, HasSubstr("4468000"));
  std::filesystem::remove(folder_ / "new.tfw");
  Saved(kNameIt + "click OKButton", "new.png");
  EXPECT_THAT(RunTool({"info", folder_ / "new.png"}).out, HasSubstr("4468000"));
}

TEST_F(CliDialogSaveAs, TheWindow_Should_BeginWithTheKindOfTheContent) {
  SaveJpegFile(folder_ / "a.jpeg", GradientRaster(pf24bit, 6, 4));
  SaveJpegFile(folder_ / "b.png", GradientRaster(pf24bit, 6, 4));
  SaveBmpFile(folder_ / "c", GradientRaster(pf24bit, 6, 4));
  WriteBytes(folder_ / "d.gif", PlainGif(6, 4).Bytes());
  Saved("click OKButton", "a.jpg", {}, "a.jpeg");
  Saved("click OKButton", "b.jpg", {}, "b.png");
  Saved("click OKButton", "c.bmp", {}, "c");
  Saved("click OKButton", "d.png", {}, "d.gif");
}

TEST_F(CliDialogSaveAs, ARelativeName_Should_BeAnsweredInFull) {
  const std::string relative = std::filesystem::relative(folder_ / "in.png").string();
  const ToolResult result = Run({"save-as", relative}, kNameIt + "click OKButton");
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_TRUE(std::filesystem::exists(folder_ / "new.png"));
}

TEST_F(CliDialogSaveAs, WrongUsage_Should_Exit2) {
  EXPECT_EQ(RunTool({"save-as"}).code, 2);
  EXPECT_EQ(RunTool({"save-as", folder_ / "in.png", folder_ / "out.png"}).code, 2);
}

}  // namespace
}  // namespace rasterkit::test
