#include <algorithm>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/kernels/halftone/halftone_alpha.h>

#include "tests/support/simd_targets.h"

namespace rasterkit::kernels {
namespace {

uint8_t Rounded(uint64_t sum, uint64_t total) {
  return static_cast<uint8_t>((2 * sum + total) / (2 * total));
}

void ExpectSumsOfRows(const std::vector<uint32_t>& weights, size_t width, bool adds) {
  std::mt19937 random(21);
  const size_t stride = 4 * width + 5;
  // Exactly the bytes that may be read.
  std::vector<uint8_t> pixels(stride * (weights.size() - 1) + 4 * width);
  for (uint8_t& byte : pixels) byte = static_cast<uint8_t>(random() % 4 == 0 ? 255 : random());
  std::vector<int32_t> start(kOpacitySums * width + 8, 1000), expected = start;
  for (size_t x = 0; x < width; ++x) {
    uint32_t sums[kOpacitySums] = {};
    for (size_t i = 0; i < weights.size(); ++i) {
      const uint8_t* pixel = pixels.data() + i * stride + 4 * x;
      for (size_t c = 0; c < 3; ++c) sums[c] += weights[i] * pixel[3] * pixel[c];
      sums[3] += weights[i] * pixel[3];
    }
    for (size_t c = 0; c < kOpacitySums; ++c)
      expected[kOpacitySums * x + c] = static_cast<int32_t>(sums[c]) + (adds ? 1000 : 0);
  }
  test::ForEachSimdTarget([&](int64_t simd) {
    std::vector<int32_t> sums = start;
    const WeightedRows rows{pixels.data(), stride, weights.data(), static_cast<int>(weights.size()),
                            adds};
    SumAlphaRows(rows, width, sums.data());
    ASSERT_EQ(sums, expected) << weights.size() << " rows of " << width << ", "
                              << hwy::TargetName(simd);
  });
}

TEST(HalftoneAlpha, SumAlphaRows_Should_AddWeightedRows_ForEveryWidth) {
  for (size_t width = 0; width <= 150; width += width < 70 ? 1 : 7) {
    for (const bool adds : {false, true}) {
      ExpectSumsOfRows({1}, width, adds);
      ExpectSumsOfRows({1, 1, 1, 1}, width, adds);
      ExpectSumsOfRows({1, 5}, width, adds);
      ExpectSumsOfRows({7, 40, 3}, width, adds);
      ExpectSumsOfRows({20000, 0, 13000, 1}, width, adds);
    }
  }
}

/// A pixel's sums, and the pixel that they make with weights of 1 and a total.
struct Case {
  int32_t sums[kOpacitySums];
  uint8_t pixel[4];
};

Case MakeCase(uint32_t alpha, uint32_t colors, uint64_t total) {
  Case made{};
  for (size_t c = 0; c < 3; ++c) {
    const uint32_t sum = std::min(colors + static_cast<uint32_t>(c), 255 * alpha);
    made.sums[c] = static_cast<int32_t>(sum);
    made.pixel[c] = alpha == 0 ? 0 : Rounded(sum, alpha);
  }
  made.sums[3] = static_cast<int32_t>(alpha);
  made.pixel[3] = Rounded(alpha, total);
  return made;
}

void ExpectMeans(const std::vector<Case>& cases, uint32_t total) {
  HalftoneAxis axis;
  std::vector<int32_t> sums;
  std::vector<uint8_t> expected;
  std::vector<uint32_t> expectedTransparent;
  for (size_t i = 0; i < cases.size(); ++i) {
    axis.taps.push_back({static_cast<int32_t>(i), 1, 1, 0});
    sums.insert(sums.end(), cases[i].sums, cases[i].sums + 4);
    expected.insert(expected.end(), cases[i].pixel, cases[i].pixel + 4);
    if (cases[i].sums[3] == 0) expectedTransparent.push_back(static_cast<uint32_t>(i));
  }
  test::ForEachSimdTarget([&](int64_t simd) {
    std::vector<uint8_t> pixels(expected.size());
    std::vector<uint32_t> transparent(cases.size());
    transparent.resize(
        MeansByAlpha(sums.data(), AlphaColumns(axis, total), pixels.data(), transparent.data()));
    const auto wrong =
        std::mismatch(pixels.begin(), pixels.end(), expected.begin()).first - pixels.begin();
    ASSERT_EQ(pixels, expected) << "total " << total << ", pixel " << wrong / 4 << ", "
                                << hwy::TargetName(simd);
    ASSERT_EQ(transparent, expectedTransparent) << total << ", " << hwy::TargetName(simd);
  });
}

TEST(HalftoneAlpha, MeansByAlpha_Should_BeExact_NearEveryRoundingBorder) {
  constexpr unsigned kSeed = 22;
  std::printf("seed %u\n", kSeed);
  std::mt19937 random(kSeed);
  // Floats hold the sums up to 257, doubles beyond.
  for (const uint32_t total : {2u, 3u, 36u, 255u, 256u, 257u, 258u, 1000u, 33025u}) {
    std::vector<uint32_t> alphas = {0, 1, 2, 3, total / 2, total, 255 * total - 1, 255 * total};
    for (int i = 0; i < 40; ++i) alphas.push_back(static_cast<uint32_t>(random() % (255 * total)));
    std::vector<Case> cases;
    for (const uint32_t alpha : alphas) {
      for (uint64_t mean = 0; mean < 256; ++mean) {
        for (int64_t beside = -4; beside <= 2; beside += 3) {
          const int64_t sum = static_cast<int64_t>(mean * alpha + alpha / 2) + beside;
          cases.push_back(MakeCase(
              alpha, static_cast<uint32_t>(std::clamp<int64_t>(sum, 0, int64_t{255} * alpha)),
              total));
        }
      }
    }
    ExpectMeans(cases, total);
  }
}

TEST(HalftoneAlpha, MeansByAlpha_Should_BeExact_ForEveryAlpha_OfFloats) {
  std::vector<Case> cases;
  // Just below the largest border, where quotients have the fewest bits left.
  for (uint32_t alpha = 0; alpha <= 255 * 257; ++alpha)
    cases.push_back(MakeCase(alpha, alpha == 0 ? 0 : 255 * alpha - (alpha + 1) / 2 - 1, 257));
  ExpectMeans(cases, 257);
}

TEST(HalftoneAlpha, Columns_Should_BeWeightedExactly_ForManyRatios) {
  constexpr unsigned kSeed = 23;
  std::printf("seed %u\n", kSeed);
  std::mt19937 random(kSeed);
  constexpr int kSizes[] = {1, 2, 3, 4, 5, 7, 9, 16, 31, 64, 97};
  for (const int size : kSizes) {
    for (const int length : kSizes) {
      for (const uint32_t rowsTotal : {2u, 6u, 101u, 33025u}) {
        const HalftoneAxis axis = MakeHalftoneAxis(length, size, 0, length, length % 2 == 0);
        std::vector<int32_t> sums;
        for (int x = 0; x < size; ++x) {
          const auto alpha = static_cast<int32_t>(random() % 3 == 0 ? 0 : random() % 256);
          for (int c = 0; c < 3; ++c)
            sums.push_back(static_cast<int32_t>(rowsTotal) * alpha *
                           static_cast<int32_t>(random() % 256));
          sums.push_back(static_cast<int32_t>(rowsTotal) * alpha);
        }
        std::vector<uint8_t> expected;
        for (const HalftoneTap& tap : axis.taps) {
          uint64_t totals[kOpacitySums] = {};
          for (int i = 0; i < tap.count; ++i) {
            const uint64_t weight = i == 0              ? tap.firstWeight
                                    : i + 1 < tap.count ? axis.innerWeight
                                                        : tap.lastWeight;
            for (size_t c = 0; c < kOpacitySums; ++c)
              totals[c] +=
                  weight * static_cast<uint64_t>(
                               sums[kOpacitySums * static_cast<size_t>(tap.first + i) + c]);
          }
          for (size_t c = 0; c < 3; ++c)
            expected.push_back(totals[3] == 0 ? 0 : Rounded(totals[c], totals[3]));
          expected.push_back(Rounded(totals[3], uint64_t{rowsTotal} * axis.total));
        }
        test::ForEachSimdTarget([&](int64_t simd) {
          std::vector<uint8_t> pixels(expected.size());
          std::vector<uint32_t> transparent(axis.taps.size());
          MeansByAlpha(sums.data(), AlphaColumns(axis, rowsTotal), pixels.data(),
                       transparent.data());
          ASSERT_EQ(pixels, expected) << size << " to " << length << ", " << rowsTotal << ", "
                                      << hwy::TargetName(simd) << ", seed " << kSeed;
        });
      }
    }
  }
}

/// The largest totals that fit: sums of 52 bits.
TEST(HalftoneAlpha, MeansByAlpha_Should_BeExact_When_SumsAreAsLargeAsFits) {
  constexpr uint32_t kRowsTotal = 33025, kWeight = 1040000;
  ASSERT_TRUE(AlphaColumns::Fit(kRowsTotal, 2 * kWeight));
  HalftoneAxis axis;
  axis.total = 2 * kWeight;
  std::vector<int32_t> sums;
  std::vector<uint8_t> expected;
  for (uint64_t mean = 0; mean < 255; ++mean) {
    for (int beside = -1; beside <= 0; ++beside) {
      // Two columns of the same alpha; together the color lies at a border or just below.
      const uint64_t alpha = 255 * kRowsTotal - 2 * mean - 1;
      const uint64_t sum = mean * alpha + alpha / 2;
      axis.taps.push_back({static_cast<int32_t>(sums.size() / 4), 2, kWeight + 1, kWeight - 1});
      for (const uint64_t color :
           {sum, static_cast<uint64_t>(static_cast<int64_t>(sum) + 1 + beside)}) {
        for (int c = 0; c < 3; ++c) sums.push_back(static_cast<int32_t>(color));
        sums.push_back(static_cast<int32_t>(alpha));
      }
      const int32_t* last = sums.data() + sums.size() - 8;
      const uint64_t all = static_cast<uint64_t>(last[0]) * (kWeight + 1) +
                           static_cast<uint64_t>(last[4]) * (kWeight - 1);
      for (int c = 0; c < 3; ++c) expected.push_back(Rounded(all, alpha * axis.total));
      expected.push_back(Rounded(alpha, kRowsTotal));
    }
  }
  test::ForEachSimdTarget([&](int64_t simd) {
    std::vector<uint8_t> pixels(expected.size());
    std::vector<uint32_t> transparent(axis.taps.size());
    MeansByAlpha(sums.data(), AlphaColumns(axis, kRowsTotal), pixels.data(), transparent.data());
    ASSERT_EQ(pixels, expected) << hwy::TargetName(simd);
  });
}

TEST(HalftoneAlpha, Fit_Should_KeepRowSumsIn31Bits) {
  EXPECT_TRUE(AlphaColumns::Fit(33025, 1u << 20));
  EXPECT_FALSE(AlphaColumns::Fit(33026, 1));
  EXPECT_FALSE(AlphaColumns::Fit(33025, 1u << 22));
}

}  // namespace
}  // namespace rasterkit::kernels
