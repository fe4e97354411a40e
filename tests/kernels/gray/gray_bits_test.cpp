#include <cstdint>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/kernels/gray/gray_bits.h>
#include <rasterkit/kernels/gray/gray_exceptions.h>

#include "tests/kernels/gray/colors_by_gray.h"
#include "tests/kernels/rows/row_cases.h"
#include "tests/reference/gray.h"

namespace rasterkit::kernels {
namespace {

using test::PixelsAround;
using test::RandomBytes;

constexpr int kLevels[] = {-2147483647, -1, 0, 1, 89, 128, 178, 254, 255, 256, 2147483647};

/// The bits that a kernel writes; the bytes around them must stay.
std::vector<uint8_t> BitsOf(const uint8_t* pixels, size_t width, int bytesPerPixel, int level) {
  constexpr uint8_t kPaint = 0x88;
  constexpr size_t kGuard = 64;
  std::vector<uint8_t> painted((width + 7) / 8 + 2 * kGuard, kPaint);
  const auto kernel = bytesPerPixel == 3 ? GrayBits24 : GrayBits32;
  kernel(pixels, width, level, painted.data() + kGuard);
  for (size_t i = 0; i < kGuard; ++i) {
    EXPECT_EQ(painted[i], kPaint) << "before the row";
    EXPECT_EQ(painted[painted.size() - 1 - i], kPaint) << "after the row";
  }
  return {painted.begin() + kGuard, painted.end() - kGuard};
}

std::vector<uint8_t> ReferenceOf(const uint8_t* pixels, size_t width, int bytesPerPixel,
                                 int level) {
  std::vector<uint8_t> bits((width + 7) / 8, 255);
  for (size_t x = 0; x < width; ++x, pixels += bytesPerPixel) {
    if (reference::GrayInWholeNumbers(pixels[2], pixels[1], pixels[0]) < level)
      bits[x / 8] = static_cast<uint8_t>(bits[x / 8] - (128 >> x % 8));
  }
  return bits;
}

TEST(GrayBits, Should_EqualTheReference_AndStayInsideTheRow_ForWidthsAndPlacesUpTo300) {
  for (const int bytes : {3, 4}) {
    test::ForEachTargetAndWidth(233, [bytes](size_t width, std::mt19937& random) {
      const size_t offset = width % 5;
      const auto block = RandomBytes(offset + width * static_cast<size_t>(bytes), random);
      const uint8_t* pixels = block.data() + offset;
      for (const int level : kLevels) {
        ASSERT_EQ(BitsOf(pixels, width, bytes, level), ReferenceOf(pixels, width, bytes, level))
            << bytes << " bytes, level " << level;
      }
    });
  }
}

TEST(GrayBits, Should_SplitEveryColorRight_AtEveryLevel) {
  test::ForEachSimdTarget([](int64_t target) {
    for (int level = 1; level <= 255; ++level) {
      for (const int bytes : {3, 4}) {
        size_t lower = 0;
        const std::vector<uint8_t> pixels = PixelsAround(level, bytes, lower);
        const size_t width = pixels.size() / static_cast<size_t>(bytes);
        std::vector<uint8_t> expected((width + 7) / 8, 255);
        for (size_t x = 0; x < lower; ++x)
          expected[x / 8] = static_cast<uint8_t>(expected[x / 8] - (128 >> x % 8));
        ASSERT_TRUE(BitsOf(pixels.data(), width, bytes, level) == expected)
            << hwy::TargetName(target) << ", level " << level << ", " << bytes << " bytes";
      }
    }
  });
}

TEST(GrayBits, Should_EqualTheReference_ForExceptionsOfTheLevel) {
  test::ForEachSimdTarget([](int64_t target) {
    std::mt19937 random(462);
    for (int level = 1; level <= 255; ++level) {
      for (const uint32_t exception : GrayExceptionsOf(level)) {
        std::vector<uint8_t> pixels;
        for (int i = 0; i < 150; ++i) {
          const uint32_t color = exception + (random() % 4 == 0 ? random() % 3 - 1 : 0);
          for (int byte = 0; byte < 3; ++byte)
            pixels.push_back(static_cast<uint8_t>(color >> 8 * byte));
        }
        ASSERT_EQ(BitsOf(pixels.data(), 150, 3, level), ReferenceOf(pixels.data(), 150, 3, level))
            << hwy::TargetName(target) << ", level " << level;
      }
    }
  });
}

TEST(GrayBits, Should_CountWhiteAsBelowLevel256_AndBlackAsLevel0) {
  const std::vector<uint8_t> white(4 * 70, 255), black(4 * 70);
  test::ForEachSimdTarget([&](int64_t target) {
    for (const int bytes : {3, 4}) {
      ASSERT_EQ(BitsOf(white.data(), 70, bytes, 255)[8], 255) << hwy::TargetName(target);
      ASSERT_EQ(BitsOf(white.data(), 70, bytes, 256)[0], 0) << hwy::TargetName(target);
      ASSERT_EQ(BitsOf(black.data(), 70, bytes, 1)[0], 0) << hwy::TargetName(target);
      ASSERT_EQ(BitsOf(black.data(), 70, bytes, 0)[0], 255) << hwy::TargetName(target);
    }
  });
}

TEST(GrayBits, Should_LeaveOnesBehindTheLastPixel) {
  const std::vector<uint8_t> black(3 * 70);
  test::ForEachSimdTarget([&](int64_t target) {
    for (size_t width = 1; width <= 70; ++width) {
      const auto last = width % 8 == 0 ? 0 : 255 >> width % 8;
      ASSERT_EQ(BitsOf(black.data(), width, 3, 300).back(), last) << hwy::TargetName(target);
    }
  });
}

}  // namespace
}  // namespace rasterkit::kernels
