#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/kernels/filters/unfilter_row.h>

#include "tests/reference/png_filter_reference.h"
#include "tests/support/simd_targets.h"

namespace rasterkit::kernels {
namespace {

using Row = std::vector<uint8_t>;

constexpr uint8_t kPaint = 0x5C;
constexpr size_t kPixelBytes[] = {1, 2, 3, 4, 6, 8};

Row RandomRow(size_t count, std::mt19937& random) {
  Row row(count);
  for (uint8_t& byte : row) byte = static_cast<uint8_t>(random());
  return row;
}

/// Compares both directions with the rule, and looks at the byte after the row.
void ExpectByTheRule(int filter, const Row& row, const Row& above, size_t pixelBytes,
                     const std::string& what) {
  const Row expected = reference::Filtered(filter, row, above, pixelBytes);
  Row target(row.size() + 1, kPaint);
  const uint64_t sum = FilterRow(static_cast<PngFilter>(filter), row.data(), above.data(),
                                 row.size(), pixelBytes, target.data());
  EXPECT_EQ(sum, reference::SumOfDifferences(expected)) << what;
  EXPECT_EQ(target.back(), kPaint) << what;
  target.pop_back();
  EXPECT_EQ(expected, target) << what;

  Row undone = expected;
  undone.push_back(kPaint);
  UnfilterRow(static_cast<uint8_t>(filter), above.data(), row.size(), pixelBytes, undone.data());
  EXPECT_EQ(undone.back(), kPaint) << what;
  undone.pop_back();
  EXPECT_EQ(reference::Unfiltered(filter, expected, above, pixelBytes), undone) << what;
  EXPECT_EQ(row, undone) << what;
}

TEST(PngFiltersTest, RowsOfAllLengthsAreThoseOfTheRule) {
  test::ForEachSimdTarget([](int64_t target) {
    std::mt19937 random(5);
    for (const size_t pixelBytes : kPixelBytes) {
      for (int filter = 0; filter <= 4; ++filter) {
        for (size_t pixels = 1; pixels <= 150; ++pixels) {
          const size_t bytes = pixels * pixelBytes;
          ExpectByTheRule(filter, RandomRow(bytes, random), RandomRow(bytes, random), pixelBytes,
                          std::string(hwy::TargetName(target)) + ", filter " +
                              std::to_string(filter) + ", " + std::to_string(pixels) + " x " +
                              std::to_string(pixelBytes));
          if (testing::Test::HasFailure()) return;
        }
      }
    }
  });
}

/// All pairs of left and above for each byte above left. A row holds one pixel per pair, between
/// pixels that set left and above left.
TEST(PngFiltersTest, AllNeighborsAreThoseOfTheRule) {
  test::ForEachSimdTarget([](int64_t target) {
    constexpr size_t kPixel = 4;
    for (int corner = 0; corner < 256; ++corner) {
      for (int left = 0; left < 256; ++left) {
        // Bytes 0 to 3 of the second pixel have four different bytes above.
        Row row, above;
        for (int top = 0; top < 256; top += 4) {
          for (size_t i = 0; i < kPixel; ++i) {
            row.push_back(static_cast<uint8_t>(left));
            above.push_back(static_cast<uint8_t>(corner));
          }
          for (size_t i = 0; i < kPixel; ++i) {
            row.push_back(static_cast<uint8_t>(37 * i));
            above.push_back(static_cast<uint8_t>(static_cast<size_t>(top) + i));
          }
        }
        for (const int filter : {3, 4}) {
          ExpectByTheRule(filter, row, above, kPixel, hwy::TargetName(target));
        }
        if (testing::Test::HasFailure()) return;
      }
    }
  });
}

TEST(PngFiltersTest, AnUnknownFilterLeavesTheRow) {
  std::mt19937 random(6);
  const Row row = RandomRow(30, random), above = RandomRow(30, random);
  for (const int filter : {0, 5, 64, 255}) {
    Row same = row;
    UnfilterRow(static_cast<uint8_t>(filter), above.data(), same.size(), 3, same.data());
    EXPECT_EQ(row, same);
  }
}

}  // namespace
}  // namespace rasterkit::kernels
