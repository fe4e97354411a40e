#include <random>

#include <gtest/gtest.h>

#include <rasterkit/runtime/errors.h>

#include "tests/codecs/jpeg/lossless/moved_file.h"

namespace rasterkit::test {
namespace {

/// Moves the largest part that can be and compares it with the plain rule.
void ExpectMoved(std::span<const uint8_t> file, const BareJpeg& source, const PictureMove& wanted) {
  const PictureHeader header = ReadJpegHeader(file);
  const auto& form = std::get<JpegForm>(header.form);
  const auto part = MovableJpegPart(form, source.width, source.height, wanted);
  if (part != wanted) {
    EXPECT_THROW(Moved(file, wanted), RangeError) << TextOf(wanted);
  }
  if (!part) return;
  EXPECT_EQ(MovableJpegPart(form, source.width, source.height, *part), part);
  const MovedFile moved = Moved(file, *part);
  EXPECT_EQ(DifferenceOf(ReadBare(moved.bytes), MovedBare(source, *part)), "") << TextOf(*part);
  EXPECT_EQ(std::get<JpegForm>(moved.written.form),
            std::get<JpegForm>(ReadJpegHeader(moved.bytes).form));
}

void ExpectAllTurns(const BareJpeg& source, const BareWriting& writing, std::mt19937& random) {
  const std::vector<uint8_t> file = WriteBare(source, writing);
  const auto below = [&](int most) {
    return static_cast<int>(random() % static_cast<unsigned>(most));
  };
  for (int bits = 0; bits < 8; bits++) {
    ExpectMoved(file, source, TurnOf(bits, source));
    const int left = below(source.width), top = below(source.height);
    ExpectMoved(
        file, source,
        TurnOf(bits, left, top, 1 + below(source.width - left), 1 + below(source.height - top)));
  }
}

struct Kind {
  J_COLOR_SPACE space;
  std::vector<BareSampling> samplings;
};

/// All factors of the first component beside chroma of 1 x 1, and others that are not usual.
std::vector<Kind> AllKinds() {
  std::vector<Kind> kinds;
  for (int h = 1; h <= 4; h++) {
    for (int v = 1; v <= 4; v++) {
      kinds.push_back({JCS_GRAYSCALE, {{h, v}}});
      kinds.push_back({JCS_YCbCr, {{h, v}, {1, 1}, {1, 1}}});
      kinds.push_back({JCS_YCCK, {{h, v}, {1, 1}, {1, 1}, {h, v}}});
    }
  }
  // Chroma larger than luminance; factors that do not divide; components that all differ.
  kinds.push_back({JCS_YCbCr, {{1, 1}, {2, 2}, {2, 1}}});
  kinds.push_back({JCS_YCbCr, {{3, 2}, {2, 1}, {1, 2}}});
  kinds.push_back({JCS_YCbCr, {{4, 1}, {3, 1}, {2, 1}}});
  kinds.push_back({JCS_YCbCr, {{2, 2}, {2, 2}, {2, 2}}});
  kinds.push_back({JCS_RGB, {{1, 1}, {1, 1}, {1, 1}}});
  kinds.push_back({JCS_CMYK, {{1, 1}, {1, 1}, {1, 1}, {1, 1}}});
  kinds.push_back({JCS_CMYK, {{1, 2}, {1, 1}, {2, 1}, {2, 2}}});
  kinds.push_back({JCS_UNKNOWN, {{2, 1}, {1, 1}}});
  return kinds;
}

bool FitsOneScan(const Kind& kind) {
  int blocks = 0;
  for (const BareSampling& sampling : kind.samplings) blocks += sampling.h * sampling.v;
  return kind.samplings.size() == 1 || blocks <= 10;
}

TEST(MoveJpeg, Coefficients_Should_BeThoseOfTheSource_InAllTurnsAndSamplings) {
  constexpr unsigned kSeed = 160;
  std::mt19937 random(kSeed);
  unsigned number = 0;
  for (const Kind& kind : AllKinds()) {
    for (const bool progressive : {false, true}) {
      for (const int restarts : {0, 1, 3}) {
        BareJpeg source =
            RandomBare(5 + static_cast<int>(random() % 90), 5 + static_cast<int>(random() % 90),
                       kind.space, kind.samplings, kSeed + number++);
        source.progressive = progressive;
        source.restartInterval = restarts;
        BareWriting writing;
        writing.separatesComponents = !FitsOneScan(kind);
        writing.optimizes = random() % 2 == 0 || progressive;
        SCOPED_TRACE(testing::Message()
                     << "seed " << kSeed << ", picture " << number << ", components "
                     << kind.samplings.size() << ", first " << kind.samplings[0].h << " x "
                     << kind.samplings[0].v << ", progressive " << progressive);
        ExpectAllTurns(source, writing, random);
      }
    }
  }
}

TEST(MoveJpeg, Coefficients_Should_BeThoseOfTheSource_AroundTheBordersOfUnits) {
  std::mt19937 random(3);
  for (const auto& samplings : {std::vector<BareSampling>{{2, 2}, {1, 1}, {1, 1}},
                                std::vector<BareSampling>{{2, 1}, {1, 1}, {1, 1}},
                                std::vector<BareSampling>{{1, 1}, {1, 1}, {1, 1}}}) {
    for (const int width : {1, 7, 8, 9, 15, 16, 17, 24, 31, 32, 33}) {
      for (const int height : {1, 8, 15, 16, 17, 31, 32, 33}) {
        SCOPED_TRACE(testing::Message() << width << " x " << height);
        ExpectAllTurns(RandomBare(width, height, JCS_YCbCr, samplings, 7), {}, random);
      }
    }
  }
}

/// A file keeps its scans: a script of its own is written again, not the library's usual one.
TEST(MoveJpeg, Scans_Should_BeThoseOfTheSource) {
  BareJpeg source = RandomBare(64, 48, JCS_YCbCr, kHalvedChroma, 5);
  BareWriting writing;
  // Components apart, but not one by one.
  writing.scans = {{1, {0}, 0, 63, 0, 0}, {2, {1, 2}, 0, 63, 0, 0}};
  const auto scansOf = [](std::span<const uint8_t> file) {
    std::vector<std::vector<uint8_t>> scans;
    for (size_t at = 0; at + 4 < file.size(); at++) {
      if (file[at] != 0xFF || file[at + 1] != 0xDA) continue;
      std::vector<uint8_t> scan;
      const size_t count = file[at + 4];
      for (size_t i = 0; i < count; i++) scan.push_back(file[at + 5 + 2 * i]);
      for (size_t i = 0; i < 3; i++) scan.push_back(file[at + 5 + 2 * count + i]);
      scans.push_back(scan);
    }
    return scans;
  };
  const auto baseline = WriteBare(source, writing);
  EXPECT_EQ(scansOf(baseline).size(), 2u);
  EXPECT_EQ(scansOf(Moved(baseline, TurnOf(kQuarterTurn, source)).bytes), scansOf(baseline));

  source.progressive = true;
  writing.scans = {{3, {0, 1, 2}, 0, 0, 0, 0}, {1, {1}, 1, 63, 0, 0}, {1, {2}, 1, 63, 0, 0},
                   {1, {0}, 1, 8, 0, 2},       {1, {0}, 9, 63, 0, 0}, {1, {0}, 1, 8, 2, 1},
                   {1, {0}, 1, 8, 1, 0}};
  const auto progressive = WriteBare(source, writing);
  EXPECT_EQ(scansOf(progressive).size(), 7u);
  EXPECT_EQ(scansOf(Moved(progressive, TurnOf(kQuarterTurn, source)).bytes), scansOf(progressive));
}

TEST(MoveJpeg, Tables_Should_StayOfSixteenBits) {
  BareJpeg source = RandomBare(40, 40, JCS_GRAYSCALE, {{1, 1}}, 6);
  for (uint16_t& step : source.components[0].steps) step = static_cast<uint16_t>(step + 300);
  const auto file = WriteBare(source);
  const PictureMove turn = TurnOf(kQuarterTurn, source);
  EXPECT_EQ(DifferenceOf(ReadBare(Moved(file, turn).bytes), MovedBare(source, turn)), "");
}

}  // namespace
}  // namespace rasterkit::test
