#include <cstring>
#include <random>

#include <gtest/gtest.h>

#include <rasterkit/bands/flow/band_flow.h>
#include <rasterkit/bands/flow/executor.h>
#include <rasterkit/runtime/errors.h>

#include "tests/bands/band_pictures.h"
#include "tests/bands/flow/flow_readers.h"
#include "tests/bands/flow/flow_stages.h"

namespace rasterkit {
namespace {

using test::CloneOf;
using test::Doing;
using test::EveryKind;
using test::ReadCount;
using test::ReaderOf;
using test::SameRows;
using test::SidesOf;
using test::StagesFor;
using test::TestReader;

constexpr RowAccess kEveryAccess[] = {RowAccess::rising, RowAccess::anyRows, RowAccess::anyParts};
constexpr int kWhole = 1 << 20;
constexpr uint64_t kHeld = uint64_t{48} << 20;

struct Made {
  Pixels pixels;
  Changes changes;
  CodecReport report;
};

/// Sends a picture through a flow and puts the bands together. Expects that they come in order.
Made Flowed(std::unique_ptr<RowReader> reader, const Stages& stages, const FlowSettings& settings) {
  BandFlow flow(std::move(reader), stages, settings);
  const StageRun run{settings.threads, {}};
  flow.Begin(run);
  Made made{NewPixels(flow.Like(), flow.Size().width, flow.Size().height), {}, {}};
  int next = 0;
  flow.Run(run, [&](Pixels& rows, int top) {
    EXPECT_EQ(top, next);
    next = top + HeightOf(rows);
    CopyPart(rows, {0, 0, WidthOf(rows), HeightOf(rows)}, made.pixels, 0, top);
    // The writer may change what it gets.
    std::visit([](auto& written) { std::memset(written.Row(0), 0x5A, written.Stride()); }, rows);
  });
  EXPECT_EQ(next, flow.Size().height);
  flow.Finish(made.report, made.changes);
  return made;
}

std::string TextOf(const std::vector<Doing>& doings) {
  std::string text;
  for (const Doing doing : doings) text += test::NameOf(doing) + " ";
  return text;
}

/// All band heights, threads and kinds of access against the whole picture.
void ExpectSameInEveryWay(const Pixels& source, const Stages& stages, const FlowSettings& like = {},
                          bool isBrief = false) {
  Changes changes;
  const Pixels expected = RunStages(CloneOf(source), stages, {}, changes);
  int way = 0;
  for (const RowAccess access : kEveryAccess) {
    for (const int rows : {1, 7, 64, kWhole, 0}) {
      for (const int threads : {1, 2, 7}) {
        // Each height and each access with each number of threads, but not all three together.
        if (isBrief && way++ % 4 != 0) continue;
        SCOPED_TRACE("access " + std::to_string(static_cast<int>(access)) + ", rows " +
                     std::to_string(rows) + ", threads " + std::to_string(threads));
        FlowSettings settings = like;
        settings.rows = rows;
        settings.threads = threads;
        const TestReader how{access, access == RowAccess::rising ? 1 : 5, -1, {}};
        const Made made = Flowed(ReaderOf(source, how, nullptr), stages, settings);
        ASSERT_TRUE(SameRows(expected, made.pixels));
        ASSERT_EQ(changes.notes, made.changes.notes);
        ASSERT_EQ(made.report.warnings, std::vector<std::string>{"read"});
      }
    }
  }
}

TEST(BandFlowTest, HandsOutTheRowsOfTheReader) {
  std::mt19937 random(1);
  for (const auto& kind : EveryKind()) {
    SCOPED_TRACE(kind.name);
    ExpectSameInEveryWay(kind.make(37, 71, random), {});
    if (HasFatalFailure()) return;
  }
}

TEST(BandFlowTest, MakesTheSameBytesInEveryWayForEachStage) {
  std::mt19937 random(2);
  const auto kinds = EveryKind();
  for (const Doing doing : test::kEveryDoing) {
    for (size_t i = 0; i < kinds.size(); i += 3) {
      SCOPED_TRACE(kinds[i].name + " " + test::NameOf(doing));
      const Pixels source = kinds[i].make(23, 71, random);
      ExpectSameInEveryWay(source, StagesFor({doing}, SidesOf(source)));
      if (HasFatalFailure()) return;
    }
  }
}

TEST(BandFlowTest, MakesTheSameBytesInEveryWayForChains) {
  const unsigned seed = std::random_device{}();
  std::mt19937 random(seed);
  const auto kinds = EveryKind();
  for (int i = 0; i < 24; ++i) {
    std::vector<Doing> doings(2 + random() % 4);
    for (Doing& doing : doings) doing = test::kEveryDoing[random() % std::size(test::kEveryDoing)];
    const auto& kind = kinds[random() % kinds.size()];
    const int width = 40 + static_cast<int>(random() % 20);
    const int height = 400 + static_cast<int>(random() % 100);
    SCOPED_TRACE("seed " + std::to_string(seed) + ", chain " + std::to_string(i) + ", " +
                 kind.name + ": " + TextOf(doings));
    const Pixels source = kind.make(width, height, random);
    Sides size = SidesOf(source);
    bool isTooSmall = false;
    for (const Doing doing : doings) {
      size = test::SizeAfter(doing, size);
      isTooSmall = isTooSmall || size.width < 9 || size.height < 9;
    }
    if (isTooSmall) continue;
    FlowSettings settings;
    // Windows, memory and scratch files.
    const uint64_t held[] = {settings.heldBytes, 0, 40000};
    settings.heldBytes = held[i % 3];
    ExpectSameInEveryWay(source, StagesFor(doings, SidesOf(source)), settings, true);
    if (HasFatalFailure()) return;
  }
}

TEST(BandFlowTest, MakesColumnsOfPartsOfTheSource) {
  std::mt19937 random(3);
  FlowSettings settings;
  settings.heldBytes = 0;
  const auto kinds = EveryKind();
  for (size_t i = 0; i < kinds.size(); i += 9) {
    const Pixels source = kinds[i].make(11, 1100, random);
    for (const std::vector<Doing>& doings :
         {std::vector<Doing>{Doing::transposed},
          {Doing::cropped, Doing::transposed},
          {Doing::transposed, Doing::mirrored, Doing::reachOne}}) {
      SCOPED_TRACE(kinds[i].name + ": " + TextOf(doings));
      ExpectSameInEveryWay(source, StagesFor(doings, SidesOf(source)), settings, true);
      if (HasFatalFailure()) return;
    }
  }
}

/// Runs a flow whose reader counts.
ReadCount CountOf(const Pixels& source, const std::vector<Doing>& doings, RowAccess access,
                  int blockRows, int rows, uint64_t heldBytes = kHeld) {
  ReadCount count;
  FlowSettings settings;
  settings.rows = rows;
  settings.heldBytes = heldBytes;
  Flowed(ReaderOf(source, {access, blockRows, -1, {}}, &count), StagesFor(doings, SidesOf(source)),
         settings);
  return count;
}

TEST(BandFlowTest, ReadsEachRowOnce) {
  std::mt19937 random(4);
  const Pixels source = EveryKind()[5].make(30, 200, random);
  const std::vector<int> once(200, 1);
  for (const int rows : {1, 7, 64, kWhole}) {
    for (const int block : {1, 8, 13}) {
      for (const RowAccess access : kEveryAccess) {
        SCOPED_TRACE(std::to_string(rows) + ", block " + std::to_string(block));
        EXPECT_EQ(CountOf(source, {}, access, block, rows).rows, once);
        EXPECT_EQ(CountOf(source, {Doing::reachOne, Doing::reachOne}, access, block, rows).rows,
                  once);
        EXPECT_EQ(CountOf(source, {Doing::reversed}, access, block, rows).rows, once);
        EXPECT_EQ(CountOf(source, {Doing::reachOne, Doing::reversed, Doing::reachOne}, access,
                          block, rows)
                      .rows,
                  once);
      }
    }
  }
}

TEST(BandFlowTest, ReadsNoRowThatIsNotNeeded) {
  std::mt19937 random(5);
  const Pixels source = EveryKind()[5].make(30, 200, random);
  std::vector<int> inner(200, 1);
  for (const size_t y : {0u, 1u, 198u, 199u}) inner[y] = 0;
  for (const int rows : {1, 7, 64, kWhole}) {
    for (const RowAccess access : kEveryAccess) {
      EXPECT_EQ(CountOf(source, {Doing::cropped}, access, 16, rows).rows, inner);
    }
  }
  std::vector<int> last(200, 1);
  last.back() = 2;
  EXPECT_EQ(CountOf(source, {Doing::lastRow}, RowAccess::anyRows, 1, 7).rows, last);
}

}  // namespace
}  // namespace rasterkit
