#include <atomic>
#include <functional>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/threads/critical_section.h>
#include <rasterkit/runtime/threads/thread.h>
#include <rasterkit/runtime/threads/thread_queue.h>

namespace rasterkit {
namespace {

/// Runs a function; counts its own objects so that leaks show.
class Worker : public TThread {
 public:
  explicit Worker(std::function<void(Worker&)> work, bool createSuspended = true)
      : TThread(createSuspended), work_(std::move(work)) {
    ++alive;
  }
  ~Worker() override { --alive; }

  static inline std::atomic<int> alive{0};

 protected:
  void Execute() override { work_(*this); }

 private:
  std::function<void(Worker&)> work_;
};

class ThreadTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(Worker::alive, 0); }
  void TearDown() override { EXPECT_EQ(Worker::alive, 0); }
};

void WaitUntil(const std::function<bool()>& condition) {
  while (!condition()) ThreadQueue::Current().WaitAndDispatch();
}

TEST_F(ThreadTest, CreatedSuspended_RunsOnlyAfterStart) {
  std::atomic<bool> ran{false};
  const auto thread = MakeThread<Worker>([&](Worker&) { ran = true; });
  thread->WaitFor();
  EXPECT_FALSE(ran);
  thread->Start();
  thread->WaitFor();
  EXPECT_TRUE(ran);
}

TEST_F(ThreadTest, NotCreatedSuspended_RunsAtOnce) {
  std::atomic<bool> ran{false};
  const auto thread = MakeThread<Worker>([&](Worker&) { ran = true; }, false);
  thread->WaitFor();
  EXPECT_TRUE(ran);
}

TEST_F(ThreadTest, NeverStarted_IsFreedWithoutRunning) {
  bool ran = false;
  {
    const auto thread = MakeThread<Worker>([&](Worker&) { ran = true; });
  }
  EXPECT_FALSE(ran);
}

TEST_F(ThreadTest, StartedTwice_Throws) {
  const auto thread = MakeThread<Worker>([](Worker&) {});
  thread->Start();
  EXPECT_THROW(thread->Start(), Error);
}

TEST_F(ThreadTest, Destruction_AsksToTerminateAndWaits) {
  std::atomic<bool> ended{false};
  {
    const auto thread = MakeThread<Worker>(
        [&](Worker& self) {
          while (!self.Terminated()) std::this_thread::yield();
          ended = true;
        },
        false);
  }
  EXPECT_TRUE(ended);
}

TEST_F(ThreadTest, ExceptionOfExecute_EndsOnlyThisThreadAndIsKept) {
  const auto failing = MakeThread<Worker>([](Worker&) { throw RangeError("row 9 of 9"); }, false);
  const auto working = MakeThread<Worker>([](Worker&) {}, false);
  failing->WaitFor();
  working->WaitFor();
  EXPECT_EQ(working->FatalException(), nullptr);
  ASSERT_NE(failing->FatalException(), nullptr);
  EXPECT_THROW(std::rethrow_exception(failing->FatalException()), RangeError);
}

TEST_F(ThreadTest, ExceptionThatIsNoStandardOne_IsKeptToo) {
  const auto thread = MakeThread<Worker>([](Worker&) { throw 5; }, false);
  thread->WaitFor();
  EXPECT_THROW(std::rethrow_exception(thread->FatalException()), int);
}

TEST_F(ThreadTest, OnTerminate_RunsOnTheOwnerThreadWhenItDispatches) {
  std::thread::id ranOn;
  const TThread* sender = nullptr;
  const auto thread = MakeThread<Worker>([](Worker&) {});
  thread->OnTerminate = [&](TThread& ended) {
    ranOn = std::this_thread::get_id();
    sender = &ended;
  };
  thread->Start();
  thread->WaitFor();
  EXPECT_EQ(sender, nullptr);
  WaitUntil([&] { return sender != nullptr; });
  EXPECT_EQ(sender, thread.get());
  EXPECT_EQ(ranOn, std::this_thread::get_id());
}

TEST_F(ThreadTest, OnTerminate_ComesAfterAnErrorTooAndSeesIt) {
  bool called = false;
  std::exception_ptr error;
  auto thread = MakeThread<Worker>([](Worker&) { throw std::runtime_error("x"); });
  thread->OnTerminate = [&](TThread& ended) {
    error = ended.FatalException();
    called = true;
  };
  TThread::StartAndFree(std::move(thread));
  WaitUntil([&] { return called; });
  ASSERT_NE(error, nullptr);
  try {
    std::rethrow_exception(error);
    FAIL() << "nothing was thrown";
  } catch (const std::runtime_error& thrown) {
    EXPECT_STREQ(thrown.what(), "x");
  }
}

TEST_F(ThreadTest, OnTerminate_IsDroppedWhenTheObjectIsGone) {
  bool called = false;
  {
    const auto thread = MakeThread<Worker>([](Worker&) {});
    thread->OnTerminate = [&](TThread&) { called = true; };
    thread->Start();
  }
  ThreadQueue::Current().Dispatch();
  EXPECT_FALSE(called);
}

TEST_F(ThreadTest, FreeOnTerminate_FreesRightAfterTheEvent) {
  int running = 8;
  int aliveInLastEvent = 0;
  for (int i = 0; i < 8; ++i) {
    auto thread = MakeThread<Worker>([](Worker&) {});
    thread->OnTerminate = [&](TThread& ended) {
      EXPECT_TRUE(ended.FreeOnTerminate());
      aliveInLastEvent = Worker::alive;
      --running;
    };
    TThread::StartAndFree(std::move(thread));
  }
  WaitUntil([&] { return running == 0; });
  EXPECT_EQ(aliveInLastEvent, 1);
  EXPECT_EQ(Worker::alive, 0);
}

TEST_F(ThreadTest, FreeOnTerminate_FreesWhenTheOwnerThreadEndedBeforeTheWorker) {
  std::atomic<bool> go{false};
  bool called = false;
  ThreadHandle handle;
  std::thread owner([&] {
    auto thread = MakeThread<Worker>([&](Worker&) {
      while (!go) std::this_thread::yield();
    });
    thread->OnTerminate = [&](TThread&) { called = true; };
    handle = thread->Handle();
    TThread::StartAndFree(std::move(thread));
  });
  owner.join();
  go = true;
  handle.Wait();
  while (Worker::alive != 0) std::this_thread::yield();
  EXPECT_FALSE(called);
}

TEST_F(ThreadTest, FreeOnTerminate_FreesWhenTheOwnerThreadEndsWithTheEventWaiting) {
  bool called = false;
  std::thread owner([&] {
    auto thread = MakeThread<Worker>([&](Worker&) {});
    thread->OnTerminate = [&](TThread&) { called = true; };
    const ThreadHandle handle = thread->Handle();
    TThread::StartAndFree(std::move(thread));
    handle.Wait();
  });
  owner.join();
  while (Worker::alive != 0) std::this_thread::yield();
  EXPECT_FALSE(called);
}

TEST_F(ThreadTest, WaitForThreads_WaitsForAllAtOnce) {
  std::atomic<int> ended{0};
  std::vector<ThreadPtr<Worker>> threads;
  std::vector<ThreadHandle> handles;
  for (int i = 0; i < 100; ++i) {
    threads.push_back(MakeThread<Worker>([&](Worker&) { ++ended; }));
    handles.push_back(threads.back()->Handle());
  }
  for (const auto& thread : threads) thread->Start();
  WaitForThreads(handles);
  EXPECT_EQ(ended, 100);
}

TEST_F(ThreadTest, Handle_OutlivesItsThread) {
  std::atomic<int> runs{0};
  ThreadHandle handle;
  {
    const auto thread = MakeThread<Worker>([&](Worker&) { ++runs; }, false);
    handle = thread->Handle();
  }
  EXPECT_EQ(Worker::alive, 0);
  // Waiting for what has ended returns, each time.
  handle.Wait();
  handle.Wait();
  WaitForThreads(std::vector<ThreadHandle>(3, handle));
  EXPECT_EQ(runs, 1);
}

TEST_F(ThreadTest, ManyShortLives_LeaveNothing) {
  int events = 0, expected = 0;
  for (int round = 0; round < 200; ++round) {
    auto thread = MakeThread<Worker>([](Worker&) {});
    thread->OnTerminate = [&](TThread& ended) {
      EXPECT_TRUE(ended.FreeOnTerminate());
      ++events;
    };
    if (round % 3 != 0) {
      ++expected;
      TThread::StartAndFree(std::move(thread));
    } else if (round % 2 == 0) {
      thread->Start();
    }
  }
  WaitUntil([&] { return events >= expected; });
  // Objects that were destroyed by their owner send no event.
  ThreadQueue::Current().Dispatch();
  EXPECT_EQ(events, expected);
  EXPECT_EQ(Worker::alive, 0);
  EXPECT_FALSE(ThreadQueue::Current().NeedsAttention());
}

TEST(CriticalSectionTest, Enter_MayBeRepeatedByTheThreadThatIsInside) {
  TCriticalSection section;
  section.Enter();
  section.Enter();
  section.Leave();
  section.Leave();
  EXPECT_TRUE(section.try_lock());
  section.unlock();
}

TEST(CriticalSectionTest, Enter_KeepsOtherThreadsOut) {
  TCriticalSection section;
  int count = 0;
  const auto work = [&](Worker&) {
    for (int i = 0; i < 1000; ++i) {
      section.Enter();
      ++count;
      section.Leave();
    }
  };
  {
    const auto first = MakeThread<Worker>(work, false);
    const auto second = MakeThread<Worker>(work, false);
    first->WaitFor();
    second->WaitFor();
  }
  EXPECT_EQ(count, 2000);
}

}  // namespace
}  // namespace rasterkit
