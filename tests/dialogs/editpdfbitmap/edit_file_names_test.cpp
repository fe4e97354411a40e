#include <gtest/gtest.h>

#include <rasterkit/dialogs/editpdfbitmap/edit_file_names.h>

#include "tests/support/temp_folder.h"

namespace rasterkit::test {
namespace {

TEST(EditFileNames, SetBmpFilename_Should_NameTheSourceToo_When_ThereIsNone) {
  EditFileNames names;
  names.SetBmpFilename("maps/a.bmp");
  EXPECT_EQ(names.fOrgFilename, "maps/a.bmp");
  EXPECT_EQ(names.fBmpDir, "maps/");
  EXPECT_EQ(names.fBmpName, "a.bmp");
  EXPECT_EQ(names.GetBmpFilename(), "maps/a.bmp");
  EXPECT_FALSE(names.fBmpFileExisted);
}

TEST(EditFileNames, SetBmpFilename_Should_NoteThatTheFileExists_When_ThereIsNoSource) {
  const TempFolder folder;
  EditFileNames names;
  names.SetBmpFilename(folder.Write("a.bmp", std::string_view("x")));
  EXPECT_TRUE(names.fBmpFileExisted);
  names.SetBmpFilename(folder / "b.bmp");
  EXPECT_TRUE(names.fBmpFileExisted) << "only asked while there is no source";
  EXPECT_EQ(names.fOrgFilename, folder / "a.bmp");
  EXPECT_EQ(names.fBmpName, "b.bmp");
}

TEST(EditFileNames, SetBmpFilename_Should_NotAskForTheFile_When_ThereIsASource) {
  const TempFolder folder;
  EditFileNames names;
  names.fOrgFilename = "plan.pdf";
  names.SetBmpFilename(folder.Write("a.bmp", std::string_view("x")));
  EXPECT_FALSE(names.fBmpFileExisted);
  EXPECT_EQ(names.fOrgFilename, "plan.pdf");
}

TEST(EditFileNames, SetBmpFilename_Should_LeaveTheFolderEmpty_When_TheNameHasNone) {
  EditFileNames names;
  names.SetBmpFilename("a.bmp");
  EXPECT_EQ(names.fBmpDir, "");
  EXPECT_EQ(names.GetBmpFilename(), "a.bmp");
}

TEST(EditFileNames, Title_Should_HoldTheBareName_When_SourceAndTargetAreInOneFolder) {
  EditFileNames names;
  names.SetBmpFilename("Maps/a.bmp");
  EXPECT_EQ(names.Title("Edit bitmap"), "a.bmp - Edit bitmap");
  names.fBmpDir = "mAPS/";
  EXPECT_EQ(names.Title("Edit bitmap"), "a.bmp - Edit bitmap") << "case does not count";
}

TEST(EditFileNames, Title_Should_HoldTheFullName_When_AGraphicLiesElsewhere) {
  EditFileNames names;
  names.fOrgFilename = "photos/a.jpg";
  names.fBmpDir = "maps/";
  EXPECT_EQ(names.Title("C"), "photos/a.jpg - C");
}

TEST(EditFileNames, Title_Should_HoldTheBareName_When_APdfLiesElsewhere) {
  EditFileNames names;
  names.fOrgFilename = "plans/plan.pdf";
  names.fIsPDF = true;
  names.fBmpDir = "maps/";
  EXPECT_EQ(names.Title("C"), "plan.pdf - C");
}

}  // namespace
}  // namespace rasterkit::test
