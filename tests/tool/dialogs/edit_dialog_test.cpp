#include <filesystem>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/engine/composition.h>
#include <rasterkit/bitmaptools/pixels/gray_mono.h>
#include <rasterkit/bitmaptools/rotation/rotate.h>

#include "tests/support/pdf_file.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/dialog_run.h"

namespace rasterkit::test {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class CliDialogEdit : public DialogTest {};

TEST_F(CliDialogEdit, Ok_Should_PrintTheName_AndWriteNothing_When_NothingWasChanged) {
  SavePngFile(folder_ / "in.png", GradientRaster(pf24bit, 60, 40));
  const auto before = std::filesystem::last_write_time(folder_ / "in.png");
  const ToolResult result = Run({"edit", folder_ / "in.png"}, "key Return");
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_EQ(result.out, (folder_ / "in.png") + "\n");
  EXPECT_EQ(std::filesystem::last_write_time(folder_ / "in.png"), before);
}

TEST_F(CliDialogEdit, Cancel_Should_Exit1) {
  SavePngFile(folder_ / "in.png", GradientRaster(pf24bit, 60, 40));
  const std::string page = folder_ / "plan.pdf";
  WriteText(page, PdfText({{"0 0 72 72", ""}}));
  for (const std::string& file : {folder_ / "in.png", page}) {
    for (const char* script : {"key Escape", "click nbCancel", "close"}) {
      const ToolResult result = Run({"edit", file}, script);
      EXPECT_EQ(result.code, 1) << file << " " << script;
      EXPECT_EQ(result.out, "");
      EXPECT_EQ(result.err, "rasterkit: " + file + ": canceled\n") << script;
    }
  }
  EXPECT_EQ(folder_.Names(), (std::vector<std::string>{"in.png", "plan.pdf"}));
}

TEST_F(CliDialogEdit, Changes_Should_BeInTheFile_ThatIsPrinted) {
  SavePngFile(folder_ / "in.png", GradientRaster(pf24bit, 60, 40));
  const std::vector<uint8_t> before = ReadBytes(folder_ / "in.png");
  const ToolResult result = Run(
      {"edit", folder_ / "in.png"},
      "enter CoBoRotation 90; click SpeedButtonGrayScale; click nbPost | enter fileNameEdit out");
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.out, (folder_ / "out.png") + "\n");
  EXPECT_EQ(ReadBytes(folder_ / "in.png"), before);
  auto expected = std::make_unique<TBitmap>(GradientBitmap(pf24bit, 60, 40));
  BitmapToGray(expected.get(), false);
  ASSERT_TRUE(RotateBitmap(-90, expected, 0xFFFFFF, 4, nullptr));
  EXPECT_TRUE(SamePixels(expected->Content(), LoadFile(folder_ / "out.png")));
}

TEST_F(CliDialogEdit, Picture_Should_GoOverItsFile_When_TheUserSaysSo) {
  SavePngFile(folder_ / "in.png", GradientRaster(pf24bit, 60, 40));
  const std::vector<uint8_t> before = ReadBytes(folder_ / "in.png");
  const std::string mirror = "click SpeedButtonMirror; click nbPost | key Return | ";
  const ToolResult refused = Run({"edit", folder_ / "in.png"}, mirror + "click No");
  EXPECT_EQ(refused.code, 1);
  EXPECT_EQ(ReadBytes(folder_ / "in.png"), before);
  const ToolResult result = Run({"edit", folder_ / "in.png"}, mirror + "click Yes");
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_EQ(result.out, (folder_ / "in.png") + "\n");
  TBitmap expected = GradientBitmap(pf24bit, 60, 40);
  SwapBitmap(true, &expected);
  EXPECT_TRUE(SamePixels(expected.Content(), LoadFile(folder_ / "in.png")));
  EXPECT_EQ(ReadBytes(folder_ / "in.~png"), before) << "the picture before is kept";
}

/// The window shows what a worker process read, and what this process reads with the option.
TEST_F(CliDialogEdit, Changes_Should_BeTheSame_WithAndWithoutAWorker) {
  SaveJpegFile(folder_ / "in.jpg", GradientRaster(pf24bit, 60, 40), 6);
  const std::string script = "click SpeedButtonMirror; click nbPost | enter fileNameEdit ";
  ASSERT_EQ(Run({"edit", folder_ / "in.jpg"}, script + "isolated").code, 0);
  ASSERT_EQ(Run({"edit", folder_ / "in.jpg", "--no-isolate"}, script + "here").code, 0);
  EXPECT_EQ(ReadBytes(folder_ / "isolated.jpg"), ReadBytes(folder_ / "here.jpg"));
}

TEST_F(CliDialogEdit, Losses_Should_BeSaid_When_APictureIsWritten) {
  SaveJpegFile(folder_ / "in.jpg", GradientRaster(pf24bit, 60, 40), 1);
  WriteText(folder_ / "in.jgw", "1\n0\n0\n-1\n0\n0\n");
  const ToolResult result = Run({"edit", folder_ / "in.jpg"},
                                "click SpeedButtonMirror; click nbPost | enter fileNameEdit out");
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_EQ(result.out, (folder_ / "out.jpg") + "\n");
  EXPECT_EQ(result.err, "rasterkit: " + (folder_ / "out.jpg") + ": lost: exif, position\n");
  const ToolResult unchanged = Run({"edit", folder_ / "in.jpg"}, "key Return");
  EXPECT_EQ(unchanged.err, "");
}

TEST_F(CliDialogEdit, Page_Should_BeInTheFile_AsItWasChosen) {
  const std::string page = folder_ / "plan.pdf";
  WriteText(page, PdfText({{"0 0 72 144", PdfRectangle("0.8 0.1 0.2", 10, 20, 30, 90)}}));
  const ToolResult result = Run(
      {"edit", page},
      "enter CoBoResolution 200; click SpeedButtonMirror; key Return | enter fileNameEdit page");
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_EQ(result.out, (folder_ / "page.png") + "\n");
  ASSERT_EQ(RunTool({"pdf", page, folder_ / "drawn.png", "--dpi", "200"}).code, 0);
  TBitmap expected(LoadFile(folder_ / "drawn.png"));
  SwapBitmap(true, &expected);
  EXPECT_TRUE(SamePixels(expected.Content(), LoadFile(folder_ / "page.png")));
}

TEST_F(CliDialogEdit, WithoutAFile_Should_AskForOne) {
  SavePngFile(folder_ / "in.png", GradientRaster(pf24bit, 60, 40));
  const std::string choose = "enter fileNameEdit " + (folder_ / "in.png");
  const ToolResult result = Run({"edit"}, choose + " | key Return");
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

TEST_F(CliDialogEdit, FileThatCannotBeOpened_Should_Exit3_AndBeToldInAWindow) {
  WriteText(folder_ / "broken.png", "no picture");
  WriteText(folder_ / "text.pdf", "no pages");
  WriteText(folder_ / "empty.pdf", "");
  WriteText(folder_ / "locked.pdf", EncryptedPdf(PdfReader::withPassword));
  const std::pair<std::string, std::string> faults[] = {{"broken.png", "is not a readable picture"},
                                                        {"text.pdf", "not a PDF file"},
                                                        {"empty.pdf", "empty"},
                                                        {"locked.pdf", "password"}};
  for (const auto& [name, fault] : faults) {
    const std::string file = folder_ / name;

    const ToolResult result = Run({"edit", file}, "key Return");
    EXPECT_EQ(result.code, 3) << name;
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, StartsWith("rasterkit: " + file + ": "));
    EXPECT_THAT(result.err, HasSubstr(fault));
    EXPECT_THAT(result.err, Not(HasSubstr("user:")));
    const ToolResult unseen = Run({"edit", file}, "");
    EXPECT_THAT(unseen.err, HasSubstr("user: ")) << name;
  }
}

}  // namespace
}  // namespace rasterkit::test
