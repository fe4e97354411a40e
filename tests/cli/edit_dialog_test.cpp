#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/cli/dialog_run.h"
#include "tests/support/pdf_file.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

using testing::HasSubstr;

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
      EXPECT_EQ(result.err, "rasterkit: " + file + ": cancelled\n") << script;
    }
  }
  EXPECT_EQ(folder_.Names(), (std::vector<std::string>{"in.png", "plan.pdf"}));
}

TEST_F(CliDialogEdit, FileThatCannotBeRead_Should_Exit3_WithoutAWindow) {
  const ToolResult missing = Run({"edit", folder_ / "missing.png"}, "");
  EXPECT_EQ(missing.code, 3);
  EXPECT_THAT(missing.err, HasSubstr("there is no such file"));
  WriteText(folder_ / "broken.png", "no picture");
  const ToolResult broken = Run({"edit", folder_ / "broken.png"}, "");
  EXPECT_EQ(broken.code, 3);
  EXPECT_THAT(broken.err, HasSubstr("cannot be read as a picture"));
}

}  // namespace
}  // namespace rasterkit::test
