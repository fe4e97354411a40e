#include <algorithm>
#include <functional>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/kernels/rows/convert_rows.h>
#include <rasterkit/kernels/rows/exchange_red_blue.h>

#include "tests/support/simd_targets.h"

namespace rasterkit::kernels {
namespace {

constexpr uint8_t kPaint = 0x88;
constexpr size_t kGuard = 64;

/// Bytes in a block of exactly their size, at a shifted address.
std::vector<uint8_t> RandomBytes(size_t count, std::mt19937& random) {
  std::vector<uint8_t> bytes(count);
  for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random());
  return bytes;
}

/// What a kernel writes into `count` bytes; checks that the bytes around them stay.
std::vector<uint8_t> Written(size_t count, const std::function<void(uint8_t*)>& kernel) {
  std::vector<uint8_t> painted(count + 2 * kGuard, kPaint);
  kernel(painted.data() + kGuard);
  const auto isPaint = [](uint8_t byte) { return byte == kPaint; };
  EXPECT_TRUE(std::all_of(painted.begin(), painted.begin() + kGuard, isPaint)) << "before the row";
  EXPECT_TRUE(std::all_of(painted.end() - kGuard, painted.end(), isPaint)) << "after the row";
  return {painted.begin() + kGuard, painted.end() - kGuard};
}

/// Runs the body for every target and every width from 0 to 300.
void ForEachTargetAndWidth(const std::function<void(size_t width, std::mt19937& random)>& body) {
  constexpr unsigned kSeed = 2432;
  test::ForEachSimdTarget([&](int64_t target) {
    std::mt19937 random(kSeed);
    for (size_t width = 0; width <= 300; ++width) {
      SCOPED_TRACE(testing::Message()
                   << hwy::TargetName(target) << ", width " << width << ", seed " << kSeed);
      body(width, random);
    }
  });
}

TEST(ConvertRows, Row24To32_Should_AddAlpha255) {
  ForEachTargetAndWidth([](size_t width, std::mt19937& random) {
    const std::vector<uint8_t> source = RandomBytes(3 * width, random);
    std::vector<uint8_t> expected;
    for (size_t x = 0; x < width; ++x)
      expected.insert(expected.end(), {source[3 * x], source[3 * x + 1], source[3 * x + 2], 255});
    const auto kernel = [&](uint8_t* target) { Row24To32(source.data(), width, target); };
    EXPECT_EQ(Written(4 * width, kernel), expected);
  });
}

TEST(ConvertRows, Row32To24_Should_DropAlpha) {
  ForEachTargetAndWidth([](size_t width, std::mt19937& random) {
    const std::vector<uint8_t> source = RandomBytes(4 * width, random);
    std::vector<uint8_t> expected;
    for (size_t x = 0; x < width; ++x)
      expected.insert(expected.end(), {source[4 * x], source[4 * x + 1], source[4 * x + 2]});
    const auto kernel = [&](uint8_t* target) { Row32To24(source.data(), width, target); };
    EXPECT_EQ(Written(3 * width, kernel), expected);
  });
}

/// A row with the first and third byte of each pixel exchanged, in place and to another place.
void ExpectExchange(size_t pixelBytes, void (*exchange)(const uint8_t*, size_t, uint8_t*)) {
  ForEachTargetAndWidth([&](size_t width, std::mt19937& random) {
    std::vector<uint8_t> source = RandomBytes(pixelBytes * width, random);
    std::vector<uint8_t> expected = source;
    for (size_t x = 0; x < width; ++x)
      std::swap(expected[pixelBytes * x], expected[pixelBytes * x + 2]);
    const auto kernel = [&](uint8_t* target) { exchange(source.data(), width, target); };
    EXPECT_EQ(Written(source.size(), kernel), expected);
    const auto inPlace = [&](uint8_t* target) {
      std::copy(source.begin(), source.end(), target);
      exchange(target, width, target);
    };
    EXPECT_EQ(Written(source.size(), inPlace), expected);
  });
}

TEST(ConvertRows, StreamRedBlue24_Should_SwapFirstAndThirdByte) {
  ForEachTargetAndWidth([&](size_t width, std::mt19937& random) {
    const std::vector<uint8_t> source = RandomBytes(3 * width, random);
    for (size_t shift = 0; shift < 16; ++shift) {
      std::vector<uint8_t> expected(3 * width + 16, kPaint);
      for (size_t i = 0; i < 3 * width; ++i) {
        expected[shift + i] = source[i / 3 * 3 + 2 - i % 3];
      }
      std::vector<uint8_t> streamed(3 * width + 16, kPaint);
      StreamRedBlue24(source.data(), width, streamed.data() + shift);
      ASSERT_EQ(streamed, expected) << "shifted by " << shift;
    }
  });
}

TEST(ConvertRows, ExchangeRedBlue24_Should_SwapFirstAndThirdByte) {
  ExpectExchange(3, ExchangeRedBlue24);
}

TEST(ConvertRows, ExchangeRedBlue32_Should_SwapFirstAndThirdByte) {
  ExpectExchange(4, ExchangeRedBlue32);
}

TEST(ConvertRows, JoinPlanes24_Should_PutBlueFirst) {
  ForEachTargetAndWidth([](size_t width, std::mt19937& random) {
    const auto red = RandomBytes(width, random), green = RandomBytes(width, random),
               blue = RandomBytes(width, random);
    std::vector<uint8_t> expected;
    for (size_t x = 0; x < width; ++x) expected.insert(expected.end(), {blue[x], green[x], red[x]});
    const auto kernel = [&](uint8_t* target) {
      JoinPlanes24(red.data(), green.data(), blue.data(), width, target);
    };
    EXPECT_EQ(Written(3 * width, kernel), expected);
  });
}

TEST(ConvertRows, BitsAbove_Should_PackTheFirstPixelHighAndZeroTheRest) {
  ForEachTargetAndWidth([](size_t width, std::mt19937& random) {
    std::vector<uint8_t> values = RandomBytes(width, random);
    for (const int threshold : {0, 1, 127, 128, 254, 255}) {
      std::vector<uint8_t> expected((width + 7) / 8);
      for (size_t x = 0; x < width; ++x) {
        if (random() % 4 == 0) values[x] = static_cast<uint8_t>(threshold);
        if (values[x] > threshold) expected[x / 8] |= static_cast<uint8_t>(128 >> (x % 8));
      }
      const auto kernel = [&](uint8_t* target) {
        BitsAbove(values.data(), width, static_cast<uint8_t>(threshold), target);
      };
      EXPECT_EQ(Written((width + 7) / 8, kernel), expected) << "threshold " << threshold;
    }
  });
}

TEST(ConvertRows, TableRows_Should_LookEachIndexUp) {
  std::mt19937 random(8);
  const std::vector<uint8_t> table = RandomBytes(1024, random);
  for (size_t width = 0; width <= 70; ++width) {
    const std::vector<uint8_t> indexes = RandomBytes(width, random);
    std::vector<uint8_t> expected24, expected32;
    for (const uint8_t index : indexes) {
      const auto entry = table.begin() + 4 * index;
      expected24.insert(expected24.end(), entry, entry + 3);
      expected32.insert(expected32.end(), entry, entry + 4);
    }
    EXPECT_EQ(
        Written(3 * width, [&](uint8_t* t) { Row8To24(indexes.data(), width, table.data(), t); }),
        expected24);
    EXPECT_EQ(
        Written(4 * width, [&](uint8_t* t) { Row8To32(indexes.data(), width, table.data(), t); }),
        expected32);
  }
}

}  // namespace
}  // namespace rasterkit::kernels
