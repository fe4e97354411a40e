// When saves wait for the disk, and what they do if it fails.

#include <cerrno>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/magic.h>
#include <sys/stat.h>

#include <rasterkit/runtime/errors.h>

#include "tests/runtime/files/replaced_calls.h"
#include "tests/runtime/files/save_text.h"
#include "tests/support/temp_folder.h"

namespace rasterkit::test {
namespace {

using detail::Calls;

/// d: data of a file, f: everything of a folder, s: a file system, w: writes of a file that have
/// begun, n: a name is given.
std::string steps;
int dataError = 0, folderError = 0, systemError = 0, awaitError = 0;
bool canReadFolders = true;
/// The type of the file system; 0: unknown.
int64_t systemType = EXT4_SUPER_MAGIC;

int Step(char letter, int error) {
  steps += letter;
  errno = error;
  return error == 0 ? 0 : -1;
}

class FileSyncTest : public testing::Test {
 protected:
  FileSyncTest() {
    steps.clear();
    dataError = folderError = systemError = awaitError = 0;
    canReadFolders = true;
    systemType = EXT4_SUPER_MAGIC;
    base_ = guard_.Before();
    Calls().syncData = [](int) { return Step('d', dataError); };
    Calls().syncAll = [](int) { return Step('f', folderError); };
    Calls().syncFileSystem = [](int) { return Step('s', systemError); };
    Calls().awaitWrites = [](int) { return Step('w', awaitError); };
    Calls().statusOfFileSystem = [](int, struct statfs* status) {
      status->f_type = systemType;
      errno = EIO;
      return systemType == 0 ? -1 : 0;
    };
    Calls().renameAt = [](int folder, const char* oldName, const char* name, unsigned flags) {
      steps += 'n';
      return base_.renameAt(folder, oldName, name, flags);
    };
    Calls().linkAt = [](int oldFolder, const char* oldName, int folder, const char* name,
                        int flags) {
      if (!detail::TemporaryName::Matches(name)) steps += 'n';
      return base_.linkAt(oldFolder, oldName, folder, name, flags);
    };
    Calls().openAt = [](int folder, const char* name, int flags, mode_t mode) {
      const bool readsFolder = (flags & O_DIRECTORY) != 0 && (flags & (O_PATH | O_RDWR)) == 0;
      if (!readsFolder || canReadFolders) return base_.openAt(folder, name, flags, mode);
      errno = EACCES;
      return -1;
    };
  }

  /// Saves so many new files at once and returns their errors.
  std::vector<std::exception_ptr> SaveMany(size_t count) {
    std::vector<std::unique_ptr<AtomicFile>> files;
    for (size_t i = 0; i < count; ++i) {
      files.push_back(std::make_unique<AtomicFile>(folder_ / std::to_string(i)));
      WriteText(*files.back(), "new");
    }
    return AtomicFile::CommitAll(files);
  }

  inline static detail::FileCalls base_;
  const CallsGuard guard_;
  const TempFolder folder_;
  const std::string name_ = folder_ / "a.png";
};

TEST_F(FileSyncTest, Commit_WaitsForDataThenNamesThenWaitsForTheFolder) {
  SaveText(name_, "new");
  EXPECT_EQ(steps, "dnf");
  steps.clear();
  SaveText(name_, "newer");
  EXPECT_EQ(steps, "dnf") << "a file that is replaced";
}

TEST_F(FileSyncTest, WithoutSync_NothingIsWaitedFor) {
  SaveText(name_, "new", {IfExists::replace, false});
  SaveText(name_, "newer", {IfExists::replace, false});
  EXPECT_EQ(steps, "nn");
}

TEST_F(FileSyncTest, FailedData_LeavesTheOldFile) {
  folder_.Write("a.png", "old");
  dataError = EIO;
  AtomicFile file(name_);
  WriteText(file, "new");
  EXPECT_THROW(file.Commit(), FileError);
  EXPECT_EQ(ReadFile(name_), "old");
  dataError = 0;
  EXPECT_THROW(file.Commit(), FileError) << "a second sync says nothing about lost bytes";
  EXPECT_EQ(steps, "d");
}

TEST_F(FileSyncTest, FailedFolder_IsReported) {
  folderError = EIO;
  try {
    SaveText(name_, "new");
    ADD_FAILURE() << "not reported";
  } catch (const FileError& error) {
    EXPECT_EQ(error.File(), name_);
  }
}

TEST_F(FileSyncTest, FileSystemWithoutSync_IsNoError) {
  dataError = folderError = EINVAL;
  EXPECT_NO_THROW(SaveText(name_, "new"));
}

TEST_F(FileSyncTest, FolderThatCannotBeRead_IsSkipped) {
  canReadFolders = false;
  SaveText(name_, "new");
  EXPECT_EQ(steps, "dn");
}

TEST_F(FileSyncTest, ManyFiles_ShareOneWait) {
  for (const auto& error : SaveMany(9)) EXPECT_FALSE(error);
  EXPECT_EQ(steps, "s" + std::string(9, 'w') + std::string(9, 'n') + "f");
}

TEST_F(FileSyncTest, FileSystemsThatSyncAsAWhole_AreSyncedOnce) {
  for (const int64_t type :
       {int64_t{EXT4_SUPER_MAGIC}, int64_t{XFS_SUPER_MAGIC}, int64_t{BTRFS_SUPER_MAGIC},
        int64_t{F2FS_SUPER_MAGIC}, int64_t{TMPFS_MAGIC}}) {
    systemType = type;
    steps.clear();
    for (const auto& error : SaveMany(8)) EXPECT_FALSE(error);
    EXPECT_EQ(steps[0], 's') << type;
  }
}

TEST_F(FileSyncTest, OtherFileSystems_AreSyncedFileByFile) {
  constexpr int64_t kNetwork = 0xFF534D42, kUnknown = 0;
  for (const int64_t type : {int64_t{FUSE_SUPER_MAGIC}, int64_t{NFS_SUPER_MAGIC}, kNetwork,
                             int64_t{OVERLAYFS_SUPER_MAGIC}, kUnknown}) {
    systemType = type;
    steps.clear();
    for (const auto& error : SaveMany(9)) EXPECT_FALSE(error);
    EXPECT_EQ(steps, std::string(9, 'd') + std::string(9, 'n') + "f") << type;
  }
}

TEST_F(FileSyncTest, FewFiles_WaitForThemselvesAlone) {
  for (const auto& error : SaveMany(2)) EXPECT_FALSE(error);
  EXPECT_EQ(steps, "ddnnf");
}

TEST_F(FileSyncTest, FailedFileSystem_AsksEachFile) {
  systemError = EIO;
  for (const auto& error : SaveMany(9)) EXPECT_FALSE(error) << "another program's file failed";
  EXPECT_EQ(steps, "s" + std::string(9, 'd') + std::string(9, 'n') + "f");
  dataError = EIO;
  for (const auto& error : SaveMany(9)) EXPECT_TRUE(error);
}

TEST_F(FileSyncTest, FailedWrites_AreErrorsOfTheirFiles) {
  awaitError = ENOSPC;
  for (const auto& error : SaveMany(9)) EXPECT_TRUE(error);
  EXPECT_THAT(folder_.Names(), testing::IsEmpty());
}

TEST_F(FileSyncTest, WritesThatCannotBeWaitedFor_AreSynced) {
  awaitError = ENOSYS;
  for (const auto& error : SaveMany(8)) EXPECT_FALSE(error);
  EXPECT_EQ(steps, "swdwdwdwdwdwdwdwd" + std::string(8, 'n') + "f");
}

TEST_F(FileSyncTest, OneOfSeveral_CanFailAlone) {
  std::vector<std::unique_ptr<AtomicFile>> files;
  for (const char* name : {"a", "b", "c"}) {
    files.push_back(
        std::make_unique<AtomicFile>(folder_ / name, AtomicFileOptions{IfExists::fail, true}));
  }
  folder_.Write("b", "theirs");
  const auto errors = AtomicFile::CommitAll(files);
  EXPECT_FALSE(errors[0]);
  EXPECT_TRUE(errors[1]);
  EXPECT_FALSE(errors[2]);
  EXPECT_EQ(ReadFile(folder_ / "b"), "theirs");
}

TEST_F(FileSyncTest, Finish_ReportsWhatOnlyClosingReports) {
  static int closed;
  closed = 0;
  AtomicFile file(name_);
  Calls().close = [](int handle) {
    base_.close(handle);
    ++closed;
    errno = EDQUOT;
    return -1;
  };
  EXPECT_THROW(file.Finish(), FileError);
  EXPECT_EQ(closed, 1);
  EXPECT_THROW(file.Commit(), FileError);
}

}  // namespace
}  // namespace rasterkit::test
