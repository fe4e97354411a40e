#include <algorithm>
#include <random>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/kernels/halftone/halftone_growth.h>
#include <rasterkit/kernels/halftone/halftone_rows.h>

#include "tests/support/simd_targets.h"

namespace rasterkit::kernels {
namespace {

constexpr uint8_t kPaint = 0x88;

uint8_t Rounded(uint64_t sum, uint64_t total) {
  return static_cast<uint8_t>((2 * sum + total) / (2 * total));
}

/// All sums that bytes can make, for each total that words can hold.
TEST(HalftoneRows, DivideSums_Should_BeExact_ForEverySumOfWords) {
  int totals = 0;
  for (uint32_t total = 1; total <= 300; ++total) {
    if (!WordDivisor::Fits(total)) continue;
    ++totals;
    std::vector<uint16_t> sums(255 * total + 1);
    std::vector<uint8_t> expected(sums.size());
    for (uint32_t i = 0; i < sums.size(); ++i) {
      sums[i] = static_cast<uint16_t>(i);
      expected[i] = Rounded(i, total);
    }
    test::ForEachSimdTarget([&](int64_t simd) {
      std::vector<uint8_t> means(sums.size());
      DivideSums(sums.data(), sums.size(), WordDivisor::For(total), means.data());
      ASSERT_EQ(means, expected) << total << ", " << hwy::TargetName(simd);
    });
  }
  EXPECT_GT(totals, 127) << "every total up to 128, and more";
  EXPECT_FALSE(WordDivisor::Fits(1));
  EXPECT_FALSE(WordDivisor::Fits(257));
  for (const uint32_t total : {2u, 4u, 16u, 36u, 64u, 128u, 256u})
    EXPECT_TRUE(WordDivisor::Fits(total)) << total;
}

TEST(HalftoneRows, DivideSums_Should_BeExact_NearEveryRoundingBorder_InLongs) {
  constexpr unsigned kSeed = 16810000;
  std::mt19937 random(kSeed);
  std::vector<uint32_t> totals = {2,   3,   4,     5,        255,      256,
                                  257, 999, 65536, 16000000, 16777215, 16810000};
  for (int i = 0; i < 60; ++i) totals.push_back(2 + random() % 16800000);
  for (const uint32_t total : totals) {
    std::vector<uint32_t> sums = {0, 255 * total};
    for (uint64_t mean = 0; mean < 256; ++mean) {
      for (int64_t beside = -2; beside <= 2; ++beside) {
        const int64_t sum = static_cast<int64_t>(mean * total + total / 2) + beside;
        if (sum >= 0 && sum <= int64_t{255} * total) sums.push_back(static_cast<uint32_t>(sum));
      }
    }
    for (int i = 0; i < 500; ++i)
      sums.push_back(static_cast<uint32_t>(random() % (uint64_t{255} * total + 1)));
    std::vector<uint8_t> expected;
    for (const uint32_t sum : sums) expected.push_back(Rounded(sum, total));
    test::ForEachSimdTarget([&](int64_t simd) {
      std::vector<uint8_t> means(sums.size());
      DivideSums(sums.data(), sums.size(), total, means.data());
      ASSERT_EQ(means, expected) << total << ", " << hwy::TargetName(simd) << ", seed " << kSeed;
    });
  }
}

TEST(HalftoneRows, DivideSums_Should_StayInsideTheRow_ForEveryLength) {
  const std::vector<uint16_t> words(200, 5 * 36);
  const std::vector<uint32_t> longs(200, 7 * 3600);
  for (size_t count = 0; count <= 150; ++count) {
    test::ForEachSimdTarget([&](int64_t simd) {
      std::vector<uint8_t> means(count + 64, kPaint);
      DivideSums(words.data(), count, WordDivisor::For(36), means.data());
      EXPECT_EQ(std::count(means.begin(), means.end(), 5), static_cast<ptrdiff_t>(count));
      EXPECT_EQ(means[count], kPaint) << hwy::TargetName(simd);
      std::fill(means.begin(), means.end(), kPaint);
      DivideSums(longs.data(), count, 3600, means.data());
      EXPECT_EQ(std::count(means.begin(), means.end(), 7), static_cast<ptrdiff_t>(count));
      EXPECT_EQ(means[count], kPaint) << hwy::TargetName(simd);
    });
  }
}

template <class Sum>
void ExpectSumsOfRows(const std::vector<uint32_t>& weights, size_t bytes, bool adds) {
  std::mt19937 random(11);
  const size_t stride = bytes + 3;
  // Exactly the bytes that may be read.
  std::vector<uint8_t> pixels(weights.empty() ? 0 : stride * (weights.size() - 1) + bytes);
  for (uint8_t& pixel : pixels) pixel = static_cast<uint8_t>(random());
  std::vector<Sum> start(bytes + 8, 1000), expected = start;
  for (size_t x = 0; x < bytes; ++x) {
    uint32_t sum = adds ? start[x] : 0;
    for (size_t i = 0; i < weights.size(); ++i) sum += weights[i] * pixels[i * stride + x];
    expected[x] = static_cast<Sum>(sum);
  }
  test::ForEachSimdTarget([&](int64_t simd) {
    std::vector<Sum> sums = start;
    const WeightedRows rows{pixels.data(), stride, weights.data(), static_cast<int>(weights.size()),
                            adds};
    SumRows(rows, bytes, sums.data());
    ASSERT_EQ(sums, expected) << weights.size() << " rows of " << bytes << ", "
                              << hwy::TargetName(simd);
  });
}

TEST(HalftoneRows, SumRows_Should_AddWeightedRows_ForEveryLength) {
  for (size_t bytes = 0; bytes <= 150; bytes += bytes < 70 ? 1 : 7) {
    for (const bool adds : {false, true}) {
      ExpectSumsOfRows<uint16_t>({1}, bytes, adds);
      ExpectSumsOfRows<uint16_t>({1, 1, 1, 1}, bytes, adds);
      ExpectSumsOfRows<uint16_t>({7, 40, 3}, bytes, adds);
      ExpectSumsOfRows<uint32_t>({1, 1, 1}, bytes, adds);
      ExpectSumsOfRows<uint32_t>({70001, 4000000, 0, 999}, bytes, adds);
    }
  }
}

/// Each tap's weighted sum of columns, by 64-bit arithmetic.
uint64_t SumOfTap(const std::vector<uint32_t>& columns, const HalftoneAxis& axis,
                  const HalftoneTap& tap, size_t channel) {
  uint64_t sum = 0;
  for (int i = 0; i < tap.count; ++i) {
    const uint64_t weight = i == 0              ? tap.firstWeight
                            : i + 1 < tap.count ? axis.innerWeight
                                                : tap.lastWeight;
    sum += weight * columns[3 * static_cast<size_t>(tap.first + i) + channel];
  }
  return sum;
}

TEST(HalftoneRows, Columns_Should_BeSummedAndDividedExactly_ForManyRatios) {
  constexpr unsigned kSeed = 12;
  std::mt19937 random(kSeed);
  constexpr int kSizes[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 12, 31, 64, 97};
  for (const int size : kSizes) {
    for (const int length : kSizes) {
      for (const bool mirrored : {false, true}) {
        const HalftoneAxis axis = MakeHalftoneAxis(length, size, 0, length, mirrored);
        for (const uint32_t rowsTotal : {2u, 9973u, 8388593u}) {
          std::vector<uint32_t> columns(static_cast<size_t>(size) * 3 + kHalftonePadding);
          for (uint32_t& column : columns)
            column = static_cast<uint32_t>(random() % (uint64_t{255} * rowsTotal + 1));
          const uint64_t total = uint64_t{rowsTotal} * axis.total;
          std::vector<uint64_t> sums;
          std::vector<uint8_t> expected;
          for (const HalftoneTap& tap : axis.taps) {
            for (size_t c = 0; c < 3; ++c) {
              sums.push_back(SumOfTap(columns, axis, tap, c));
              expected.push_back(Rounded(sums.back(), total));
            }
          }
          test::ForEachSimdTarget([&](int64_t simd) {
            std::vector<uint8_t> means(expected.size());
            MeansOfColumns(columns.data(), axis, total, means.data());
            ASSERT_EQ(means, expected) << size << " to " << length << ", " << rowsTotal << ", "
                                       << hwy::TargetName(simd) << ", seed " << kSeed;
            if (255 * total > UINT32_MAX) return;
            std::vector<uint32_t> longs(sums.size() + kHalftonePadding);
            SumColumns(columns.data(), axis, longs.data());
            ASSERT_TRUE(std::equal(sums.begin(), sums.end(), longs.begin()))
                << size << " to " << length << ", " << hwy::TargetName(simd);
          });
        }
      }
    }
  }
}

/// Weights so large that no double holds the sums.
TEST(HalftoneRows, MeansOfColumns_Should_BeExact_When_SumsExceed53Bits) {
  const int64_t longest = kLongestHalftoneSide;
  const HalftoneAxis axis =
      MakeHalftoneAxis(longest, longest - 1, longest / 2, longest / 2 + 9, false);
  ASSERT_EQ(axis.total, 2u * longest);
  const uint32_t rowsTotal = 1u << 23;
  std::vector<uint32_t> columns;
  for (size_t i = 0; i < 36 + kHalftonePadding; ++i)
    columns.push_back(255 * rowsTotal - static_cast<uint32_t>(i * 77777777));
  HalftoneAxis near = axis;
  for (HalftoneTap& tap : near.taps) tap.first -= axis.taps[0].first;
  const uint64_t total = uint64_t{rowsTotal} * axis.total;
  std::vector<uint8_t> expected;
  for (const HalftoneTap& tap : near.taps)
    for (size_t c = 0; c < 3; ++c)
      expected.push_back(Rounded(SumOfTap(columns, near, tap, c), total));
  test::ForEachSimdTarget([&](int64_t simd) {
    std::vector<uint8_t> means(expected.size());
    MeansOfColumns(columns.data(), near, total, means.data());
    EXPECT_EQ(means, expected) << hwy::TargetName(simd);
  });
}

/// One tap of two columns for each of the sums of one channel; in the channels beside it the sums
/// are one less and one more.
struct ChosenSums {
  HalftoneAxis axis;
  std::vector<uint32_t> columns;
  std::vector<uint8_t> means;

  ChosenSums(uint32_t axisTotal, uint32_t rowsTotal) : rowsTotal_(rowsTotal) {
    axis.total = axisTotal;
    const int64_t total = Total();
    for (int64_t mean = 0; mean <= 255; ++mean) {
      Add(mean * total - (total - 1) / 2);  // the least that is rounded up to it, and its neighbors
      Add(mean * total);
    }
    columns.resize(columns.size() + kHalftonePadding);
  }

  int64_t Total() const { return int64_t{axis.total} * rowsTotal_; }

 private:
  void Add(int64_t sum) {
    if (sum < 1 || sum >= 255 * Total()) return;
    const uint32_t weight = axis.total - 1;
    axis.taps.push_back({static_cast<int32_t>(columns.size() / 3), 2, weight, 1});
    const uint64_t largest = uint64_t{255} * rowsTotal_;
    uint32_t last[3];
    for (int beside = -1; beside <= 1; ++beside) {
      const auto wanted = static_cast<uint64_t>(sum + beside);
      const uint64_t column = std::min(wanted / weight, largest);
      columns.push_back(static_cast<uint32_t>(column));
      last[beside + 1] = static_cast<uint32_t>(wanted - column * weight);
      ASSERT_LE(last[beside + 1], largest);
      means.push_back(Rounded(wanted, static_cast<uint64_t>(Total())));
    }
    columns.insert(columns.end(), last, last + 3);
  }

  uint32_t rowsTotal_;
};

/// Below 2^45 doubles divide, from there on whole numbers do, as white times 2^46 is no exact sum
/// any more.
TEST(HalftoneRows, MeansOfColumns_Should_BeExact_BesideEveryRoundingBorder_OfTotalsBeyondLongs) {
  constexpr unsigned kSeed = 45;
  std::mt19937 random(kSeed);
  constexpr uint32_t kMost = 1u << 23;
  std::vector<std::pair<uint32_t, uint32_t>> totals = {{4099, 4111},
                                                       {kMost / 2 - 1, kMost - 1},
                                                       {kMost / 2, kMost},
                                                       {kMost - 1, kMost / 2},
                                                       {kMost / 2 + 5, kMost - 1},
                                                       {kMost - 3, kMost / 2 + 99999},
                                                       {kMost - 1, kMost - 15},
                                                       {kMost - 1, kMost - 1},
                                                       {kMost, kMost}};
  for (int i = 0; i < 40; ++i)
    totals.emplace_back(kMost / 2 - random() % 5000, kMost - random() % 5000);
  for (int i = 0; i < 20; ++i) totals.emplace_back(2 + random() % kMost, 2 + random() % kMost);
  for (const auto& total : totals) {
    const ChosenSums sums(std::min(total.first, kMost), std::min(total.second, kMost));
    test::ForEachSimdTarget([&](int64_t simd) {
      std::vector<uint8_t> means(sums.means.size());
      MeansOfColumns(sums.columns.data(), sums.axis, static_cast<uint64_t>(sums.Total()),
                     means.data());
      ASSERT_EQ(means, sums.means) << total.first << " x " << total.second << ", "
                                   << hwy::TargetName(simd) << ", seed " << kSeed;
    });
  }
}

TEST(HalftoneGrowth, GrowRowAndMixRows_Should_BeExact_ForEveryLength) {
  constexpr unsigned kSeed = 13;
  std::mt19937 random(kSeed);
  for (int size = 1; size <= 20; ++size) {
    for (int length = size; length <= 3 * size; ++length) {
      const HalftoneAxis axis = MakeHalftoneAxis(length, size, 0, length, length % 2 == 0);
      constexpr uint32_t kRowsTotal = 4;
      const uint64_t total = kRowsTotal * axis.total;
      if (!WordDivisor::Fits(total)) continue;
      const size_t count = static_cast<size_t>(length) * 3;
      std::vector<uint32_t> columns[2];
      std::vector<uint8_t> rows[2];
      for (int i = 0; i < 2; ++i) {
        rows[i].resize(static_cast<size_t>(size) * 3 + kHalftonePadding);
        for (uint8_t& byte : rows[i]) byte = static_cast<uint8_t>(random());
        columns[i].assign(rows[i].begin(), rows[i].end());
      }
      std::vector<uint8_t> expected;
      for (const HalftoneTap& tap : axis.taps)
        for (size_t c = 0; c < 3; ++c)
          expected.push_back(Rounded(
              3 * SumOfTap(columns[0], axis, tap, c) + SumOfTap(columns[1], axis, tap, c), total));
      test::ForEachSimdTarget([&](int64_t simd) {
        const GrowthPlan plan = PlanGrowth(axis);
        std::vector<uint16_t> sums[2];
        for (int i = 0; i < 2; ++i) {
          sums[i].resize(count + kHalftonePadding);
          GrowRow(rows[i].data(), plan, sums[i].data());
        }
        std::vector<uint8_t> means(count + 64, kPaint);
        MixRows(sums[0].data(), 3, sums[1].data(), 1, count, WordDivisor::For(total), means.data());
        ASSERT_TRUE(std::equal(expected.begin(), expected.end(), means.begin()))
            << size << " to " << length << ", " << hwy::TargetName(simd) << ", seed " << kSeed;
        EXPECT_EQ(means[count], kPaint);
      });
    }
  }
}

TEST(HalftoneAxis, Weights_Should_AddUpToTheTotal_AndNameExistingPositions) {
  for (int size = 1; size <= 60; ++size) {
    for (int length = 1; length <= 60; ++length) {
      for (const bool mirrored : {false, true}) {
        const HalftoneAxis axis = MakeHalftoneAxis(length, size, 0, length, mirrored);
        ASSERT_EQ(axis.taps.size(), static_cast<size_t>(length));
        EXPECT_EQ(axis.shrinks, size > length);
        for (const HalftoneTap& tap : axis.taps) {
          ASSERT_GE(tap.first, 0);
          ASSERT_LE(tap.first + tap.count, size);
          uint64_t sum = tap.firstWeight;
          if (tap.count > 1)
            sum +=
                tap.lastWeight + uint64_t{axis.innerWeight} * static_cast<uint64_t>(tap.count - 2);
          ASSERT_EQ(sum, axis.total) << size << " to " << length;
          if (!axis.shrinks) {
            ASSERT_LE(tap.count, 2);
          }
        }
      }
    }
  }
}

}  // namespace
}  // namespace rasterkit::kernels
