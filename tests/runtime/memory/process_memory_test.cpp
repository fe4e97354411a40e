#include <atomic>
#include <cstring>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/memory/block_pool.h>
#include <rasterkit/runtime/memory/memory_job.h>
#include <rasterkit/runtime/memory/memory_share.h>
#include <rasterkit/runtime/memory/page_release.h>
#include <rasterkit/runtime/memory/pixel_memory.h>
#include <rasterkit/runtime/threads/thread.h>

#include "tests/support/sanitizers.h"

namespace rasterkit::test {
namespace {

constexpr size_t kMiB = size_t{1} << 20;

/// A limit of `room` bytes beyond what the process holds.
Limits Room(uint64_t room) {
  return {.processBytes = ProcessPictureBytes() + room};
}

class ProcessMemoryTest : public testing::Test {
 protected:
  void SetUp() override { PixelMemory::Trim(); }
  void TearDown() override {
    PixelMemory::Trim();
    SetDefaultLimits({});
    EXPECT_EQ(ProcessPictureBytes(), before_) << "all memory is returned";
  }

  const uint64_t before_ = ProcessPictureBytes();
};

TEST_F(ProcessMemoryTest, Share_CountsUntilItsEnd) {
  {
    MemoryShare share(100);
    EXPECT_EQ(ProcessPictureBytes(), before_ + 100);
    MemoryShare moved(std::move(share));
    EXPECT_EQ(moved.Bytes(), 100u);
    EXPECT_EQ(ProcessPictureBytes(), before_ + 100);
    moved = MemoryShare(30);
    EXPECT_EQ(ProcessPictureBytes(), before_ + 30);
  }
  EXPECT_EQ(ProcessPictureBytes(), before_);
}

TEST_F(ProcessMemoryTest, Limit_HoldsForAllSharesTogether) {
  const MemoryShare outside(1000);
  const LimitsScope scope(Room(100));
  const MemoryShare most(100);
  EXPECT_THROW(MemoryShare(1), LimitError);
  EXPECT_NO_THROW(MemoryShare(0));
}

TEST_F(ProcessMemoryTest, Error_NamesLimitAndNeed) {
  const LimitsScope scope({.processBytes = before_ + 100});
  const MemoryShare half(50);
  try {
    const MemoryShare more(51);
    FAIL();
  } catch (const LimitError& error) {
    EXPECT_EQ(error.Kind(), LimitKind::processBytes);
    EXPECT_EQ(error.Reason(), "a picture needs 51 bytes beside the " +
                                  std::to_string(before_ + 50) +
                                  " bytes in use, the limit of the process is " +
                                  std::to_string(before_ + 100) + " bytes");
  }
}

TEST_F(ProcessMemoryTest, PixelMemory_TakesPart) {
  const LimitsScope scope(Room(3 * kMiB));
  for (const size_t part : {size_t{1000}, 2 * kMiB}) {
    const PixelMemory memory(part);
    EXPECT_EQ(ProcessPictureBytes(), before_ + part);
    EXPECT_NO_THROW(PixelMemory(3 * kMiB - part));
    EXPECT_THROW(PixelMemory(3 * kMiB - part + 1), LimitError);
  }
}

TEST_F(ProcessMemoryTest, KeptBlocks_AreReturnedBeforeAnythingFails) {
  if (IsSanitized()) GTEST_SKIP() << "no pool under the address sanitizer";
  { const PixelMemory memory(8 * kMiB); }
  ASSERT_EQ(detail::KeptLargeBytes(), 8 * kMiB);
  const LimitsScope scope(Room(8 * kMiB + kMiB / 2));
  const PixelMemory fits(1000);
  EXPECT_EQ(detail::KeptLargeBytes(), 8 * kMiB) << "both fit";
  const PixelMemory next(kMiB - 1);
  EXPECT_EQ(detail::KeptLargeBytes(), 0u) << "together they would exceed the limit";
}

TEST_F(ProcessMemoryTest, DefaultLimit_HoldsForEveryThread) {
  SetDefaultLimits(Room(100));
  std::thread([] { EXPECT_THROW(MemoryShare(101), LimitError); }).join();
}

/// Waits for what another thread does.
void WaitUntil(const std::function<bool()>& isTrue) {
  while (!isTrue()) std::this_thread::yield();
}

TEST_F(ProcessMemoryTest, Job_WaitsForMemoryOfAnotherOne) {
  const Limits limits = Room(100);
  std::atomic<int> step = 0;
  std::atomic<bool> hadMemory = false;
  std::thread other([&] {
    const LimitsScope scope(limits);
    const MemoryJobScope job(0);
    WaitUntil([&] { return step == 1; });
    step = 2;
    const MemoryShare share(60);
    hadMemory = true;
  });
  const LimitsScope scope(limits);
  const MemoryJobScope job(0);
  {
    const MemoryShare share(50);
    step = 1;
    WaitUntil([&] { return step == 2; });
    for (int i = 0; i < 1000; ++i) std::this_thread::yield();
    EXPECT_FALSE(hadMemory);
  }
  other.join();
  EXPECT_TRUE(hadMemory);
  EXPECT_FALSE(job.WasRefused());
}

TEST_F(ProcessMemoryTest, LonelyJob_FailsAtOnce) {
  const LimitsScope scope(Room(100));
  const MemoryJobScope job(0);
  EXPECT_THROW(MemoryShare(101), LimitError);
  EXPECT_FALSE(job.WasRefused()) << "no other job could give anything";
  EXPECT_NO_THROW(RequireMemoryOfJob());
}

TEST_F(ProcessMemoryTest, JobsThatWaitForEachOther_GoOnOneAfterAnother) {
  const Limits limits = Room(100);
  constexpr int kJobs = 4;
  std::atomic<int> holders = 0, done = 0, refused = 0;
  const auto work = [&](bool isFirst) {
    const MemoryShare first(25);
    if (isFirst) {
      ++holders;
      // All hold a part; none can have the second one.
      WaitUntil([&] { return holders == kJobs; });
    }
    const MemoryShare second(60);
    ++done;
  };
  std::vector<std::thread> threads;
  for (int i = 0; i < kJobs; ++i) {
    threads.emplace_back([&] {
      const LimitsScope scope(limits);
      bool isRepeated = false;
      {
        const MemoryJobScope job(0);
        try {
          work(true);
        } catch (const LimitError& error) {
          EXPECT_EQ(error.Kind(), LimitKind::processBytes);
          EXPECT_TRUE(job.WasRefused());
          EXPECT_THROW(RequireMemoryOfJob(), LimitError);
          isRepeated = true;
        }
      }
      if (!isRepeated) return;
      ++refused;
      const MemoryJobScope alone(kNoLimit);
      work(false);
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(done, kJobs);
  EXPECT_GE(refused, 1);
  EXPECT_LT(refused, kJobs) << "refusing one lets another one go on";
}

TEST_F(ProcessMemoryTest, Reservation_KeepsMemoryFree) {
  const Limits limits = Room(100);
  const LimitsScope scope(limits);
  std::atomic<bool> isInside = false, isAsking = false, hasShare = false;
  std::thread other;
  {
    const MemoryJobScope job(70);
    other = std::thread([&] {
      const LimitsScope inner(limits);
      const MemoryJobScope small(30);
      isInside = true;
      const MemoryShare own(30);
      isAsking = true;
      const MemoryShare more(1);
      hasShare = true;
    });
    WaitUntil([&] { return isAsking.load(); });
    const MemoryShare reserved(70);
    for (int i = 0; i < 1000; ++i) std::this_thread::yield();
    EXPECT_FALSE(hasShare);
  }
  other.join();
  EXPECT_TRUE(hasShare);
}

TEST_F(ProcessMemoryTest, Job_EntersWhenItsNeedFits) {
  const Limits limits = Room(100);
  const LimitsScope scope(limits);
  std::atomic<bool> isAsking = false, isInside = false;
  std::thread other;
  {
    const MemoryJobScope job(60);
    other = std::thread([&] {
      const LimitsScope inner(limits);
      isAsking = true;
      const MemoryJobScope tooLarge(41);
      isInside = true;
    });
    WaitUntil([&] { return isAsking.load(); });
    for (int i = 0; i < 1000; ++i) std::this_thread::yield();
    EXPECT_FALSE(isInside);
    const MemoryShare reserved(60);
  }
  other.join();
  EXPECT_TRUE(isInside);
  const MemoryJobScope exact(60);
  std::thread([&] {
    const LimitsScope inner(limits);
    const MemoryJobScope fits(40);
  }).join();
}

TEST_F(ProcessMemoryTest, LonelyJob_EntersWhateverItNeeds) {
  const LimitsScope scope(Room(100));
  const MemoryJobScope job(kNoLimit);
  EXPECT_NO_THROW(MemoryShare(100));
  EXPECT_THROW(MemoryShare(101), LimitError);
}

class Taker : public TThread {
 public:
  MemoryShare share;

 protected:
  void Execute() override { share = MemoryShare(40); }
};

TEST_F(ProcessMemoryTest, ThreadsOfAJob_TakeFromItsReservation) {
  const Limits limits = Room(100);
  const LimitsScope scope(limits);
  const MemoryJobScope job(100);
  const auto taker = MakeThread<Taker>();
  taker->Start();
  taker->WaitFor();
  EXPECT_EQ(taker->FatalException(), nullptr);
  EXPECT_EQ(taker->share.Bytes(), 40u);
}

TEST_F(ProcessMemoryTest, Share_OutlivesItsJob) {
  MemoryShare kept;
  {
    const LimitsScope scope(Room(100));
    const MemoryJobScope job(0);
    kept = MemoryShare(80);
  }
  EXPECT_EQ(ProcessPictureBytes(), before_ + 80);
  const LimitsScope scope({.processBytes = before_ + 100});
  EXPECT_THROW(MemoryShare(21), LimitError);
}

TEST(ClearMemory, SetsEveryByteToZero) {
  for (const size_t size : {size_t{100}, 2 * kMiB, 5 * kMiB + 77}) {
    PixelMemory memory(size + 20);
    std::memset(memory.Data(), 0xA5, memory.Size());
    ClearMemory(memory.Data() + 10, size);
    const std::vector<uint8_t> zeros(size);
    EXPECT_EQ(std::memcmp(memory.Data() + 10, zeros.data(), size), 0);
    const std::vector<uint8_t> around(10, 0xA5);
    EXPECT_EQ(std::memcmp(memory.Data(), around.data(), 10), 0);
    EXPECT_EQ(std::memcmp(memory.Data() + 10 + size, around.data(), 10), 0);
    memory.Data()[size / 2] = 1;
    EXPECT_EQ(memory.Data()[size / 2], 1);
  }
}

}  // namespace
}  // namespace rasterkit::test
