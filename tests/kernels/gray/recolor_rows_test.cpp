#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/kernels/gray/gray_exceptions.h>
#include <rasterkit/kernels/gray/recolor.h>

#include "tests/kernels/gray/colors_by_gray.h"
#include "tests/kernels/rows/row_cases.h"
#include "tests/reference/gray.h"
#include "tests/reference/transparency.h"
#include "tests/support/simd_targets.h"

namespace rasterkit::kernels {
namespace {

using test::ExpectInPlace;
using test::ForEachTargetAndWidth;
using test::PixelsAround;
using test::RandomBytes;

constexpr uint32_t kColor = 0x12345678;
constexpr int kLevels[] = {-2147483647, -1, 0, 1, 89, 128, 178, 254, 255, 256, 2147483647};

void Recolor(int bytesPerPixel, uint8_t* pixels, size_t width, GraySide side, uint32_t color) {
  if (bytesPerPixel == 2)
    RecolorByGray16(pixels, width, side, static_cast<uint16_t>(color));
  else if (bytesPerPixel == 3)
    RecolorByGray24(pixels, width, side, color);
  else
    RecolorByGray32(pixels, width, side, color);
}

uint8_t ReferenceGray(int bytesPerPixel, const uint8_t* pixel) {
  if (bytesPerPixel > 2) return reference::GrayInWholeNumbers(pixel[2], pixel[1], pixel[0]);
  return reference::GrayOfWord565(static_cast<uint16_t>(pixel[0] | pixel[1] << 8));
}

/// The row behind `offset` after the rule.
std::vector<uint8_t> Expected(int bytesPerPixel, std::vector<uint8_t> bytes, size_t offset,
                              GraySide side, uint32_t color) {
  const auto step = static_cast<size_t>(bytesPerPixel);
  for (size_t i = offset; i + step <= bytes.size(); i += step) {
    const int gray = ReferenceGray(bytesPerPixel, &bytes[i]);
    const bool isMeant = side.upper ? gray >= side.level : gray < side.level;
    if (isMeant) std::memcpy(&bytes[i], &color, step);
  }
  return bytes;
}

TEST(GraySide, Should_HoldTheGraysOfItsSide) {
  EXPECT_FALSE(GraysAbove(7).Holds(7));
  EXPECT_TRUE(GraysAbove(7).Holds(8));
  EXPECT_FALSE(GraysAbove(255).Holds(255));
  EXPECT_FALSE(GraysBelow(7).Holds(7));
  EXPECT_TRUE(GraysBelow(7).Holds(6));
  EXPECT_FALSE(GraysBelow(0).Holds(0));
}

TEST(RecolorRows, Should_EqualTheReference_AndStayInsideTheRow_ForWidthsAndPlacesUpTo300) {
  for (const int bytes : {2, 3, 4}) {
    ForEachTargetAndWidth(231, [bytes](size_t width, std::mt19937& random) {
      const size_t offset = width % 5;
      const auto before = RandomBytes(offset + width * static_cast<size_t>(bytes), random);
      const auto color = static_cast<uint32_t>(random());
      const int level = kLevels[random() % std::size(kLevels)];
      for (const bool upper : {false, true}) {
        const GraySide side{level, upper};
        ExpectInPlace(before, Expected(bytes, before, offset, side, color), offset,
                      [&](uint8_t* row) { Recolor(bytes, row, width, side, color); });
      }
    });
  }
}

TEST(RecolorRows, Should_LeaveWhiteAlone_AboveLevel255) {
  const std::vector<uint8_t> white(4 * 70, 255);
  test::ForEachSimdTarget([&](int64_t target) {
    SCOPED_TRACE(hwy::TargetName(target));
    for (const int bytes : {2, 3, 4}) {
      ExpectInPlace(white, white, 0,
                    [=](uint8_t* row) { Recolor(bytes, row, 70, GraysAbove(255), 0x010203); });
    }
  });
}

TEST(RecolorRows, Should_SplitEveryColorRight_AtEveryLevel) {
  test::ForEachSimdTarget([](int64_t target) {
    for (int level = 1; level <= 255; ++level) {
      for (const int bytes : {3, 4}) {
        const auto step = static_cast<size_t>(bytes);
        size_t lower = 0;
        const std::vector<uint8_t> before = PixelsAround(level, bytes, lower);
        for (const bool upper : {false, true}) {
          std::vector<uint8_t> after = before;
          for (size_t i = upper ? lower * step : 0; i < (upper ? after.size() : lower * step);
               i += step)
            std::memcpy(&after[i], &kColor, step);
          std::vector<uint8_t> actual = before;
          Recolor(bytes, actual.data(), actual.size() / step, {level, upper}, kColor);
          ASSERT_TRUE(actual == after) << hwy::TargetName(target) << ", level " << level << ", "
                                       << bytes << " bytes, " << (upper ? "upper" : "lower");
        }
      }
    }
  });
}

TEST(RecolorRows, Should_SplitEveryWordRight_AtEveryLevel) {
  std::vector<uint8_t> words;
  std::vector<int> grays;
  for (int word = 0; word < 65536; ++word) {
    words.push_back(static_cast<uint8_t>(word));
    words.push_back(static_cast<uint8_t>(word >> 8));
    grays.push_back(reference::GrayOfWord565(static_cast<uint16_t>(word)));
  }
  test::ForEachSimdTarget([&](int64_t target) {
    for (int level = 0; level <= 256; ++level) {
      for (const bool upper : {false, true}) {
        std::vector<uint8_t> actual = words;
        RecolorByGray16(actual.data(), 65536, {level, upper}, 0x1234);
        for (size_t word = 0; word < 65536; ++word) {
          const bool isMeant = (grays[word] >= level) == upper;
          const int expected = isMeant ? 0x1234 : static_cast<int>(word);
          ASSERT_EQ(actual[2 * word] | actual[2 * word + 1] << 8, expected)
              << hwy::TargetName(target) << ", level " << level << ", upper " << upper;
        }
      }
    }
  });
}

/// Rows of nothing but exceptions of a level and the colors next to them, which take the rare way.
TEST(RecolorRows, Should_EqualTheReference_ForExceptionsOfTheLevel) {
  test::ForEachSimdTarget([](int64_t target) {
    std::mt19937 random(461);
    for (int level = 1; level <= 255; ++level) {
      for (const uint32_t exception : GrayExceptionsOf(level)) {
        std::vector<uint8_t> before;
        for (int i = 0; i < 150; ++i) {
          const uint32_t color = exception + (random() % 4 == 0 ? random() % 3 - 1 : 0);
          for (int byte = 0; byte < 3; ++byte)
            before.push_back(static_cast<uint8_t>(color >> 8 * byte));
        }
        const GraySide side{level, random() % 2 == 0};
        SCOPED_TRACE(testing::Message() << hwy::TargetName(target) << ", level " << level);
        ExpectInPlace(before, Expected(3, before, 0, side, 0x010203), 0,
                      [&](uint8_t* row) { RecolorByGray24(row, 150, side, 0x010203); });
      }
    }
  });
}

TEST(GrayExceptionsOf, Should_ListAll461ByLevel) {
  size_t listed = 0;
  for (int level = -3; level <= 300; ++level) {
    for (const uint32_t color : GrayExceptionsOf(level)) {
      const auto red = static_cast<uint8_t>(color >> 16), green = static_cast<uint8_t>(color >> 8);
      const auto blue = static_cast<uint8_t>(color);
      EXPECT_EQ(297 * red + 589 * green + 114 * blue, 1000 * level);
      EXPECT_EQ(reference::GrayInWholeNumbers(red, green, blue), level - 1);
      ++listed;
    }
  }
  EXPECT_EQ(listed, 461u);
}

TEST(ReplaceColor24, Should_EqualTheRule_AndStayInsideTheRow_ForWidthsAndPlacesUpTo300) {
  ForEachTargetAndWidth(232, [](size_t width, std::mt19937& random) {
    const size_t offset = width % 5;
    std::vector<uint8_t> before = RandomBytes(offset + 3 * width, random);
    const uint8_t from[4] = {3, 200, 7, 99};
    for (size_t x = 0; x < width; ++x) {
      uint8_t* pixel = &before[offset + 3 * x];
      if (random() % 3 != 0) std::memcpy(pixel, from, 3);
      if (random() % 3 == 0) pixel[random() % 3] ^= static_cast<uint8_t>(1u << random() % 8);
    }
    std::vector<uint8_t> after = before;
    for (size_t x = 0; x < width; ++x) {
      uint8_t* pixel = &after[offset + 3 * x];
      if (pixel[0] != 3 || pixel[1] != 200 || pixel[2] != 7) continue;
      pixel[0] = 0xEF;
      pixel[1] = 0xCD;
      pixel[2] = 0xAB;
    }
    uint32_t key;
    std::memcpy(&key, from, 4);
    ExpectInPlace(before, after, offset,
                  [&](uint8_t* row) { ReplaceColor24(row, width, key, 0x55ABCDEF); });
  });
}

}  // namespace
}  // namespace rasterkit::kernels
