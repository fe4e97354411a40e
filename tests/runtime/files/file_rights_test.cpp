// What a new file has from the one that it replaces.

#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <rasterkit/runtime/errors.h>

#include "tests/runtime/files/access_lists.h"
#include "tests/runtime/files/replaced_calls.h"
#include "tests/runtime/files/save_text.h"
#include "tests/support/child_process.h"
#include "tests/support/temp_folder.h"

namespace rasterkit::test {
namespace {

using detail::Calls;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr uid_t kColleague = 4711, kSaver = 4712;
constexpr gid_t kProject = 4720, kPrivate = 4721;

const std::vector<ListEntry> kList = {{kUserOwner, 6, kNoId},
                                      {kUser, 6, 4730},
                                      {kGroupOwner, 4, kNoId},
                                      {kMask, 6, kNoId},
                                      {kOther, 0, kNoId}};

struct stat StatusOf(const std::string& name) {
  struct stat status {};
  EXPECT_EQ(stat(name.c_str(), &status), 0);
  return status;
}

mode_t ModeOf(const std::string& name) {
  return StatusOf(name).st_mode & 07777;
}

std::string AttributeOf(const std::string& name, const char* attribute) {
  std::string value(1000, '\0');
  const ssize_t size = getxattr(name.c_str(), attribute, value.data(), value.size());
  value.resize(size > 0 ? static_cast<size_t>(size) : 0);
  return value;
}

int Deny(int error) {
  errno = error;
  return -1;
}

class FileRightsTest : public testing::Test {
 protected:
  std::string WriteOld(mode_t mode) const {
    std::string name = folder_.Write("a.png", "old");
    EXPECT_EQ(chmod(name.c_str(), mode), 0);
    return name;
  }
  /// Returns false if the file system has no lists.
  static bool GiveList(const std::string& name) { return SetList(name, kListAttribute, kList); }

  /// Saves as the saver, a member of these groups besides the private one. Returns the warnings,
  /// or the error.
  std::vector<std::string> SaveAsSaver(const std::string& name, std::vector<gid_t> groups) const {
    const std::string report = other_ / "report";
    EXPECT_EQ(chmod(other_.Path().c_str(), 0777), 0);
    EXPECT_EQ(RunInChild([&] {
                if (setgroups(groups.size(), groups.data()) != 0 || setgid(kPrivate) != 0 ||
                    setuid(kSaver) != 0) {
                  return 1;
                }
                std::string lines;
                try {
                  for (const std::string& line : SaveText(name, "new")) lines += line + "\n";
                } catch (const FileError& error) {
                  lines = error.what() + std::string("\n");
                }
                std::ofstream(report) << lines;
                return 0;
              }),
              0);
    std::vector<std::string> lines;
    std::ifstream in(report);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
  }

  const CallsGuard guard_;
  const TempFolder folder_, other_;
};

#define NEED_ROOT() \
  if (geteuid() != 0) GTEST_SKIP() << "only root can become other users"

TEST_F(FileRightsTest, Attributes_AreKept) {
  const std::string name = WriteOld(0600);
  if (setxattr(name.c_str(), "user.note", "text", 4, 0) != 0) GTEST_SKIP() << "no attributes";
  const std::string large(900, 'x');
  ASSERT_EQ(setxattr(name.c_str(), "user.large", large.data(), large.size(), 0), 0);
  ASSERT_EQ(setxattr(name.c_str(), "user.empty", "", 0, 0), 0);
  EXPECT_THAT(SaveText(name, "new"), IsEmpty());
  EXPECT_EQ(AttributeOf(name, "user.note"), "text");
  EXPECT_EQ(AttributeOf(name, "user.large"), large);
  EXPECT_EQ(getxattr(name.c_str(), "user.empty", nullptr, 0), 0);
}

TEST_F(FileRightsTest, AttributeThatCannotBeKept_IsAWarning) {
  const std::string name = WriteOld(0600);
  if (setxattr(name.c_str(), "user.note", "text", 4, 0) != 0) GTEST_SKIP() << "no attributes";
  Calls().setAttribute = [](int, const char*, const void*, size_t) { return Deny(ENOSPC); };
  EXPECT_THAT(SaveText(name, "new"), ElementsAre(HasSubstr("user.note")));
}

TEST_F(FileRightsTest, List_IsKeptWithItsMask) {
  const std::string name = WriteOld(0640);
  if (!GiveList(name)) GTEST_SKIP() << "no access control lists";
  EXPECT_THAT(SaveText(name, "new"), IsEmpty());
  EXPECT_EQ(ListOf(name), kList);
  EXPECT_EQ(ModeOf(name), 0660u) << "the group bits are the mask";
}

TEST_F(FileRightsTest, ListThatCannotBeKept_DoesNotBecomeARightOfTheGroup) {
  const std::string name = WriteOld(0640);
  if (!GiveList(name)) GTEST_SKIP() << "no access control lists";
  Calls().setAttribute = [](int, const char*, const void*, size_t) { return Deny(ENOTSUP); };
  EXPECT_THAT(SaveText(name, "new"), ElementsAre(HasSubstr("access control list")));
  EXPECT_FALSE(ListOf(name));
  EXPECT_EQ(ModeOf(name), 0640u) << "what the group could do, without the mask";
}

TEST_F(FileRightsTest, ListOfTheFolder_DoesNotReachAReplacedFile) {
  const std::string name = WriteOld(0640);
  std::vector<ListEntry> entries = kList;
  entries[0].rights = 7;
  if (!SetList(folder_.Path(), "system.posix_acl_default", entries)) {
    GTEST_SKIP() << "no access control lists";
  }
  EXPECT_THAT(SaveText(name, "new"), IsEmpty());
  EXPECT_FALSE(ListOf(name));
  EXPECT_EQ(ModeOf(name), 0640u);
  SaveText(folder_ / "b.png", "new");
  EXPECT_TRUE(ListOf(folder_ / "b.png")) << "a new file has it, as any new file";
}

TEST_F(FileRightsTest, ListOfTheFolderThatCannotBeRemoved_GetsAnEmptyMask) {
  const std::string name = WriteOld(0664);
  if (!SetList(folder_.Path(), "system.posix_acl_default", kList)) {
    GTEST_SKIP() << "no access control lists";
  }
  Calls().removeAttribute = [](int, const char*) { return Deny(EIO); };
  EXPECT_THAT(SaveText(name, "new"), ElementsAre(HasSubstr("of the folder")));
  EXPECT_EQ(ModeOf(name), 0604u);
}

TEST_F(FileRightsTest, RightsThatCannotBeNarrowed_AreRefused) {
  const std::string name = WriteOld(0664);
  if (!SetList(folder_.Path(), "system.posix_acl_default", kList)) {
    GTEST_SKIP() << "no access control lists";
  }
  Calls().removeAttribute = [](int, const char*) { return Deny(EIO); };
  Calls().openAt = [](int folder, const char* file, int flags, mode_t) {
    // As a file system that has its own idea of the mode.
    const mode_t mask = umask(0);
    const int handle = openat(folder, file, flags, 0666);
    umask(mask);
    return handle;
  };
  Calls().changeMode = [](int, mode_t) { return Deny(EPERM); };
  EXPECT_THROW(SaveText(name, "new"), FileError);
  EXPECT_EQ(ReadFile(name), "old");
  EXPECT_THAT(folder_.Names(), ElementsAre("a.png"));
}

TEST_F(FileRightsTest, ModeThatCannotBeSetAndIsNarrower_IsAWarning) {
  const std::string name = WriteOld(0664);
  Calls().changeMode = [](int, mode_t) { return Deny(EPERM); };
  EXPECT_THAT(SaveText(name, "new"), ElementsAre(HasSubstr("mode")));
  EXPECT_EQ(ModeOf(name), 0600u);
}

TEST_F(FileRightsTest, ListThatCannotBeRead_IsRefused) {
  const std::string name = WriteOld(0640);
  Calls().getAttribute = [](int, const char*, void*, size_t) -> ssize_t { return Deny(EIO); };
  EXPECT_THROW(SaveText(name, "new"), FileError);
}

TEST_F(FileRightsTest, SeveralNames_AreSeparatedWithAWarning) {
  const std::string name = WriteOld(0644);
  std::filesystem::create_hard_link(name, folder_ / "b.png");
  EXPECT_THAT(SaveText(name, "new"), ElementsAre(HasSubstr("2 names")));
  EXPECT_EQ(ReadFile(folder_ / "b.png"), "old");
}

TEST_F(FileRightsTest, Root_KeepsOwnerAndGroup) {
  NEED_ROOT();
  const std::string name = WriteOld(06755);
  ASSERT_EQ(chown(name.c_str(), kColleague, kProject), 0);
  ASSERT_EQ(chmod(name.c_str(), 06755), 0);
  EXPECT_THAT(SaveText(name, "new"), IsEmpty());
  EXPECT_EQ(StatusOf(name).st_uid, kColleague);
  EXPECT_EQ(StatusOf(name).st_gid, kProject);
  EXPECT_EQ(ModeOf(name) & 0777u, 0755u);
}

TEST_F(FileRightsTest, SharedFolder_KeepsTheGroupAndItsRights) {
  NEED_ROOT();
  const std::string name = WriteOld(0664);
  ASSERT_EQ(chown(name.c_str(), kColleague, kProject), 0);
  ASSERT_EQ(chown(folder_.Path().c_str(), kColleague, kProject), 0);
  ASSERT_EQ(chmod(folder_.Path().c_str(), 0775), 0);
  EXPECT_THAT(SaveAsSaver(name, {kProject}), ElementsAre(HasSubstr("belongs to the user")));
  EXPECT_EQ(ReadFile(name), "new");
  EXPECT_EQ(StatusOf(name).st_uid, kSaver);
  EXPECT_EQ(StatusOf(name).st_gid, kProject);
  EXPECT_EQ(ModeOf(name), 0664u) << "the group can still write";
}

TEST_F(FileRightsTest, GroupThatCannotBeKept_LosesWhatOthersCouldNotDo) {
  NEED_ROOT();
  const std::string name = WriteOld(0666);
  ASSERT_EQ(chmod(folder_.Path().c_str(), 0777), 0);
  ASSERT_EQ(chown(name.c_str(), kColleague, kProject), 0);
  EXPECT_THAT(SaveAsSaver(name, {}),
              ElementsAre(HasSubstr("belongs to the user"), HasSubstr("group")));
  EXPECT_EQ(StatusOf(name).st_gid, kPrivate);
  EXPECT_EQ(ModeOf(name), 0666u) << "group and others had the same rights";

  ASSERT_EQ(chown(name.c_str(), kSaver, kProject), 0);
  ASSERT_EQ(chmod(name.c_str(), 06775), 0);
  EXPECT_THAT(SaveAsSaver(name, {}), ElementsAre(HasSubstr("group")));
  EXPECT_EQ(ModeOf(name), 0755u) << "no write right for a group that had none, no special bits";
}

TEST_F(FileRightsTest, GroupThatCannotBeKept_NarrowsTheList) {
  NEED_ROOT();
  const std::string name = WriteOld(0640);
  if (!GiveList(name)) GTEST_SKIP() << "no access control lists";
  ASSERT_EQ(chmod(folder_.Path().c_str(), 0777), 0);
  ASSERT_EQ(chown(name.c_str(), kSaver, kProject), 0);
  EXPECT_THAT(SaveAsSaver(name, {}), ElementsAre(HasSubstr("group")));
  std::vector<ListEntry> narrowed = kList;
  narrowed[2].rights = 0;
  EXPECT_EQ(ListOf(name), narrowed) << "the named user keeps the rights, the new group has none";
}

TEST_F(FileRightsTest, TemporaryFile_IsPrivateUntilItHasTheOldRights) {
  const std::string name = WriteOld(0600);
  static mode_t created;
  created = 0;
  static detail::FileCalls before;
  before = guard_.Before();
  Calls().openAt = [](int folder, const char* file, int flags, mode_t mode) {
    if ((flags & (O_CREAT | (O_TMPFILE & ~O_DIRECTORY))) != 0) created = mode;
    return before.openAt(folder, file, flags, mode);
  };
  SaveText(name, "new");
  EXPECT_EQ(created, 0600u);
}

}  // namespace
}  // namespace rasterkit::test
