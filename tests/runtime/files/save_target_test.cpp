// Where a save goes: links, folders, and errors on the way.

#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <rasterkit/runtime/errors.h>

#include "tests/runtime/files/replaced_calls.h"
#include "tests/runtime/files/save_text.h"
#include "tests/support/child_process.h"
#include "tests/support/temp_folder.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class SaveTargetTest : public testing::Test {
 protected:
  /// A folder like /tmp of root, with a link of another user.
  void MakeSharedFolder(uid_t linkOwner) {
    ASSERT_EQ(chmod(folder_.Path().c_str(), 01777), 0);
    std::filesystem::create_symlink(other_ / "target", folder_ / "link");
    ASSERT_EQ(lchown((folder_ / "link").c_str(), linkOwner, linkOwner), 0);
  }

  const TempFolder folder_, other_;
};

TEST_F(SaveTargetTest, ErrorOfStat_IsAnError) {
  for (const int error : {EIO, EACCES, ELOOP, ENOTDIR}) {
    const CallsGuard guard;
    static int failure;
    failure = error;
    detail::Calls().statusAt = [](int, const char*, struct stat*, int) {
      errno = failure;
      return -1;
    };
    EXPECT_THROW(SaveText(folder_ / "a.png", "new"), FileError) << error;
  }
  EXPECT_THAT(folder_.Names(), testing::IsEmpty());
}

TEST_F(SaveTargetTest, LinkOfAStrangerInASharedFolder_IsNotFollowed) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can make a link of another user";
  constexpr uid_t kStranger = 4711;
  MakeSharedFolder(kStranger);
  for (const bool exists : {false, true}) {
    if (exists) other_.Write("target", "old");
    try {
      SaveText(folder_ / "link", "new");
      ADD_FAILURE() << "followed";
    } catch (const FileError& error) {
      EXPECT_THAT(error.Reason(), HasSubstr("Permission denied"));
    }
  }
  EXPECT_EQ(ReadFile(other_ / "target"), "old");
}

TEST_F(SaveTargetTest, OwnLinkInASharedFolder_IsFollowed) {
  MakeSharedFolder(geteuid());
  SaveText(folder_ / "link", "new");
  EXPECT_EQ(ReadFile(other_ / "target"), "new");
}

TEST_F(SaveTargetTest, LinkOfTheFoldersOwner_IsFollowed) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give a folder away";
  constexpr uid_t kStranger = 4711;
  MakeSharedFolder(kStranger);
  ASSERT_EQ(chown(folder_.Path().c_str(), kStranger, kStranger), 0);
  SaveText(folder_ / "link", "new");
  EXPECT_EQ(ReadFile(other_ / "target"), "new");
}

TEST_F(SaveTargetTest, LinkOfAStrangerInAFolderOfOnesOwn_IsFollowed) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can make a link of another user";
  MakeSharedFolder(4711);
  ASSERT_EQ(chmod(folder_.Path().c_str(), 0755), 0);
  SaveText(folder_ / "link", "new");
  EXPECT_EQ(ReadFile(other_ / "target"), "new");
}

TEST_F(SaveTargetTest, RelativeLink_StartsFromItsFolder) {
  std::filesystem::create_directories(folder_ / "a/b");
  std::filesystem::create_symlink("../c.png", folder_ / "a/b/link");
  SaveText(folder_ / "a/b/link", "new");
  EXPECT_EQ(ReadFile(folder_ / "a/c.png"), "new");
}

/// The open file that /dev/stdout leads to.
TEST_F(SaveTargetTest, LinkToAnOpenFile_IsWrittenDirectly) {
  const std::string file = folder_ / "redirected";
  const int code = RunInChild([&] {
    if (freopen(file.c_str(), "w", stdout) == nullptr) return 1;
    if (write(STDOUT_FILENO, "before ", 7) != 7) return 1;
    SaveText("/proc/self/fd/1", "new");
    try {
      SaveText("/proc/self/fd/1", "more", {IfExists::fail, true});
      return 2;
    } catch (const FileExistsError&) {
    }
    return 0;
  });
  EXPECT_EQ(code, 0);
  EXPECT_EQ(ReadFile(file), "before new");
  EXPECT_THAT(folder_.Names(), ElementsAre("redirected"));
}

}  // namespace
}  // namespace rasterkit::test
