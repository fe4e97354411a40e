#include <climits>

#include <gtest/gtest.h>

#include "tests/codecs/jpeg/lossless/moved_file.h"

namespace rasterkit::test {
namespace {

JpegForm FormOf(const std::vector<BareSampling>& samplings) {
  JpegForm form;
  for (const BareSampling& sampling : samplings) {
    form.components.push_back(
        {static_cast<int>(form.components.size()) + 1, sampling.h, sampling.v, 0});
  }
  return form;
}

/// Columns and rows reversed, axes exchanged, in the numbers of TurnOf.
constexpr int kSame = 0, kTopBottom = 1, kLeftRight = 2, kHalfTurn = 3, kTranspose = 4,
              kCounterClockwise = 5, kTransverse = 7;

TEST(MovableJpegPart, FullPicture_Should_LoseOnlyWhatBecomesTheFirstEdge) {
  const JpegForm form = FormOf({{2, 1}, {1, 1}, {1, 1}});
  const auto part = [&](int bits) {
    return MovableJpegPart(form, 35, 21, TurnOf(bits, 0, 0, 35, 21));
  };
  // Units of 16 x 8 pixels: 3 columns and 5 rows are left over.
  EXPECT_EQ(part(kSame), TurnOf(kSame, 0, 0, 35, 21));
  EXPECT_EQ(part(kTranspose), TurnOf(kTranspose, 0, 0, 35, 21));
  EXPECT_EQ(part(kLeftRight), TurnOf(kLeftRight, 0, 0, 32, 21));
  EXPECT_EQ(part(kTopBottom), TurnOf(kTopBottom, 0, 0, 35, 16));
  EXPECT_EQ(part(kHalfTurn), TurnOf(kHalfTurn, 0, 0, 32, 16));
  EXPECT_EQ(part(kQuarterTurn), TurnOf(kQuarterTurn, 0, 0, 35, 16));
  EXPECT_EQ(part(kCounterClockwise), TurnOf(kCounterClockwise, 0, 0, 32, 21));
  EXPECT_EQ(part(kTransverse), TurnOf(kTransverse, 0, 0, 32, 16));
}

TEST(MovableJpegPart, Crop_Should_ShrinkToTheNextBorder) {
  const JpegForm form = FormOf(kHalvedChroma);
  EXPECT_EQ(MovableJpegPart(form, 100, 100, {16, 32, 5, 7}), (PictureMove{16, 32, 5, 7}));
  EXPECT_EQ(MovableJpegPart(form, 100, 100, {17, 30, 60, 50}), (PictureMove{32, 32, 45, 48}));
  EXPECT_EQ(MovableJpegPart(form, 100, 100, TurnOf(kHalfTurn, 17, 30, 60, 50)),
            TurnOf(kHalfTurn, 17, 30, 47, 50));
}

TEST(MovableJpegPart, GrayFactors_Should_NotCount) {
  EXPECT_EQ(MovableJpegPart(FormOf({{2, 2}}), 100, 100, {8, 24, 5, 7}), (PictureMove{8, 24, 5, 7}));
}

TEST(MovableJpegPart, Should_BeNothing_When_NothingCanBeMoved) {
  const JpegForm form = FormOf(kHalvedChroma);
  EXPECT_EQ(MovableJpegPart(form, 100, 100, {17, 0, 15, 100}), std::nullopt);
  EXPECT_EQ(MovableJpegPart(form, 15, 15, TurnOf(kLeftRight, 0, 0, 15, 15)), std::nullopt);
  JpegForm arithmetic = form;
  arithmetic.arithmetic = true;
  EXPECT_EQ(MovableJpegPart(arithmetic, 100, 100, {0, 0, 100, 100}), std::nullopt);
  EXPECT_EQ(MovableJpegPart(JpegForm(), 100, 100, {0, 0, 100, 100}), std::nullopt);
  EXPECT_EQ(MovableJpegPart(FormOf({{0, 1}}), 100, 100, {0, 0, 100, 100}), std::nullopt);
  EXPECT_EQ(MovableJpegPart(FormOf({{1, 5}}), 100, 100, {0, 0, 100, 100}), std::nullopt);
}

TEST(MovableJpegPart, Should_BeNothing_When_ThePartIsOutside) {
  const JpegForm form = FormOf(kHalvedChroma);
  for (const PictureMove& move :
       {PictureMove{0, 0, 101, 100}, PictureMove{0, 0, 100, 101}, PictureMove{-16, 0, 32, 32},
        PictureMove{0, -1, 32, 32}, PictureMove{0, 0, 0, 5}, PictureMove{0, 0, 5, -1},
        PictureMove{INT_MAX, INT_MAX, INT_MAX, INT_MAX}, PictureMove{INT_MAX, 0, 1, 1},
        PictureMove{INT_MIN, INT_MIN, INT_MAX, INT_MAX}}) {
    EXPECT_EQ(MovableJpegPart(form, 100, 100, move), std::nullopt) << TextOf(move);
  }
}

}  // namespace
}  // namespace rasterkit::test
