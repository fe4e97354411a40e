#include <algorithm>

#include <gtest/gtest.h>

#include <rasterkit/bands/stages.h>
#include <rasterkit/runtime/errors.h>

#include "tests/bands/band_pictures.h"
#include "tests/bands/made_in_parts.h"

// Steps that move pixels, made in bands and tiles: the bytes of the whole.
namespace rasterkit {
namespace {

using test::MadeBy;
using test::SidesOf;

/// The cases of a test are drawn from this seed, which a failure shows.
constexpr unsigned kSeed = 20261122;

class Draw {
 public:
  explicit Draw(unsigned seed) : random(seed), trace_(__FILE__, __LINE__, Text(seed)) {}
  int From(int low, int high) {
    return low + static_cast<int>(random() % static_cast<unsigned>(high - low + 1));
  }
  std::mt19937 random;

 private:
  static std::string Text(unsigned seed) { return "seed " + std::to_string(seed); }
  testing::ScopedTrace trace_;
};

void Compare(const Stage& stage, const Pixels& source, Draw& draw) {
  test::ExpectSameInParts(stage, source, MadeBy(stage, source), draw.random);
}

TEST(PlacesInPartsTest, TurnsAndMirrorsOfEveryKind) {
  Draw draw(kSeed);
  for (const auto& kind : test::EveryKind()) {
    SCOPED_TRACE(kind.name);
    const Pixels source = kind.make(draw.From(1, 90), draw.From(1, 90), draw.random);
    for (int quarters = 0; quarters < 4; ++quarters) {
      SCOPED_TRACE(quarters);
      Compare(*TurnStage(SidesOf(source), quarters), source, draw);
    }
    Compare(*MirrorStage(SidesOf(source), MirrorAxis::leftRight), source, draw);
    Compare(*MirrorStage(SidesOf(source), MirrorAxis::topBottom), source, draw);
    if (testing::Test::HasFailure()) return;
  }
}

TEST(PlacesInPartsTest, CropsOfEveryKind) {
  Draw draw(kSeed + 1);
  for (const auto& kind : test::EveryKind()) {
    SCOPED_TRACE(kind.name);
    const Pixels source = kind.make(draw.From(1, 150), draw.From(1, 90), draw.random);
    const Sides sides = SidesOf(source);
    for (int i = 0; i < 5; ++i) {
      const int left = draw.From(0, sides.width - 1), top = draw.From(0, sides.height - 1);
      Compare(*CropStage(sides, left, top, draw.From(1, sides.width - left),
                         draw.From(1, sides.height - top)),
              source, draw);
    }
    if (testing::Test::HasFailure()) return;
  }
}

constexpr double kAngles[] = {0.005, 2, 30, 45, 89.99, 90, 90.3, 137, 180.5, 359};
constexpr Filter kFilters[] = {Filter::automatic, Filter::nearest, Filter::linear, Filter::area};
constexpr Fill::Kind kFills[] = {Fill::Kind::color, Fill::Kind::transparent, Fill::Kind::noData,
                                 Fill::Kind::edge,  Fill::Kind::automatic,   Fill::Kind::usual};

/// Any filter and fill; callers skip those that refuse the picture.
Resampling AnyResampling(Draw& draw) {
  Resampling how;
  how.filter = kFilters[draw.From(0, 3)];
  how.fill = {kFills[draw.From(0, 5)], RGB(10, 200, 77)};
  if (draw.From(0, 1) == 0) how.noData = 3;
  return how;
}

/// False if the stage refuses pixels of this kind.
bool Starts(const Stage& stage, const Pixels& source) {
  try {
    return stage.Start(source, {}) != nullptr;
  } catch (const Error&) {
    EXPECT_THROW(MadeBy(stage, source), Error);
    return false;
  }
}

TEST(PlacesInPartsTest, EveryAngleOfEveryKind) {
  Draw draw(kSeed + 2);
  for (const auto& kind : test::EveryKind()) {
    for (const double degrees : kAngles) {
      SCOPED_TRACE(kind.name + ", " + std::to_string(degrees) + " degrees");
      const Pixels source = kind.make(draw.From(1, 90), draw.From(1, 70), draw.random);
      const auto stage = RotateStage(SidesOf(source), degrees, AnyResampling(draw));
      if (Starts(*stage, source)) Compare(*stage, source, draw);
      if (testing::Test::HasFailure()) return;
    }
  }
}

TEST(PlacesInPartsTest, EveryFilterAndFillOfEveryFormat) {
  Draw draw(kSeed + 3);
  for (const auto& kind : test::RasterKinds()) {
    for (const Filter filter : kFilters) {
      for (const Fill::Kind fill : kFills) {
        const double degrees = kAngles[draw.From(0, 9)];
        SCOPED_TRACE(kind.name + ", fill " + std::to_string(static_cast<int>(fill)) + ", filter " +
                     std::to_string(static_cast<int>(filter)) + ", " + std::to_string(degrees) +
                     " degrees");
        const Pixels source = kind.make(draw.From(1, 60), draw.From(1, 50), draw.random);
        const Resampling how{filter, {fill, RGB(200, 20, 3)}, 1};
        const auto stage = RotateStage(SidesOf(source), degrees, how);
        if (Starts(*stage, source)) Compare(*stage, source, draw);
        if (testing::Test::HasFailure()) return;
      }
    }
  }
}

TEST(PlacesInPartsTest, LargePicturesOfManyTiles) {
  Draw draw(kSeed + 4);
  for (const auto& kind : test::RasterKinds()) {
    for (const double degrees : {2.0, 45.0, 90.3, 180.5, 359.0}) {
      SCOPED_TRACE(kind.name + ", " + std::to_string(degrees) + " degrees");
      const Pixels source = kind.make(draw.From(500, 900), draw.From(100, 400), draw.random);
      Resampling how;
      how.fill.kind = kFills[draw.From(0, 1) * 4];
      const auto stage = RotateStage(SidesOf(source), degrees, how);
      Compare(*stage, source, draw);
      if (testing::Test::HasFailure()) return;
    }
  }
}

TEST(PlacesInPartsTest, LongRowsAfterAQuarterTurn) {
  Draw draw(kSeed + 7);
  for (const auto& kind : test::RasterKinds()) {
    SCOPED_TRACE(kind.name);
    const Pixels source = kind.make(draw.From(1, 20), draw.From(8300, 9000), draw.random);
    const auto stage = RotateStage(SidesOf(source), draw.From(0, 1) == 0 ? 90.3 : 269.7);
    Compare(*stage, source, draw);
    if (testing::Test::HasFailure()) return;
  }
}

TEST(PlacesInPartsTest, AffinesOfEveryKind) {
  Draw draw(kSeed + 5);
  const Affine affines[] = {{0.7, -0.2, 0.3, 1.1, -3.3, 4.7},
                            {1.9, 0, 0, 0.4, 2, -1},
                            {-1, 0.001, 0, -1, 60, 40},
                            {0.1, 3, -2, 0.2, 1000, 5}};
  for (const auto& kind : test::EveryKind()) {
    for (const Affine& affine : affines) {
      SCOPED_TRACE(kind.name);
      const Pixels source = kind.make(draw.From(1, 90), draw.From(1, 70), draw.random);
      const auto stage = AffineStage(SidesOf(source), affine, {draw.From(1, 90), draw.From(1, 70)},
                                     AnyResampling(draw));
      if (Starts(*stage, source)) Compare(*stage, source, draw);
      if (testing::Test::HasFailure()) return;
    }
  }
}

TEST(PlacesInPartsTest, EverySizeOfEveryKind) {
  Draw draw(kSeed + 6);
  for (const auto& kind : test::EveryKind()) {
    for (const Filter filter : kFilters) {
      for (const Sides grown : {Sides{0, 0}, Sides{1, 1}, Sides{0, 1}, Sides{1, 0}, Sides{2, 2}}) {
        SCOPED_TRACE(kind.name + ", filter " + std::to_string(static_cast<int>(filter)));
        const Pixels source = kind.make(draw.From(1, 90), draw.From(1, 90), draw.random);
        const auto side = [&](int from, int way) {
          if (way == 2) return from;
          return way == 1 ? draw.From(from, 3 * from) : draw.From(1, from);
        };
        const Sides target{side(WidthOf(source), grown.width),
                           side(HeightOf(source), grown.height)};
        const auto stage =
            ResizeStage(SidesOf(source), target, filter,
                        draw.From(0, 1) == 0 ? std::nullopt : std::optional<double>(3));
        if (Starts(*stage, source)) Compare(*stage, source, draw);
        if (testing::Test::HasFailure()) return;
      }
    }
  }
}

TEST(PlacesInPartsTest, SmallAnglesNeedFewRows) {
  const Pixels like = Raster(pf24bit, 1, 1);
  const Sides source{16000, 15500};
  const auto rotation = RotateStage(source, 2)->Start(like, {});
  const Sides size = rotation->Size();
  // A row of 16531 pixels falls by sin(2 degrees) of it, 577.
  EXPECT_LE(rotation->Needs({0, size.height / 2, size.width, 64}).height, 64 + 577 + 6);
  const BandRect tile = rotation->Needs({8000, 8000, 512, 64});
  EXPECT_LE(tile.width, 512 + 3 + 6);
  EXPECT_LE(tile.height, 64 + 18 + 6);
  // A quarter turn and 0.3 degrees: columns of the source for rows of the result.
  const auto both = RotateStage(source, 90.3)->Start(like, {});
  const BandRect columns = both->Needs({0, both->Size().height / 2, both->Size().width, 64});
  EXPECT_LE(columns.width, 64 + 82 + 6);
  EXPECT_GE(columns.height, 15000);
  const auto resize = ResizeStage(source, {4000, 3875})->Start(like, {});
  EXPECT_EQ(resize->Needs({0, 100, 4000, 10}), (BandRect{0, 400, 16000, 40}));
  EXPECT_EQ(resize->Needs({10, 100, 20, 10}), (BandRect{40, 400, 80, 40}));
}

TEST(PlacesInPartsTest, NeedNothingWhereNothingShows) {
  const Pixels like = Raster(pf24bit, 1, 1);
  const auto work = RotateStage({1000, 1000}, 45)->Start(like, {});
  EXPECT_EQ(work->Needs({0, 0, 100, 100}), (BandRect{}));
  Resampling clamped;
  clamped.fill.kind = Fill::Kind::edge;
  const auto edge = RotateStage({1000, 1000}, 45, clamped)->Start(like, {});
  EXPECT_GE(edge->Needs({0, 0, 100, 100}).width, 1);
}

TEST(PlacesInPartsTest, NeedNoMoreThanTheirPart) {
  const Pixels like = Raster(pf24bit, 1, 1);
  const auto crop = CropStage({16000, 15500}, 3001, 2002, 4000, 3000)->Start(like, {});
  EXPECT_EQ(crop->Needs({0, 0, 4000, 3000}), (BandRect{3001, 2002, 4000, 3000}));
  EXPECT_EQ(crop->Needs({10, 20, 30, 40}), (BandRect{3011, 2022, 30, 40}));
  const auto left = TurnStage({100, 50}, 1)->Start(like, {});
  EXPECT_EQ(left->Needs({0, 0, 50, 7}), (BandRect{93, 0, 7, 50}));
  EXPECT_EQ(left->Needs({3, 10, 4, 7}), (BandRect{83, 3, 7, 4}));
  const auto right = TurnStage({100, 50}, 3)->Start(like, {});
  EXPECT_EQ(right->Needs({0, 0, 50, 7}), (BandRect{0, 0, 7, 50}));
  EXPECT_EQ(right->Needs({3, 10, 4, 7}), (BandRect{10, 43, 7, 4}));
  const auto half = TurnStage({100, 50}, 2)->Start(like, {});
  EXPECT_EQ(half->Needs({3, 10, 4, 7}), (BandRect{93, 33, 4, 7}));
  const auto mirror = MirrorStage({100, 50}, MirrorAxis::topBottom)->Start(like, {});
  EXPECT_EQ(mirror->Needs({3, 10, 4, 7}), (BandRect{3, 33, 4, 7}));
}

}  // namespace
}  // namespace rasterkit
