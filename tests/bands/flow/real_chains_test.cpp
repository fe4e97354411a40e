#include <random>

#include <gtest/gtest.h>

#include <rasterkit/bands/flow/band_flow.h>
#include <rasterkit/bands/flow/executor.h>
#include <rasterkit/runtime/errors.h>

#include "tests/bands/band_pictures.h"
#include "tests/bands/flow/flow_readers.h"
#include "tests/bands/flow/random_steps.h"

namespace rasterkit {
namespace {

constexpr int kChains = 150;
constexpr int kWhole = 1 << 20;

struct Outcome {
  Pixels pixels;
  std::string error;
  std::vector<std::string> notes, losses;
};

void TakeChanges(Outcome& outcome, const Changes& changes) {
  outcome.notes = changes.notes;
  for (const Loss& loss : changes.losses) outcome.losses.push_back(loss.what + ": " + loss.why);
}

Outcome Whole(const Pixels& source, const Stages& stages) {
  Outcome outcome;
  Changes changes;
  try {
    outcome.pixels = RunStages(test::CloneOf(source), stages, {}, changes);
    TakeChanges(outcome, changes);
  } catch (const Error& error) {
    outcome.error = error.what();
  }
  return outcome;
}

Outcome InBands(const Pixels& source, const Stages& stages, RowAccess access,
                const FlowSettings& settings) {
  Outcome outcome;
  try {
    const StageRun run{settings.threads, {}};
    BandFlow flow(test::ReaderOf(source, {access, 3, -1, {}}, nullptr), stages, settings);
    flow.Begin(run);
    outcome.pixels = NewPixels(flow.Like(), flow.Size().width, flow.Size().height);
    flow.Run(run, [&](Pixels& rows, int top) {
      CopyPart(rows, {0, 0, WidthOf(rows), HeightOf(rows)}, outcome.pixels, 0, top);
    });
    CodecReport report;
    Changes changes;
    flow.Finish(report, changes);
    TakeChanges(outcome, changes);
  } catch (const Error& error) {
    outcome.error = error.what();
  }
  return outcome;
}

TEST(RealChainsTest, MakeTheSameBytesInBands) {
  const unsigned seed = std::random_device{}();
  std::mt19937 random(seed);
  const test::Pick pick = [&](int below) {
    return static_cast<int>(random() % static_cast<unsigned>(below));
  };
  const auto kinds = test::EveryKind();
  int failed = 0;
  for (int i = 0; i < kChains; ++i) {
    const auto& kind = kinds[random() % kinds.size()];
    const Pixels source = kind.make(1 + pick(120), 1 + pick(120), random);
    const test::RandomSteps steps = test::PickSteps(
        pick, test::SidesOf(source), std::holds_alternative<Raster>(source), 1 + pick(5));
    const Outcome expected = Whole(source, steps.stages);
    failed += expected.error.empty() ? 0 : 1;
    for (const int rows : {1, 7, 64, kWhole}) {
      FlowSettings settings;
      settings.rows = rows;
      constexpr int kThreads[] = {1, 2, 7};
      settings.threads = kThreads[pick(3)];
      const uint64_t held[] = {settings.heldBytes, 0, 20000};
      settings.heldBytes = held[pick(3)];
      const auto access = static_cast<RowAccess>(pick(3));
      SCOPED_TRACE("seed " + std::to_string(seed) + ", chain " + std::to_string(i) + ", " +
                   kind.name + ", " + std::to_string(WidthOf(source)) + " x " +
                   std::to_string(HeightOf(source)) + ": " + steps.text + "rows " +
                   std::to_string(rows) + ", threads " + std::to_string(settings.threads) +
                   ", held " + std::to_string(settings.heldBytes) + ", access " +
                   std::to_string(static_cast<int>(access)));
      const Outcome made = InBands(source, steps.stages, access, settings);
      ASSERT_EQ(made.error, expected.error);
      if (!expected.error.empty()) continue;
      ASSERT_TRUE(test::SameRows(expected.pixels, made.pixels));
      ASSERT_EQ(made.notes, expected.notes);
      ASSERT_EQ(made.losses, expected.losses);
    }
  }
  // Most chains work.
  EXPECT_LT(failed, kChains / 2);
}

}  // namespace
}  // namespace rasterkit
