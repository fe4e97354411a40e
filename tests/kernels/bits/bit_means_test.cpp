#include <random>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/kernels/bits/bit_means.h>

#include "tests/reference/bit_means_reference.h"
#include "tests/support/simd_targets.h"

namespace rasterkit::kernels {
namespace {

constexpr uint8_t kPaint = 0x5A;

struct Bits {
  std::vector<std::vector<bool>> pixels;
  std::vector<std::vector<uint8_t>> rows;

  Bits(std::mt19937& random, int width, int height) {
    for (int y = 0; y < height; y++) {
      // Bits after the last pixel count for nothing. No room behind the bytes: nothing is read
      // there.
      std::vector<uint8_t> row((static_cast<size_t>(width) + 7) / 8);
      const unsigned kind = random() % 4;
      for (uint8_t& byte : row) {
        byte = static_cast<uint8_t>(kind == 0 ? 0 : kind == 1 ? 255 : random());
      }
      row.back() = static_cast<uint8_t>(random());
      std::vector<bool> bits;
      for (int x = 0; x < width; x++) {
        bits.push_back((row[static_cast<size_t>(x) / 8] >> (7 - x % 8) & 1) != 0);
      }
      rows.push_back(std::move(row));
      pixels.push_back(std::move(bits));
    }
  }
};

void ExpectMeans(const Bits& bits, int width, int height, int toWidth, int toHeight,
                 HalftoneRule rule, const uint8_t (&grays)[2]) {
  const HalftoneAxis columns = MakeHalftoneAxis(toWidth, width, 0, toWidth, false, rule);
  const HalftoneAxis rows = MakeHalftoneAxis(toHeight, height, 0, toHeight, false, rule);
  std::vector<std::vector<uint8_t>> expected(static_cast<size_t>(toHeight));
  for (size_t y = 0; y < expected.size(); y++) {
    for (size_t x = 0; x < static_cast<size_t>(toWidth); x++) {
      expected[y].push_back(reference::BitMean(bits.pixels, columns, x, rows, y, grays));
    }
    expected[y].push_back(kPaint);
  }
  test::ForEachSimdTarget([&](int64_t simd) {
    BitMeans means(columns, width, rows.total, grays[0], grays[1]);
    for (size_t y = 0; y < expected.size(); y++) {
      const HalftoneTap& tap = rows.taps[y];
      for (int i = 0; i < tap.count; i++) {
        const uint32_t weight = i == 0              ? tap.firstWeight
                                : i + 1 < tap.count ? rows.innerWeight
                                                    : tap.lastWeight;
        means.Add(bits.rows[static_cast<size_t>(tap.first + i)].data(), weight);
      }
      std::vector<uint8_t> row(static_cast<size_t>(toWidth) + 1, kPaint);
      means.Finish(row.data());
      ASSERT_EQ(row, expected[y]) << hwy::TargetName(simd) << ", row " << y << ", " << width
                                  << " x " << height << " to " << toWidth << " x " << toHeight;
    }
  });
}

constexpr uint8_t kBlackWhite[2] = {0, 255}, kWhiteBlack[2] = {255, 0}, kGrays[2] = {200, 31};

TEST(BitMeans, AreExact_ForAllWidthsUpTo70) {
  constexpr unsigned kSeed = 31;
  std::mt19937 random(kSeed);
  SCOPED_TRACE(kSeed);
  for (int width = 1; width <= 70; width++) {
    const Bits bits(random, width, 5);
    for (int toWidth = 1; toWidth <= width; toWidth++) {
      ExpectMeans(bits, width, 5, toWidth, 2, HalftoneRule::automatic, kBlackWhite);
      if (::testing::Test::HasFatalFailure()) return;
    }
  }
}

TEST(BitMeans, AreExact_ForWholeFactors) {
  constexpr unsigned kSeed = 32;
  std::mt19937 random(kSeed);
  SCOPED_TRACE(kSeed);
  for (const int factor : {2, 3, 4, 8, 16}) {
    for (int toWidth = 1; toWidth <= 35; toWidth++) {
      const int width = factor * toWidth;
      for (const int height : {factor, 9}) {
        const Bits bits(random, width, height);
        for (const auto& grays : {kBlackWhite, kWhiteBlack, kGrays}) {
          ExpectMeans(bits, width, height, toWidth, (height + factor - 1) / factor,
                      HalftoneRule::automatic, {grays[0], grays[1]});
          if (::testing::Test::HasFatalFailure()) return;
        }
      }
    }
  }
}

TEST(BitMeans, AreExact_ForLongAndForManyRows) {
  constexpr unsigned kSeed = 33;
  std::mt19937 random(kSeed);
  SCOPED_TRACE(kSeed);
  // More ones in a group than a byte holds, long taps, large totals.
  for (const auto& [width, height, toWidth, toHeight] : {std::array{64, 300, 8, 1},
                                                         {32, 300, 8, 2},
                                                         {1000, 7, 7, 3},
                                                         {1009, 3, 2, 1},
                                                         {1999, 401, 3, 2},
                                                         {20011, 7, 2, 1},
                                                         {57, 3, 1, 1},
                                                         {58, 3, 1, 1},
                                                         {59, 2, 1, 1}}) {
    const Bits bits(random, width, height);
    ExpectMeans(bits, width, height, toWidth, toHeight, HalftoneRule::automatic, kGrays);
    if (::testing::Test::HasFatalFailure()) return;
  }
}

TEST(BitMeans, AreExact_ForManyRowsOfTapsThatAreNoGroups) {
  constexpr unsigned kSeed = 35;
  std::mt19937 random(kSeed);
  SCOPED_TRACE(kSeed);
  // Weights of rows that columns bear, and some that they do not; all whole factors up to 16.
  for (const auto& [width, height, toWidth, toHeight] :
       {std::array{9, 40009, 2, 2}, {150, 32771, 1, 3}, {300, 601, 67, 2}, {130, 32749, 3, 2}}) {
    const Bits bits(random, width, height);
    ExpectMeans(bits, width, height, toWidth, toHeight, HalftoneRule::automatic, kGrays);
    if (::testing::Test::HasFatalFailure()) return;
  }
  for (int factor = 2; factor <= 16; factor++) {
    const Bits bits(random, 19 * factor, 3 * factor);
    ExpectMeans(bits, 19 * factor, 3 * factor, 19, 3, HalftoneRule::automatic, kBlackWhite);
    if (::testing::Test::HasFatalFailure()) return;
  }
}

TEST(BitMeans, AreExact_WhereOneSideGrowsOrStays) {
  constexpr unsigned kSeed = 34;
  std::mt19937 random(kSeed);
  SCOPED_TRACE(kSeed);
  for (const auto rule : {HalftoneRule::automatic, HalftoneRule::area, HalftoneRule::linear}) {
    for (const auto& [toWidth, toHeight] :
         {std::array{37, 4}, {12, 20}, {50, 3}, {37, 10}, {9, 10}, {74, 30}}) {
      const Bits bits(random, 37, 10);
      ExpectMeans(bits, 37, 10, toWidth, toHeight, rule, kBlackWhite);
      if (::testing::Test::HasFatalFailure()) return;
    }
  }
}

}  // namespace
}  // namespace rasterkit::kernels
