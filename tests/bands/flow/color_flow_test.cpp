#include <gtest/gtest.h>

#include <rasterkit/bands/flow/band_flow.h>
#include <rasterkit/bands/flow/executor.h>
#include <rasterkit/bands/stages.h>
#include <rasterkit/pictures/own_stages.h>

#include "tests/bands/band_pictures.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

using test::SidesOf;

/// A change of color that no picture refuses.
ColorChange AnyChange(std::mt19937& random) {
  AdjustColors shifted, sharper;
  shifted.red = 20;
  sharper.sharpen = 50;
  const ColorChange changes[] = {MakeGray{},
                                 MakeGray{true},
                                 MakeMono{},
                                 MakeMono{std::nullopt},
                                 shifted,
                                 sharper,
                                 WhitenLight{140, true},
                                 RecolorByGray{90, true, 0x203040, 90},
                                 ReplaceKeyColor{0x00FF00, true},
                                 WhiteForPdf{},
                                 PaintTransparency{0x445566},
                                 SetBits{1},
                                 SetBits{4},
                                 SetBits{8},
                                 SetBits{15},
                                 SetBits{32},
                                 UsePalette{DefaultPalette(pf4bit)}};
  return changes[random() % std::size(changes)];
}

Combination AnyCombination(std::mt19937& random) {
  constexpr CombineMode kModes[] = {CombineMode::key, CombineMode::transparent, CombineMode::shadow,
                                    CombineMode::intoWhite, CombineMode::watermark};
  Combination combination;
  combination.over = std::make_shared<const Raster>(test::RandomRaster(pf24bit, 17, 21, random));
  combination.mode = kModes[random() % std::size(kModes)];
  combination.percent = static_cast<int>(random() % 101);
  return combination;
}

/// Adds a stage and returns the size after it.
Sides AddAny(Stages& stages, Sides sides, std::mt19937& random) {
  switch (random() % 8) {
    case 0:
      stages.push_back(
          MirrorStage(sides, random() % 2 == 0 ? MirrorAxis::leftRight : MirrorAxis::topBottom));
      return sides;
    case 1:
      stages.push_back(TurnStage(sides, 1));
      return {sides.height, sides.width};
    case 2: {
      const Sides part{(sides.width + 1) / 2, (sides.height + 2) / 3};
      stages.push_back(CropStage(sides, sides.width - part.width, sides.height - part.height,
                                 part.width, part.height));
      return part;
    }
    case 3:
      stages.push_back(CombineStage(sides, AnyCombination(random)));
      return sides;
    default:
      stages.push_back(ChangeStage(sides, AnyChange(random)));
      return sides;
  }
}

Pixels Flowed(const Pixels& source, const Stages& stages, const FlowSettings& settings,
              Changes& changes) {
  BandFlow flow(RowsInMemory(test::CloneOf(source)), stages, settings);
  flow.Begin({settings.threads, {}});
  Pixels made = NewPixels(flow.Like(), flow.Size().width, flow.Size().height);
  flow.Run({settings.threads, {}}, [&](Pixels& rows, int top) {
    CopyPart(rows, {0, 0, WidthOf(rows), HeightOf(rows)}, made, 0, top);
  });
  CodecReport report;
  flow.Finish(report, changes);
  return made;
}

TEST(ColorFlow, RandomSteps_Should_GiveTheWholeResult) {
  const unsigned seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  const std::vector<test::PictureKind> kinds = test::EveryKind();
  constexpr int kChains = 150;
  for (int i = 0; i < kChains; ++i) {
    const test::PictureKind& kind = kinds[random() % kinds.size()];
    const Pixels source =
        kind.make(1 + static_cast<int>(random() % 60), 1 + static_cast<int>(random() % 90), random);
    Sides sides = SidesOf(source);
    Stages stages;
    stages.push_back(detail::VisibleStage(sides, "7", {}));
    const unsigned count = 1 + random() % 4;
    for (unsigned k = 0; k < count; ++k) sides = AddAny(stages, sides, random);
    Changes ofWhole;
    const Pixels whole = RunStages(test::CloneOf(source), stages, {1, {}}, ofWhole);
    constexpr int kRows[] = {1, 7, 64}, kThreads[] = {1, 2, 7};
    FlowSettings settings;
    settings.rows = kRows[random() % 3];
    settings.threads = kThreads[random() % 3];
    settings.heldBytes = random() % 2 == 0 ? 0 : uint64_t{1} << 20;
    SCOPED_TRACE("chain " + std::to_string(i) + " of " + kind.name + ", " +
                 std::to_string(settings.rows) + " rows, " + std::to_string(settings.threads) +
                 " threads");
    Changes ofFlow;
    ASSERT_TRUE(test::SameRows(whole, Flowed(source, stages, settings, ofFlow)));
    ASSERT_EQ(ofFlow.notes, ofWhole.notes);
    ASSERT_EQ(ofFlow.losses.size(), ofWhole.losses.size());
  }
}

}  // namespace
}  // namespace rasterkit
