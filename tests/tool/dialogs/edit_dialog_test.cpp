#include <filesystem>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/emf_file.h"
#include "tests/support/pdf_file.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/dialog_run.h"

#include <nlohmann/json.hpp>

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class CliDialogEdit : public DialogTest {
 protected:
  /// What `apply` writes with the recipe of a window.
  std::vector<uint8_t> Applied(const std::string& input, const std::string& output) const {
    const ToolResult result =
        RunTool({"apply", folder_ / "r.json", folder_ / input, folder_ / output, "--overwrite"});
    EXPECT_EQ(result.code, 0) << result.err;
    return ReadBytes(folder_ / output);
  }
};

TEST_F(CliDialogEdit, Cancel_Should_Exit1) {
  SavePngFile(folder_ / "in.png", GradientRaster(pf24bit, 60, 40));
  const std::string page = folder_ / "plan.pdf";
  WriteText(page, PdfText({{"0 0 72 72", ""}}));
  for (const std::string& file : {folder_ / "in.png", page}) {
    for (const char* script : {"click nbCancel", "click ToolFit; key Escape"}) {
      const ToolResult result = Run({"edit", file}, script);
      EXPECT_EQ(result.code, 1) << file << " " << script;
      EXPECT_EQ(result.out, "");
      EXPECT_EQ(result.err, "rasterkit: " + file + ": canceled\n") << script;
    }
  }
  EXPECT_THAT(folder_.Names(), ElementsAre("in.png", "plan.pdf"));
}

TEST_F(CliDialogEdit, NamedFile_Should_BeTheFileThatIsWritten_AfterAQuestion) {
  SavePngFile(folder_ / "in.png", GradientRaster(pf24bit, 60, 40));
  const std::vector<uint8_t> before = ReadBytes(folder_ / "in.png");
  const ToolResult refused = Run({"edit", folder_ / "in.png"},
                                 "click ToolMirror; click nbPost; key Escape | "
                                 "click ButtonCancel | click ButtonNo");
  EXPECT_EQ(refused.code, 1);
  EXPECT_EQ(ReadBytes(folder_ / "in.png"), before);
  WriteBytes(folder_ / "copy.png", before);
  const ToolResult result =
      Run({"edit", folder_ / "in.png", "--record", folder_ / "r.json"},
          "click ToolMirror; click ToolTurnLeft; click nbPost | click ButtonYes");
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.out, (folder_ / "in.png") + "\n");
  EXPECT_EQ(ReadBytes(folder_ / "in.png"), Applied("copy.png", "same.png"));
  EXPECT_THAT(folder_.Names(), ElementsAre("copy.png", "in.png", "r.json", "same.png"));
}

/// A photograph stays as it is compressed, and stands upright.
TEST_F(CliDialogEdit, Recipe_Should_GiveTheBytesOfTheWindow) {
  SaveJpegFile(folder_ / "in.jpg", GradientRaster(pf24bit, 64, 48), 6);
  const ToolResult result =
      Run({"edit", folder_ / "in.jpg", "--record", folder_ / "r.json"},
          "click ToolMirror; click ToolTurnRight; click ToolSaveAs; click nbCancel | "
          "type EditName out.jpg; click SaveButton");
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_EQ(result.out, (folder_ / "out.jpg") + "\n");
  const std::vector<uint8_t> text = ReadBytes(folder_ / "r.json");
  EXPECT_EQ(nlohmann::json::parse(text.begin(), text.end()).at("steps").size(), 2U);
  EXPECT_EQ(ReadBytes(folder_ / "out.jpg"), Applied("in.jpg", "same.jpg"));
  const auto plan = JsonLines(RunTool({"apply", folder_ / "r.json", folder_ / "in.jpg",
                                       folder_ / "plan.jpg", "--dry-run", "--json"})
                                  .out);
  ASSERT_EQ(plan.size(), 1U);
  EXPECT_EQ(plan[0].at("pixels"), "moved");
}

TEST_F(CliDialogEdit, StepsOfTheWindows_Should_BeInTheRecipe) {
  SavePngFile(folder_ / "in.png", GradientRaster(pf24bit, 60, 40));
  const ToolResult result = Run(
      {"edit", folder_ / "in.png", "--record", folder_ / "r.json"},
      "click ToolCrop; click ToolSize; click ToolValues; click ToolSaveAs; click nbCancel | "
      "type FieldLeft 5; type FieldTop 3; type FieldWidth 40; type FieldHeight 30; click nbPost | "
      "type FlEdWidth 20; click ButtonOK | type SpEdContrast 25; click nbPost | "
      "type EditName out.png; click SaveButton");
  EXPECT_EQ(result.code, 0) << result.err;
  const std::vector<uint8_t> text = ReadBytes(folder_ / "r.json");
  const auto steps = nlohmann::json::parse(text.begin(), text.end()).at("steps");
  ASSERT_EQ(steps.size(), 3U) << steps.dump();
  EXPECT_EQ(steps[0].at("step"), "crop");
  EXPECT_EQ(steps[1].at("step"), "resize");
  EXPECT_EQ(steps[2].at("step"), "adjust");
  EXPECT_EQ(ReadBytes(folder_ / "out.png"), Applied("in.png", "same.png"));
}

TEST_F(CliDialogEdit, UndoneSteps_Should_NotBeWritten) {
  SavePngFile(folder_ / "in.png", GradientRaster(pf24bit, 60, 40));
  const ToolResult result = Run({"edit", folder_ / "in.png", "--record", folder_ / "r.json"},
                                "click ToolMirror; click ToolUndo; key Escape");
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.out, "");
  EXPECT_FALSE(std::filesystem::exists(folder_ / "r.json"));
}

/// The window shows what a worker process read, and what this process reads with the option.
TEST_F(CliDialogEdit, Changes_Should_BeTheSame_WithAndWithoutAWorker) {
  SaveJpegFile(folder_ / "in.jpg", GradientRaster(pf24bit, 60, 40), 6);
  const std::string script = "click ToolGray; click ToolSaveAs; click nbCancel | type EditName ";
  ASSERT_EQ(Run({"edit", folder_ / "in.jpg"}, script + "a.jpg; click SaveButton").code, 0);
  ASSERT_EQ(
      Run({"edit", folder_ / "in.jpg", "--no-isolate"}, script + "b.jpg; click SaveButton").code,
      0);
  EXPECT_EQ(ReadBytes(folder_ / "a.jpg"), ReadBytes(folder_ / "b.jpg"));
}

TEST_F(CliDialogEdit, Losses_Should_BeSaid_When_APictureIsWritten) {
  SaveJpegFile(folder_ / "in.jpg", GradientRaster(pf24bit, 60, 40), 1);
  const ToolResult result =
      Run({"edit", folder_ / "in.jpg"},
          "click ToolMirror; click ToolSaveAs; click nbCancel | type EditName out.bmp; click "
          "SaveButton");
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_EQ(result.out, (folder_ / "out.bmp") + "\n");
  EXPECT_THAT(result.err, StartsWith("rasterkit: " + (folder_ / "out.bmp") + ": lost: "));
}

TEST_F(CliDialogEdit, Page_Should_BeInTheFile_AsItWasChosen) {
  const std::string page = folder_ / "plan.pdf";
  WriteText(page, PdfText({{"0 0 10 10", ""},
                           {"0 0 72 144", PdfRectangle("0.8 0.1 0.2", 10, 20, 30, 90)}}));
  const ToolResult result =
      Run({"edit", page, "--page", "2", "--dpi", "200", "--record", folder_ / "r.json"},
          "click ToolMirror; click nbPost");
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_EQ(result.out, (folder_ / "plan.png") + "\n");
  EXPECT_EQ(result.err, "rasterkit: " + (folder_ / "r.json") +
                            ": does not hold --page 2 --dpi 200, with which 'rasterkit pdf' draws "
                            "the page for 'rasterkit apply'\n");
  ASSERT_EQ(RunTool({"pdf", page, folder_ / "drawn.png", "--page", "2", "--dpi", "200"}).code, 0);
  Applied("drawn.png", "same.png");
  EXPECT_TRUE(SamePixels(LoadFile(folder_ / "same.png"), LoadFile(folder_ / "plan.png")));
}

TEST_F(CliDialogEdit, WithoutAFile_Should_AskForOne) {
  SavePngFile(folder_ / "in.png", GradientRaster(pf24bit, 60, 40));
  const std::string choose = "enter fileNameEdit " + (folder_ / "in.png");
  const ToolResult result =
      Run({"edit"}, choose + " | click ToolMirror; click nbPost | click ButtonYes");
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_EQ(result.out, (folder_ / "in.png") + "\n");
  const ToolResult none = Run({"edit"}, "key Escape");
  EXPECT_EQ(none.code, 1);
  EXPECT_EQ(none.err, "rasterkit: edit: canceled\n");
  const ToolResult left = Run({"edit"}, choose + " | key Escape");
  EXPECT_EQ(left.code, 1);
  EXPECT_EQ(left.err, "rasterkit: " + (folder_ / "in.png") + ": canceled\n");
}

TEST_F(CliDialogEdit, FileThatIsMissing_Should_Exit3_WithoutAWindow) {
  const ToolResult missing = Run({"edit", folder_ / "missing.png"}, "");
  EXPECT_EQ(missing.code, 3);
  EXPECT_EQ(missing.err, "rasterkit: " + (folder_ / "missing.png") + ": no such file\n");
}

TEST_F(CliDialogEdit, RecipeThatExists_Should_Exit4_WithoutAWindow) {
  SavePngFile(folder_ / "in.png", GradientRaster(pf24bit, 60, 40));
  WriteText(folder_ / "r.json", "mine");
  const ToolResult result = Run({"edit", folder_ / "in.png", "--record", folder_ / "r.json"}, "");
  EXPECT_EQ(result.code, 4);
  EXPECT_EQ(result.err,
            "rasterkit: " + (folder_ / "r.json") + ": already exists (--overwrite replaces it)\n");
}

/// Which files a window reads and writes is known late.
TEST_F(CliDialogEdit, FilesOfTheWindow_Should_NotBeReplacedByTheRecipe) {
  SavePngFile(folder_ / "in.png", GradientRaster(pf24bit, 60, 40));
  const std::vector<uint8_t> before = ReadBytes(folder_ / "in.png");
  const ToolResult chosen = Run({"edit", "--record", folder_ / "in.png", "--overwrite"},
                                "enter fileNameEdit " + (folder_ / "in.png"));
  EXPECT_EQ(chosen.code, 2);
  EXPECT_THAT(chosen.err, HasSubstr("in.png: is one of the pictures and cannot be the recipe"));
  EXPECT_EQ(ReadBytes(folder_ / "in.png"), before);
  const ToolResult saved =
      Run({"edit", folder_ / "in.png", "--record", folder_ / "out.png", "--overwrite"},
          "click ToolMirror; click ToolSaveAs; click nbCancel | type EditName out.png; "
          "click SaveButton");
  EXPECT_EQ(saved.code, 2);
  EXPECT_THAT(saved.err, HasSubstr("out.png: is one of the pictures and cannot be the recipe"));
  EXPECT_EQ(LoadFile(folder_ / "out.png").Width(), 60);
}

TEST_F(CliDialogEdit, PageOfTheRecipe_Should_BeSaid) {
  SavePngFile(folder_ / "in.png", GradientRaster(pf24bit, 60, 40));
  const std::string pages = folder_ / "pages.tif";
  ASSERT_EQ(RunTool({"pages", folder_ / "in.png", folder_ / "in.png", pages}).code, 0);
  const ToolResult result =
      Run({"edit", pages, "--page", "2", "--record", folder_ / "r.json"},
          "click ToolMirror; click ToolSaveAs; click nbCancel | type EditName out.png; "
          "click SaveButton");
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_THAT(result.err, HasSubstr((folder_ / "r.json") +
                                    ": does not hold --page 2, which 'rasterkit apply' needs too"));
  const std::string drawing = folder_ / "drawing.emf";
  EmfFile square;
  square.Add(detail::EmfType::polygon16,
             FieldBytes{0, 0, 0, 0, 4}.Words({0, 0, 50, 0, 50, 40, 0, 40}));
  WriteBytes(drawing, square.Bytes());
  const ToolResult drawn =
      Run({"edit", drawing, "--dpi", "50", "--record", folder_ / "drawn.json"},
          "click ToolMirror; click ToolSaveAs; click nbCancel | type EditName drawn.png; "
          "click SaveButton");
  EXPECT_EQ(drawn.code, 0) << drawn.err;
  EXPECT_THAT(drawn.err, HasSubstr("does not hold --dpi 50, which 'rasterkit apply' needs too"));
}

TEST_F(CliDialogEdit, FileThatCannotBeOpened_Should_Exit3_AndBeToldInAWindow) {
  SavePngFile(folder_ / "in.png", GradientRaster(pf24bit, 6, 4));
  WriteText(folder_ / "broken.png", "no picture");
  WriteText(folder_ / "text.pdf", "no pages");
  WriteText(folder_ / "empty.pdf", "");
  WriteText(folder_ / "locked.pdf", EncryptedPdf(PdfReader::withPassword));
  WriteText(folder_ / "plan.pdf", PdfText({{"0 0 72 72", ""}}));
  const std::pair<std::vector<std::string>, std::string> faults[] = {
      {{"broken.png"}, "is not a readable picture"},
      {{"text.pdf"}, "not a PDF file"},
      {{"empty.pdf"}, "empty"},
      {{"locked.pdf"}, "password"},
      {{"plan.pdf", "--page", "2"}, "there is no page 2: the file has 1"},
      {{"in.png", "--page", "7"}, "there is no page 7: the file has 1"}};
  for (const auto& [words, fault] : faults) {
    std::vector<std::string> line = {"edit"};
    line.insert(line.end(), words.begin(), words.end());
    line[1] = folder_ / line[1];
    const ToolResult result = Run(line, "key Return");
    EXPECT_EQ(result.code, 3) << words[0];
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, StartsWith("rasterkit: " + line[1] + ": "));
    EXPECT_THAT(result.err, HasSubstr(fault));
    EXPECT_THAT(result.err, Not(HasSubstr("user:")));
    const ToolResult unseen = Run(line, "");
    EXPECT_THAT(unseen.err, HasSubstr("user: ")) << words[0];
  }
}

}  // namespace
}  // namespace rasterkit::test
