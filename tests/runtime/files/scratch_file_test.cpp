#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/scratch_file.h>

#include "tests/runtime/files/replaced_calls.h"
#include "tests/support/temp_folder.h"

namespace rasterkit {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

std::string ErrorOf(const std::string& folder, uint64_t bytes) {
  try {
    const ScratchFile file(folder, bytes);
  } catch (const FileError& error) {
    return error.what();
  }
  return "";
}

void ExpectKeepsBytes(const std::string& folder) {
  ScratchFile file(folder, 1000);
  const std::vector<uint8_t> written{1, 2, 3, 4};
  file.Write(996, written);
  std::vector<uint8_t> read(4);
  file.Read(996, read);
  EXPECT_EQ(read, written);
  file.Read(0, read);
  EXPECT_EQ(read, std::vector<uint8_t>(4));
  EXPECT_THROW(file.Write(997, written), RangeError);
  EXPECT_THROW(file.Read(~uint64_t{0}, read), RangeError);
}

TEST(ScratchFileTest, KeepsBytesWithoutAName) {
  const test::TempFolder folder;
  const uint64_t before = ScratchBytes();
  {
    const ScratchFile file(folder.Path().string(), 5000);
    EXPECT_EQ(ScratchBytes(), before + 5000);
    EXPECT_THAT(folder.Names(), IsEmpty());
    ExpectKeepsBytes(folder.Path().string());
  }
  EXPECT_EQ(ScratchBytes(), before);
}

/// Not every file system has files without a name.
TEST(ScratchFileTest, RemovesTheNameWhereOneIsNeeded) {
  const test::TempFolder folder;
  const test::CallsGuard calls;
  static decltype(detail::FileCalls::openAt) openAt;
  static mode_t mode;
  openAt = calls.Before().openAt;
  detail::Calls().openAt = [](int at, const char* name, int flags, mode_t bits) {
    if ((flags & O_TMPFILE) == O_TMPFILE) {
      errno = EOPNOTSUPP;
      return -1;
    }
    if ((flags & O_CREAT) != 0) mode = bits;
    return openAt(at, name, flags, bits);
  };
  ExpectKeepsBytes(folder.Path().string());
  EXPECT_EQ(mode, 0600u);
  EXPECT_THAT(folder.Names(), IsEmpty());
}

TEST(ScratchFileTest, NamesFolderAndNeed) {
  const test::TempFolder folder;
  EXPECT_THAT(ErrorOf(folder / "missing", 77), HasSubstr("missing"));
  EXPECT_THAT(ErrorOf(folder / "missing", 77), HasSubstr("77 bytes"));
  EXPECT_THAT(ErrorOf(folder.Path().string(), uint64_t{1} << 62), HasSubstr("bytes"));
  const test::CallsGuard calls;
  detail::Calls().reserve = [](int, off_t, off_t) {
    errno = ENOSPC;
    return -1;
  };
  EXPECT_THAT(ErrorOf(folder.Path().string(), 77), HasSubstr("No space left on device"));
  EXPECT_THAT(folder.Names(), IsEmpty());
}

/// Where nothing can be reserved, what is free decides.
TEST(ScratchFileTest, LooksAtTheFreeSpace) {
  const test::TempFolder folder;
  const test::CallsGuard calls;
  detail::Calls().reserve = [](int, off_t, off_t) {
    errno = EOPNOTSUPP;
    return -1;
  };
  EXPECT_EQ(ErrorOf(folder.Path().string(), 1000), "");
  EXPECT_THAT(ErrorOf(folder.Path().string(), uint64_t{1} << 62),
              HasSubstr("No space left on device"));
}

TEST(ScratchFileTest, IsGoneWithAProcessThatIsKilled) {
  const test::TempFolder folder;
  const std::string name = folder.Path().string();
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    const ScratchFile file(name, 1000);
    raise(SIGKILL);
  }
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_TRUE(WIFSIGNALED(status));
  EXPECT_THAT(folder.Names(), IsEmpty());
}

}  // namespace
}  // namespace rasterkit
