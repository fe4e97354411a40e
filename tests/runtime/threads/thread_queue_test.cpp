#include <atomic>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/runtime/ports.h>
#include <rasterkit/runtime/threads/application.h>
#include <rasterkit/runtime/threads/thread_queue.h>
#include <rasterkit/runtime/threads/timer.h>

namespace rasterkit {
namespace {

using testing::ElementsAre;

class QueueTest : public testing::Test {
 protected:
  void TearDown() override { HostPorts() = Ports(); }
};

using ApplicationTest = QueueTest;
using TimerTest = QueueTest;

TEST_F(QueueTest, Dispatch_RunsMessagesInTheOrderOfArrival) {
  std::vector<int> ran;
  for (int i = 0; i < 3; ++i) ThreadQueue::Current().Post([&ran, i] { ran.push_back(i); });
  ThreadQueue::Current().Dispatch();
  EXPECT_THAT(ran, ElementsAre(0, 1, 2));
}

TEST_F(QueueTest, Dispatch_LeavesMessagesOfMessagesForTheNextTime) {
  std::vector<int> ran;
  ThreadQueue& queue = ThreadQueue::Current();
  queue.Post([&] {
    ran.push_back(1);
    queue.Post([&] { ran.push_back(2); });
  });
  queue.Dispatch();
  EXPECT_THAT(ran, ElementsAre(1));
  queue.Dispatch();
  EXPECT_THAT(ran, ElementsAre(1, 2));
}

TEST_F(QueueTest, HandlerThatWaits_GetsTheMessagesBehindItsOwn) {
  bool second = false;
  ThreadQueue& queue = ThreadQueue::Current();
  queue.Post([&] {
    while (!second) queue.WaitAndDispatch();
  });
  queue.Post([&] { second = true; });
  queue.Dispatch();
  EXPECT_TRUE(second);
}

TEST_F(QueueTest, WaitAndDispatch_WakesForAMessageOfAnotherThread) {
  std::thread::id ranOn;
  int runs = 0;
  ThreadQueue& queue = ThreadQueue::Current();
  std::thread poster([&] {
    queue.Post([&] {
      ranOn = std::this_thread::get_id();
      ++runs;
    });
  });
  while (runs == 0) queue.WaitAndDispatch();
  poster.join();
  EXPECT_EQ(ranOn, std::this_thread::get_id());
  EXPECT_FALSE(queue.NeedsAttention());
  queue.Dispatch();
  EXPECT_EQ(runs, 1);
}

TEST_F(QueueTest, WakeUp_IsCalledForMessagesAndTimersUntilItIsRemoved) {
  ThreadQueue& queue = ThreadQueue::Current();
  int calls = 0;
  queue.SetWakeUp([&] { ++calls; });
  queue.Post([] {});
  EXPECT_EQ(calls, 1);
  const auto timer = std::make_shared<ThreadQueue::Timer>();
  timer->interval = std::chrono::hours(1);
  queue.AddTimer(timer);
  EXPECT_EQ(calls, 2);
  queue.SetWakeUp({});
  queue.Post([] {});
  EXPECT_EQ(calls, 2);
  queue.RemoveTimer(timer);
  queue.Dispatch();
}

TEST_F(QueueTest, WakeUp_RunsOnTheThreadThatPosts) {
  ThreadQueue& queue = ThreadQueue::Current();
  std::thread::id waker;
  queue.SetWakeUp([&] { waker = std::this_thread::get_id(); });
  std::thread poster([&] { queue.Post([] {}); });
  const std::thread::id expected = poster.get_id();
  poster.join();
  queue.SetWakeUp({});
  queue.Dispatch();
  EXPECT_EQ(waker, expected);
}

TEST_F(QueueTest, TimeToNextTimer_IsThatOfTheFirstAndNeverNegative) {
  ThreadQueue& queue = ThreadQueue::Current();
  EXPECT_EQ(queue.TimeToNextTimer(), std::nullopt);
  const auto late = std::make_shared<ThreadQueue::Timer>();
  late->interval = std::chrono::hours(2);
  queue.AddTimer(late);
  EXPECT_GT(*queue.TimeToNextTimer(), std::chrono::hours(1));
  const auto overdue = std::make_shared<ThreadQueue::Timer>();
  overdue->interval = std::chrono::milliseconds(0);
  queue.AddTimer(overdue);
  EXPECT_EQ(*queue.TimeToNextTimer(), std::chrono::milliseconds(0));
  queue.RemoveTimer(overdue);
  queue.RemoveTimer(late);
  EXPECT_EQ(queue.TimeToNextTimer(), std::nullopt);
}

TEST_F(QueueTest, PostToAThreadThatEnded_DropsTheMessage) {
  std::shared_ptr<ThreadQueue> queue;
  std::thread([&] { queue = ThreadQueue::Share(); }).join();
  const auto content = std::make_shared<int>(5);
  queue->Post([content] { FAIL() << "must not run"; });
  EXPECT_EQ(content.use_count(), 1);
  EXPECT_FALSE(queue->NeedsAttention());
}

TEST_F(QueueTest, MessageThatNobodyRan_IsDestroyedWithItsThread) {
  const auto content = std::make_shared<int>(5);
  std::thread([&] { ThreadQueue::Current().Post([content] {}); }).join();
  EXPECT_EQ(content.use_count(), 1);
}

TEST_F(QueueTest, ErrorOfAHandler_IsShownAndEndsNothing) {
  std::vector<std::string> shown;
  HostPorts().messageBox = [&](const std::string& text) { shown.push_back(text); };
  bool ran = false;
  ThreadQueue& queue = ThreadQueue::Current();
  queue.Post([] { throw std::runtime_error("bad handler"); });
  queue.Post([] { throw 1; });
  queue.Post([&] { ran = true; });
  queue.Dispatch();
  EXPECT_TRUE(ran);
  EXPECT_THAT(shown, ElementsAre("bad handler", "an unknown error"));
}

TEST_F(ApplicationTest, ProcessMessages_DoesNothingOnAThreadWithoutAQueue) {
  int turns = 0;
  HostPorts().messagePump = [&] { ++turns; };
  std::thread([] {
    Application.ProcessMessages();
    EXPECT_EQ(ThreadQueue::Existing(), nullptr);
  }).join();
  EXPECT_EQ(turns, 0);
}

TEST_F(ApplicationTest, ProcessMessages_RunsWhatWaits) {
  bool ran = false;
  ThreadQueue::Current().Post([&] { ran = true; });
  EXPECT_TRUE(ThreadQueue::Current().NeedsAttention());
  Application.ProcessMessages();
  EXPECT_TRUE(ran);
  EXPECT_FALSE(ThreadQueue::Current().NeedsAttention());
}

TEST_F(ApplicationTest, ProcessMessages_TurnsTheHostsLoopAtMostEveryTenMilliseconds) {
  using Clock = std::chrono::steady_clock;
  std::vector<Clock::time_point> turns;
  HostPorts().messagePump = [&] { turns.push_back(Clock::now()); };
  // A thread of its own, whose loop was never turned before.
  std::thread([&] {
    ThreadQueue::Current();
    while (turns.size() < 3) Application.ProcessMessages();
  }).join();
  // The interval is counted from the clock reading before the call, so 10 ms may look a little
  // shorter from inside.
  for (size_t i = 1; i < turns.size(); ++i) {
    EXPECT_GE(turns[i] - turns[0],
              (TApplication::kPumpInterval - std::chrono::milliseconds(5)) * i);
  }
}

TEST_F(ApplicationTest, WaitAndDispatch_TurnsTheHostsLoopWhileItWaits) {
  std::thread::id turnedOn;
  HostPorts().messagePump = [&] { turnedOn = std::this_thread::get_id(); };
  while (turnedOn == std::thread::id()) ThreadQueue::Current().WaitAndDispatch();
  EXPECT_EQ(turnedOn, std::this_thread::get_id());
  EXPECT_FALSE(ThreadQueue::Current().NeedsAttention());
}

TEST_F(TimerTest, NewTimer_IsEnabledWithAnIntervalOfASecond) {
  const TTimer timer;
  EXPECT_TRUE(timer.Enabled());
  EXPECT_EQ(timer.Interval(), 1000u);
}

TEST_F(TimerTest, Tick_ComesAgainAndAgainOnTheThreadOfTheTimer) {
  TTimer timer;
  timer.SetInterval(1);
  int ticks = 0;
  std::thread::id ranOn;
  timer.OnTimer = [&](TTimer& sender) {
    EXPECT_EQ(&sender, &timer);
    ranOn = std::this_thread::get_id();
    ++ticks;
  };
  while (ticks < 3) ThreadQueue::Current().WaitAndDispatch();
  EXPECT_EQ(ranOn, std::this_thread::get_id());
}

TEST_F(TimerTest, Tick_DoesNotComeBeforeTheIntervalIsOver) {
  TTimer timer;
  timer.SetInterval(3600 * 1000);
  timer.OnTimer = [](TTimer&) { FAIL() << "an hour too early"; };
  Application.ProcessMessages();
}

TEST_F(TimerTest, LateTicks_AreNotMadeUpFor) {
  TTimer timer;
  timer.SetInterval(1);
  int ticks = 0;
  timer.OnTimer = [&](TTimer&) { ++ticks; };
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  ThreadQueue::Current().Dispatch();
  EXPECT_EQ(ticks, 1);
}

TEST_F(TimerTest, Disabled_DoesNotTick) {
  TTimer timer;
  timer.OnTimer = [](TTimer&) { FAIL() << "disabled"; };
  timer.SetEnabled(false);
  timer.SetInterval(1);
  EXPECT_FALSE(ThreadQueue::Current().NeedsAttention());
  std::this_thread::sleep_for(std::chrono::milliseconds(5));
  ThreadQueue::Current().Dispatch();
}

TEST_F(TimerTest, IntervalZero_DoesNotTick) {
  TTimer timer;
  timer.SetInterval(0);
  EXPECT_FALSE(ThreadQueue::Current().NeedsAttention());
}

TEST_F(TimerTest, Destroyed_LeavesNothingBehind) {
  {
    TTimer timer;
    timer.SetInterval(1);
    timer.OnTimer = [](TTimer&) { FAIL() << "destroyed"; };
  }
  std::this_thread::sleep_for(std::chrono::milliseconds(5));
  EXPECT_FALSE(ThreadQueue::Current().NeedsAttention());
  ThreadQueue::Current().Dispatch();
}

TEST_F(TimerTest, Handler_MayDestroyItsOwnTimer) {
  auto timer = std::make_unique<TTimer>();
  timer->SetInterval(1);
  timer->OnTimer = [&, padding = std::vector<int>(100, 7)](TTimer&) {
    timer.reset();
    EXPECT_EQ(padding[99], 7);
  };
  while (timer) ThreadQueue::Current().WaitAndDispatch();
}

TEST_F(TimerTest, Handler_MayDestroyAnotherTimerThatIsDueToo) {
  auto second = std::make_unique<TTimer>();
  auto first = std::make_unique<TTimer>();
  int ticks = 0;
  first->OnTimer = [&](TTimer&) { ++ticks, second.reset(); };
  second->OnTimer = [&](TTimer&) { ++ticks, first.reset(); };
  first->SetInterval(1);
  second->SetInterval(1);
  std::this_thread::sleep_for(std::chrono::milliseconds(5));
  ThreadQueue::Current().Dispatch();
  EXPECT_EQ(ticks, 1);
}

TEST_F(TimerTest, TimerThatOutlivesItsThread_IsHarmless) {
  std::unique_ptr<TTimer> timer;
  std::thread([&] { timer = std::make_unique<TTimer>(); }).join();
  timer->OnTimer = [](TTimer&) { FAIL() << "its thread is gone"; };
  timer->SetInterval(1);
  EXPECT_EQ(timer->Interval(), 1u);
  EXPECT_TRUE(timer->Enabled());
  std::this_thread::sleep_for(std::chrono::milliseconds(5));
  // It ticks on no other thread either.
  EXPECT_FALSE(ThreadQueue::Current().NeedsAttention());
  ThreadQueue::Current().Dispatch();
  timer.reset();
  EXPECT_FALSE(ThreadQueue::Current().NeedsAttention());
}

}  // namespace
}  // namespace rasterkit
