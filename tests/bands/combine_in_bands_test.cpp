#include <cmath>
#include <cstring>

#include <gtest/gtest.h>

#include <rasterkit/bands/stages.h>
#include <rasterkit/codecs/picture_io.h>
#include <rasterkit/pictures/own_stages.h>

#include "tests/bands/band_pictures.h"
#include "tests/bands/colors_in_bands.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

using test::InBands;
using test::SidesOf;

constexpr InBands kEveryWay[] = {{1, 1}, {1, 7}, {7, 2}, {64, 1}, {64, 7}};

void ExpectWhole(const Stage& stage, const Pixels& source, const InBands& how) {
  Changes ofWhole, ofBands;
  const Pixels whole = stage.Make(test::CloneOf(source), {1, {}}, ofWhole);
  const Pixels made = test::MadeInBands(stage, source, how, ofBands);
  ASSERT_TRUE(test::SameRows(whole, made)) << how.rows << " rows, " << how.threads << " threads";
  ASSERT_EQ(ofBands.notes, ofWhole.notes);
  ASSERT_EQ(ofBands.losses.size(), ofWhole.losses.size());
  for (size_t i = 0; i < ofWhole.losses.size(); ++i) {
    EXPECT_EQ(ofBands.losses[i].what, ofWhole.losses[i].what);
  }
}

const InBands& AnyWay(std::mt19937& random) {
  return kEveryWay[random() % std::size(kEveryWay)];
}

TEST(CombineInBands, EveryMode_Should_GiveTheWholeResult) {
  const unsigned seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  constexpr CombineMode kModes[] = {CombineMode::key,       CombineMode::transparent,
                                    CombineMode::shadow,    CombineMode::overwrite,
                                    CombineMode::intoWhite, CombineMode::watermark};
  const auto& kinds = test::RasterKinds();
  for (const auto& kind : kinds) {
    for (const CombineMode mode : kModes) {
      const Pixels source = kind.make(1 + static_cast<int>(random() % 30), 70, random);
      const auto& other = kinds[random() % kinds.size()];
      const bool isStretched = random() % 2 == 0;
      const Sides sides = SidesOf(source);
      const Pixels over = other.make(isStretched ? 11 : sides.width, isStretched ? 23 : 70, random);
      Combination combination;
      combination.over = std::make_shared<const Raster>(std::get<Raster>(over).Clone());
      combination.mode = mode;
      combination.percent = static_cast<int>(random() % 101);
      combination.gray = random() % 2 == 0;
      if (random() % 2 == 0) combination.toOver = Affine{0.7, 0.1, -0.2, 0.6, 1.5, -2.25};
      SCOPED_TRACE(kind.name + " below " + other.name + ", mode " +
                   std::to_string(static_cast<int>(mode)));
      ExpectWhole(*CombineStage(sides, combination), source, AnyWay(random));
      if (HasFatalFailure()) return;
    }
  }
}

Samples Grid(NumberType type, int width, int height, int start) {
  PixelLayout layout;
  layout.type = type;
  layout.bits = static_cast<int>(8 * BytesOf(type));
  layout.bands = 1;
  layout.model = ColorModel::gray;
  Samples grid(layout, width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const int number = start + (7 * x + 13 * y) % 50;
      if (type == NumberType::float32) {
        const auto real = static_cast<float>(number);
        std::memcpy(grid.Row(y) + 4 * x, &real, 4);
      } else {
        const auto whole = static_cast<int16_t>(number);
        std::memcpy(grid.Row(y) + 2 * x, &whole, 2);
      }
    }
  }
  return grid;
}

TEST(GridInBands, EveryDivision_Should_GiveTheWholeResult) {
  for (const NumberType over : {NumberType::int16, NumberType::float32}) {
    for (const Filter filter : {Filter::automatic, Filter::linear}) {
      GridCombination combination;
      combination.over = std::make_shared<const Samples>(Grid(over, 20, 40, 3));
      combination.toOver = Affine{0.9, 0.05, -0.05, 0.8, -4.5, -6};
      combination.filter = filter;
      combination.noData = 17;
      combination.overNoData = 9;
      const auto stage = GridStage({33, 70}, combination);
      for (const InBands& how : kEveryWay) {
        ExpectWhole(*stage, Grid(NumberType::int16, 33, 70, 100), how);
      }
    }
  }
}

TEST(GridInBands, RowsThatAreNeverMade_Should_CountAsLost) {
  GridCombination combination;
  combination.over = std::make_shared<const Samples>(Grid(NumberType::int16, 20, 40, 3));
  combination.noData = 17;
  const auto stage = GridStage({20, 40}, combination);
  const Pixels source = Grid(NumberType::int16, 20, 40, 100);
  Changes ofWhole, ofOneRow;
  stage->Make(test::CloneOf(source), {}, ofWhole);
  const auto work = stage->Start(source, {});
  Band row{NewPixels(work->Like(), 20, 1), 0, 30};
  work->Make({test::CloneOf(source)}, row, {30, 1});
  work->Finish(ofOneRow);
  ASSERT_EQ(ofWhole.losses.size(), 1u);
  ASSERT_EQ(ofOneRow.losses.size(), 1u);
  EXPECT_EQ(ofOneRow.losses[0].what, ofWhole.losses[0].what);
}

std::vector<NumberStretch> Stretches() {
  NumberStretch minMax, percent, full, fixed;
  minMax.kind = NumberStretch::Kind::minMax;
  percent.kind = NumberStretch::Kind::percent;
  percent.percent = 3;
  full.kind = NumberStretch::Kind::full;
  fixed.kind = NumberStretch::Kind::fixed;
  fixed.least = 90;
  fixed.greatest = -4;
  return {{}, minMax, percent, full, fixed};
}

TEST(VisibleInBands, EveryKindOfNumbers_Should_ShowTheWholeResult) {
  const unsigned seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  for (const auto& kind : test::SampleKinds()) {
    for (const NumberStretch& stretch : Stretches()) {
      SCOPED_TRACE(kind.name + ", stretch " + std::to_string(static_cast<int>(stretch.kind)));
      const Pixels source = kind.make(1 + static_cast<int>(random() % 20), 70, random);
      const auto stage = detail::VisibleStage(SidesOf(source), "7", stretch);
      ExpectWhole(*stage, source, AnyWay(random));
      if (HasFatalFailure()) return;
      Changes changes;
      const Pixels shown = VisiblePixels(test::CloneOf(source), "7", changes, stretch);
      ASSERT_TRUE(test::SameRows(shown, test::MadeBy(*stage, source, 2)));
    }
  }
}

TEST(VisibleInBands, AModelWithAProfile_Should_ShowTheWholeResult) {
  std::mt19937 random(8);
  for (const ColorModel model : {ColorModel::lab, ColorModel::iccLab, ColorModel::palette}) {
    PixelLayout layout;
    layout.bands = model == ColorModel::palette ? 1 : 3;
    layout.model = model;
    if (model == ColorModel::palette) layout.palette = test::RandomPalette(200, random);
    Samples samples(layout, 9, 70);
    for (int y = 0; y < 70; ++y) {
      for (size_t i = 0; i < samples.Stride(); ++i)
        samples.Row(y)[i] = static_cast<uint8_t>(random());
    }
    const Pixels source = std::move(samples);
    for (const InBands& how : kEveryWay) {
      ExpectWhole(*detail::VisibleStage({9, 70}, "", {}), source, how);
    }
  }
}

TEST(VisibleInBands, ANumberOfTheLastRow_Should_EndTheRange) {
  for (const auto kind : {NumberStretch::Kind::minMax, NumberStretch::Kind::percent}) {
    NumberStretch stretch;
    stretch.kind = kind;
    stretch.percent = 0;
    Samples grid = Grid(NumberType::int16, 5, 70, 100);
    const auto stage = detail::VisibleStage({5, 70}, "", stretch);
    const auto before = std::get<Raster>(test::MadeBy(*stage, grid.Clone()));
    const int16_t high = 30000;
    std::memcpy(grid.Row(69) + 8, &high, sizeof high);
    const auto after = std::get<Raster>(test::MadeBy(*stage, grid.Clone()));
    EXPECT_NE(before.Row(3)[2], after.Row(3)[2]);
    const Pixels source = std::move(grid);
    for (const InBands& how : kEveryWay) ExpectWhole(*stage, source, how);
  }
}

TEST(ShownInBands, AnotherPicture_Should_NeedNoSource) {
  std::mt19937 random(9);
  for (const TPixelFormat format : test::kEveryFormat) {
    Raster raster = test::RandomRaster(format, 13, 70, random);
    raster.transparentColor = raster.PixelColor(0, 0);
    const auto bitmap = std::make_shared<const TBitmap>(raster.Clone());
    const Pixels source = Raster(pf24bit, 13, 70);
    for (const InBands& how : kEveryWay) {
      ExpectWhole(*detail::ShownStage(bitmap), source, how);
      Changes unused;
      ASSERT_TRUE(test::SameRows(
          raster.Clone(), test::MadeInBands(*detail::ShownStage(bitmap), source, how, unused)));
    }
  }
}

}  // namespace
}  // namespace rasterkit
