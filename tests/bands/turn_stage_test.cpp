#include <gtest/gtest.h>

#include <rasterkit/bands/stages.h>
#include <rasterkit/runtime/errors.h>

#include "tests/bands/band_pictures.h"

namespace rasterkit {
namespace {

using test::MadeBy;
using test::MadeInEveryWay;
using test::PixelAt;
using test::SidesOf;

Resolution ResolutionOf(const Pixels& pixels) {
  return std::visit([](const auto& rows) { return rows.resolution; }, pixels);
}

/// Where a pixel of the turned picture comes from: one quarter turn at a time.
struct Place {
  int x, y;
};
Place Before(int quarters, Place place, Sides source) {
  for (int i = 0; i < (quarters & 3); ++i) {
    // After a turn to the left the top right pixel is at the top left: sides before this turn are
    // those of the source, exchanged by the turns before it.
    const int turnsBefore = (quarters & 3) - 1 - i;
    const int width = turnsBefore % 2 == 0 ? source.width : source.height;
    place = {width - 1 - place.y, place.x};
  }
  return place;
}

void ExpectTurned(const Pixels& source, const Pixels& made, int quarters) {
  const Sides sides = SidesOf(source);
  ASSERT_EQ(SidesOf(made), (quarters % 2 == 0 ? sides : Sides{sides.height, sides.width}));
  for (int y = 0; y < HeightOf(made); ++y) {
    for (int x = 0; x < WidthOf(made); ++x) {
      const Place from = Before(quarters, {x, y}, sides);
      ASSERT_EQ(PixelAt(made, x, y), PixelAt(source, from.x, from.y)) << x << ", " << y;
    }
  }
}

TEST(TurnStageTest, MovesWholePixelsOfEveryKind) {
  std::mt19937 random(1);
  for (const auto& kind : test::EveryKind()) {
    for (int side = 1; side <= 17; side += 4) {
      const Pixels source = kind.make(side, 18 - side, random);
      for (int quarters = -1; quarters <= 4; ++quarters) {
        SCOPED_TRACE(kind.name + ", side " + std::to_string(side) + ", quarters " +
                     std::to_string(quarters));
        const auto stage = TurnStage(SidesOf(source), quarters);
        const Pixels made = MadeInEveryWay(*stage, source);
        ExpectTurned(source, made, quarters);
        const bool isOdd = quarters % 2 != 0;
        EXPECT_EQ(ResolutionOf(made).x, isOdd ? 200 : 300);
        if (testing::Test::HasFailure()) return;
      }
    }
  }
}

TEST(TurnStageTest, SharesLargePicturesAmongThreads) {
  std::mt19937 random(2);
  for (const auto& kind : test::RasterKinds()) {
    const Pixels source = kind.make(1003, 901, random);
    for (int quarters = 1; quarters <= 3; ++quarters) {
      SCOPED_TRACE(kind.name);
      const auto stage = TurnStage(SidesOf(source), quarters);
      const Pixels made = MadeBy(*stage, source);
      EXPECT_TRUE(test::SameRows(made, MadeBy(*stage, source, 7)));
      const Pixels back = MadeBy(*TurnStage(SidesOf(made), -quarters), made, 3);
      EXPECT_TRUE(test::SameRows(source, back));
    }
  }
}

TEST(MirrorStageTest, ExchangesPixelsOfEveryKind) {
  std::mt19937 random(3);
  for (const auto& kind : test::EveryKind()) {
    for (int width = 1; width <= 17; width += 2) {
      const Pixels source = kind.make(width, 18 - width, random);
      for (const MirrorAxis axis : {MirrorAxis::leftRight, MirrorAxis::topBottom}) {
        SCOPED_TRACE(kind.name + ", width " + std::to_string(width));
        const Pixels made = MadeInEveryWay(*MirrorStage(SidesOf(source), axis), source);
        const bool isLeftRight = axis == MirrorAxis::leftRight;
        for (int y = 0; y < HeightOf(made); ++y) {
          for (int x = 0; x < width; ++x) {
            ASSERT_EQ(PixelAt(made, x, y), isLeftRight
                                               ? PixelAt(source, width - 1 - x, y)
                                               : PixelAt(source, x, HeightOf(made) - 1 - y));
          }
        }
      }
    }
  }
}

TEST(CropStageTest, CutsEveryRectangleOut) {
  std::mt19937 random(4);
  for (const auto& kind : test::EveryKind()) {
    const Pixels source = kind.make(11, 7, random);
    for (int left = 0; left < 11; left += 3) {
      for (int top = 0; top < 7; top += 2) {
        const int width = 1 + static_cast<int>(random() % static_cast<unsigned>(11 - left));
        const int height = 1 + static_cast<int>(random() % static_cast<unsigned>(7 - top));
        SCOPED_TRACE(kind.name);
        const Pixels made =
            MadeInEveryWay(*CropStage(SidesOf(source), left, top, width, height), source);
        ASSERT_EQ(SidesOf(made), (Sides{width, height}));
        for (int y = 0; y < height; ++y) {
          for (int x = 0; x < width; ++x) {
            ASSERT_EQ(PixelAt(made, x, y), PixelAt(source, left + x, top + y));
          }
        }
      }
    }
  }
}

TEST(CropStageTest, RefusesRectanglesThatAreNotInside) {
  const Sides sides{10, 5};
  EXPECT_THROW(CropStage(sides, -1, 0, 2, 2), RangeError);
  EXPECT_THROW(CropStage(sides, 0, 0, 0, 2), RangeError);
  EXPECT_THROW(CropStage(sides, 9, 0, 2, 2), RangeError);
  EXPECT_THROW(CropStage(sides, 0, 4, 1, 2), RangeError);
  EXPECT_THROW(CropStage(sides, 5, 0, 2147483647, 1), RangeError);
  EXPECT_NO_THROW(CropStage(sides, 9, 4, 1, 1));
}

TEST(StagesTest, RefuseAPictureOfAnotherSize) {
  std::mt19937 random(5);
  const Pixels source = test::RasterKinds()[0].make(3, 4, random);
  EXPECT_THROW(MadeBy(*TurnStage({4, 3}, 1), source), RangeError);
  EXPECT_THROW(MadeBy(*CropStage({4, 3}, 0, 0, 1, 1), source), RangeError);
  EXPECT_THROW(MadeBy(*ResizeStage({4, 3}, {2, 2}), source), RangeError);
  EXPECT_THROW(MadeBy(*RotateStage({4, 3}, 10), source), RangeError);
  EXPECT_THROW(MadeBy(*ChangeStage({4, 3}, MakeGray{}), source), RangeError);
}

}  // namespace
}  // namespace rasterkit
