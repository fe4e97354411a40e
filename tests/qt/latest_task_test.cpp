#include <QTest>
#include <stdexcept>

#include <gtest/gtest.h>

#include <rasterkit/qt/latest_task.h>

namespace rasterkit::detail {
namespace {

TEST(LatestTask, WorkThatThrows_Should_HaveNoAnswer_AndLeaveTheTaskUsable) {
  LatestTask task;
  int answers = 0;
  const auto answer = [&answers] { ++answers; };
  task.Run(
      [](const std::atomic<bool>&) -> LatestTask::Answer { throw std::runtime_error("no memory"); },
      answer);
  task.Run([](const std::atomic<bool>&) -> LatestTask::Answer { throw 7; }, answer);
  QTest::qWait(50);
  EXPECT_EQ(answers, 0);
  task.Run([answer](const std::atomic<bool>&) -> LatestTask::Answer { return answer; }, answer);
  EXPECT_TRUE(QTest::qWaitFor([&] { return answers == 1; }, 20000));
}

}  // namespace
}  // namespace rasterkit::detail
