// Progress callbacks of long operations: which rows count, from what number of rows on, and the
// last percentage. Calls come from the workers' threads at their ends, and from the timer on this
// thread.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <map>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/engine/color_rows.h>
#include <rasterkit/bitmaptools/engine/composition.h>
#include <rasterkit/bitmaptools/engine/contrast_brightness.h>
#include <rasterkit/bitmaptools/engine/manage_threads.h>
#include <rasterkit/bitmaptools/engine/pixel_driver.h>
#include <rasterkit/bitmaptools/engine/pixel_thread.h>
#include <rasterkit/bitmaptools/engine/pixel_transfer.h>
#include <rasterkit/graphics/bitmap.h>

#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

/// Percentages in the order in which each thread was called.
class Reports {
 public:
  TProgressEvent Event() {
    return [this](float percent) {
      const std::lock_guard lock(mutex_);
      ofThreads_[std::this_thread::get_id()].push_back(percent);
    };
  }

  size_t Count() const {
    size_t count = 0;
    for (const auto& [thread, percentages] : ofThreads_) count += percentages.size();
    return count;
  }

  /// Percentages from other threads than the one that created this object: not from the timer.
  size_t CountOfWorkers() const {
    const auto own = ofThreads_.find(owner_);
    return Count() - (own == ofThreads_.end() ? 0 : own->second.size());
  }

  float Most() const {
    float most = 0;
    for (const auto& [thread, percentages] : ofThreads_)
      most = std::max(most, *std::max_element(percentages.begin(), percentages.end()));
    return most;
  }
  bool Rise() const {
    return std::all_of(ofThreads_.begin(), ofThreads_.end(), [](const auto& entry) {
      return entry.second.front() >= 0 && std::is_sorted(entry.second.begin(), entry.second.end());
    });
  }

 private:
  const std::thread::id owner_ = std::this_thread::get_id();
  std::mutex mutex_;
  std::map<std::thread::id, std::vector<float>> ofThreads_;
};

/// An operation with its number of rows.
struct Operation {
  std::string name;
  /// Rows of the target beyond those that are processed.
  int spareRows;
  std::function<void(TBitmap& target, TBitmap& source, int threads, TProgressEvent)> run;
};

TRect Whole(const TBitmap& bitmap) {
  return {0, 0, bitmap.Width(), bitmap.Height()};
}

/// Operations that count rows. The combinations leave out the last row of the target.
std::vector<Operation> RowCounters() {
  return {
      {"AssignPartBitmap", 0,
       [](TBitmap& to, TBitmap& from, int threads, TProgressEvent event) {
         AssignPartBitmap(&to, &from, Whole(to), Whole(from), threads, std::move(event), pmShadow,
                          0, false, false);
       }},
      {"AssignInWhite", 0,
       [](TBitmap& to, TBitmap& from, int threads, TProgressEvent event) {
         AssignInWhite(&to, &from, Whole(to), Whole(from), 0, threads, std::move(event));
       }},
      {"CombineGeoResTrans", 1,
       [](TBitmap& to, TBitmap& from, int threads, TProgressEvent event) {
         CombineGeoResTrans(&to, &from, 50, true, threads, std::move(event));
       }},
      {"CombineGeoResFix", 1,
       [](TBitmap& to, TBitmap& from, int threads, TProgressEvent event) {
         CombineGeoResFix(&to, &from, 50, false, threads, std::move(event));
       }},
      {"CombineBitmapsTransparent", 1,
       [](TBitmap& to, TBitmap& from, int threads, TProgressEvent event) {
         from.SetPixelFormat(pf1bit);
         CombineBitmapsTransparent(&to, &from, 255, threads, std::move(event));
       }},
  };
}

TBitmap Picture(int rows) {
  return TBitmap(test::GradientRaster(pf24bit, 4, rows));
}

TEST(ProgressTest, UpTo1000RowsNothingIsReported) {
  for (const Operation& operation : RowCounters())
    for (const int rows : {5, 1000}) {
      TBitmap target = Picture(rows + operation.spareRows), source = Picture(rows + 1);
      Reports reports;
      operation.run(target, source, 2, reports.Event());
      EXPECT_EQ(reports.Count(), 0u) << operation.name << ", " << rows;
    }
}

TEST(ProgressTest, From1001RowsOnEveryWorkerReportsAndTheLastOneReports100Percent) {
  for (const Operation& operation : RowCounters())
    for (const int threads : {1, 2, 7}) {
      TBitmap target = Picture(1001 + operation.spareRows), source = Picture(1002);
      Reports reports;
      operation.run(target, source, threads, reports.Event());
      EXPECT_EQ(reports.CountOfWorkers(), static_cast<size_t>(threads)) << operation.name;
      EXPECT_TRUE(reports.Rise()) << operation.name << ", " << threads;
      EXPECT_EQ(reports.Most(), 100.0f) << operation.name << ", " << threads;
    }
}

TEST(ProgressTest, TheRowsOfTheTargetRectangleDecideAndNotThoseOfTheBitmaps) {
  TBitmap target = Picture(3000), source = Picture(3000);
  for (const int rows : {1000, 1001}) {
    Reports reports;
    AssignPartBitmap(&target, &source, {0, 0, 4, rows}, Whole(source), 2, reports.Event(), pmShadow,
                     0, false, false);
    EXPECT_EQ(reports.Count() > 0, rows == 1001);
    EXPECT_EQ(reports.Most(), rows == 1001 ? 100.0f : 0.0f);
  }
}

TEST(ProgressTest, RowsThatShowNothingOfTheSourceCountToo) {
  TBitmap target = Picture(2000), source = Picture(10);
  Reports reports;
  AssignPartBitmap(&target, &source, {0, 0, 4, 2000}, {0, 0, 4, 2000}, 1, reports.Event(), pmShadow,
                   0, false, false);
  EXPECT_EQ(reports.Most(), 100.0f);
}

TEST(ProgressTest, RowsBelowTheTargetAreNeverDone) {
  TBitmap target = Picture(1001), source = Picture(1001);
  Reports reports;
  AssignPartBitmap(&target, &source, {0, 0, 4, 2002}, Whole(source), 1, reports.Event(), pmShadow,
                   0, false, false);
  EXPECT_EQ(reports.Most(), 50.0f);
}

TEST(ProgressTest, BandsThatReachBeyondTheRectangleAreCountedAsWell) {
  // 54 bands of 19 rows: the last but one ends at row 1007 of 1001.
  TBitmap target = Picture(1100), source = Picture(1100);
  Reports reports;
  AssignPartBitmap(&target, &source, {0, 0, 4, 1001}, {0, 0, 4, 1001}, 54, reports.Event(),
                   pmShadow, 0, false, false);
  EXPECT_EQ(reports.Most(), static_cast<float>(100.0 * 1007 / 1001));
}

TEST(ProgressTest, NoCallbackIsNeededForAnyNumberOfRows) {
  for (const Operation& operation : RowCounters())
    for (const int threads : {1, 3}) {
      TBitmap target = Picture(1200), source = Picture(1200), other = Picture(1200);
      operation.run(target, source, threads, nullptr);
      Reports reports;
      TBitmap again = Picture(1200);
      operation.run(again, other, threads, reports.Event());
      EXPECT_TRUE(test::SamePixels(target, again)) << operation.name;
    }
}

/// Throws at the first call.
class Refusal {
 public:
  TProgressEvent Event() {
    return [this](float) {
      ++calls_;
      throw std::runtime_error("no");
    };
  }
  int Calls() const { return calls_; }

 private:
  std::atomic<int> calls_{0};
};

TEST(ProgressTest, AnExceptionOfTheCallbackReachesTheCaller) {
  for (const Operation& operation : RowCounters()) {
    for (const int threads : {1, 3}) {
      TBitmap target = Picture(1200), source = Picture(1200);
      target.SetModified(false);
      Refusal refusal;
      EXPECT_THROW(operation.run(target, source, threads, refusal.Event()), std::runtime_error)
          << operation.name;
      EXPECT_EQ(refusal.Calls(), 1) << "the callback is not called again";
      EXPECT_TRUE(target.Modified()) << "rows that are done stay changed";
    }
  }
}

TEST(ProgressTest, AnExceptionOfTheCallbackEndsTheWorkers) {
  TBitmap target = Picture(1200), source = Picture(1200);
  const std::unique_ptr<TBitmap> before = target.Clone();
  Refusal refusal;
  TManageThreads manager(3, 1200, refusal.Event());
  ASSERT_TRUE(manager.InitByteBits(target, source));
  manager.ReportProgress();
  EXPECT_TRUE(manager.IsEnded());
  EXPECT_THROW(detail::RunPixelWorkers(manager,
                                       [&](int32_t i) {
                                         auto worker =
                                             MakeThread<TPixelThread>(manager, i, ptAssignPart);
                                         const TRect whole{0, 0, target.Width(), 1200};
                                         worker->InitPixelMode(pmOverwrite, 0, false);
                                         worker->InitTarSrcRect(whole, whole);
                                         return worker;
                                       }),
               std::runtime_error);
  EXPECT_EQ(manager.AnzProg, 0);
  EXPECT_EQ(refusal.Calls(), 1) << "the callback is not called again";
  EXPECT_TRUE(test::SamePixels(*before, target));
}

TEST(ProgressTest, AnExceptionOfTheCallbackIsItsLastCall_When_ThreadsReportAtTheSameTime) {
  std::atomic<int> calls{0};
  // Gives the other thread time to call as well, before the exception.
  TManageThreads manager(2, 1200, [&calls](float) {
    ++calls;
    for (int i = 0; i < 100 && calls < 2; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    throw std::runtime_error("no");
  });
  {
    const std::jthread first([&] { manager.ReportProgress(); });
    const std::jthread second([&] { manager.ReportProgress(); });
  }
  EXPECT_EQ(calls, 1);
}

TEST(ProgressTest, ContrastAndBrightnessEndAtTheNextRow) {
  for (const auto change : {detail::ContrastRows, detail::BrightenRows}) {
    TBitmap bitmap = Picture(10), expected = Picture(10);
    int asked = 0;
    change(bitmap, 0, 9, 20, detail::Spared::none, [&asked] { return ++asked <= 4; });
    change(expected, 0, 3, 20, detail::Spared::none, {});
    EXPECT_EQ(asked, 5);
    EXPECT_TRUE(test::SamePixels(expected, bitmap));
  }
}

using ChangeOfColors = void (*)(TBitmap*, int32_t, int32_t, TProgressEvent);

TEST(ProgressTest, ContrastAndBrightnessReport0PercentOnceAWorkerAtItsEnd) {
  for (const ChangeOfColors change : {Kontrast, Helligkeit})
    for (const int rows : {1000, 1001}) {
      TBitmap bitmap = Picture(rows);
      Reports reports;
      change(&bitmap, 20, 3, reports.Event());
      if (rows == 1000) {
        EXPECT_EQ(reports.Count(), 0u);
      } else {
        EXPECT_EQ(reports.CountOfWorkers(), 3u);
      }
      EXPECT_EQ(reports.Most(), 0.0f) << "these rows are not counted";
    }
}

TEST(ProgressTest, ContrastAndBrightnessInTheCallingThreadAndOfPalettesReportNothing) {
  for (const ChangeOfColors change : {Kontrast, Helligkeit}) {
    Reports reports;
    TBitmap bitmap = Picture(1500);
    change(&bitmap, 20, 1, reports.Event());
    bitmap.SetPixelFormat(pf8bit);
    change(&bitmap, 20, 3, reports.Event());
    EXPECT_EQ(reports.Count(), 0u);
  }
}

TEST(ProgressTest, AnExceptionDuringContrastOrBrightnessReachesTheCaller) {
  for (const ChangeOfColors change : {Kontrast, Helligkeit}) {
    TBitmap bitmap = Picture(1200);
    Refusal refusal;
    EXPECT_THROW(change(&bitmap, 20, 3, refusal.Event()), std::runtime_error);
  }
}

TEST(ProgressTest, WhatIsBlendedReportsNothing) {
  TBitmap target = Picture(1500), source = Picture(1500);
  Reports reports;
  CombineBitmapsTransparent(&target, &source, 100, 2, reports.Event());
  source.SetPixelFormat(pf1bit);
  CombineBitmapsTransparent(&target, &source, 254, 2, reports.Event());
  target.SetPixelFormat(pf32bit);
  CombineBitmapsTransparent(&target, &source, 255, 2, reports.Event());
  EXPECT_EQ(reports.Count(), 0u);
}

}  // namespace
}  // namespace rasterkit
