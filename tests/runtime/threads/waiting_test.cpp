#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/runtime/threads/thread.h>
#include <rasterkit/runtime/threads/thread_queue.h>

#include "tests/support/sleeping_thread.h"

// Who waits sleeps in the system until something arrives, and wakes once for it.
namespace rasterkit {
namespace {

using test::FallsAsleep;
using test::Gate;

class GatedWorker : public TThread {
 public:
  explicit GatedWorker(Gate& gate) : TThread(true), gate_(gate) {}

 protected:
  void Execute() override { gate_.Pass(); }

 private:
  Gate& gate_;
};

TEST(WaitingTest, WaitAndDispatch_SleepsUntilAMessageArrivesAndTurnsOnceForEach) {
  constexpr int kMessages = 5;
  std::atomic<pid_t> number{0};
  std::atomic<int> arrived{0};
  std::shared_ptr<ThreadQueue> queue;
  int turns = 0;
  std::thread driver([&] {
    queue = ThreadQueue::Share();
    number = test::ThisThread();
    while (arrived < kMessages) {
      queue->WaitAndDispatch();
      ++turns;
    }
  });
  while (number == 0) std::this_thread::yield();
  for (int i = 0; i < kMessages; ++i) {
    while (arrived < i) std::this_thread::yield();
    EXPECT_TRUE(FallsAsleep(number));
    queue->Post([&] { ++arrived; });
  }
  driver.join();
  EXPECT_EQ(turns, kMessages);
}

TEST(WaitingTest, DriverOfWorkers_SleepsWhileTheyWorkAndTurnsAtMostOnceForEach) {
  constexpr int kWorkers = 4;
  Gate gate;
  std::atomic<pid_t> number{0};
  std::atomic<int> running{kWorkers};
  int turns = 0;
  std::thread driver([&] {
    for (int i = 0; i < kWorkers; ++i) {
      auto worker = MakeThread<GatedWorker>(gate);
      worker->OnTerminate = [&](TThread&) { --running; };
      TThread::StartAndFree(ThreadPtr<TThread>(worker.release()));
    }
    number = test::ThisThread();
    while (running > 0) {
      ThreadQueue::Current().WaitAndDispatch();
      ++turns;
    }
  });
  while (number == 0) std::this_thread::yield();
  for (int ended = 0; ended < kWorkers; ++ended) {
    while (running > kWorkers - ended) std::this_thread::yield();
    EXPECT_TRUE(FallsAsleep(number));
    gate.Open();
  }
  driver.join();
  EXPECT_LE(turns, kWorkers);
}

TEST(WaitingTest, WaitForThreads_SleepsUntilTheLastOneHasEnded) {
  Gate gate;
  std::atomic<pid_t> number{0};
  std::atomic<bool> returned{false};
  std::thread driver([&] {
    std::vector<ThreadPtr<GatedWorker>> workers;
    std::vector<ThreadHandle> handles;
    for (int i = 0; i < 3; ++i) {
      workers.push_back(MakeThread<GatedWorker>(gate));
      handles.push_back(workers.back()->Handle());
      workers.back()->Start();
    }
    number = test::ThisThread();
    WaitForThreads(handles);
    returned = true;
  });
  while (number == 0) std::this_thread::yield();
  for (int i = 0; i < 3; ++i) {
    EXPECT_TRUE(FallsAsleep(number));
    EXPECT_FALSE(returned);
    gate.Open();
  }
  driver.join();
  EXPECT_TRUE(returned);
}

}  // namespace
}  // namespace rasterkit
