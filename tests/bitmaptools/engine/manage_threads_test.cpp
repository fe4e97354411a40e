#include <chrono>
#include <cmath>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/engine/manage_threads.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/threads/application.h>
#include <rasterkit/runtime/threads/thread_queue.h>

#include "tests/reference/extended.h"

namespace rasterkit {
namespace {

using reference::Extended;
using reference::RoundEven;

// The band division as it reads, in extended precision; empty when it divides by zero.
std::vector<int32_t> PlainBands(int32_t threads, int32_t height) {
  if (threads < 1) threads = 0;
  if (height < Extended(threads) / 4)
    threads = static_cast<int32_t>(RoundEven(Extended(height) / 4));
  if (threads == 0) return {};
  std::vector<int32_t> limits(static_cast<size_t>(threads) + 1);
  const int64_t step = RoundEven(Extended(height) / threads);
  for (int32_t i = 1; i < threads; ++i)
    limits[static_cast<size_t>(i)] = static_cast<int32_t>(i * step);
  limits.back() = height;
  return limits;
}

std::vector<int32_t> Bands(int32_t threads, int32_t height) {
  TManageThreads manager(threads, height, nullptr);
  EXPECT_EQ(static_cast<size_t>(manager.AnzThreads) + 1, manager.iBis.size());
  return manager.iBis;
}

TEST(ManageThreadsTest, BandsEqualThePlainDivisionFor0To300RowsByMinus1To130Threads) {
  int divisions = 0, failures = 0;
  for (int32_t height = 0; height <= 300; ++height)
    for (int32_t threads = -1; threads <= 130; ++threads, ++divisions) {
      const std::vector<int32_t> expected = PlainBands(threads, height);
      if (!expected.empty()) {
        ASSERT_EQ(Bands(threads, height), expected) << height << " rows, " << threads << " threads";
        continue;
      }
      ++failures;
      ASSERT_THROW(TManageThreads(threads, height, nullptr), DivisionByZeroError)
          << height << " rows, " << threads << " threads";
    }
  EXPECT_EQ(divisions, 301 * 132);
  EXPECT_GT(failures, 602);
}

TEST(ManageThreadsTest, TenRowsByFourThreadsGiveHalvesToEven) {
  EXPECT_EQ(Bands(4, 10), (std::vector<int32_t>{0, 2, 4, 6, 10}));
}

TEST(ManageThreadsTest, ElevenRowsBySixThreadsLeaveOneRowForTheLast) {
  EXPECT_EQ(Bands(6, 11), (std::vector<int32_t>{0, 2, 4, 6, 8, 10, 11}));
}

TEST(ManageThreadsTest, NineRowsBySixThreadsReachPastTheLastRow) {
  EXPECT_EQ(Bands(6, 9), (std::vector<int32_t>{0, 2, 4, 6, 8, 10, 9}));
}

TEST(ManageThreadsTest, ThreeRowsBySixteenThreadsBecomeOneBand) {
  EXPECT_EQ(Bands(16, 3), (std::vector<int32_t>{0, 3}));
}

TEST(ManageThreadsTest, OneRowByEightThreadsIsADivisionByZero) {
  try {
    TManageThreads manager(8, 1, nullptr);
    FAIL() << "no exception";
  } catch (const Error& error) {
    EXPECT_NE(std::string(error.what()).find("division by zero"), std::string::npos);
  }
}

TEST(ManageThreadsTest, NoThreadsOrNoRowsAreADivisionByZero) {
  EXPECT_THROW(TManageThreads(0, 10, nullptr), DivisionByZeroError);
  EXPECT_THROW(TManageThreads(-7, 10, nullptr), DivisionByZeroError);
  EXPECT_THROW(TManageThreads(4, 0, nullptr), DivisionByZeroError);
  EXPECT_THROW(TManageThreads(4, -100, nullptr), DivisionByZeroError);
}

TEST(ManageThreadsTest, WithoutACallbackThereIsNoTimer) {
  const TManageThreads manager(2, 1000, nullptr);
  EXPECT_EQ(manager.Timer, nullptr);
  EXPECT_EQ(manager.MaxProg, 0);
}

TEST(ManageThreadsTest, WithACallbackTheTimerTicksEvery100Milliseconds) {
  int calls = 0;
  TManageThreads manager(2, 1001, [&](float) { ++calls; });
  ASSERT_NE(manager.Timer, nullptr);
  EXPECT_EQ(manager.Timer->Interval(), 100u);
  EXPECT_TRUE(manager.Timer->Enabled());
  EXPECT_EQ(manager.MaxProg, 1001);
  EXPECT_EQ(calls, 0);
  while (calls == 0) ThreadQueue::Current().WaitAndDispatch();
  EXPECT_GE(calls, 1);
}

TEST(ManageThreadsTest, ProgressIsTheShareOfTheRowsInSinglePrecision) {
  std::vector<float> reports;
  TManageThreads manager(2, 3, [&](float prozent) { reports.push_back(prozent); });
  manager.ProgressTimer();
  manager.DoProgress();
  manager.ProgressTimer();
  manager.DoProgress();
  manager.DoProgress();
  manager.ProgressTimer();
  EXPECT_EQ(reports, (std::vector<float>{0.0f, static_cast<float>(100.0 / 3), 100.0f}));
}

TEST(ManageThreadsTest, ThePercentageStaysRightAboveWhat32BitsHold) {
  float last = 0;
  TManageThreads manager(1, 50'000'000, [&](float prozent) { last = prozent; });
  manager.AnzProg = 25'000'000;
  manager.ProgressTimer();
  EXPECT_EQ(last, 50.0f);
}

TEST(ManageThreadsTest, ASingleBandKeepsTheCallersQueueAliveAtEveryRow) {
  int messages = 0;
  for (int threads : {1, 2}) {
    TManageThreads manager(threads, 10, nullptr);
    ThreadQueue::Current().Post([&] { ++messages; });
    manager.DoProgress();
    EXPECT_EQ(messages, 1) << "with two bands the message still waits";
    EXPECT_EQ(manager.AnzProg, 1);
  }
  Application.ProcessMessages();
  EXPECT_EQ(messages, 2);
}

// As the pixel workers wait: freed at their end, counted down on the driver's queue.
class CountingWorker : public TThread {
 public:
  CountingWorker(TManageThreads& manager, int32_t first, int32_t last, std::vector<int>& rows)
      : TThread(true), manager_(manager), first_(first), last_(last), rows_(rows) {
    OnTerminate = [this](TThread& sender) { manager_.ThreadDone(sender); };
  }

 protected:
  void Execute() override {
    for (int32_t y = first_; y <= last_; ++y) {
      ++rows_.at(static_cast<size_t>(y));
      manager_.DoProgress();
    }
    if (manager_.Timer) manager_.ProgressTimer();
  }

 private:
  TManageThreads& manager_;
  int32_t first_, last_;
  std::vector<int>& rows_;
};

void RunCountingWorkers(int threads, int32_t rows, TProgressEvent progress) {
  TManageThreads manager(threads, rows, std::move(progress));
  std::vector<int> done(static_cast<size_t>(rows));
  const auto bands = manager.iBis;
  for (size_t i = 0; i + 1 < bands.size(); ++i)
    TThread::StartAndFree(MakeThread<CountingWorker>(manager, bands[i], bands[i + 1] - 1, done));
  while (manager.AnzThreads > 0) ThreadQueue::Current().WaitAndDispatch();
  EXPECT_EQ(done, std::vector<int>(static_cast<size_t>(rows), 1));
  EXPECT_GE(manager.AnzProg, rows);
}

TEST(ManageThreadsTest, WorkersThatFreeThemselvesCountDownToZero) {
  for (int threads : {1, 2, 3, 7, 16}) RunCountingWorkers(threads, 500, nullptr);
}

TEST(ManageThreadsTest, AWorkerBeyondTheLastRowEndsAloneAndTheDriverStillReturns) {
  RunCountingWorkers(6, 9, nullptr);
}

TEST(ManageThreadsTest, WorkersReportOnceEachAtTheirEnd) {
  std::atomic<int> reports{0};
  RunCountingWorkers(3, 1200, [&](float) { ++reports; });
  EXPECT_GE(reports, 3);
}

TBitmap Bitmap(TPixelFormat format) {
  TBitmap bitmap;
  bitmap.ResetPixels(format, 4, 4);
  return bitmap;
}

struct FormatPair {
  TPixelFormat target, source;
  bool possible;
};

class InitByteBitsTest : public testing::TestWithParam<FormatPair> {};

TEST_P(InitByteBitsTest, KnowsWhichPairsCanBeMoved) {
  const FormatPair pair = GetParam();
  TBitmap target = Bitmap(pair.target), source = Bitmap(pair.source);
  TManageThreads manager(1, 4, nullptr);
  EXPECT_EQ(manager.InitByteBits(target, source), pair.possible);
  EXPECT_EQ(manager.TarBmp, &target);
  EXPECT_EQ(manager.SrcBmp, &source);
}

INSTANTIATE_TEST_SUITE_P(
    Pairs, InitByteBitsTest,
    testing::Values(FormatPair{pf24bit, pf24bit, true}, FormatPair{pf24bit, pf32bit, true},
                    FormatPair{pf32bit, pf8bit, true}, FormatPair{pf24bit, pf1bit, true},
                    FormatPair{pf24bit, pf4bit, true}, FormatPair{pf8bit, pf8bit, true},
                    FormatPair{pf8bit, pf4bit, true}, FormatPair{pf8bit, pf24bit, false},
                    FormatPair{pf8bit, pf32bit, false}, FormatPair{pf4bit, pf8bit, false},
                    FormatPair{pf4bit, pf1bit, true}, FormatPair{pf1bit, pf4bit, true},
                    FormatPair{pf1bit, pf24bit, false}, FormatPair{pf16bit, pf16bit, false},
                    FormatPair{pf15bit, pf24bit, false}, FormatPair{pf24bit, pf16bit, false},
                    FormatPair{pf32bit, pf15bit, false}, FormatPair{pfDevice, pf24bit, true},
                    FormatPair{pf24bit, pfDevice, true}));

TEST(ManageThreadsTest, EqualFormatsGiveTheSourceTheTargetsBytes) {
  TBitmap target = Bitmap(pf8bit), source = Bitmap(pf8bit);
  TManageThreads manager(1, 4, nullptr);
  ASSERT_TRUE(manager.InitByteBits(target, source));
  EXPECT_EQ(manager.nTarBytes, 1);
  EXPECT_EQ(manager.nSrcBytes, 1);
  EXPECT_EQ(manager.nTarBit, 0);

  TBitmap nibbles = Bitmap(pf4bit);
  ASSERT_TRUE(manager.InitByteBits(nibbles, nibbles));
  EXPECT_EQ(manager.nSrcBytes, 0);
  EXPECT_EQ(manager.nSrcBit, 4);
  EXPECT_EQ(manager.nTarBit, 4);
}

TEST(ManageThreadsTest, AFormatWithoutANameIsSwitchedTo32Bit) {
  TBitmap target = Bitmap(pfDevice), source = Bitmap(pf1bit);
  TManageThreads manager(1, 4, nullptr);
  ASSERT_TRUE(manager.InitByteBits(target, source));
  EXPECT_EQ(target.PixelFormat(), pf32bit);
  EXPECT_EQ(manager.nTarBytes, 4);
  EXPECT_EQ(manager.nSrcBytes, 0);
  EXPECT_EQ(manager.nSrcBit, 1);
}

HPALETTE Palette(std::initializer_list<tagPALETTEENTRY> entries) {
  return HPALETTE(std::span(entries.begin(), entries.size()));
}

TEST(ManageThreadsTest, PaletteFactsNameBlackAndWhiteEntries) {
  TBitmap target = Bitmap(pf8bit), source = Bitmap(pf4bit);
  target.SetPalette(Palette({{9, 9, 9, 0}, {255, 255, 255, 0}, {0, 0, 0, 0}, {0, 0, 0, 0}}));
  source.SetPalette(Palette({{1, 2, 3, 0}, {255, 255, 255, 0}, {4, 5, 6, 0}, {255, 255, 255, 0}}));
  TManageThreads manager(1, 4, nullptr);
  ASSERT_TRUE(manager.InitByteBits(target, source));
  EXPECT_EQ(manager.SrcAnz, 4);
  EXPECT_EQ(manager.SrcWhite, 1);
  EXPECT_EQ(manager.SrcLastWhite, 3);
  EXPECT_EQ((*manager.SrcCol)[2].peGreen, 5);
  EXPECT_EQ(manager.TarAnz, 4);
  EXPECT_EQ(manager.TarBlack, 2);
  EXPECT_EQ(manager.TarWhite, 1);
}

TEST(ManageThreadsTest, WithoutBlackTheEntryOfTheSmallestLargestDistanceStandsForIt) {
  TBitmap target = Bitmap(pf8bit), source = Bitmap(pf8bit);
  target.SetPalette(Palette({{90, 0, 0, 0}, {40, 41, 39, 0}, {41, 0, 0, 0}, {10, 10, 50, 0}}));
  TManageThreads manager(1, 4, nullptr);
  ASSERT_TRUE(manager.InitByteBits(target, source));
  EXPECT_EQ(manager.TarBlack, 1);
  EXPECT_EQ(manager.TarWhite, -1);
}

TEST(ManageThreadsTest, ATargetWhoseEntriesAreAllFarFromBlackHasNone) {
  TBitmap target = Bitmap(pf8bit), source = Bitmap(pf8bit);
  target.SetPalette(Palette({{255, 0, 0, 0}, {255, 255, 255, 0}}));
  TManageThreads manager(1, 4, nullptr);
  ASSERT_TRUE(manager.InitByteBits(target, source));
  EXPECT_EQ(manager.TarBlack, -1);
  EXPECT_EQ(manager.TarWhite, 1);
}

TEST(ManageThreadsTest, ASecondQueryDropsTheFirstOnesPalettes) {
  TBitmap indexed = Bitmap(pf8bit), color = Bitmap(pf24bit);
  indexed.SetPalette(Palette({{255, 255, 255, 0}, {0, 0, 0, 0}}));
  TManageThreads manager(1, 4, nullptr);
  ASSERT_TRUE(manager.InitByteBits(indexed, indexed));
  EXPECT_EQ(manager.TarBlack, 1);
  ASSERT_TRUE(manager.InitByteBits(color, color));
  EXPECT_EQ(manager.SrcCol, nullptr);
  EXPECT_EQ(manager.TarCol, nullptr);
  EXPECT_EQ(manager.SrcAnz, 0);
  EXPECT_EQ(manager.TarAnz, 0);
  EXPECT_EQ(manager.TarBlack, 0);
}

}  // namespace
}  // namespace rasterkit
