// How many finished outputs wait for the disk.

#include "tool/command/commit_queue.h"

#include <atomic>
#include <exception>
#include <memory>
#include <string>
#include <utility>

#include <gtest/gtest.h>
#include <sys/resource.h>

#include "tests/support/child_process.h"
#include "tests/support/temp_folder.h"

namespace rasterkit::test {
namespace {

using tool::CommitQueue;

void LimitOpenFiles(rlim_t count) {
  rlimit limit{};
  getrlimit(RLIMIT_NOFILE, &limit);
  limit.rlim_cur = count;
  setrlimit(RLIMIT_NOFILE, &limit);
}

size_t MostWaitingWith(rlim_t openFiles) {
  return static_cast<size_t>(RunInChild([&] {
    LimitOpenFiles(openFiles);
    return static_cast<int>(CommitQueue::MostWaiting());
  }));
}

TEST(CommitQueueTest, WaitingOutputs_DependOnTheOpenFilesAllowed) {
  EXPECT_EQ(MostWaitingWith(1024), 128u);
  EXPECT_EQ(MostWaitingWith(256), 32u);
  EXPECT_EQ(MostWaitingWith(4), 1u);
}

TEST(CommitQueueTest, FewOpenFiles_AreEnoughForManyOutputs) {
  const TempFolder folder;
  constexpr int kCount = 300;
  const int code = RunInChild([&] {
    LimitOpenFiles(64);
    std::atomic<int> saved = 0;
    {
      CommitQueue queue;
      for (int i = 0; i < kCount; ++i) {
        tool::FinishedOutput output;
        output.file = std::make_unique<AtomicFile>(folder / std::to_string(i));
        queue.Add(std::move(output), [&](const auto&, const std::exception_ptr& error) {
          if (!error) ++saved;
        });
      }
    }
    return saved == kCount ? 0 : 1;
  });
  EXPECT_EQ(code, 0);
  EXPECT_EQ(folder.Names().size(), static_cast<size_t>(kCount));
}

}  // namespace
}  // namespace rasterkit::test
