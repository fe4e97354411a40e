#include <atomic>
#include <chrono>
#include <ctime>
#include <thread>

#include <gtest/gtest.h>
#include <pthread.h>

#include <rasterkit/pictures/picture.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_share.h>
#include <rasterkit/runtime/memory/pixel_memory.h>

#include "tests/support/sanitizers.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"

/// Threads, limits, progress and cancellation of one call.
namespace rasterkit {
namespace {

using test::GradientRaster;
using test::TempFolder;

Picture PictureOf(int width, int height) {
  return Picture::Of(std::make_unique<TBitmap>(GradientRaster(pf24bit, width, height)));
}

std::string Written(const TempFolder& folder, const char* name, int width, int height) {
  PictureOf(width, height).Save(folder / name);
  return folder / name;
}

TEST(PictureRun, ReportsProgressFromZeroToOneOnTheCallingThread) {
  const TempFolder folder;
  for (const char* name : {"a.jpg", "a.png", "a.tif", "a.bmp"}) {
    SCOPED_TRACE(name);
    Picture picture = Picture::Open(Written(folder, name, 300, 400));
    picture.Rotate(10);
    std::vector<double> values;
    bool isElsewhere = false;
    rasterkit::Run run;
    run.progress = [&, id = std::this_thread::get_id()](double value) {
      isElsewhere |= std::this_thread::get_id() != id;
      values.push_back(value);
    };
    picture.Save(folder / name, {}, run);
    ASSERT_GE(values.size(), 3u);
    EXPECT_TRUE(std::is_sorted(values.begin(), values.end()));
    EXPECT_EQ(values.front(), 0);
    EXPECT_EQ(values.back(), 1);
    EXPECT_FALSE(isElsewhere);
  }
}

TEST(PictureRun, ProgressMayEndTheCall) {
  const TempFolder folder;
  Picture picture = Picture::Open(Written(folder, "a.png", 300, 400));
  struct Enough {};
  rasterkit::Run run;
  run.progress = [](double value) {
    if (value > 0.3) throw Enough();
  };
  EXPECT_THROW(picture.Save(folder / "b.png", {}, run), Enough);
  EXPECT_EQ(folder.Names(), (std::vector<std::string>{"a.png"}));
}

TEST(PictureRun, ThatIsCanceledLeavesNoFile) {
  const TempFolder folder;
  const std::string file = Written(folder, "a.png", 300, 400);
  const std::string before = test::ReadFile(file);
  for (const char* name : {"a.png", "b.jpg", "b.tif", "b.bmp"}) {
    for (const double from : {-1.0, 0.0, 0.2, 0.5, 0.7, 0.95}) {
      SCOPED_TRACE(std::string(name) + " " + std::to_string(from));
      std::stop_source stop;
      rasterkit::Run run;
      run.cancel = stop.get_token();
      if (from < 0) stop.request_stop();
      run.progress = [&](double value) {
        if (value >= from) stop.request_stop();
      };
      EXPECT_THROW(Picture::Open(file).Rotate(10).Save(folder / name, {}, run), CanceledError);
      EXPECT_EQ(folder.Names(), (std::vector<std::string>{"a.png"}));
      EXPECT_TRUE(test::ReadFile(file) == before);
    }
  }
  std::stop_source stop;
  stop.request_stop();
  rasterkit::Run run;
  run.cancel = stop.get_token();
  const Picture picture = Picture::Open(file);
  EXPECT_THROW(picture.Bitmap(run), CanceledError);
  EXPECT_THROW(picture.Numbers(run), CanceledError);
  TMemoryStream stream;
  EXPECT_THROW(picture.Save(stream, {}, run), CanceledError);
  EXPECT_EQ(picture.Bitmap()->Width(), 300);
}

/// Seconds that the thread has computed: what other programs do at the same time does not count.
double ComputedBy(clockid_t clock) {
  timespec time{};
  EXPECT_EQ(clock_gettime(clock, &time), 0);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

/// Saves and lets another thread cancel as soon as this progress is reached; returns the seconds
/// that the call computed afterwards.
double SecondsToCancel(const Picture& picture, const std::string& target, double from) {
  clockid_t clock{};
  EXPECT_EQ(pthread_getcpuclockid(pthread_self(), &clock), 0);
  std::stop_source stop;
  std::atomic<bool> isDue = false;
  double requested = 0;
  std::jthread other([&] {
    isDue.wait(false);
    requested = ComputedBy(clock);
    stop.request_stop();
  });
  rasterkit::Run run;
  run.threads = 1;
  run.cancel = stop.get_token();
  run.progress = [&](double value) {
    if (value < from || isDue.exchange(true)) return;
    isDue.notify_one();
  };
  EXPECT_THROW(picture.Save(target, {}, run), CanceledError) << target << " " << from;
  const double ended = ComputedBy(clock);
  isDue = true;
  isDue.notify_one();
  other.join();
  return ended - requested;
}

TEST(PictureRun, OfALargePictureEndsWithin100Milliseconds) {
  if (test::IsSanitized()) GTEST_SKIP() << "a sanitizer makes everything slower";
  const TempFolder folder;
  // So large that the other thread cancels before the work is done.
  for (const char* name : {"a.jpg", "a.png", "a.tif"}) {
    const std::string file = Written(folder, name, 6000, 5000);
    Picture resized = Picture::Open(file);
    resized.Rotate(10).Resize(5000, 5000);
    const std::vector<std::string> before = folder.Names();
    for (const double from : {0.0, 0.3, 0.6}) {
      EXPECT_LT(SecondsToCancel(resized, folder / "b.png", from), 0.1) << name << " " << from;
    }
    // Pixels that are copied are decoded first.
    EXPECT_LT(SecondsToCancel(Picture::Open(file), folder / name, 0), 0.1) << name;
    // Those of a JPEG file are moved; the new edges are on the borders of blocks.
    Picture turned = Picture::Open(file);
    turned.Crop({0, 0, 5984, 4992}).Turn(1);
    for (const double from : {0.0, 0.3, 0.6}) {
      EXPECT_LT(SecondsToCancel(turned, folder / name, from), 0.1) << name << " " << from;
    }
    EXPECT_EQ(folder.Names(), before);
  }
}

TEST(PictureRun, KeepsTheLimitsOfTheCall) {
  const TempFolder folder;
  const std::string file = Written(folder, "a.png", 300, 400);
  rasterkit::Run run;
  run.limits = Limits();
  run.limits->pictureBytes = 100000;
  const Picture picture = Picture::Open(file);
  EXPECT_THROW(picture.Bitmap(run), LimitError);
  run.limits = Limits();
  run.limits->pixels = 100;
  EXPECT_THROW(picture.Save(folder / "b.jpg", {}, run), LimitError);
  run.limits = Limits();
  run.limits->seconds = 0;
  EXPECT_THROW(picture.Save(folder / "b.jpg", {}, run), TimeLimitError);
  EXPECT_EQ(folder.Names(), (std::vector<std::string>{"a.png"}));
  EXPECT_EQ(picture.Bitmap()->Width(), 300);
}

TEST(PictureRun, WorksOnSeveralThreadsAtOnce) {
  const TempFolder folder;
  const std::string file = Written(folder, "a.tif", 300, 400);
  Picture picture = Picture::Open(file);
  picture.Rotate(10);
  const auto expected = picture.Bitmap();
  std::atomic<int> wrong = 0;
  {
    std::vector<std::jthread> threads;
    for (int i = 0; i < 4; ++i) {
      threads.emplace_back([&, i] {
        for (int n = 0; n < 3; ++n) {
          const auto bitmap = picture.Bitmap();
          for (int y = 0; y < bitmap->Height(); ++y) {
            if (bitmap->PixelColor(y % bitmap->Width(), y) !=
                expected->PixelColor(y % bitmap->Width(), y)) {
              ++wrong;
            }
          }
          picture.Save(folder / ("out" + std::to_string(i) + ".png"));
        }
      });
    }
  }
  EXPECT_EQ(wrong, 0);
  EXPECT_TRUE(test::ReadFile(folder / "out0.png") == test::ReadFile(folder / "out3.png"));
}

TEST(PictureRun, TakesNoMoreMemoryThanThePlanSaid) {
  const TempFolder folder;
  for (const char* source : {"a.jpg", "a.png", "a.tif", "a.bmp"}) {
    const std::string file = Written(folder, source, 3000, 2000);
    for (const char* target : {"b.jpg", "b.png", "b.tif", "b.bmp"}) {
      SCOPED_TRACE(std::string(source) + " to " + target);
      Picture picture = Picture::Open(file);
      picture.Rotate(10);
      const uint64_t before = ProcessPictureBytes();
      uint64_t most = 0;
      rasterkit::Run run;
      run.progress = [&](double) { most = std::max(most, ProcessPictureBytes() - before); };
      const Report plan = picture.Plan(folder / target);
      picture.Save(folder / target, {}, run);
      EXPECT_LE(most, plan.memory);
      EXPECT_GT(most, 3000u * 2000u * 3u);
      // A useful bound is not far above.
      EXPECT_LE(plan.memory, 12 * most);
    }
  }
}

}  // namespace
}  // namespace rasterkit
