#include <thread>

#include <gtest/gtest.h>

#include <rasterkit/bands/stages.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/memory/memory_share.h>

#include "tests/bands/band_pictures.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

using test::MadeBy;
using test::MadeInEveryWay;
using test::Seen;

constexpr CombineMode kModes[] = {CombineMode::key,       CombineMode::transparent,
                                  CombineMode::shadow,    CombineMode::overwrite,
                                  CombineMode::intoWhite, CombineMode::watermark};

bool IsNearWhite(TColor color) {
  return (color & 255) > 250 && (color >> 8 & 255) > 250 && (color >> 16 & 255) > 250;
}

/// 24-bit pictures of a few colors, white among them.
Raster Drawing(int width, int height, std::mt19937& random) {
  const TColor colors[] = {clWhite, clBlack, 0x2040C0, 0xFBFBFB, 0x808080};
  Raster raster(pf24bit, width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const TColor color = colors[random() % 5];
      raster.Row(y)[3 * x] = static_cast<uint8_t>(color >> 16);
      raster.Row(y)[3 * x + 1] = static_cast<uint8_t>(color >> 8);
      raster.Row(y)[3 * x + 2] = static_cast<uint8_t>(color);
    }
  }
  raster.ClearPadding();
  return raster;
}

Combination Over(Raster over, CombineMode mode, int percent = 0) {
  Combination combination;
  combination.over = std::make_shared<const Raster>(std::move(over));
  combination.mode = mode;
  combination.percent = percent;
  return combination;
}

/// The least memory for all pictures, beyond those that there are, with which the stage runs.
uint64_t LeastMemory(const Combination& combination, const Raster& under) {
  const Sides sides{under.Width(), under.Height()};
  const uint64_t held = ProcessPictureBytes();
  uint64_t little = 0, enough = uint64_t{100} * sides.width * sides.height;
  while (enough - little > 1) {
    const uint64_t between = (little + enough) / 2;
    Limits limits;
    limits.processBytes = held + between;
    try {
      const LimitsScope scope(limits);
      Changes changes;
      CombineStage(sides, combination)->Make(under.Clone(), {}, changes);
      enough = between;
    } catch (const LimitError&) {
      little = between;
    }
  }
  return enough;
}

TEST(CombineStageTest, MemoryOfOpacitiesCounts) {
  constexpr int kSide = 64;
  std::mt19937 random(1);
  Combination combination = Over(Drawing(kSide, kSide, random), CombineMode::overwrite);
  combination.toOver = Affine{1, 0, 0, 1, -4, -3};
  // The lower picture and its copy; the upper one, its copy and what it becomes without opacity.
  constexpr uint64_t kRows = 2 * 3 + 2 * 4 + 3, kOpacity = 1;
  EXPECT_GE(LeastMemory(combination, Drawing(kSide, kSide, random)),
            uint64_t{kSide} * kSide * (kRows + kOpacity));
}

TEST(CombineStageTest, OpaqueModesTakeThePixelsThatTheModeNames) {
  std::mt19937 random(1);
  for (int width = 1; width <= 17; width += 2) {
    const Pixels under = Drawing(width, 9, random);
    const Raster over = Drawing(width, 9, random);
    for (const CombineMode mode :
         {CombineMode::key, CombineMode::overwrite, CombineMode::intoWhite}) {
      const Pixels made =
          MadeInEveryWay(*CombineStage({width, 9}, Over(over.Clone(), mode)), under);
      for (int y = 0; y < 9; ++y) {
        for (int x = 0; x < width; ++x) {
          const TColor below = Seen(under, x, y).color, above = over.PixelColor(x, y);
          const bool isTaken = mode == CombineMode::key         ? above != clWhite
                               : mode == CombineMode::overwrite ? !IsNearWhite(above)
                                                                : IsNearWhite(below);
          ASSERT_EQ(Seen(made, x, y).color, isTaken ? above : below)
              << static_cast<int>(mode) << " " << x << ", " << y;
        }
      }
    }
  }
}

TEST(CombineStageTest, MixesWithThePercentage) {
  std::mt19937 random(2);
  const Pixels under = Drawing(12, 9, random);
  const Raster over = Drawing(12, 9, random);
  for (const int percent : {0, 30, 100}) {
    const Pixels made = MadeInEveryWay(
        *CombineStage({12, 9}, Over(over.Clone(), CombineMode::transparent, percent)), under);
    for (int y = 0; y < 9; ++y) {
      for (int x = 0; x < 12; ++x) {
        const TColor below = Seen(under, x, y).color, above = over.PixelColor(x, y);
        const TColor mixed = Seen(made, x, y).color;
        if (IsNearWhite(above)) {
          ASSERT_EQ(mixed, below);
          continue;
        }
        for (const int shift : {0, 8, 16}) {
          const double expected =
              ((below >> shift & 255) * percent + (above >> shift & 255) * (100 - percent)) / 100.0;
          ASSERT_NEAR(mixed >> shift & 255, expected, 1.0);
        }
      }
    }
  }
}

TEST(CombineStageTest, TransparentPixelsOfTheUpperPictureChangeNothing) {
  std::mt19937 random(3);
  for (const auto& kind : test::RasterKinds()) {
    const Pixels upper = kind.make(12, 9, random);
    const auto& raster = std::get<Raster>(upper);
    if (!raster.transparentColor) continue;
    SCOPED_TRACE(kind.name);
    const Pixels under = Drawing(12, 9, random);
    const Pixels made =
        MadeInEveryWay(*CombineStage({12, 9}, Over(raster.Clone(), CombineMode::key)), under);
    for (int y = 0; y < 9; ++y) {
      for (int x = 0; x < 12; ++x) {
        const test::SeenPixel above = Seen(upper, x, y);
        ASSERT_EQ(Seen(made, x, y).color,
                  above.opacity == 0 ? Seen(under, x, y).color : above.color);
      }
    }
  }
}

TEST(CombineStageTest, EveryModeWorksOnEveryKindAndWithEveryNumberOfThreads) {
  std::mt19937 random(4);
  for (const auto& kind : test::RasterKinds()) {
    const Pixels under = kind.make(16, 13, random);
    for (const auto& other : test::RasterKinds()) {
      const Pixels over = other.make(7, 21, random);
      for (const CombineMode mode : kModes) {
        SCOPED_TRACE(kind.name + " under " + other.name + ", mode " +
                     std::to_string(static_cast<int>(mode)));
        const auto stage = CombineStage({16, 13}, Over(std::get<Raster>(over).Clone(), mode, 25));
        const Pixels made = MadeInEveryWay(*stage, under);
        const bool keepsAlpha =
            mode == CombineMode::watermark && LayoutOf(under).alpha != AlphaKind::none;
        ASSERT_EQ(std::get<Raster>(made).Format(), keepsAlpha ? pf32bit : pf24bit);
        ASSERT_EQ(std::get<Raster>(made).resolution.x, 300);
      }
    }
  }
}

TEST(CombineStageTest, APlacedPictureChangesOnlyWhereItLies) {
  std::mt19937 random(5);
  for (const auto& other : test::RasterKinds()) {
    const Pixels over = other.make(6, 5, random);
    const Pixels under = Drawing(15, 12, random);
    for (const CombineMode mode : kModes) {
      SCOPED_TRACE(other.name + ", mode " + std::to_string(static_cast<int>(mode)));
      Combination combination = Over(std::get<Raster>(over).Clone(), mode, 0);
      // The upper picture lies four columns to the right and three rows below.
      combination.toOver = Affine{1, 0, 0, 1, -4, -3};
      const Pixels made = MadeInEveryWay(*CombineStage({15, 12}, combination), under);
      int changed = 0;
      for (int y = 0; y < 12; ++y) {
        for (int x = 0; x < 15; ++x) {
          const bool isOver = x >= 4 && x < 10 && y >= 3 && y < 8;
          const TColor below = Seen(under, x, y).color, result = Seen(made, x, y).color;
          if (!isOver) {
            ASSERT_EQ(result, below) << x << ", " << y;
            continue;
          }
          changed += result != below ? 1 : 0;
          const test::SeenPixel above = Seen(over, x - 4, y - 3);
          if (mode == CombineMode::overwrite && above.opacity == 255 && !IsNearWhite(above.color)) {
            ASSERT_EQ(result, above.color) << x << ", " << y;
          }
        }
      }
      EXPECT_GT(changed, 0);
    }
  }
}

TEST(CombineStageTest, RefusesWhatCannotBeCombined) {
  std::mt19937 random(6);
  EXPECT_THROW(CombineStage({3, 3}, Combination{}), RangeError);
  EXPECT_THROW(CombineStage({3, 3}, Over(Drawing(2, 2, random), CombineMode::key, 101)),
               RangeError);
  const Pixels samples = test::SampleKinds()[0].make(3, 3, random);
  EXPECT_THROW(
      MadeBy(*CombineStage({3, 3}, Over(Drawing(2, 2, random), CombineMode::key)), samples),
      UnsupportedError);
}

TEST(StageProgressTest, RisesToOneOnTheCallingThreadAndMayEndTheStage) {
  std::mt19937 random(7);
  const Sides sides{900, 700};
  std::vector<std::pair<std::string, std::unique_ptr<Stage>>> stages;
  stages.emplace_back("turn", TurnStage(sides, 1));
  stages.emplace_back("rotate", RotateStage(sides, 10));
  Resampling linear;
  linear.filter = Filter::linear;
  stages.emplace_back("rotate linear", RotateStage(sides, 90.2, linear));
  stages.emplace_back("resize", ResizeStage(sides, {450, 300}));
  AdjustColors change;
  change.brightness = change.contrast = 10;
  stages.emplace_back("adjust", ChangeStage(sides, change));
  stages.emplace_back(
      "combine", CombineStage(sides, Over(Drawing(9, 9, random), CombineMode::transparent, 10)));
  const Pixels source = Drawing(sides.width, sides.height, random);
  for (const auto& [name, stage] : stages) {
    SCOPED_TRACE(name);
    double last = 0;
    const auto own = std::this_thread::get_id();
    Changes changes;
    StageRun run;
    run.threads = 3;
    run.progress = [&](double done) {
      EXPECT_EQ(std::this_thread::get_id(), own);
      EXPECT_GE(done, last);
      EXPECT_LE(done, 1);
      last = done;
    };
    stage->Make(test::CloneOf(source), run, changes);
    EXPECT_EQ(last, 1);
    run.progress = [](double) { throw CanceledError("canceled"); };
    EXPECT_THROW(stage->Make(test::CloneOf(source), run, changes), CanceledError);
  }
}

}  // namespace
}  // namespace rasterkit
