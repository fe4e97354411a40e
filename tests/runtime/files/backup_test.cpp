// Backups of files that are replaced.

#include <cerrno>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <rasterkit/runtime/files/atomic_file.h>
#include <rasterkit/runtime/files/backup_names.h>
#include <rasterkit/runtime/files/set_aside.h>
#include <rasterkit/runtime/files/temporary_names.h>

#include "tests/runtime/files/replaced_calls.h"
#include "tests/support/temp_folder.h"

namespace rasterkit::test {
namespace {

using detail::Calls;
using testing::ElementsAre;
using testing::HasSubstr;

const AtomicFileOptions kWithBackup{IfExists::replace, false, true};

/// Saves `text` and returns the name of the backup.
std::string Save(const std::string& name, const std::string& text,
                 const AtomicFileOptions& options = kWithBackup) {
  AtomicFile file(name, options);
  file.Write({reinterpret_cast<const uint8_t*>(text.data()), text.size()});
  EXPECT_EQ(file.BackupName(), "");
  file.Commit();
  EXPECT_EQ(file.Warnings(), std::vector<std::string>());
  return file.BackupName();
}

struct stat StatusOf(const std::string& name) {
  struct stat status {};
  EXPECT_EQ(lstat(name.c_str(), &status), 0) << name;
  return status;
}

void HaveNoLinks(int error) {
  static int reported = 0;
  reported = error;
  Calls().linkAt = [](int, const char*, int, const char*, int) {
    errno = reported;
    return -1;
  };
}

TEST(Backup, BearsTheNextFreeNumber) {
  const TempFolder folder;
  const std::string name = folder.Write("a.png", "first");
  EXPECT_EQ(Save(name, "second"), name + "~");
  EXPECT_EQ(Save(name, "third"), name + "~2");
  folder.Write("a.png~4", "of somebody else");
  std::filesystem::create_symlink("nothing", folder / "a.png~3");
  EXPECT_EQ(Save(name, "fourth"), name + "~5") << "a dangling link is no free name";
  EXPECT_EQ(ReadFile(name), "fourth");
  EXPECT_EQ(ReadFile(name + "~"), "first");
  EXPECT_EQ(ReadFile(name + "~2"), "second");
  EXPECT_EQ(ReadFile(name + "~4"), "of somebody else");
  EXPECT_EQ(ReadFile(name + "~5"), "third");
  EXPECT_TRUE(std::filesystem::is_symlink(folder / "a.png~3"));
}

TEST(Backup, IsTheOldFileItself) {
  const TempFolder folder;
  const std::string name = folder.Write("a.png", "old");
  ASSERT_EQ(chmod(name.c_str(), 0640), 0);
  const struct stat old = StatusOf(name);
  Save(name, "new");
  const struct stat backup = StatusOf(name + "~");
  EXPECT_EQ(backup.st_ino, old.st_ino);
  EXPECT_EQ(backup.st_nlink, 1U);
  EXPECT_EQ(backup.st_mode, old.st_mode);
  EXPECT_EQ(backup.st_mtim.tv_nsec, old.st_mtim.tv_nsec);
  EXPECT_NE(StatusOf(name).st_ino, old.st_ino);
}

TEST(Backup, IsNotMadeOfANewFileNorWithoutTheOption) {
  const TempFolder folder;
  EXPECT_EQ(Save(folder / "a.png", "new"), "");
  EXPECT_EQ(Save(folder / "a.png", "newer", {IfExists::replace, false}), "");
  EXPECT_THAT(folder.Names(), ElementsAre("a.png"));
}

TEST(Backup, IsACopyWhereLinksCannotBeMade) {
  for (const int error : {EPERM, EOPNOTSUPP, EMLINK, ENOSYS, EXDEV}) {
    SCOPED_TRACE(error);
    const TempFolder folder;
    // More than one piece.
    const std::string old(300'000, 'o');
    const std::string name = folder.Write("a.png", old);
    ASSERT_EQ(chmod(name.c_str(), 0604), 0);
    const bool hasAttribute = setxattr(name.c_str(), "user.note", "text", 4, 0) == 0;
    const timespec times[2] = {{1'000'000, 5}, {2'000'000, 7}};
    ASSERT_EQ(utimensat(AT_FDCWD, name.c_str(), times, 0), 0);
    const struct stat before = StatusOf(name);
    const CallsGuard guard;
    // A nameless file needs a link too.
    const auto open = [](int dir, const char* path, int flags, mode_t mode) {
      constexpr int kNameless = O_TMPFILE & ~O_DIRECTORY;
      if ((flags & kNameless) != 0) {
        errno = EOPNOTSUPP;
        return -1;
      }
      return openat(dir, path, flags, mode);
    };
    Calls().openAt = open;
    HaveNoLinks(error);
    EXPECT_EQ(Save(name, "new"), name + "~");
    EXPECT_EQ(Save(name, "newer"), name + "~2");
    EXPECT_EQ(ReadFile(name), "newer");
    EXPECT_TRUE(ReadFile(name + "~") == old);
    EXPECT_EQ(ReadFile(name + "~2"), "new");
    const struct stat backup = StatusOf(name + "~");
    EXPECT_NE(backup.st_ino, before.st_ino);
    EXPECT_EQ(backup.st_mode, before.st_mode);
    EXPECT_EQ(backup.st_mtim.tv_sec, 2'000'000);
    EXPECT_EQ(backup.st_mtim.tv_nsec, before.st_mtim.tv_nsec);
    char value[4] = {};
    if (hasAttribute) {
      EXPECT_EQ(getxattr((name + "~").c_str(), "user.note", value, 4), 4);
    }
    EXPECT_THAT(folder.Names(), ElementsAre("a.png", "a.png~", "a.png~2"));
  }
}

TEST(Backup, OfACopyIsOnTheDiskBeforeItHasItsName) {
  const TempFolder folder;
  const std::string name = folder.Write("a.png", "old");
  static std::vector<std::string> steps;
  steps.clear();
  const CallsGuard guard;
  static detail::FileCalls base;
  base = Calls();
  HaveNoLinks(EPERM);
  Calls().openAt = [](int dir, const char* path, int flags, mode_t mode) {
    constexpr int kNameless = O_TMPFILE & ~O_DIRECTORY;
    if ((flags & kNameless) == 0) return base.openAt(dir, path, flags, mode);
    errno = EOPNOTSUPP;
    return -1;
  };
  Calls().syncData = [](int) {
    steps.emplace_back("sync data");
    return 0;
  };
  Calls().syncAll = [](int) {
    steps.emplace_back("sync folder");
    return 0;
  };
  Calls().renameAt = [](int dir, const char* from, const char* to, unsigned flags) {
    steps.emplace_back(to);
    return base.renameAt(dir, from, to, flags);
  };
  Save(name, "new", {IfExists::replace, true, true});
  EXPECT_THAT(steps, ElementsAre("sync data", "sync data", "a.png~", "sync folder", "a.png",
                                 "sync folder"));
}

TEST(Backup, IsOnTheDiskBeforeTheOldFileLosesItsName) {
  const TempFolder folder;
  const std::string name = folder.Write("a.png", "old");
  static std::vector<std::string> steps;
  steps.clear();
  const CallsGuard guard;
  static detail::FileCalls base;
  base = Calls();
  Calls().linkAt = [](int from, const char* old, int dir, const char* to, int flags) {
    if (!detail::TemporaryName::Matches(to)) steps.push_back(std::string(old) + " " + to);
    return base.linkAt(from, old, dir, to, flags);
  };
  Calls().syncData = [](int) {
    steps.emplace_back("sync data");
    return 0;
  };
  Calls().syncAll = [](int) {
    steps.emplace_back("sync folder");
    return 0;
  };
  Calls().renameAt = [](int dir, const char* from, const char* to, unsigned flags) {
    steps.emplace_back(to);
    return base.renameAt(dir, from, to, flags);
  };
  Save(name, "new", {IfExists::replace, true, true});
  EXPECT_THAT(steps,
              ElementsAre("sync data", "a.png a.png~", "sync folder", "a.png", "sync folder"));
}

TEST(Backup, LiesBesideTheFileThatALinkLeadsTo) {
  const TempFolder folder;
  std::filesystem::create_directories(folder / "real/deep");
  folder.Write("real/a.png", "old");
  std::filesystem::create_symlink("../a.png", folder / "real/deep/link");
  std::filesystem::create_symlink("real/deep/link", folder / "b.png");
  const std::string backup = Save(folder / "b.png", "new");
  EXPECT_TRUE(std::filesystem::equivalent(backup, folder / "real/a.png~")) << backup;
  EXPECT_EQ(ReadFile(folder / "real/a.png~"), "old");
  EXPECT_EQ(ReadFile(folder / "real/a.png"), "new");
  EXPECT_THAT(folder.Names(), ElementsAre("b.png", "real"));
  std::filesystem::create_symlink(folder / "real/a.png", folder / "c.png");
  EXPECT_EQ(Save(folder / "c.png", "newer"), folder / "real/a.png~2");
}

/// If the rename fails, the backup is of no use.
TEST(Backup, IsRemovedIfTheOldFileStays) {
  const TempFolder folder;
  const std::string name = folder.Write("a.png", "old");
  const CallsGuard guard;
  Calls().renameAt = [](int, const char*, const char*, unsigned) {
    errno = EIO;
    return -1;
  };
  AtomicFile file(name, kWithBackup);
  EXPECT_THROW(file.Commit(), FileError);
  EXPECT_EQ(file.BackupName(), "");
  EXPECT_THAT(folder.Names(), testing::Contains("a.png"));
  EXPECT_THAT(folder.Names(), testing::Not(testing::Contains("a.png~")));
  EXPECT_EQ(ReadFile(name), "old");
}

/// A network can do a rename and report an error.
TEST(Backup, StaysIfTheOldFileIsGone) {
  const TempFolder folder;
  const std::string name = folder.Write("a.png", "old");
  const CallsGuard guard;
  static detail::FileCalls base;
  base = Calls();
  Calls().renameAt = [](int dir, const char* from, const char* to, unsigned flags) {
    base.renameAt(dir, from, to, flags);
    errno = EIO;
    return -1;
  };
  AtomicFile file(name, kWithBackup);
  EXPECT_THROW(file.Commit(), FileError);
  EXPECT_EQ(ReadFile(name + "~"), "old");
  EXPECT_EQ(file.BackupName(), name + "~");
}

TEST(Backup, ThatCannotBeMadeIsAnError) {
  const TempFolder folder;
  const std::string name = folder.Write("a.png", "old");
  for (const int error : {EIO, ENOSPC, EACCES}) {
    const CallsGuard guard;
    static int reported = 0;
    reported = error;
    static detail::FileCalls base;
    base = Calls();
    Calls().linkAt = [](int from, const char* old, int dir, const char* to, int flags) {
      if (detail::TemporaryName::Matches(to)) return base.linkAt(from, old, dir, to, flags);
      errno = reported;
      return -1;
    };
    AtomicFile file(name, kWithBackup);
    try {
      file.Commit();
      ADD_FAILURE() << "no error";
    } catch (const BackupError& reason) {
      EXPECT_THAT(reason.Reason(), HasSubstr("no backup of the old file can be made"));
      EXPECT_EQ(reason.File(), name);
    }
    EXPECT_EQ(ReadFile(name), "old");
  }
  EXPECT_THAT(folder.Names(), ElementsAre("a.png"));
}

TEST(Backup, OfANameThatIsTooLongIsAnError) {
  const TempFolder folder;
  const std::string name = folder.Write(std::string(255, 'a'), "old");
  AtomicFile file(name, kWithBackup);
  EXPECT_THROW(file.Commit(), BackupError);
  EXPECT_EQ(ReadFile(name), "old");
}

/// Another program can create the file while the first one of that name is written.
TEST(Backup, IsMadeOfAFileThatAppearsMeanwhile) {
  const TempFolder folder;
  const std::string name = folder / "a.png";
  AtomicFile file(name, kWithBackup);
  folder.Write("a.png", "newcomer");
  file.Commit();
  EXPECT_EQ(file.BackupName(), name + "~");
  EXPECT_EQ(ReadFile(name), "");
  EXPECT_EQ(ReadFile(name + "~"), "newcomer");
}

TEST(Backup, IsNotNeededIfTheOldFileVanishesMeanwhile) {
  const TempFolder folder;
  const std::string name = folder.Write("a.png", "old");
  AtomicFile file(name, kWithBackup);
  std::filesystem::remove(name);
  file.Commit();
  EXPECT_EQ(file.BackupName(), "");
  EXPECT_THAT(folder.Names(), ElementsAre("a.png"));
}

TEST(Backup, TakesTheNumberThatItIsGiven) {
  const TempFolder folder;
  const std::string name = folder.Write("a.png", "old");
  folder.Write("a.png~3", "older");
  AtomicFile file(name, kWithBackup);
  file.SetBackupNumber(3);
  file.Commit();
  EXPECT_EQ(file.BackupName(), name + "~4");
}

TEST(Backup, NumberIsFreeForAllFiles) {
  const TempFolder folder;
  const std::vector<std::string> names = {folder / "a.png", folder / "a.pgw"};
  EXPECT_EQ(detail::FreeBackupNumber(names), 1);
  folder.Write("a.png~", "");
  EXPECT_EQ(detail::FreeBackupNumber(names), 2);
  folder.Write("a.pgw~2", "");
  EXPECT_EQ(detail::FreeBackupNumber(names), 3);
  EXPECT_EQ(detail::BackupNameOf("b/a.png", 1), "b/a.png~");
  EXPECT_EQ(detail::BackupNameOf("b/a.png", 12), "b/a.png~12");
}

/// Names of backups never look like those of temporary files, whatever is backed up.
TEST(Backup, IsNoStaleFile) {
  for (const int number : {1, 2, 12}) {
    EXPECT_FALSE(detail::TemporaryName::Matches(detail::BackupNameOf("a.png", number)));
    EXPECT_FALSE(detail::TemporaryName::Matches(detail::BackupNameOf(".rk1-1.tmp", number)));
  }
  EXPECT_TRUE(detail::TemporaryName::Matches(".rk1-1.tmp"));
}

TEST(SetAside, TakesABackupNumber) {
  const TempFolder folder;
  const std::string name = folder.Write("a.pgw", "1");
  folder.Write("a.pgw~2", "older");
  detail::SetAside first(name, false, 2);
  EXPECT_EQ(first.BackupName(), name + "~3");
  EXPECT_THAT(folder.Names(), ElementsAre("a.pgw~2", "a.pgw~3"));
  EXPECT_TRUE(first.PutBack());
  EXPECT_EQ(ReadFile(name), "1");
  const detail::SetAside second(name, false, 1);
  EXPECT_EQ(second.BackupName(), name + "~");
}

}  // namespace
}  // namespace rasterkit::test
