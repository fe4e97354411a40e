#include "tests/reference/color.h"

#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/pixels/clamp_to_byte.h>
#include <rasterkit/bitmaptools/pixels/color.h>

#include "tests/support/full_run.h"

namespace rasterkit {
namespace {

using detail::ClampToByte;

constexpr TColor kSystemColor = static_cast<TColor>(0x80000005u);

TEST(GetRGB, Should_SplitTheChannels_And_IgnoreTheTopByte) {
  uint8_t red, green, blue;
  GetRGB(0x7F123456, red, green, blue);
  EXPECT_EQ(red, 0x56);
  EXPECT_EQ(green, 0x34);
  EXPECT_EQ(blue, 0x12);
}

TEST(GetRGB, Should_GiveBlack_For_SystemColors) {
  for (const TColor color : {kSystemColor, -1, std::numeric_limits<TColor>::min()}) {
    uint8_t red = 1, green = 2, blue = 3;
    GetRGB(color, red, green, blue);
    EXPECT_EQ(RGB(red, green, blue), 0);
  }
}

TEST(GrayValue, Should_WeightAndTruncate) {
  EXPECT_EQ(GrayValue(255, 255, 255), 255);
  EXPECT_EQ(GrayValue(255, 0, 0), 75);
  EXPECT_EQ(GrayValue(0, 255, 0), 150);
  EXPECT_EQ(GrayValue(0, 0, 255), 29);
  EXPECT_EQ(GrayValue(100, 100, 100), 100);
  EXPECT_EQ(GrayValue(0, 0, 0), 0);
}

TEST(GrayValue, Should_BeTheChannelOfNeutralColors_Except_For89And178) {
  for (int level = 0; level < 256; ++level) {
    const auto channel = static_cast<uint8_t>(level);
    const int expected = level == 89 ? 88 : level == 178 ? 177 : level;
    EXPECT_EQ(GrayValue(channel, channel, channel), expected);
    EXPECT_EQ(GrayValue(RGB(channel, channel, channel)), expected);
  }
}

TEST(GrayValue, Should_TakeRedFromTheLowByteOfAColor) {
  EXPECT_EQ(GrayValue(TColor{0x0000FF}), 75);
  EXPECT_EQ(GrayValue(TColor{0x00FF00}), 150);
  EXPECT_EQ(GrayValue(TColor{0xFF0000}), 29);
}

TEST(GrayValue, Should_BeZero_For_SystemColors) {
  EXPECT_EQ(GrayValue(kSystemColor), 0);
  EXPECT_EQ(GrayValue(TColor{-1}), 0);
}

TEST(ComplementColor, Should_InvertEachChannel_And_GiveWhite_For_SystemColors) {
  EXPECT_EQ(ComplementColor(0x123456), 0xEDCBA9);
  EXPECT_EQ(ComplementColor(0x7F000000), 0xFFFFFF);
  EXPECT_EQ(ComplementColor(kSystemColor), 0xFFFFFF);
  EXPECT_EQ(ComplementColor(clWhite), clBlack);
}

TEST(ColorBrightness, Should_ClampBrightColors) {
  EXPECT_EQ(ColorBrightness(0x00808080, 100), 0xFFFFFF);
}

TEST(ColorBrightness, Should_ReturnTheColor_At0Percent_WithItsTopByteCleared) {
  EXPECT_EQ(ColorBrightness(0x00123456, 0), 0x123456);
  EXPECT_EQ(ColorBrightness(0x7F123456, 0), 0x123456);
}

TEST(ColorBrightness, Should_GiveBlack_AtMinus100Percent) {
  for (const TColor color : {0x000000, 0x123456, 0xFFFFFF, 0x80FF01})
    EXPECT_EQ(ColorBrightness(color, -100), clBlack);
}

TEST(ColorBrightness, Should_KeepTheLowByteOfNegativeProducts_BelowMinus100Percent) {
  EXPECT_EQ(ColorBrightness(0x000000C8, -150), 0x0000009C);
}

TEST(ColorBrightness, Should_RoundHalvesToEven_When_Darkening) {
  EXPECT_EQ(ColorBrightness(RGB(1, 3, 5), -50), RGB(0, 2, 2));
}

TEST(ColorBrightness, Should_BrightenBlack_For_SystemColors) {
  EXPECT_EQ(ColorBrightness(kSystemColor, 50), ColorBrightness(clBlack, 50));
  EXPECT_EQ(ColorBrightness(kSystemColor, 50), 0x7F7F7F);
  EXPECT_EQ(ColorBrightness(kSystemColor, -50), clBlack);
}

TEST(ColorBrightness, Should_EqualTheReference_For_EveryChannelAndPercent_When_Darkening) {
  for (int percent = -1000; percent < 0; ++percent) {
    for (int level = 0; level < 256; ++level) {
      const auto c = static_cast<uint8_t>(level);
      const TColor color = RGB(c, static_cast<uint8_t>(255 - c), static_cast<uint8_t>(c ^ 0x55));
      ASSERT_EQ(ColorBrightness(color, percent), reference::ColorBrightness(color, percent))
          << std::hex << color << std::dec << " at " << percent << " percent";
    }
  }
}

/// Colors in which every channel meets every gray value that a color with that channel can have:
/// brightening depends on nothing else.
std::vector<TColor> EveryChannelWithEveryGray() {
  std::vector<TColor> colors;
  std::vector<bool> seen(3 * 65536);
  for (TColor color = 0; color < 1 << 24; ++color) {
    const unsigned gray = GrayValue(color);
    bool isNew = false;
    for (unsigned channel = 0; channel < 3; ++channel) {
      const size_t pair = channel * 65536 + ((color >> (8 * channel)) & 0xFF) * 256u + gray;
      isNew = isNew || !seen[pair];
      seen[pair] = true;
    }
    if (isNew) colors.push_back(color);
  }
  return colors;
}

TEST(ColorBrightness, Should_EqualTheReference_For_EveryChannelGrayAndPercent_When_Brightening) {
  const std::vector<TColor> colors = EveryChannelWithEveryGray();
  ASSERT_GT(colors.size(), 40000u);
  for (int percent = 0; percent <= 1000; ++percent) {
    // Above 100 percent almost everything is clamped; the short run then tries each color at every
    // seventh percentage.
    const size_t step = percent <= 100 || test::IsFullRun() ? 1 : 7;
    for (size_t i = static_cast<size_t>(percent) % step; i < colors.size(); i += step) {
      ASSERT_EQ(ColorBrightness(colors[i], percent), reference::ColorBrightness(colors[i], percent))
          << std::hex << colors[i] << std::dec << " at " << percent << " percent";
    }
  }
}

TEST(ColorBrightness, Should_EqualTheReference_For_AnyPercent) {
  constexpr unsigned kSeed = 2101;
  std::mt19937 random(kSeed);
  std::vector<int32_t> percents = {std::numeric_limits<int32_t>::min(),
                                   std::numeric_limits<int32_t>::max()};
  for (int i = 0; i < 200000; ++i) percents.push_back(static_cast<int32_t>(random()) >> (i % 24));
  // Whole and quarter factors beyond 2^22 are the ones that can lie halfway between two singles.
  for (int i = 0; i < 100000; ++i) percents.push_back(static_cast<int32_t>(random()) / 25 * 25);
  for (const int32_t percent : percents) {
    const auto color = static_cast<TColor>(random() & 0xFFFFFF);
    ASSERT_EQ(ColorBrightness(color, percent), reference::ColorBrightness(color, percent))
        << std::hex << color << std::dec << " at " << percent << " percent, seed " << kSeed;
  }
}

TEST(ClampToByte, Should_RoundHalvesToEven_And_Clamp) {
  EXPECT_EQ(ClampToByte(0.5f), 0);
  EXPECT_EQ(ClampToByte(1.5f), 2);
  EXPECT_EQ(ClampToByte(2.5f), 2);
  EXPECT_EQ(ClampToByte(253.5f), 254);
  EXPECT_EQ(ClampToByte(254.5f), 254);
  EXPECT_EQ(ClampToByte(255.0f), 255);
  EXPECT_EQ(ClampToByte(255.25f), 255);
  EXPECT_EQ(ClampToByte(-0.25f), 0);
  EXPECT_EQ(ClampToByte(-7e8f), 0);
  EXPECT_EQ(ClampToByte(std::numeric_limits<float>::infinity()), 255);
  EXPECT_EQ(ClampToByte(-std::numeric_limits<float>::infinity()), 0);
}

TEST(ClampToByte, Should_Give0_For_NaN) {
  EXPECT_EQ(ClampToByte(std::numeric_limits<float>::quiet_NaN()), 0);
}

}  // namespace
}  // namespace rasterkit
