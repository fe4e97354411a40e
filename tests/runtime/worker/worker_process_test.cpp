#include <filesystem>
#include <string>

#include <gtest/gtest.h>
#include <unistd.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/worker/worker_process.h>

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

}  // namespace
}  // namespace rasterkit::detail
