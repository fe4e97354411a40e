#include <random>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/kernels/bits/bit_columns.h>

#include "tests/support/simd_targets.h"

namespace rasterkit::kernels {
namespace {

using Row = std::vector<uint8_t>;

std::vector<Row> RandomRows(std::mt19937& random, size_t count, size_t bytes) {
  // No room behind the bytes: nothing is read there.
  std::vector<Row> rows(count, Row(bytes));
  for (Row& row : rows) {
    for (uint8_t& byte : row) byte = static_cast<uint8_t>(random() | (random() % 2 ? 0xF0 : 0));
  }
  return rows;
}

TEST(SumBitColumns, CountsRunsOfAllLengths) {
  constexpr unsigned kSeed = 41;
  SCOPED_TRACE(kSeed);
  std::mt19937 random(kSeed);
  for (const size_t bytes : {size_t{1}, size_t{15}, size_t{16}, size_t{17}, size_t{33}}) {
    const std::vector<Row> rows = RandomRows(random, kMostRowsOfRun, bytes);
    std::vector<const uint8_t*> pointers;
    for (const Row& row : rows) pointers.push_back(row.data());
    test::ForEachSimdTarget([&](int64_t simd) {
      std::vector<int> plain(8 * bytes);
      for (int count = 1; count <= kMostRowsOfRun; count++) {
        const Row& last = rows[static_cast<size_t>(count) - 1];
        for (size_t x = 0; x < plain.size(); x++) plain[x] += last[x / 8] >> (7 - x % 8) & 1;
        const BitRun runs[] = {{pointers.data(), count, 100}, {&pointers[3], 2, 1}};
        std::vector<int16_t> sums(8 * bytes + kColumnPadding);
        SumBitColumns(runs, 2, bytes, sums.data());
        for (size_t x = 0; x < plain.size(); x++) {
          const int others =
              (rows[3][x / 8] >> (7 - x % 8) & 1) + (rows[4][x / 8] >> (7 - x % 8) & 1);
          ASSERT_EQ(sums[x], 100 * plain[x] + others)
              << hwy::TargetName(simd) << ", " << count << " rows, column " << x;
        }
      }
    });
  }
}

TEST(SumBitColumns, HoldsTheLargestSum) {
  const Row ones(5, 255);
  const uint8_t* const row = ones.data();
  const BitRun runs[] = {{&row, 1, 32766}, {&row, 1, 1}};
  test::ForEachSimdTarget([&](int64_t simd) {
    std::vector<int16_t> sums(8 * ones.size() + kColumnPadding);
    SumBitColumns(runs, 2, ones.size(), sums.data());
    for (size_t x = 0; x < 8 * ones.size(); x++) {
      ASSERT_EQ(sums[x], 32767) << hwy::TargetName(simd) << ", column " << x;
    }
  });
}

/// The quotient of whole numbers, halves up.
uint8_t PlainMean(uint64_t sum, uint64_t total, BitGrays grays) {
  return static_cast<uint8_t>((2 * (grays.of0 * (total - sum) + grays.of1 * sum) + total) /
                              (2 * total));
}

void ExpectMeans(const std::vector<uint32_t>& sums, uint32_t total, int64_t simd) {
  for (const BitGrays grays : {BitGrays{0, 255}, {255, 0}, {31, 200}, {7, 7}}) {
    std::vector<uint8_t> means(sums.size());
    MeansOfOnes(sums.data(), sums.size(), total, grays, means.data());
    for (size_t i = 0; i < sums.size(); i++) {
      ASSERT_EQ(means[i], PlainMean(sums[i], total, grays))
          << hwy::TargetName(simd) << ", " << sums[i] << " of " << total;
    }
  }
}

TEST(MeansOfOnes, AreExact_ForAllSumsOfSmallTotals) {
  test::ForEachSimdTarget([](int64_t simd) {
    for (uint32_t total = 1; total <= 600; total++) {
      std::vector<uint32_t> sums;
      for (uint32_t sum = 0; sum <= total; sum++) sums.push_back(sum);
      ExpectMeans(sums, total, simd);
      if (::testing::Test::HasFatalFailure()) return;
    }
  });
}

TEST(MeansOfOnes, AreExact_AroundAllHalvesOfLargeTotals) {
  test::ForEachSimdTarget([](int64_t simd) {
    for (const uint32_t total : {0x7FFFFFFFu, 0x7FFFFFFEu, 0x7FFFFF01u, 62042455u, 16843009u}) {
      std::vector<uint32_t> sums{0, total};
      for (uint64_t half = 1; half < 510; half++) {
        const auto near = static_cast<uint32_t>(half * total / 510);
        for (uint32_t sum = near - 2; sum != near + 3; sum++) sums.push_back(sum);
      }
      ExpectMeans(sums, total, simd);
      if (::testing::Test::HasFatalFailure()) return;
    }
  });
}

}  // namespace
}  // namespace rasterkit::kernels
