#include <filesystem>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/file_facts.h>

#include "tests/support/temp_folder.h"

namespace rasterkit {
namespace {

using test::TempFolder;

TEST(FactsOfFile, Should_TellStatesOfAFileApart) {
  const TempFolder folder;
  const std::string file = folder.Write("a.txt", "one");
  const FileFacts first = FactsOfFile(file);
  EXPECT_TRUE(first.exists);
  EXPECT_EQ(first.bytes, 3u);
  EXPECT_EQ(first, FactsOfFile(file));
  std::filesystem::create_symlink("a.txt", folder / "link");
  EXPECT_EQ(first, FactsOfFile(folder / "link"));
  folder.Write("a.txt", "four");
  EXPECT_TRUE(first.IsSameFile(FactsOfFile(file)));
  EXPECT_FALSE(first == FactsOfFile(file));
  const std::string other = folder.Write("b.txt", "one");
  std::filesystem::rename(other, file);
  EXPECT_FALSE(first.IsSameFile(FactsOfFile(file)));
}

TEST(FactsOfFile, Should_KnowNothingOfAMissingFile) {
  const TempFolder folder;
  for (const std::string& name : {folder / "missing", folder / "no/folder", std::string(),
                                  std::string("/\0etc/passwd", 12)}) {
    EXPECT_EQ(FactsOfFile(name), FileFacts()) << name;
    EXPECT_FALSE(FactsOfFile(name).IsSameFile(FactsOfFile(name)));
  }
}

TEST(RequireSavable, Should_LeaveNothing) {
  const TempFolder folder;
  const std::string file = folder.Write("a.txt", "one");
  const FileFacts before = FactsOfFile(file);
  RequireSavable(file);
  RequireSavable(folder / "new.txt");
  EXPECT_EQ(FactsOfFile(file), before);
  EXPECT_EQ(folder.Names(), std::vector<std::string>{"a.txt"});
}

TEST(RequireSavable, Should_ThrowForFoldersAndMissingOnes) {
  const TempFolder folder;
  EXPECT_THROW(RequireSavable(folder / "missing/a.txt"), FileError);
  EXPECT_THROW(RequireSavable(folder.Path().string()), FileError);
  EXPECT_THROW(RequireSavable(""), FileError);
}

/// Opening it would wait for a reader.
TEST(RequireSavable, Should_NotWaitForAPipe) {
  const TempFolder folder;
  ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
  RequireSavable(folder / "pipe");
}

TEST(FullName, Should_BeginAtTheRoot) {
  const std::string here = std::filesystem::current_path().string();
  EXPECT_EQ(FullName("-a.tif"), here + "/-a.tif");
  EXPECT_EQ(FullName("./b/../a.tif"), here + "/a.tif");
  EXPECT_EQ(FullName("/a//b.tif"), "/a/b.tif");
}

}  // namespace
}  // namespace rasterkit
