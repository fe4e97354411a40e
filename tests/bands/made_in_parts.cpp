#include "tests/bands/made_in_parts.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include <gtest/gtest.h>

#include "tests/bands/band_pictures.h"

namespace rasterkit::test {
namespace {

void FillWithRubbish(Pixels& pixels) {
  constexpr int kRubbish = 0xA5;
  if (auto* raster = std::get_if<Raster>(&pixels)) {
    for (int y = 0; y < raster->Height(); ++y) {
      std::memset(raster->Row(y), kRubbish, raster->Stride());
    }
    return;
  }
  auto& samples = std::get<Samples>(pixels);
  for (int plane = 0; plane < samples.Planes(); ++plane) {
    for (int y = 0; y < samples.Height(); ++y) {
      std::memset(samples.Row(y, plane), kRubbish, samples.Stride());
    }
  }
}

bool LiesIn(const BandRect& rect, Sides sides) {
  return rect.left >= 0 && rect.top >= 0 && rect.width >= 0 && rect.height >= 0 &&
         rect.left + rect.width <= sides.width && rect.top + rect.height <= sides.height;
}

std::vector<RowRange> Pieces(const BandRect& rect, std::mt19937& random) {
  std::vector<RowRange> pieces;
  for (int y = 0; y < rect.height;) {
    const int count = std::min(rect.height - y, 1 + static_cast<int>(random() % 40));
    pieces.push_back({rect.top + y, count});
    y += count;
  }
  std::shuffle(pieces.begin(), pieces.end(), random);
  return pieces;
}

/// A work, its whole source and its whole result.
struct Trial {
  const BandWork& work;
  const Band source, made;
};

void ExpectSamePart(const Trial& trial, const BandRect& rect, std::mt19937& random) {
  const BandRect needs = trial.work.Needs(rect);
  ASSERT_TRUE(LiesIn(needs, SidesOf(trial.source.pixels)))
      << needs.left << " " << needs.top << " " << needs.width << " " << needs.height;
  if (!trial.work.MakesParts() && needs.height > 0) {
    ASSERT_EQ(needs.left, 0);
    ASSERT_EQ(needs.width, WidthOf(trial.source.pixels));
  }
  // Where nothing is needed the band has no meaning.
  const Band source =
      needs.width > 0 ? CutBand(trial.source, needs) : Band{NewPixels(trial.source.pixels, 1, 1)};
  Band target{NewPixels(trial.work.Like(), rect.width, rect.height), rect.left, rect.top};
  FillWithRubbish(target.pixels);
  for (const RowRange rows : Pieces(rect, random)) trial.work.Make(source, target, rows);
  ASSERT_TRUE(SameRows(CutBand(trial.made, rect).pixels, target.pixels))
      << "part " << rect.left << "," << rect.top << " " << rect.width << " x " << rect.height;
}

/// All of the result in parts of one size.
void ExpectSameParts(const Trial& trial, int width, int height, std::mt19937& random) {
  const Sides size = SidesOf(trial.made.pixels);
  for (int top = 0; top < size.height; top += height) {
    for (int left = 0; left < size.width; left += width) {
      ExpectSamePart(
          trial,
          {left, top, std::min(width, size.width - left), std::min(height, size.height - top)},
          random);
      if (testing::Test::HasFatalFailure()) return;
    }
  }
}

}  // namespace

void ExpectSameInParts(const Stage& stage, const Pixels& source, const Pixels& made,
                       std::mt19937& random) {
  const auto work = stage.Start(source, {});
  ASSERT_NE(work, nullptr);
  ASSERT_EQ(work->Looks().count, 0);
  ASSERT_EQ(work->Size(), SidesOf(made));
  const Trial trial{*work, {CloneOf(source)}, {CloneOf(made)}};
  for (const int height : {1, 7, 64}) {
    ExpectSameParts(trial, WidthOf(made), height, random);
    if (testing::Test::HasFatalFailure()) return;
  }
  if (!work->MakesParts()) return;
  const auto side = [&](int most) { return 1 + static_cast<int>(random() % most); };
  ExpectSameParts(trial, 2 * side(20) + 1, 2 * side(20) + 1, random);
  ExpectSameParts(trial, 2 * side(70) + 1, 2 * side(12) + 1, random);
}

}  // namespace rasterkit::test
