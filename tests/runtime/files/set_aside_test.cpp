#include <cerrno>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/set_aside.h>
#include <rasterkit/runtime/files/small_file.h>

#include "tests/runtime/files/replaced_calls.h"
#include "tests/support/temp_folder.h"

namespace rasterkit::test {
namespace {

using detail::FileIdentity;
using detail::ReadSmallFile;
using detail::SetAside;
using testing::ElementsAre;

TEST(SmallFile, IsReadUpToTheLimit) {
  const TempFolder folder;
  const std::string name = folder.Write("a", "123456");
  EXPECT_EQ(ReadSmallFile(name, 6)->bytes, "123456");
  EXPECT_FALSE(ReadSmallFile(name, 6)->isCut);
  EXPECT_EQ(ReadSmallFile(name, 5)->bytes, "12345");
  EXPECT_TRUE(ReadSmallFile(name, 5)->isCut);
  EXPECT_EQ(ReadSmallFile(folder.Write("empty", ""), 5)->bytes, "");
}

TEST(SmallFile, IsARegularFileOrALinkToOne) {
  const TempFolder folder;
  folder.Write("a", "1");
  std::filesystem::create_symlink("a", folder / "link");
  std::filesystem::create_symlink("absent", folder / "dangling");
  std::filesystem::create_directory(folder / "folder");
  ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
  EXPECT_EQ(ReadSmallFile(folder / "link", 9)->bytes, "1");
  for (const char* name : {"absent", "dangling", "folder", "pipe", "a/b"}) {
    EXPECT_FALSE(ReadSmallFile(folder / name, 9)) << name;
    EXPECT_FALSE(detail::IsRegularFile(folder / name)) << name;
  }
  EXPECT_FALSE(ReadSmallFile("/dev/zero", 9));
  EXPECT_FALSE(ReadSmallFile(std::string("a\0b", 3), 9));
}

TEST(SmallFile, ThatCannotBeReadIsAnError) {
  const TempFolder folder;
  const std::string name = folder.Write("a", "1");
  const CallsGuard guard;
  detail::Calls().openAt = [](int, const char*, int, mode_t) {
    errno = EACCES;
    return -1;
  };
  EXPECT_THROW(ReadSmallFile(name, 9), FileError);
}

TEST(SetAside, GivesABackupNameAndTheOldOneBack) {
  const TempFolder folder;
  const std::string name = folder.Write("a", "1");
  SetAside file(name, true);
  EXPECT_EQ(file.BackupName(), name + ".bak");
  EXPECT_THAT(folder.Names(), ElementsAre("a.bak"));
  EXPECT_TRUE(file.PutBack());
  EXPECT_THAT(folder.Names(), ElementsAre("a"));
}

TEST(SetAside, SparesFilesOfThatName) {
  const TempFolder folder;
  folder.Write("a.bak", "mine");
  SetAside file(folder.Write("a", "1"), false);
  EXPECT_THAT(folder.Names(), ElementsAre("a.bak", "a.bak1"));
  folder.Write("a", "newcomer");
  EXPECT_FALSE(file.PutBack());
  EXPECT_EQ(ReadFile(folder / "a"), "newcomer");
  EXPECT_TRUE(file.Remove());
  EXPECT_TRUE(file.Remove()) << "it is gone";
  EXPECT_THAT(folder.Names(), ElementsAre("a", "a.bak"));
}

TEST(SetAside, SparesThemWithoutACarefulRenameToo) {
  const CallsGuard guard;
  static auto rename = detail::Calls().renameAt;
  rename = detail::Calls().renameAt;
  detail::Calls().renameAt = [](int at, const char* from, const char* to, unsigned flags) {
    if (flags == 0) return rename(at, from, to, flags);
    errno = EINVAL;
    return -1;
  };
  const TempFolder folder;
  folder.Write("a.bak", "mine");
  const SetAside file(folder.Write("a", "1"), false);
  EXPECT_EQ(ReadFile(folder / "a.bak"), "mine");
  EXPECT_EQ(ReadFile(folder / "a.bak1"), "1");
}

TEST(SetAside, RenamesALinkItself) {
  const TempFolder folder;
  folder.Write("target", "1");
  std::filesystem::create_symlink("target", folder / "a");
  SetAside file(folder / "a", false);
  EXPECT_TRUE(std::filesystem::is_symlink(folder / "a.bak"));
  EXPECT_TRUE(file.Remove());
  EXPECT_EQ(ReadFile(folder / "target"), "1");
}

TEST(SetAside, FailsForAMissingFile) {
  const TempFolder folder;
  EXPECT_THROW(SetAside(folder / "absent", false), FileError);
  EXPECT_THROW(SetAside(folder / "absent/a", false), FileError);
}

TEST(FileIdentity, SeesAnotherFileOfTheName) {
  const TempFolder folder;
  const std::string name = folder.Write("a", "1");
  const FileIdentity before(name);
  EXPECT_TRUE(before == FileIdentity(name));
  folder.Write("b", "2");
  std::filesystem::rename(folder / "b", name);
  EXPECT_FALSE(before == FileIdentity(name));
  std::filesystem::remove(name);
  EXPECT_FALSE(FileIdentity(name).Exists());
  EXPECT_FALSE(before == FileIdentity(name));
}

TEST(FileIdentity, ThatTheSystemDoesNotTellIsAnError) {
  const CallsGuard guard;
  detail::Calls().statusAt = [](int, const char*, struct stat*, int) {
    errno = EIO;
    return -1;
  };
  EXPECT_THROW(FileIdentity("a"), FileError);
}

}  // namespace
}  // namespace rasterkit::test
