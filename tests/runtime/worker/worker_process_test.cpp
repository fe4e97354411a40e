#include <cerrno>
#include <filesystem>
#include <set>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <seccomp.h>
#include <unistd.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/worker/worker_process.h>

#include "tests/runtime/worker/child_count.h"
#include "tests/support/temp_folder.h"

namespace rasterkit::detail {
namespace {

constexpr int kSkipped = 77;

/// Ends with 0 if starting a program names the file that is missing.
int StartWithoutNull(const std::string& folder) {
  if (chroot(folder.c_str()) != 0) return kSkipped;
  try {
    const WorkerProcess process("/nowhere");
  } catch (const FileError& error) {
    return error.File() == "/dev/null" && error.Reason().ends_with("No such file or directory") ? 0
                                                                                                : 2;
  }
  return 1;
}

TEST(WorkerProcessTest, Start_Should_NameTheNullDevice_When_ItIsMissing) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can hide it";
  const test::TempFolder folder;
  const std::string name = folder / "root";
  std::filesystem::create_directory(name);
  EXPECT_EXIT(
      _exit(StartWithoutNull(name)),
      [](int status) {
        return WIFEXITED(status) && (WEXITSTATUS(status) == 0 || WEXITSTATUS(status) == kSkipped);
      },
      "");
}

/// Ends with 0 if a program that is started gets no file of this process, although the system
/// refuses to close a range of them.
int StartWithoutRange(int error) {
  const scmp_filter_ctx filter = seccomp_init(SCMP_ACT_ALLOW);
  const auto refused = SCMP_ACT_ERRNO(static_cast<uint32_t>(error));
  if (seccomp_rule_add(filter, refused, SCMP_SYS(close_range), 0) != 0 ||
      seccomp_load(filter) != 0) {
    return kSkipped;
  }
  const int secret = open("/dev/null", O_RDONLY);
  if (dup2(secret, 500) != 500) return 1;
  const WorkerProcess process(RASTERKIT_FAKE_WORKER);
  std::set<std::string> names;
  const std::string folder = "/proc/" + std::to_string(test::Children().at(0)) + "/fd";
  for (const auto& file : std::filesystem::directory_iterator(folder)) {
    names.insert(file.path().filename());
  }
  return names == std::set<std::string>{"0", "1", "2", "3"} ? 0 : 2;
}

TEST(WorkerProcessTest, Start_Should_PassNoFile_When_TheKernelClosesNoRange) {
  for (const int error : {ENOSYS, EPERM}) {
    EXPECT_EXIT(
        _exit(StartWithoutRange(error)),
        [](int status) {
          return WIFEXITED(status) && (WEXITSTATUS(status) == 0 || WEXITSTATUS(status) == kSkipped);
        },
        "");
  }
}

}  // namespace
}  // namespace rasterkit::detail
