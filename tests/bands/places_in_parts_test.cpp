#include <algorithm>

#include <gtest/gtest.h>

#include <rasterkit/bands/stages.h>

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

TEST(PlacesInPartsTest, NeedNoMoreThanTheirPart) {
  std::mt19937 random(1);
  const Pixels like = test::RasterKinds()[0].make(1, 1, random);
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
