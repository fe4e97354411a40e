#include <QTest>
#include <chrono>
#include <memory>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/qt/preview/preview_loader.h>
#include <rasterkit/strings/strings.h>

#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::detail {
namespace {

using testing::ElementsAre;

class PreviewLoaderTest : public testing::Test {
 protected:
  /// A bitmap file that is this wide.
  std::string File(int width, int height = 9) {
    const std::string name = folder_ / (std::to_string(width) + ".bmp");
    test::GradientBitmap(pf24bit, width, height).SaveToFile(name);
    return name;
  }

  std::unique_ptr<PreviewLoader> NewLoader() {
    return std::make_unique<PreviewLoader>(
        [this](const Preview& preview) { widths_.push_back(preview.width); });
  }

  bool WaitForAnswers(size_t count) {
    return QTest::qWaitFor([&] { return widths_.size() >= count; }, 20000);
  }

  test::TempFolder folder_;
  std::vector<int> widths_;
};

TEST_F(PreviewLoaderTest, Load_Should_AnswerOnThisThread) {
  std::thread::id thread;
  PreviewLoader loader([&](const Preview& preview) {
    thread = std::this_thread::get_id();
    widths_.push_back(preview.width);
  });
  loader.Load(File(31), 100);
  ASSERT_TRUE(WaitForAnswers(1));
  EXPECT_THAT(widths_, ElementsAre(31));
  EXPECT_EQ(thread, std::this_thread::get_id());
}

TEST_F(PreviewLoaderTest, Load_Should_AnswerTheLastOneOnly_When_ManyAreAskedFor) {
  const auto loader = NewLoader();
  for (const int width : {31, 32, 33, 34}) loader->Load(File(width), 100);
  ASSERT_TRUE(WaitForAnswers(1));
  QTest::qWait(50);
  EXPECT_THAT(widths_, ElementsAre(34));
  loader->Load(File(35), 100);
  ASSERT_TRUE(WaitForAnswers(2));
  EXPECT_THAT(widths_, ElementsAre(34, 35));
}

TEST_F(PreviewLoaderTest, Cancel_Should_LeaveTheFileUnanswered) {
  const auto loader = NewLoader();
  loader->Load(File(31), 100);
  loader->Load(File(32), 100);
  loader->Cancel();
  QTest::qWait(100);
  EXPECT_TRUE(widths_.empty());
  loader->Load(File(33), 100);
  ASSERT_TRUE(WaitForAnswers(1));
  EXPECT_THAT(widths_, ElementsAre(33));
}

TEST_F(PreviewLoaderTest, Destruction_Should_BeSafe_When_DecodingGoesOn) {
  const std::string file = File(1500, 1200);
  for (int i = 0; i < 30; ++i) {
    auto loader = NewLoader();
    loader->Load(file, 100);
    // From before the file is opened to after the answer is posted.
    std::this_thread::sleep_for(std::chrono::microseconds(i * 400));
    loader.reset();
  }
  JoinLateTasks();
  QTest::qWait(20);
  EXPECT_TRUE(widths_.empty());
}

TEST_F(PreviewLoaderTest, Exception_Should_StopAtTheAnswer) {
  int answers = 0;
  PreviewLoader loader([&](const Preview&) {
    ++answers;
    throw 1;
  });
  loader.Load(File(31), 100);
  EXPECT_TRUE(QTest::qWaitFor([&] { return answers == 1; }, 20000));
}

}  // namespace
}  // namespace rasterkit::detail
