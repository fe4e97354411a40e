// Temporary files that have a name: how they are found, kept and removed.

#include <csignal>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/temporary_names.h>

#include "tests/runtime/files/replaced_calls.h"
#include "tests/runtime/files/save_text.h"
#include "tests/support/child_process.h"
#include "tests/support/temp_folder.h"

namespace rasterkit::test {
namespace {

using detail::Calls;
using detail::TemporaryName;
using testing::ElementsAre;

class TemporaryNamesTest : public testing::Test {
 protected:
  TemporaryNamesTest() {
    base_ = guard_.Before();
    Calls().openAt = [](int folder, const char* name, int flags, mode_t mode) {
      if ((flags & O_TMPFILE & ~O_DIRECTORY) == 0) return base_.openAt(folder, name, flags, mode);
      errno = EOPNOTSUPP;
      return -1;
    };
  }

  /// A file whose last change is two days ago.
  std::string WriteOld(const std::string& name) const {
    std::string file = folder_.Write(name, "left");
    MakeOld(file);
    return file;
  }
  static void MakeOld(const std::string& file) {
    const timespec before = {time(nullptr) - 2 * 24 * 60 * 60, 0};
    const timespec times[] = {before, before};
    EXPECT_EQ(utimensat(AT_FDCWD, file.c_str(), times, AT_SYMLINK_NOFOLLOW), 0);
  }

  inline static detail::FileCalls base_;
  const CallsGuard guard_;
  const TempFolder folder_;
};

TEST_F(TemporaryNamesTest, Names_AreRecognized) {
  for (const char* name : {".rk1-0.tmp", ".rk4711-12.tmp"}) {
    EXPECT_TRUE(TemporaryName::Matches(name)) << name;
  }
  for (const char* name : {".rk.tmp", ".rk-1.tmp", ".rk1-.tmp", ".rk1.tmp", "rk1-1.tmp",
                           ".rk1-1.tmp2", ".rk1-1-1.tmp", ".rka-1.tmp", ".rk1-b.tmp", ""}) {
    EXPECT_FALSE(TemporaryName::Matches(name)) << name;
  }
  EXPECT_TRUE(TemporaryName::Matches(TemporaryName(AT_FDCWD).Text()));
}

TEST_F(TemporaryNamesTest, StaleFiles_AreRemovedWithTheFirstSave) {
  WriteOld(".rk1-1.tmp");
  WriteOld(".rk1-2.tmp");
  WriteOld(".rkept.tmp");
  folder_.Write(".rk1-3.tmp", "new");
  std::filesystem::create_directory(folder_ / ".rk1-4.tmp");
  MakeOld(folder_ / ".rk1-4.tmp");
  std::filesystem::create_symlink(folder_ / ".rkept.tmp", folder_ / ".rk1-5.tmp");
  MakeOld(folder_ / ".rk1-5.tmp");
  const std::string locked = WriteOld(".rk1-6.tmp");
  const int handle = open(locked.c_str(), O_RDONLY);
  ASSERT_EQ(flock(handle, LOCK_SH), 0);
  SaveText(folder_ / "a.png", "new");
  close(handle);
  EXPECT_THAT(folder_.Names(), ElementsAre(".rk1-3.tmp", ".rk1-4.tmp", ".rk1-5.tmp", ".rk1-6.tmp",
                                           ".rkept.tmp", "a.png"));
  WriteOld(".rk1-7.tmp");
  SaveText(folder_ / "a.png", "newer");
  EXPECT_TRUE(std::filesystem::exists(folder_ / ".rk1-7.tmp")) << "once per folder and process";
}

TEST_F(TemporaryNamesTest, StaleFilesOfOthers_Stay) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can make a file of another user";
  const std::string theirs = WriteOld(".rk1-1.tmp");
  ASSERT_EQ(chown(theirs.c_str(), 4711, 4711), 0);
  SaveText(folder_ / "a.png", "new");
  EXPECT_TRUE(std::filesystem::exists(theirs));
}

TEST_F(TemporaryNamesTest, FileInUse_IsLocked) {
  AtomicFile file(folder_ / "a.png");
  ASSERT_EQ(folder_.Names().size(), 1u);
  const std::string temporary = folder_ / folder_.Names()[0];
  const int handle = open(temporary.c_str(), O_RDONLY);
  EXPECT_NE(flock(handle, LOCK_EX | LOCK_NB), 0);
  close(handle);
  WriteText(file, "new");
  file.Commit();
  EXPECT_THAT(folder_.Names(), ElementsAre("a.png"));
}

TEST_F(TemporaryNamesTest, RemoveTemporaryFiles_LeavesNone) {
  folder_.Write("b.png", "old");
  const int code = RunInChild([&] {
    AtomicFile first(folder_ / "a.png");
    AtomicFile second(folder_ / "b.png");
    WriteText(first, "new");
    if (folder_.Names().size() != 3) return 1;
    std::signal(SIGINT, [](int) {
      RemoveTemporaryFiles();
      _exit(3);
    });
    std::raise(SIGINT);
    return 2;
  });
  EXPECT_EQ(code, 3);
  EXPECT_THAT(folder_.Names(), ElementsAre("b.png"));
  EXPECT_EQ(ReadFile(folder_ / "b.png"), "old");
}

TEST_F(TemporaryNamesTest, RemoveTemporaryFiles_KnowsOnlyThoseInUse) {
  const int code = RunInChild([&] {
    { const AtomicFile abandoned(folder_ / "a.png"); }
    SaveText(folder_ / "b.png", "new");
    RemoveTemporaryFiles();
    return 0;
  });
  EXPECT_EQ(code, 0);
  EXPECT_THAT(folder_.Names(), ElementsAre("b.png"));
}

TEST_F(TemporaryNamesTest, RemoveTemporaryFiles_KnowsManyFiles) {
  const int code = RunInChild([&] {
    std::vector<std::unique_ptr<AtomicFile>> files;
    for (int i = 0; i < 300; ++i) {
      files.push_back(std::make_unique<AtomicFile>(folder_ / std::to_string(i)));
    }
    if (folder_.Names().size() != 300) return 1;
    RemoveTemporaryFiles();
    return folder_.Names().empty() ? 0 : 2;
  });
  EXPECT_EQ(code, 0);
}

/// Saves in a child process; returns 0 if the save fails and leaves nothing.
int FailInChild(const TempFolder& folder) {
  return RunInChild([&] {
    try {
      SaveText(folder / "a.png", "new");
    } catch (const FileError&) {
      return folder.Names().empty() ? 0 : 1;
    }
    return 2;
  });
}

TEST_F(TemporaryNamesTest, FileMadeAfterTheRemoval_IsRemoved) {
  static decltype(detail::FileCalls::openAt) open;
  open = Calls().openAt;
  Calls().openAt = [](int folder, const char* name, int flags, mode_t mode) {
    if ((flags & O_CREAT) != 0) RemoveTemporaryFiles();
    return open(folder, name, flags, mode);
  };
  EXPECT_EQ(FailInChild(folder_), 0);
}

TEST_F(TemporaryNamesTest, LinkMadeAfterTheRemoval_IsRemoved) {
  Calls().openAt = base_.openAt;
  Calls().linkAt = [](int oldFolder, const char* oldName, int folder, const char* name, int flags) {
    if (TemporaryName::Matches(name)) RemoveTemporaryFiles();
    return base_.linkAt(oldFolder, oldName, folder, name, flags);
  };
  folder_.Write("a.png", "old");
  const int code = RunInChild([&] {
    try {
      SaveText(folder_ / "a.png", "new");
    } catch (const FileError&) {
      return 0;
    }
    return 1;
  });
  EXPECT_EQ(code, 0);
  EXPECT_THAT(folder_.Names(), ElementsAre("a.png"));
  EXPECT_EQ(ReadFile(folder_ / "a.png"), "old");
}

TEST_F(TemporaryNamesTest, SaveAfterTheRemoval_MakesNoFile) {
  static int made;
  made = 0;
  const int code = RunInChild([&] {
    RemoveTemporaryFiles();
    static decltype(detail::FileCalls::openAt) open;
    open = Calls().openAt;
    Calls().openAt = [](int folder, const char* name, int flags, mode_t mode) {
      if ((flags & O_CREAT) != 0) ++made;
      return open(folder, name, flags, mode);
    };
    try {
      SaveText(folder_ / "a.png", "new");
    } catch (const FileError&) {
      return made;
    }
    return 100;
  });
  EXPECT_EQ(code, 0);
}

TEST_F(TemporaryNamesTest, SignalAfterTheNameIsClaimed_LeavesNoEmptyFile) {
  Calls().linkAt = [](int, const char*, int, const char*, int) {
    errno = EPERM;
    return -1;
  };
  Calls().renameAt = [](int folder, const char* oldName, const char* name, unsigned flags) {
    if (flags != 0) {
      errno = EINVAL;
      return -1;
    }
    std::raise(SIGINT);
    return base_.renameAt(folder, oldName, name, flags);
  };
  const int code = RunInChild([&] {
    std::signal(SIGINT, [](int) {
      RemoveTemporaryFiles();
      _exit(3);
    });
    SaveText(folder_ / "a.png", "new", {IfExists::fail, true});
    return 2;
  });
  EXPECT_EQ(code, 3);
  EXPECT_THAT(folder_.Names(), ElementsAre("a.png"));
  EXPECT_EQ(ReadFile(folder_ / "a.png"), "new");
}

}  // namespace
}  // namespace rasterkit::test
