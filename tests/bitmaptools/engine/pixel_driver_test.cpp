#include <atomic>
#include <new>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/engine/manage_threads.h>
#include <rasterkit/bitmaptools/engine/pixel_driver.h>
#include <rasterkit/bitmaptools/engine/pixel_thread.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/threads/thread_queue.h>

#include "tests/support/sleeping_thread.h"

namespace rasterkit {
namespace {

class GatedPixelThread : public TPixelThread {
 public:
  GatedPixelThread(TManageThreads& manager, int32_t iThread, test::Gate& gate)
      : TPixelThread(manager, iThread, ptAssignPart), gate_(gate) {}

 protected:
  void Execute() override { gate_.Pass(); }

 private:
  test::Gate& gate_;
};

TEST(PixelDriverTest, SleepsWhileItsWorkersWorkAndReturnsAfterTheLastOne) {
  constexpr int kWorkers = 3;
  test::Gate gate;
  std::atomic<pid_t> number{0};
  std::atomic<bool> returned{false};
  std::thread driver([&] {
    TBitmap target, source;
    for (TBitmap* bitmap : {&target, &source}) bitmap->ResetPixels(pf24bit, 5, 100);
    TManageThreads manager(kWorkers, 100, nullptr);
    ASSERT_TRUE(manager.InitByteBits(target, source));
    number = test::ThisThread();
    detail::RunPixelWorkers(manager, [&](int32_t i) -> ThreadPtr<TPixelThread> {
      return MakeThread<GatedPixelThread>(manager, i, gate);
    });
    EXPECT_EQ(manager.AnzThreads, 0);
    returned = true;
  });
  while (number == 0) std::this_thread::yield();
  for (int i = 0; i < kWorkers; ++i) {
    EXPECT_TRUE(test::FallsAsleep(number));
    EXPECT_FALSE(returned);
    gate.Open();
  }
  driver.join();
  EXPECT_TRUE(returned);
}

/// Two bitmaps and their manager, for workers that touch neither.
struct Operation {
  explicit Operation(int32_t threads) : manager(threads, 100, nullptr) {
    for (TBitmap* bitmap : {&target, &source}) bitmap->ResetPixels(pf24bit, 5, 100);
    EXPECT_TRUE(manager.InitByteBits(target, source));
  }
  TBitmap target, source;
  TManageThreads manager;
};

class CountingPixelThread : public TPixelThread {
 public:
  CountingPixelThread(TManageThreads& manager, int32_t iThread, std::atomic<int>& runs)
      : TPixelThread(manager, iThread, ptAssignPart), runs_(runs) {}

 protected:
  void Execute() override { ++runs_; }

 private:
  std::atomic<int>& runs_;
};

class FailingPixelThread : public TPixelThread {
 public:
  using TPixelThread::TPixelThread;

 protected:
  void Execute() override { throw std::bad_alloc(); }
};

TEST(PixelDriverTest, StartsNothingWhenAWorkerCannotBeMade) {
  Operation operation(3);
  std::atomic<int> runs{0};
  const auto makeTwo = [&](int32_t i) -> ThreadPtr<TPixelThread> {
    if (i == 2) throw std::bad_alloc();
    return MakeThread<CountingPixelThread>(operation.manager, i, runs);
  };
  EXPECT_THROW(detail::RunPixelWorkers(operation.manager, makeTwo), std::bad_alloc);
  EXPECT_EQ(runs, 0);
}

TEST(PixelDriverTest, WhenAWorkerDoesNotStartThoseBeforeItEndFirst) {
  Operation operation(4);
  std::atomic<int> runs{0};
  const auto secondRanAlready = [&](int32_t i) -> ThreadPtr<TPixelThread> {
    auto worker = MakeThread<CountingPixelThread>(operation.manager, i, runs);
    if (i != 1) return worker;
    bool ended = false;  // and not counted by the manager
    worker->OnTerminate = [&ended](TThread&) { ended = true; };
    worker->Start();  // a thread cannot be started twice
    while (!ended) ThreadQueue::Current().WaitAndDispatch();
    return worker;
  };
  EXPECT_THROW(detail::RunPixelWorkers(operation.manager, secondRanAlready), Error);
  EXPECT_EQ(runs, 2) << "the first, and the one that ran before";
  EXPECT_EQ(operation.manager.AnzThreads, 3) << "the first has been counted";
}

TEST(PixelDriverTest, WaitsForWorkersThatEndByAnException) {
  Operation operation(3);
  EXPECT_NO_THROW(
      detail::RunPixelWorkers(operation.manager, [&](int32_t i) -> ThreadPtr<TPixelThread> {
        return MakeThread<FailingPixelThread>(operation.manager, i, ptAssignPart);
      }));
  EXPECT_EQ(operation.manager.AnzThreads, 0);
}

}  // namespace
}  // namespace rasterkit
