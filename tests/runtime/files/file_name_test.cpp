#include <filesystem>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <rasterkit/runtime/files/file_name.h>

#include "tests/support/temp_folder.h"

namespace rasterkit {
namespace {

TEST(ExtractFileExtTest, TakesTheLastDotOfTheNamePart) {
  EXPECT_EQ(ExtractFileExt("C:\\maps\\a.tiff"), ".tiff");
  EXPECT_EQ(ExtractFileExt("maps/a.tar.gz"), ".gz");
  EXPECT_EQ(ExtractFileExt("dir.d/name"), "");
  EXPECT_EQ(ExtractFileExt("dir.d\\name"), "");
  EXPECT_EQ(ExtractFileExt("noext"), "");
  EXPECT_EQ(ExtractFileExt("a."), ".");
  EXPECT_EQ(ExtractFileExt(".png"), ".png");
  EXPECT_EQ(ExtractFileExt(""), "");
}

TEST(ExtractFileNameTest, TakesThePartAfterTheLastSeparator) {
  EXPECT_EQ(ExtractFileName("C:\\maps\\a.tiff"), "a.tiff");
  EXPECT_EQ(ExtractFileName("/maps\\b/a.tiff"), "a.tiff");
  EXPECT_EQ(ExtractFileName("a.tiff"), "a.tiff");
  EXPECT_EQ(ExtractFileName("maps/"), "");
}

TEST(ExtractFilePathTest, KeepsTheSeparator) {
  EXPECT_EQ(ExtractFilePath("maps/a.bmp"), "maps/");
  EXPECT_EQ(ExtractFilePath("C:\\maps\\a.bmp"), "C:\\maps\\");
  EXPECT_EQ(ExtractFilePath("a.bmp"), "");
  EXPECT_EQ(ExtractFilePath("/a.bmp"), "/");
}

TEST(ChangeFileExtTest, ReplacesOrAppends) {
  EXPECT_EQ(ChangeFileExt("C:\\maps\\a.tiff", ".png"), "C:\\maps\\a.png");
  EXPECT_EQ(ChangeFileExt("dir.d/name", ".png"), "dir.d/name.png");
  EXPECT_EQ(ChangeFileExt("a.tar.gz", ".bmp"), "a.tar.bmp");
  EXPECT_EQ(ChangeFileExt("a.bmp", ""), "a");
  EXPECT_EQ(ChangeFileExt("", ".bmp"), ".bmp");
}

TEST(IsPdfNameTest, GoesByTheExtensionWhateverItsCase) {
  EXPECT_TRUE(IsPdfName("a.pdf"));
  EXPECT_TRUE(IsPdfName("dir.x/a.b.PDF"));
  EXPECT_FALSE(IsPdfName("a.pdf.png"));
  EXPECT_FALSE(IsPdfName("pdf"));
  EXPECT_FALSE(IsPdfName("dir.pdf/a"));
  EXPECT_FALSE(IsPdfName(""));
}

TEST(ToPathTest, TakesUtf8) {
  EXPECT_TRUE(ToPath("Pläne/Übersicht.bmp").filename().u8string() == u8"Übersicht.bmp");
  EXPECT_EQ(ToPath("a\xFF").string(), "a\xFF") << "names of the system need not be UTF-8";
}

TEST(FileExistsTest, IsTrueForWhatIsNoFolder) {
  const test::TempFolder folder;
  EXPECT_TRUE(FileExists(folder.Write("a.bmp", "x")));
  EXPECT_FALSE(FileExists(folder / "b.bmp"));
  EXPECT_FALSE(FileExists(folder.Path().string()));
  EXPECT_FALSE(FileExists(""));
  ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
  EXPECT_TRUE(FileExists(folder / "pipe"));
}

TEST(FileExistsTest, FollowsLinks) {
  const test::TempFolder folder;
  folder.Write("a.bmp", "x");
  std::filesystem::create_symlink("a.bmp", folder / "good");
  std::filesystem::create_symlink("missing", folder / "dangling");
  EXPECT_TRUE(FileExists(folder / "good"));
  EXPECT_FALSE(FileExists(folder / "dangling"));
}

}  // namespace
}  // namespace rasterkit
