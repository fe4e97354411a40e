#include <algorithm>
#include <atomic>
#include <chrono>
#include <new>
#include <random>
#include <thread>

#include <gmock/gmock.h>

#include <rasterkit/bands/flow/band_flow.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/scratch_file.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/memory/memory_share.h>

#include "tests/bands/band_pictures.h"
#include "tests/bands/flow/flow_readers.h"
#include "tests/bands/flow/flow_stages.h"
#include "tests/runtime/files/replaced_calls.h"
#include "tests/support/temp_folder.h"

namespace rasterkit {
namespace {

using test::Doing;
using test::ReadCount;
using test::ReaderOf;
using test::SidesOf;
using test::StagesFor;

constexpr int kHeight = 100;

Pixels Source() {
  std::mt19937 random(6);
  return test::EveryKind()[5].make(20, kHeight, random);
}

struct Outcome {
  std::string error;
  int taken = 0;
};

Outcome OutcomeOf(const Pixels& source, const std::vector<Doing>& doings,
                  const test::TestReader& how, const FlowSettings& settings, int failAt = -1,
                  const StageRun* given = nullptr) {
  Outcome outcome;
  const StageRun usual{settings.threads, {}};
  const StageRun& run = given != nullptr ? *given : usual;
  try {
    BandFlow flow(ReaderOf(source, how, nullptr), StagesFor(doings, SidesOf(source)), settings);
    flow.Begin(run);
    flow.Run(run, [&](Pixels& rows, int top) {
      if (failAt >= top && failAt < top + HeightOf(rows)) throw FileError("the disk is full");
      outcome.taken = top + HeightOf(rows);
    });
  } catch (const Error& error) {
    outcome.error = error.what();
  }
  return outcome;
}

TEST(FlowFaultsTest, ThrowsTheFirstErrorInTheOrderOfRows) {
  const Pixels source = Source();
  for (const RowAccess access : {RowAccess::rising, RowAccess::anyRows, RowAccess::anyParts}) {
    for (const int rows : {1, 4}) {
      for (const int threads : {1, 2, 7}) {
        for (int repeated = 0; repeated < 10; ++repeated) {
          FlowSettings settings;
          settings.rows = rows;
          settings.threads = threads;
          SCOPED_TRACE("rows " + std::to_string(rows) + ", threads " + std::to_string(threads));
          // A reader that fails, alone.
          Outcome outcome = OutcomeOf(source, {Doing::reachOne}, {access, 1, 30, {}}, settings);
          EXPECT_EQ(outcome.error, "row 30 is damaged");
          EXPECT_EQ(outcome.taken, rows == 1 ? 29 : 28);
          // Below the row where a stage fails.
          outcome =
              OutcomeOf(source, {Doing::mirrored, Doing::failing}, {access, 1, 30, {}}, settings);
          EXPECT_EQ(outcome.error, "row 17 fails");
          EXPECT_EQ(outcome.taken, rows == 1 ? 17 : 16);
          // Above it.
          outcome = OutcomeOf(source, {Doing::failing}, {access, 1, 9, {}}, settings);
          EXPECT_EQ(outcome.error, "row 9 is damaged");
          outcome = OutcomeOf(source, {Doing::failing}, {access, 1, 90, {}}, settings, 13);
          EXPECT_EQ(outcome.error, "the disk is full");
          EXPECT_EQ(outcome.taken, rows == 1 ? 13 : 12);
        }
      }
    }
  }
}

/// Every second row needs no row of the source. The row 1 takes until the reader has come to the
/// row 4, or a while.
class EverySecondRow : public BandStage {
 public:
  EverySecondRow(Sides source, const std::atomic<int>& read) : BandStage(source), read_(read) {}
  RowRange Needs(RowRange) const override { return {0, Source().height}; }
  std::unique_ptr<BandWork> Start(const Pixels& like, const StageRun&) const override {
    return std::make_unique<Work>(Source(), like, read_);
  }

 private:
  class Work : public BandWork {
   public:
    Work(Sides sides, const Pixels& like, const std::atomic<int>& read)
        : sides_(sides), like_(NewPixels(like, 1, 1)), read_(read) {}
    const Pixels& Like() const override { return like_; }
    Sides Size() const override { return sides_; }
    BandRect Needs(const BandRect& target) const override {
      return target.top % 2 != 0 ? BandRect{} : target;
    }
    void Make(const Band& source, Band& target, RowRange rows) const override {
      if (rows.first % 2 == 0) {
        return CopyPart(source.pixels, {0, rows.first - source.top, sides_.width, 1}, target.pixels,
                        0, rows.first - target.top);
      }
      for (int i = 0; rows.first == 1 && i < 100 && read_ < 4; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
      }
      if (source.top > rows.first) throw RangeError("the source has moved on");
    }

   private:
    const Sides sides_;
    const Pixels like_;
    const std::atomic<int>& read_;
  };

  const std::atomic<int>& read_;
};

TEST(FlowFaultsTest, LeavesTheSourceAsItIsForRowsThatNeedNone) {
  const Pixels source = Source();
  for (const int threads : {2, 7}) {
    std::atomic<int> read{0};
    FlowSettings settings;
    settings.rows = 1;
    settings.threads = threads;
    BandFlow flow(
        ReaderOf(source, {RowAccess::rising, 1, -1, [&](int top) { read = top; }}, nullptr),
        {std::make_shared<EverySecondRow>(SidesOf(source), read)}, settings);
    flow.Begin({threads, {}});
    EXPECT_NO_THROW(flow.Run({threads, {}}, [](Pixels&, int) {})) << threads << " threads";
  }
}

TEST(FlowFaultsTest, EndsWhenItIsCanceled) {
  const Pixels source = Source();
  for (const int threads : {1, 2, 7}) {
    for (const std::vector<Doing>& doings :
         {std::vector<Doing>{Doing::reachOne}, {Doing::twoPasses, Doing::reversed}}) {
      std::stop_source stop;
      std::atomic<int> readsAfter{0};
      const LimitsScope scope(Limits(), stop.get_token());
      FlowSettings settings;
      settings.rows = 1;
      settings.threads = threads;
      const Outcome outcome = OutcomeOf(source, doings,
                                        {RowAccess::rising, 1, -1,
                                         [&](int top) {
                                           if (stop.stop_requested()) ++readsAfter;
                                           if (top == 40) stop.request_stop();
                                         }},
                                        settings);
      EXPECT_EQ(outcome.error, "canceled");
      EXPECT_EQ(readsAfter, 0);
      EXPECT_LE(outcome.taken, 41);
    }
  }
}

TEST(FlowFaultsTest, ReportsProgressOnTheCallingThread) {
  const Pixels source = Source();
  for (const int threads : {1, 2, 7}) {
    FlowSettings settings;
    settings.rows = 3;
    settings.threads = threads;
    double last = 0;
    const auto own = std::this_thread::get_id();
    const StageRun run{threads, [&](double done) {
                         EXPECT_EQ(std::this_thread::get_id(), own);
                         EXPECT_LE(done, 1);
                         EXPECT_TRUE(done >= last || last == 1) << "from Begin to Run";
                         last = done;
                       }};
    EXPECT_EQ(OutcomeOf(source, {Doing::twoPasses, Doing::reachOne}, {}, settings, -1, &run).taken,
              kHeight);
    EXPECT_EQ(last, 1);
  }
}

TEST(FlowFaultsTest, ReportsTheEndWhenOthersDoTheRestDuringAReport) {
  const Pixels source = Source();
  FlowSettings settings;
  settings.rows = 1;
  settings.threads = 2;
  // Now and then the calling thread takes the last row itself.
  for (int repeated = 0; repeated < 20; ++repeated) {
    std::atomic<int> taken{0};
    double last = 0;
    const StageRun run{2, [&](double done) {
                         for (int i = 0; i < 5000 && taken < kHeight; ++i) {
                           std::this_thread::sleep_for(std::chrono::milliseconds(1));
                         }
                         last = done;
                       }};
    BandFlow flow(ReaderOf(source, {}, nullptr), StagesFor({Doing::reachOne}, SidesOf(source)),
                  settings);
    flow.Begin({2, {}});
    flow.Run(run, [&](Pixels&, int) { ++taken; });
    EXPECT_EQ(taken, kHeight);
    EXPECT_EQ(last, 1);
  }
}

TEST(FlowFaultsTest, EndsWhenProgressThrows) {
  const Pixels source = Source();
  for (const int threads : {1, 2, 7}) {
    FlowSettings settings;
    settings.rows = 3;
    settings.threads = threads;
    const StageRun run{threads, [&](double done) {
                         if (done > 0.5) throw CanceledError("enough");
                       }};
    EXPECT_EQ(OutcomeOf(source, {}, {}, settings, -1, &run).error, "enough");
  }
}

/// A work that has no memory for the plan of its next rows once `isArmed`.
class UnplannedWork : public BandWork {
 public:
  UnplannedWork(const Pixels& like, Sides size, const std::atomic<bool>& isArmed)
      : like_(NewPixels(like, 1, 1)), size_(size), isArmed_(isArmed) {}
  const Pixels& Like() const override { return like_; }
  Sides Size() const override { return size_; }
  BandRect Needs(const BandRect& target) const override {
    if (isArmed_) throw std::bad_alloc();
    return target;
  }
  void Make(const Band& source, Band& target, RowRange rows) const override {
    CopyPart(source.pixels, {0, rows.first - source.top, size_.width, rows.count}, target.pixels, 0,
             rows.first - target.top);
  }

 private:
  const Pixels like_;
  const Sides size_;
  const std::atomic<bool>& isArmed_;
};

class UnplannedStage : public BandStage {
 public:
  UnplannedStage(Sides source, const std::atomic<bool>& isArmed)
      : BandStage(source), isArmed_(isArmed) {}
  RowRange Needs(RowRange target) const override { return target; }
  std::unique_ptr<BandWork> Start(const Pixels& like, const StageRun&) const override {
    return std::make_unique<UnplannedWork>(like, Source(), isArmed_);
  }

 private:
  const std::atomic<bool>& isArmed_;
};

// Threads that wait would wait forever if the one that plans a band ended without a word.
TEST(FlowFaultsTest, EndsWhenTheNextBandCannotBePlanned) {
  const Pixels source = Source();
  for (const int threads : {1, 2, 7}) {
    for (int repeated = 0; repeated < 20; ++repeated) {
      std::atomic<bool> isArmed{false};
      FlowSettings settings;
      settings.rows = 1;
      settings.threads = threads;
      const test::TestReader how{RowAccess::rising, 1, -1, [&](int top) {
                                   if (top == 40) isArmed = true;
                                 }};
      BandFlow flow(ReaderOf(source, how, nullptr),
                    {std::make_shared<UnplannedStage>(SidesOf(source), isArmed)}, settings);
      const StageRun run{threads, {}};
      flow.Begin(run);
      int taken = 0;
      EXPECT_THROW(flow.Run(run, [&](Pixels& rows, int top) { taken = top + HeightOf(rows); }),
                   std::bad_alloc);
      EXPECT_LE(taken, 41);
    }
  }
}

TEST(FlowFaultsTest, LeavesNoScratchFile) {
  const Pixels source = Source();
  const test::TempFolder folder;
  FlowSettings settings;
  settings.rows = 4;
  settings.heldBytes = 0;
  settings.scratchFolder = folder.Path().string();
  bool wasThere = false;
  const uint64_t before = ScratchBytes();
  BandFlow flow(ReaderOf(source, {}, nullptr), StagesFor({Doing::reversed}, SidesOf(source)),
                settings);
  flow.Begin({});
  flow.Run({}, [&](Pixels&, int) {
    wasThere = wasThere || ScratchBytes() > before;
    EXPECT_EQ(folder.Names(), std::vector<std::string>{});
  });
  EXPECT_TRUE(wasThere);
  EXPECT_EQ(folder.Names(), std::vector<std::string>{});
}

TEST(FlowFaultsTest, NamesTheFolderWithoutRoom) {
  const Pixels source = Source();
  const test::TempFolder folder;
  FlowSettings settings;
  settings.rows = 4;
  settings.heldBytes = 0;
  settings.scratchFolder = folder / "missing";
  EXPECT_THAT(OutcomeOf(source, {Doing::reversed}, {}, settings).error,
              testing::AllOf(testing::HasSubstr("missing"), testing::HasSubstr("bytes")));
  const test::CallsGuard calls;
  detail::Calls().reserve = [](int, off_t, off_t) {
    errno = ENOSPC;
    return -1;
  };
  settings.scratchFolder = folder.Path().string();
  EXPECT_THAT(OutcomeOf(source, {Doing::reversed}, {}, settings).error,
              testing::AllOf(testing::HasSubstr(folder.Path().string()),
                             testing::HasSubstr("No space left on device")));
  EXPECT_EQ(folder.Names(), std::vector<std::string>{});
}

TEST(FlowFaultsTest, ForetellsWhatItHolds) {
  std::mt19937 random(7);
  const Pixels source = test::EveryKind()[5].make(300, 700, random);
  for (const uint64_t held : {uint64_t{0}, uint64_t{48} << 20}) {
    for (const std::vector<Doing>& doings : {std::vector<Doing>{Doing::reachOne},
                                             {Doing::reversed},
                                             {Doing::mirrored, Doing::transposed},
                                             {Doing::whole, Doing::transposed},
                                             {Doing::reversed, Doing::reversed},
                                             {Doing::twoPasses, Doing::reachOne}}) {
      SCOPED_TRACE(test::NameOf(doings.front()) + ", held " + std::to_string(held));
      FlowSettings settings;
      settings.rows = 7;
      settings.heldBytes = held;
      const Stages stages = StagesFor(doings, SidesOf(source));
      auto reader = ReaderOf(source, {RowAccess::rising, 1, -1, {}}, nullptr);
      const FlowNeeds needs = ForetellFlow(*reader, stages, settings);
      const uint64_t memory = ProcessPictureBytes(), scratch = ScratchBytes();
      FlowNeeds used;
      BandFlow flow(std::move(reader), stages, settings);
      flow.Begin(
          {1, [&](double) { used.scratch = std::max(used.scratch, ScratchBytes() - scratch); }});
      flow.Run({}, [&](Pixels&, int) {
        used.memory = std::max(used.memory, ProcessPictureBytes() - memory);
        used.scratch = std::max(used.scratch, ScratchBytes() - scratch);
      });
      // The kinds of pixels that works show are pictures of one pixel.
      constexpr uint64_t kLikes = 1000;
      EXPECT_LE(used.memory, needs.memory + kLikes);
      EXPECT_LE(used.scratch, needs.scratch);
      const bool isReversed = doings.front() == Doing::reversed;
      EXPECT_EQ(used.scratch >= 300u * 700, needs.scratch > 0);
      EXPECT_TRUE(!isReversed || (needs.scratch > 0) == (held == 0));
    }
  }
}

TEST(FlowFaultsTest, UsesTheScratchFileBelowTheLimitOfTheProcess) {
  const Pixels source = Source();
  Limits limits;
  limits.processBytes = ProcessPictureBytes() + 40000;
  const LimitsScope scope(limits);
  FlowSettings settings;
  settings.rows = 4;
  EXPECT_EQ(OutcomeOf(source, {Doing::reversed, Doing::reachOne}, {}, settings).error, "");
  limits.processBytes = ProcessPictureBytes() + 10;
  const LimitsScope narrow(limits);
  EXPECT_THAT(OutcomeOf(source, {Doing::reversed}, {}, settings).error,
              testing::HasSubstr("the limit of the process"));
}

}  // namespace
}  // namespace rasterkit
