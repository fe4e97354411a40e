#include <cerrno>
#include <csignal>
#include <string>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/support/sanitizers.h"

namespace rasterkit {
namespace {

constexpr int kNoProtection = 200;
constexpr int kNoFilter = 201;
constexpr int kNotLockedIn = 202;

/// The status of a process that locks itself in and then tries something; see locked_in.cpp.
int StatusOf(const char* what) {
  const pid_t child = fork();
  if (child == 0) {
    execl(RASTERKIT_LOCKED_IN, RASTERKIT_LOCKED_IN, what, nullptr);
    _exit(254);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return status;
}

/// The error number of what was tried, 0 if it worked, and minus the signal that ended the process.
int ErrorOf(const char* what) {
  const int status = StatusOf(what);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

TEST(SandboxTest, LockIn_Should_Throw_When_TheSystemRefusesIt) {
  EXPECT_EQ(ErrorOf("no-filter"), kNoFilter);
  EXPECT_EQ(ErrorOf("no-limits"), kNotLockedIn);
  EXPECT_EQ(ErrorOf("no-undumpable"), kNotLockedIn);
  const int error = ErrorOf("no-privileges");
  if (error == kNoProtection) GTEST_SKIP() << "only root can refuse this";
  EXPECT_EQ(error, kNotLockedIn);
}

TEST(SandboxTest, Process_Should_Work_When_LockedIn) {
  EXPECT_EQ(ErrorOf("thread"), 0);
  EXPECT_EQ(ErrorOf("memory-1-mib"), 0);
  EXPECT_EQ(ErrorOf("memory-file"), 0);
}

TEST(SandboxTest, Process_Should_ReadFontsOnly_When_LockedIn) {
  const int error = ErrorOf("read-password");
  if (error == kNoProtection) GTEST_SKIP() << "the system has no Landlock";
  EXPECT_EQ(error, EACCES);
  if (access("/usr/share/fonts", R_OK) == 0) {
    EXPECT_EQ(ErrorOf("read-fonts"), 0);
  }
}

TEST(SandboxTest, Process_Should_WriteNothing_When_LockedIn) {
  for (const char* what : {"write-new", "write-null", "truncate", "remove"}) {
    EXPECT_EQ(ErrorOf(what), EPERM) << what;
  }
}

TEST(SandboxTest, Process_Should_ReachNobody_When_LockedIn) {
  for (const char* what : {"socket", "socket-pair", "fork", "kill-parent", "code", "core"}) {
    EXPECT_EQ(ErrorOf(what), EPERM) << what;
  }
  EXPECT_EQ(ErrorOf("clone3"), ENOSYS);
}

TEST(SandboxTest, Process_Should_End_When_ItTriesTheWorst) {
  EXPECT_EQ(ErrorOf("execute"), -SIGSYS);
  EXPECT_EQ(ErrorOf("trace"), -SIGSYS);
}

TEST(SandboxTest, Process_Should_GetLittleMemory_When_LockedIn) {
  EXPECT_EQ(ErrorOf("large-memory-file"), EFBIG);
  EXPECT_EQ(ErrorOf("memory-files"), EMFILE);
  EXPECT_EQ(ErrorOf("shared-memory"), EPERM);
  if (test::IsSanitized()) GTEST_SKIP() << "memory is not limited";
  EXPECT_EQ(ErrorOf("memory-1-gib"), ENOMEM);
}

}  // namespace
}  // namespace rasterkit
