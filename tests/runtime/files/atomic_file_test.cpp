#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/atomic_file.h>

#include "tests/support/child_process.h"
#include "tests/support/temp_folder.h"

namespace rasterkit {
namespace {

using test::LimitFileSize;
using test::ReadFile;
using test::RunInChild;
using testing::ElementsAre;
using testing::IsEmpty;

void Write(AtomicFile& file, std::string_view text) {
  file.Write({reinterpret_cast<const uint8_t*>(text.data()), text.size()});
}

void Save(const std::string& name, std::string_view text) {
  AtomicFile file(name);
  Write(file, text);
  file.Commit();
}

mode_t ModeOf(const std::string& name) {
  struct stat status {};
  EXPECT_EQ(stat(name.c_str(), &status), 0);
  return status.st_mode & 07777;
}

bool HasNamelessFiles(const std::filesystem::path& folder) {
  const int handle = open(folder.c_str(), O_RDWR | O_TMPFILE, 0600);
  return handle >= 0 && close(handle) == 0;
}

/// What a child ends with where system calls cannot be filtered, as in an emulator of another
/// processor.
constexpr int kCannotFilter = 78;

/// As a file system that knows no nameless files: the system refuses to open one.
void RefuseNamelessFiles() {
  constexpr uint32_t kNameless = O_TMPFILE & ~O_DIRECTORY;
  sock_filter filter[] = {
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_openat, 0, 3),
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args[2])),
      BPF_JUMP(BPF_JMP | BPF_JSET | BPF_K, kNameless, 0, 1),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EOPNOTSUPP),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
  };
  sock_fprog program{static_cast<unsigned short>(std::size(filter)), filter};
  if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
      prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0) {
    _exit(kCannotFilter);
  }
}

/// Becomes a user who may do only what the mode bits allow.
void BecomeNobody() {
  if (geteuid() == 0 && setuid(65534) != 0) _exit(77);
}

class AtomicFileTest : public testing::Test {
 protected:
  const test::TempFolder folder_;
};

TEST_F(AtomicFileTest, NewFile_AppearsWithTheCommit) {
  AtomicFile file(folder_ / "a.bmp");
  Write(file, "hello");
  EXPECT_FALSE(std::filesystem::exists(folder_ / "a.bmp"));
  file.Commit();
  EXPECT_EQ(ReadFile(folder_ / "a.bmp"), "hello");
  EXPECT_THAT(folder_.Names(), ElementsAre("a.bmp"));
}

TEST_F(AtomicFileTest, NewFile_HasTheUsualMode) {
  const mode_t mask = umask(027);
  Save(folder_ / "a.bmp", "x");
  umask(mask);
  EXPECT_EQ(ModeOf(folder_ / "a.bmp"), 0640u);
}

TEST_F(AtomicFileTest, OldFile_IsReplacedAndKeepsItsMode) {
  const std::string name = folder_.Write("a.bmp", "old");
  ASSERT_EQ(chmod(name.c_str(), 0604), 0);
  Save(name, "new");
  EXPECT_EQ(ReadFile(name), "new");
  EXPECT_EQ(ModeOf(name), 0604u);
}

TEST_F(AtomicFileTest, WithoutCommit_TheOldFileStaysAndNothingIsLeft) {
  const std::string name = folder_.Write("a.bmp", "old");
  {
    AtomicFile file(name);
    Write(file, std::string(1000000, 'n'));
  }
  EXPECT_EQ(ReadFile(name), "old");
  EXPECT_THAT(folder_.Names(), ElementsAre("a.bmp"));
}

TEST_F(AtomicFileTest, FullDisk_ThrowsAndLeavesTheOldFileWhole) {
  const std::string name = folder_.Write("a.bmp", "old");
  for (const size_t size : {size_t{5000}, size_t{1000000}}) {
    const int exitCode = RunInChild([&] {
      LimitFileSize(4096);
      try {
        Save(name, std::string(size, 'n'));
      } catch (const FileError& error) {
        return error.File() == name ? 3 : 4;
      }
      return 0;
    });
    EXPECT_EQ(exitCode, 3);
    EXPECT_EQ(ReadFile(name), "old");
    EXPECT_THAT(folder_.Names(), ElementsAre("a.bmp"));
  }
}

TEST_F(AtomicFileTest, FullDisk_LeavesNoNewFile) {
  const int exitCode = RunInChild([&] {
    LimitFileSize(4096);
    try {
      Save(folder_ / "new.bmp", std::string(5000, 'n'));
    } catch (const FileError&) {
      return 3;
    }
    return 0;
  });
  EXPECT_EQ(exitCode, 3);
  EXPECT_THAT(folder_.Names(), IsEmpty());
}

TEST_F(AtomicFileTest, KilledProcess_LeavesTheOldFileWhole) {
  const std::string name = folder_.Write("a.bmp", "old");
  RunInChild([&] {
    AtomicFile file(name);
    Write(file, std::string(1000000, 'n'));
    std::raise(SIGKILL);
    return 0;
  });
  EXPECT_EQ(ReadFile(name), "old");
  if (HasNamelessFiles(folder_.Path())) {
    EXPECT_THAT(folder_.Names(), ElementsAre("a.bmp"));
  }
}

TEST_F(AtomicFileTest, SymbolicLink_StaysAndItsTargetIsReplaced) {
  std::filesystem::create_directory(folder_ / "deep");
  folder_.Write("deep/target.bmp", "old");
  std::filesystem::create_symlink("deep/target.bmp", folder_ / "link1");
  std::filesystem::create_symlink(folder_ / "link1", folder_ / "link2");
  Save(folder_ / "link2", "new");
  EXPECT_TRUE(std::filesystem::is_symlink(folder_ / "link1"));
  EXPECT_TRUE(std::filesystem::is_symlink(folder_ / "link2"));
  EXPECT_EQ(ReadFile(folder_ / "deep/target.bmp"), "new");
  EXPECT_THAT(folder_.Names(), ElementsAre("deep", "link1", "link2"));
}

TEST_F(AtomicFileTest, DanglingLink_GetsItsTarget) {
  std::filesystem::create_symlink("target.bmp", folder_ / "link");
  Save(folder_ / "link", "new");
  EXPECT_TRUE(std::filesystem::is_symlink(folder_ / "link"));
  EXPECT_EQ(ReadFile(folder_ / "target.bmp"), "new");
}

TEST_F(AtomicFileTest, LinkToItself_Throws) {
  std::filesystem::create_symlink("loop", folder_ / "loop");
  EXPECT_THROW(AtomicFile(folder_ / "loop"), FileError);
}

TEST_F(AtomicFileTest, Pipe_IsWrittenStraight) {
  const std::string name = folder_ / "pipe";
  ASSERT_EQ(mkfifo(name.c_str(), 0600), 0);
  std::string content;
  std::thread reader([&] { content = ReadFile(name); });
  Save(name, std::string(300000, 'p'));
  reader.join();
  EXPECT_EQ(content, std::string(300000, 'p'));
  EXPECT_TRUE(std::filesystem::is_fifo(name));
}

TEST_F(AtomicFileTest, Pipe_IsWrittenInOrderOnly) {
  AtomicFile file("/dev/null");
  Write(file, "abc");
  file.SetPosition(0);
  EXPECT_THROW(Write(file, "x"), FileError);
}

TEST_F(AtomicFileTest, Device_IsWrittenStraight) {
  Save("/dev/null", "x");
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

TEST_F(AtomicFileTest, FullDevice_Throws) {
  EXPECT_THROW(Save("/dev/full", "x"), FileError);
}

TEST_F(AtomicFileTest, LongestPossibleName_CanBeSaved) {
  const std::string name = folder_ / std::string(255, 'n');
  Save(name, "first");
  Save(name, "second");
  EXPECT_EQ(ReadFile(name), "second");
}

TEST_F(AtomicFileTest, TooLongName_ThrowsAndLeavesNothing) {
  EXPECT_THROW(Save(folder_ / std::string(256, 'n'), "x"), FileError);
  EXPECT_THAT(folder_.Names(), IsEmpty());
}

TEST_F(AtomicFileTest, MissingFolder_Throws) {
  try {
    AtomicFile file(folder_ / "missing/a.bmp");
    FAIL();
  } catch (const FileError& error) {
    EXPECT_EQ(error.File(), folder_ / "missing/a.bmp");
  }
}

TEST_F(AtomicFileTest, Folder_Throws) {
  EXPECT_THROW(AtomicFile(folder_.Path().string()), FileError);
  EXPECT_THROW(AtomicFile(folder_.Path().string() + "/"), FileError);
  EXPECT_THROW(AtomicFile(""), FileError);
}

TEST_F(AtomicFileTest, NameWithAZeroByte_Throws) {
  EXPECT_THROW(AtomicFile(folder_ / std::string("a\0.bmp", 6)), FileError);
}

TEST_F(AtomicFileTest, ProtectedFile_IsNotReplaced) {
  const std::string name = folder_.Write("a.bmp", "old");
  ASSERT_EQ(chmod(folder_.Path().c_str(), 0777), 0);
  ASSERT_EQ(chmod(name.c_str(), 0444), 0);
  const int exitCode = RunInChild([&] {
    BecomeNobody();
    try {
      Save(name, "new");
    } catch (const FileError&) {
      return 3;
    }
    return 0;
  });
  EXPECT_EQ(exitCode, 3);
  EXPECT_EQ(ReadFile(name), "old");
}

TEST_F(AtomicFileTest, ProtectedFolder_Throws) {
  ASSERT_EQ(chmod(folder_.Path().c_str(), 0555), 0);
  const int exitCode = RunInChild([&] {
    BecomeNobody();
    try {
      Save(folder_ / "new.bmp", "new");
    } catch (const FileError&) {
      return 3;
    }
    return 0;
  });
  ASSERT_EQ(chmod(folder_.Path().c_str(), 0755), 0);
  EXPECT_EQ(exitCode, 3);
}

TEST_F(AtomicFileTest, FileSystemWithoutNamelessFiles_GetsANamedOneBesideTheTarget) {
  const std::string name = folder_.Write("a.bmp", "old");
  const std::string longName = folder_ / std::string(255, 'n');
  const int exitCode = RunInChild([&] {
    RefuseNamelessFiles();
    { AtomicFile abandoned(name); }
    AtomicFile file(name);
    if (folder_.Names().size() != 2) return 1;
    Write(file, "new");
    file.Commit();
    Save(longName, "long");
    LimitFileSize(4096);
    try {
      Save(name, std::string(5000, 'n'));
    } catch (const FileError&) {
      return 3;
    }
    return 0;
  });
  if (exitCode == kCannotFilter) GTEST_SKIP() << "no filters of system calls";
  EXPECT_EQ(exitCode, 3);
  EXPECT_EQ(ReadFile(name), "new");
  EXPECT_EQ(ReadFile(longName), "long");
  EXPECT_EQ(folder_.Names().size(), 2u);
}

TEST_F(AtomicFileTest, BareName_GoesToTheCurrentFolder) {
  const int exitCode = RunInChild([&] {
    if (chdir(folder_.Path().c_str()) != 0) return 1;
    Save("bare.bmp", "x");
    return 0;
  });
  EXPECT_EQ(exitCode, 0);
  EXPECT_EQ(ReadFile(folder_ / "bare.bmp"), "x");
}

TEST_F(AtomicFileTest, ChangedFolder_DoesNotMoveTheTarget) {
  const test::TempFolder elsewhere;
  const int exitCode = RunInChild([&] {
    if (chdir(folder_.Path().c_str()) != 0) return 1;
    AtomicFile file("bare.bmp");
    Write(file, "x");
    if (chdir(elsewhere.Path().c_str()) != 0) return 1;
    file.Commit();
    return 0;
  });
  EXPECT_EQ(exitCode, 0);
  EXPECT_EQ(ReadFile(folder_ / "bare.bmp"), "x");
}

TEST_F(AtomicFileTest, Writing_AnyPlaceInAnyOrder) {
  AtomicFile file(folder_ / "a");
  std::string expected(500000, '\0');
  const auto writeAt = [&](size_t position, const std::string& text) {
    file.SetPosition(position);
    Write(file, text);
    expected.replace(position, text.size(), text);
    EXPECT_EQ(file.Position(), position + text.size());
  };
  writeAt(0, "head");
  writeAt(300000, std::string(200000, 'z'));
  writeAt(2, "AB");
  writeAt(4, std::string(100000, 'm'));
  writeAt(100004, std::string(100000, 'n'));
  EXPECT_EQ(file.Size(), 500000u);
  file.SetPosition(1);
  std::vector<uint8_t> back(5);
  EXPECT_EQ(file.Read(back), 5u);
  EXPECT_EQ(std::string(back.begin(), back.end()), "eABmm");
  file.Commit();
  EXPECT_EQ(ReadFile(folder_ / "a"), expected);
}

TEST_F(AtomicFileTest, AfterTheCommit_NothingMoreIsTaken) {
  AtomicFile file(folder_ / "a");
  file.Commit();
  EXPECT_THROW(Write(file, "x"), FileError);
  EXPECT_THROW(file.Commit(), FileError);
  EXPECT_EQ(ReadFile(folder_ / "a"), "");
}

}  // namespace
}  // namespace rasterkit
