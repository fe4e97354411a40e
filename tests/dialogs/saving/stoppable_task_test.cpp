#include <QTest>
#include <atomic>
#include <thread>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/saving/stoppable_task.h>

namespace rasterkit::test {
namespace {

constexpr int kPatience = 20000;

using detail::StoppableTask;

/// Runs until it is stopped.
SavingView::Job Endless(std::atomic<bool>& isRunning) {
  return [&isRunning](const std::stop_token& stop) {
    isRunning = true;
    while (!stop.stop_requested()) std::this_thread::yield();
    isRunning = false;
    return SavingView::Answer([] { ADD_FAILURE() << "a stopped job was answered"; });
  };
}

TEST(StoppableTask, TheLatestJob_Should_BeAnswered) {
  StoppableTask task(1);
  int answered = 0;
  for (int i = 1; i <= 3; ++i) {
    task.Start([&answered, i](const std::stop_token&) {
      return SavingView::Answer([&answered, i] { answered = i; });
    });
  }
  EXPECT_TRUE(QTest::qWaitFor([&] { return answered != 0; }, kPatience));
  EXPECT_EQ(answered, 3);
}

TEST(StoppableTask, AJob_Should_WorkUnderTheLimitsOfItsStart) {
  StoppableTask task(1);
  uint64_t side = 0;
  {
    Limits limits;
    limits.side = 77;
    const LimitsScope scope(limits);
    task.Start([&side](const std::stop_token&) {
      return SavingView::Answer([&side, found = CurrentLimits().side] { side = found; });
    });
  }
  EXPECT_TRUE(QTest::qWaitFor([&] { return side != 0; }, kPatience));
  EXPECT_EQ(side, 77U);
}

TEST(StoppableTask, ARunningJob_Should_BeStoppedByTheNextOne) {
  std::atomic<bool> isRunning = false;
  StoppableTask task(1);
  task.Start(Endless(isRunning));
  ASSERT_TRUE(QTest::qWaitFor([&] { return isRunning.load(); }, kPatience));
  bool isAnswered = false;
  task.Start(
      [&](const std::stop_token&) { return SavingView::Answer([&] { isAnswered = true; }); });
  EXPECT_TRUE(QTest::qWaitFor([&] { return isAnswered; }, kPatience));
  EXPECT_FALSE(isRunning);
}

TEST(StoppableTask, AJob_Should_BeStoppedWithItsTask) {
  std::atomic<bool> isRunning = false;
  auto task = std::make_unique<StoppableTask>(1);
  task->Start(Endless(isRunning));
  ASSERT_TRUE(QTest::qWaitFor([&] { return isRunning.load(); }, kPatience));
  task.reset();
  EXPECT_TRUE(QTest::qWaitFor([&] { return !isRunning.load(); }, kPatience));
}

TEST(StoppableTask, AStoppedJob_Should_NotStart) {
  std::atomic<bool> isRunning = false;
  StoppableTask task(1);
  task.Start(Endless(isRunning));
  task.Stop();
  bool isLater = false;
  QTimer::singleShot(50, [&] { isLater = true; });
  EXPECT_TRUE(QTest::qWaitFor([&] { return isLater; }, kPatience));
  EXPECT_FALSE(isRunning);
}

}  // namespace
}  // namespace rasterkit::test
