#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/kernels/mix/mix_rows.h>
#include <rasterkit/kernels/rows/byte_map.h>
#include <rasterkit/kernels/rows/color_rows32.h>
#include <rasterkit/kernels/transfer/brighten.h>
#include <rasterkit/kernels/transfer/pick_pixels.h>
#include <rasterkit/kernels/transfer/pixel_masks.h>
#include <rasterkit/kernels/transfer/scaled_columns.h>

#include "tests/reference/pixel_mixing_reference.h"
#include "tests/support/full_run.h"
#include "tests/support/simd_targets.h"

namespace rasterkit::kernels {
namespace {

using Row = std::vector<uint8_t>;

constexpr uint8_t kPaint = 0x5C;

Row RandomRow(size_t count, std::mt19937& random) {
  Row row(count);
  for (uint8_t& byte : row) byte = static_cast<uint8_t>(random());
  return row;
}

/// Every pair of a byte for blue and one for green and red, with some reds that differ.
Row PairsOfChannels() {
  Row row;
  row.reserve(3 * 65536);
  for (int pair = 0; pair < 65536; ++pair) {
    const auto blue = static_cast<uint8_t>(pair), green = static_cast<uint8_t>(pair >> 8);
    row.push_back(blue);
    row.push_back(green);
    row.push_back(pair % 7 == 0 ? static_cast<uint8_t>(pair * 31) : green);
  }
  return row;
}

/// The same rows before and behind a longer one, so that writing outside shows.
struct Framed {
  explicit Framed(const Row& content) : bytes(content.size() + 2 * kFrame, kPaint) {
    std::copy(content.begin(), content.end(), Data());
  }
  uint8_t* Data() { return bytes.data() + kFrame; }
  Row Content() const { return {bytes.begin() + kFrame, bytes.end() - kFrame}; }
  bool FrameIsWhole() const {
    const auto isPaint = [](uint8_t byte) { return byte == kPaint; };
    return std::all_of(bytes.begin(), bytes.begin() + kFrame, isPaint) &&
           std::all_of(bytes.end() - kFrame, bytes.end(), isPaint);
  }
  static constexpr ptrdiff_t kFrame = 64;
  Row bytes;
};

ByteTable ContrastTable(int32_t percent) {
  ByteTable table;
  for (int i = 0; i < 256; ++i)
    table[static_cast<size_t>(i)] = reference::ContrastOf(static_cast<uint8_t>(i), percent);
  return table;
}

TEST(ByteMapTest, ContrastFromMinus300To400AndAllDarkeningRunBySlope) {
  for (int32_t percent = -300; percent <= 400; ++percent) {
    const ByteMap map = MakeByteMap(ContrastTable(percent), reference::FactorOf(percent), 128);
    EXPECT_TRUE(map.hasSlope) << percent;
  }
  for (int32_t percent = -100; percent < 0; ++percent) {
    ByteTable table;
    for (int i = 0; i < 256; ++i) {
      const auto c = static_cast<uint8_t>(i);
      table[static_cast<size_t>(i)] = reference::BrightnessOf({c, c, c}, percent).b;
    }
    EXPECT_TRUE(MakeByteMap(table, reference::FactorOf(percent), 0).hasSlope) << percent;
  }
}

TEST(ByteMapTest, EveryByteBecomesWhatItsTableSays) {
  test::ForEachSimdTarget([](int64_t target) {
    Row all(256);
    for (int i = 0; i < 256; ++i) all[static_cast<size_t>(i)] = static_cast<uint8_t>(i * 37);
    const auto expectTheTable = [&](int32_t percent) {
      const ByteTable table = ContrastTable(percent);
      Framed row(all);
      MapBytes(MakeByteMap(table, reference::FactorOf(percent), 128), row.Data(), all.size());
      Row expected(all);
      for (uint8_t& byte : expected) byte = table[byte];
      ASSERT_EQ(row.Content(), expected) << percent << ", " << hwy::TargetName(target);
    };
    // All slopes at first, then some up to the steepest and beyond, where words would overflow.
    for (int32_t percent = -12300; percent <= 12300; percent += std::abs(percent) < 400 ? 1 : 50)
      expectTheTable(percent);
    for (int32_t percent = 25000; percent <= 99000; percent += 500) {
      expectTheTable(percent);
      expectTheTable(-percent);
    }
  });
}

TEST(ByteMapTest, SlopesMayStartAtAnyByte) {
  for (const int origin : {0, 1, 100, 128, 200, 255}) {
    for (const double factor :
         {-2.75, -1.0, -0.3, 0.0, 0.5, 0.999, 1.0, 1.25, 1.3, 1.5, 2.5, 7.1}) {
      ByteTable table;
      for (int i = 0; i < 256; ++i)
        table[static_cast<size_t>(i)] = static_cast<uint8_t>(
            std::clamp(std::nearbyint((i - origin) * factor) + origin, 0.0, 255.0));
      const ByteMap map = MakeByteMap(table, factor, origin);
      Row all(256);
      for (int i = 0; i < 256; ++i) all[static_cast<size_t>(i)] = static_cast<uint8_t>(255 - i);
      Row expected(all);
      for (uint8_t& byte : expected) byte = table[byte];
      test::ForEachSimdTarget([&](int64_t target) {
        Row row(all);
        MapBytes(map, row.data(), row.size());
        ASSERT_EQ(row, expected) << origin << ", " << factor << ", " << hwy::TargetName(target);
      });
    }
  }
}

TEST(ByteMapTest, TablesThatAreNoSlopeAreLookedUp) {
  std::mt19937 random(9);
  ByteTable table;
  for (uint8_t& byte : table) byte = static_cast<uint8_t>(random());
  for (double factor : {1.0, 1e300, -1e300, 0.0}) {
    const ByteMap map = MakeByteMap(table, factor, 128);
    EXPECT_FALSE(map.hasSlope);
    Row row = RandomRow(300, random), expected = row;
    for (uint8_t& byte : expected) byte = table[byte];
    MapBytes(map, row.data(), row.size());
    EXPECT_EQ(row, expected);
  }
}

TEST(ByteMapTest, NothingBeyondTheBytesIsTouchedAtLengthsUpTo300) {
  test::ForEachSimdTarget([](int64_t target) {
    std::mt19937 random(10);
    const ByteTable table = ContrastTable(-37);
    const ByteMap map = MakeByteMap(table, reference::FactorOf(-37), 128);
    for (size_t count = 0; count <= 300; ++count) {
      const Row before = RandomRow(count, random);
      Framed row(before);
      MapBytes(map, row.Data(), count);
      Row expected(before);
      for (uint8_t& byte : expected) byte = table[byte];
      ASSERT_EQ(row.Content(), expected) << count << ", " << hwy::TargetName(target);
      ASSERT_TRUE(row.FrameIsWhole()) << count << ", " << hwy::TargetName(target);
    }
  });
}

/// Brightening by the rule, from a table of all channel values and gains.
class BrightnessRule {
 public:
  explicit BrightnessRule(int32_t percent)
      : factor_(reference::FactorOf(percent)), weight_(reference::FactorMinusOne(factor_)) {
    for (int channel = 0; channel < 256; ++channel)
      for (int gray = 0; gray < 256; ++gray)
        values_[static_cast<size_t>(channel * 256 + gray)] =
            reference::Lifted(static_cast<uint8_t>(channel), factor_,
                              reference::TruncToZero((255 - gray) * reference::Extended(weight_)));
  }
  float Factor() const { return factor_; }
  float Weight() const { return weight_; }
  Row Of(const Row& bgr) const {
    Row result(bgr.size());
    for (size_t i = 0; i < bgr.size(); i += 3) {
      const uint8_t gray = reference::GrayInWholeNumbers(bgr[i + 2], bgr[i + 1], bgr[i]);
      for (size_t c = i; c < i + 3; ++c)
        result[c] = values_[static_cast<size_t>(bgr[c] * 256 + gray)];
    }
    return result;
  }

 private:
  float factor_, weight_;
  std::array<uint8_t, 65536> values_;
};

TEST(BrightenRowTest, EqualsTheRuleForEveryPercentageAndAllPairsOfChannels) {
  const Row pixels = PairsOfChannels();
  for (int32_t percent = 0; percent <= 100; ++percent) {
    const BrightnessRule rule(percent);
    const Row expected = rule.Of(pixels);
    test::ForEachSimdTarget([&](int64_t target) {
      Row row(pixels.size());
      const Brightening brightening = MakeBrightening(percent, rule.Factor(), rule.Weight());
      EXPECT_TRUE(brightening.hasForm);
      BrightenRow24(brightening, pixels.data(), pixels.size() / 3, row.data());
      ASSERT_TRUE(row == expected) << percent << ", " << hwy::TargetName(target);
    });
  }
}

TEST(BrightenRowTest, EqualsTheRuleForEveryColorAtSomePercentages) {
  if (!test::IsFullRun()) GTEST_SKIP() << "in the full run";
  for (int32_t percent : {1, 5, 6, 7, 17, 18, 19, 25, 30, 31, 43, 45, 50, 57, 69, 75, 99, 100}) {
    const BrightnessRule rule(percent);
    for (int red = 0; red < 256; ++red) {
      Row pixels;
      pixels.reserve(3 * 65536);
      for (int pair = 0; pair < 65536; ++pair) {
        pixels.push_back(static_cast<uint8_t>(pair));
        pixels.push_back(static_cast<uint8_t>(pair >> 8));
        pixels.push_back(static_cast<uint8_t>(red));
      }
      Row row(pixels.size());
      BrightenRow24(MakeBrightening(percent, rule.Factor(), rule.Weight()), pixels.data(), 65536,
                    row.data());
      ASSERT_TRUE(row == rule.Of(pixels)) << percent << ", red " << red;
    }
  }
}

TEST(BrightenRowTest, PercentagesOutOfRangeGoOneByOne) {
  std::mt19937 random(3);
  const Row pixels = RandomRow(300, random);
  for (int32_t percent : {-100, -50, -1, 101, 250, -300, 2000000000}) {
    const BrightnessRule rule(percent);
    const Brightening brightening = MakeBrightening(percent, rule.Factor(), rule.Weight());
    EXPECT_FALSE(brightening.hasForm);
    Row row(pixels.size());
    BrightenRow24(brightening, pixels.data(), 100, row.data());
    EXPECT_EQ(row, rule.Of(pixels)) << percent;
  }
}

TEST(BrightenRowTest, WorksInPlaceAndStaysInsideTheRowAtWidthsUpTo200) {
  const BrightnessRule rule(30);
  const Brightening brightening = MakeBrightening(30, rule.Factor(), rule.Weight());
  test::ForEachSimdTarget([&](int64_t target) {
    std::mt19937 random(11);
    for (size_t width = 0; width <= 200; ++width) {
      const Row pixels = RandomRow(3 * width, random);
      Framed row(pixels);
      BrightenRow24(brightening, row.Data(), width, row.Data());
      ASSERT_EQ(row.Content(), rule.Of(pixels)) << width << ", " << hwy::TargetName(target);
      ASSERT_TRUE(row.FrameIsWhole()) << width << ", " << hwy::TargetName(target);
      // From a row of exactly its size, so that reading beyond it would be seen.
      Framed other(Row(3 * width, kPaint));
      BrightenRow24(brightening, pixels.data(), width, other.Data());
      ASSERT_EQ(other.Content(), row.Content()) << width << ", " << hwy::TargetName(target);
      ASSERT_TRUE(other.FrameIsWhole()) << width << ", " << hwy::TargetName(target);
    }
  });
}

TEST(ShadeRowTest, EqualsTheRoundedProductForAllPairsOfBytesAndBothPrecisionsOfTheQuotient) {
  Row shades(65536), sources(65536), keep(65536, 0), expected(65536);
  for (size_t i = 0; i < 65536; ++i) {
    shades[i] = static_cast<uint8_t>(i);
    sources[i] = static_cast<uint8_t>(i >> 8);
    expected[i] = reference::Shaded(sources[i], shades[i], false);
    ASSERT_EQ(expected[i], reference::Shaded(sources[i], shades[i], true)) << i;
    ASSERT_EQ(expected[i], (sources[i] * shades[i] + 127) / 255) << i;
  }
  test::ForEachSimdTarget([&](int64_t target) {
    Row row(65536, kPaint);
    ShadeRow(row.data(), shades.data(), sources.data(), keep.data(), row.size());
    EXPECT_TRUE(row == expected) << hwy::TargetName(target);
  });
}

ByteTable KeptTable(float f) {
  ByteTable table;
  for (int i = 0; i < 256; ++i)
    table[static_cast<size_t>(i)] = reference::MixTransparent(static_cast<uint8_t>(i), 0, f);
  return table;
}

ByteTable AddedTable(float f) {
  ByteTable table;
  for (int i = 0; i < 256; ++i)
    table[static_cast<size_t>(i)] = reference::MixTransparent(0, static_cast<uint8_t>(i), f);
  return table;
}

TEST(MixRowTest, EqualsTheRuleForAllPairsOfBytesAtEveryPercentage) {
  Row grounds(65536), sources(65536), keep(65536, 0), expected(65536);
  for (size_t i = 0; i < 65536; ++i) {
    grounds[i] = static_cast<uint8_t>(i);
    sources[i] = static_cast<uint8_t>(i >> 8);
  }
  for (int32_t percent = -5; percent <= 105; ++percent) {
    const float f = reference::TransparentWeightsOf(percent).f;
    const ByteTable kept = KeptTable(f), added = AddedTable(f);
    const MixWeights weights = MakeMixWeights(kept, 1.0 - static_cast<double>(f), added, f);
    EXPECT_EQ(weights.hasForm, percent >= 0 && percent <= 100) << percent;
    for (size_t i = 0; i < 65536; ++i)
      expected[i] = static_cast<uint8_t>(kept[grounds[i]] + added[sources[i]]);
    test::ForEachSimdTarget([&](int64_t target) {
      Row row(65536, kPaint);
      MixRow(weights, row.data(), grounds.data(), sources.data(), keep.data(), row.size());
      ASSERT_TRUE(row == expected) << percent << ", " << hwy::TargetName(target);
    });
  }
}

void ExpectSumsOfTables(const MixWeights& weights, const ByteTable& kept, const ByteTable& added) {
  Row grounds(65536), sources(65536), keep(65536, 0), expected(65536);
  for (size_t i = 0; i < 65536; ++i) {
    grounds[i] = static_cast<uint8_t>(i);
    sources[i] = static_cast<uint8_t>(i >> 8);
    expected[i] = static_cast<uint8_t>(kept[grounds[i]] + added[sources[i]]);
  }
  test::ForEachSimdTarget([&](int64_t target) {
    Row row(65536, kPaint);
    MixRow(weights, row.data(), grounds.data(), sources.data(), keep.data(), row.size());
    EXPECT_TRUE(row == expected) << hwy::TargetName(target);
  });
}

TEST(MixRowTest, TablesThatAreNoSharesAreAddedUp) {
  std::mt19937 random(19);
  ByteTable any;
  for (uint8_t& byte : any) byte = static_cast<uint8_t>(random());
  const ByteTable half = KeptTable(0.5f);
  const MixWeights keptIsNone = MakeMixWeights(any, 0.5, AddedTable(0.5f), 0.5);
  EXPECT_FALSE(keptIsNone.hasForm);
  ExpectSumsOfTables(keptIsNone, any, AddedTable(0.5f));
  const MixWeights addedIsNone = MakeMixWeights(half, 0.5, any, 0.5);
  EXPECT_FALSE(addedIsNone.hasForm);
  ExpectSumsOfTables(addedIsNone, half, any);
}

TEST(MixRowTest, OfSumsAbove255TheLowByteCounts) {
  const ByteTable all = KeptTable(0), whole = AddedTable(1);
  const MixWeights weights = MakeMixWeights(all, 1, whole, 1);
  EXPECT_TRUE(weights.hasForm);
  ExpectSumsOfTables(weights, all, whole);
}

TEST(TakeRowTest, KeepsWhereItIsToldToAndStaysInsideTheRow) {
  const float f = reference::TransparentWeightsOf(30).f;
  const MixWeights weights =
      MakeMixWeights(KeptTable(f), 1.0 - static_cast<double>(f), AddedTable(f), f);
  test::ForEachSimdTarget([&](int64_t target) {
    std::mt19937 random(12);
    for (size_t count = 0; count <= 200; ++count) {
      const Row before = RandomRow(count, random), source = RandomRow(count, random),
                ground = RandomRow(count, random);
      Row keep = RandomRow(count, random);
      for (uint8_t& byte : keep) byte = byte % 2 == 0 ? 255 : 0;
      Framed taken(before), shaded(before), mixed(before);
      TakeRow(taken.Data(), source.data(), keep.data(), count);
      ShadeRow(shaded.Data(), ground.data(), source.data(), keep.data(), count);
      MixRow(weights, mixed.Data(), ground.data(), source.data(), keep.data(), count);
      for (size_t i = 0; i < count; ++i) {
        const bool stays = keep[i] == 255;
        ASSERT_EQ(taken.Data()[i], stays ? before[i] : source[i]) << hwy::TargetName(target);
        ASSERT_EQ(shaded.Data()[i],
                  stays ? before[i] : reference::Shaded(source[i], ground[i], false));
        ASSERT_EQ(mixed.Data()[i],
                  stays ? before[i] : reference::MixTransparent(ground[i], source[i], f));
      }
      ASSERT_TRUE(taken.FrameIsWhole() && shaded.FrameIsWhole() && mixed.FrameIsWhole()) << count;
    }
  });
}

TEST(PixelMasksTest, AnswerForEveryPixelAndStayInsideTheRowAtWidthsUpTo200) {
  test::ForEachSimdTarget([](int64_t target) {
    std::mt19937 random(13);
    constexpr uint8_t kChannels[] = {0, 1, 249, 250, 251, 253, 254, 255};
    for (size_t width = 0; width <= 200; ++width) {
      Row bgr(3 * width), grays = RandomRow(width, random);
      const bool isFlat = width % 3 == 0;  // else almost no pixel would be black or white
      for (size_t i = 0; i < bgr.size(); ++i)
        bgr[i] = isFlat && i % 3 != 0 && random() % 5 != 0 ? bgr[i - 1] : kChannels[random() % 8];
      Framed white(bgr), notWhite(bgr), other(bgr), sparedMask(bgr), expanded(bgr);
      NearWhite24(bgr.data(), width, true, white.Data());
      NearWhite24(bgr.data(), width, false, notWhite.Data());
      OtherColor24(bgr.data(), width, 0xFEFFFF, other.Data());
      BlackOrWhite24(bgr.data(), width, sparedMask.Data());
      ExpandGrays24(grays.data(), width, expanded.Data());
      for (size_t i = 0; i < bgr.size(); ++i) {
        const size_t p = i / 3 * 3;
        const uint8_t b = bgr[p], g = bgr[p + 1], r = bgr[p + 2];
        const bool isNearWhite = b > 250 && g > 250 && r > 250;
        ASSERT_EQ(white.Data()[i], isNearWhite ? 255 : 0) << hwy::TargetName(target);
        ASSERT_EQ(notWhite.Data()[i], isNearWhite ? 0 : 255);
        ASSERT_EQ(other.Data()[i], b == 255 && g == 255 && r == 254 ? 0 : 255);
        ASSERT_EQ(sparedMask.Data()[i], reference::IsNotBlackOrWhite(r, g, b) ? 0 : 255);
        ASSERT_EQ(expanded.Data()[i], grays[i / 3]);
      }
      ASSERT_TRUE(white.FrameIsWhole() && notWhite.FrameIsWhole() && other.FrameIsWhole() &&
                  sparedMask.FrameIsWhole() && expanded.FrameIsWhole())
          << width;
    }
  });
}

TEST(PixelMasksTest, AQuickLookMissesNoBlackAndNoWhite) {
  test::ForEachSimdTarget([](int64_t target) {
    for (size_t width = 1; width <= 150; ++width)
      for (size_t x = 0; x < width; ++x)
        for (bool isBlack : {false, true}) {
          Row bgr(3 * width, 7);
          ASSERT_TRUE(width < 70 || hwy::TargetName(target) == std::string("SCALAR") ||
                      !MayHoldBlackOrWhite24(bgr.data(), width));
          std::fill_n(bgr.begin() + static_cast<ptrdiff_t>(3 * x), 3, isBlack ? 0 : 255);
          if (x % 2 == 0 && !isBlack) bgr[3 * x + 2] = 254;
          ASSERT_TRUE(MayHoldBlackOrWhite24(bgr.data(), width)) << x << " of " << width;
        }
  });
}

TEST(ColorRows32Test, TakePixelsOrColorsAndStayInsideTheRow) {
  test::ForEachSimdTarget([](int64_t target) {
    std::mt19937 random(14);
    for (size_t width = 0; width <= 80; ++width) {
      const Row before = RandomRow(4 * width, random), source = RandomRow(4 * width, random),
                colors = RandomRow(3 * width, random);
      Row keep(3 * width);
      for (size_t x = 0; x < width; ++x)
        std::fill_n(keep.begin() + static_cast<ptrdiff_t>(3 * x), 3, random() % 2 == 0 ? 255 : 0);
      Framed taken(before), replaced(before);
      TakePixels32(taken.Data(), source.data(), keep.data(), width);
      ReplaceColors32(replaced.Data(), colors.data(), width);
      for (size_t i = 0; i < before.size(); ++i) {
        ASSERT_EQ(taken.Data()[i], keep[i / 4 * 3] == 255 ? before[i] : source[i])
            << hwy::TargetName(target);
        ASSERT_EQ(replaced.Data()[i], i % 4 == 3 ? before[i] : colors[i / 4 * 3 + i % 4]);
      }
      ASSERT_TRUE(taken.FrameIsWhole() && replaced.FrameIsWhole()) << width;
    }
  });
}

TEST(PixelPickerTest, PicksWhatTheColumnsSayInEveryOrderScaleAndSize) {
  constexpr int kSizes[][2] = {{1, 1}, {3, 3}, {4, 4}, {4, 3}};
  test::ForEachSimdTarget([&](int64_t target) {
    std::mt19937 random(15);
    for (const auto& [sourceBytes, targetBytes] : kSizes)
      for (int round = 0; round < 400; ++round) {
        const int32_t width = 1 + static_cast<int32_t>(random() % 70);
        const size_t count = 1 + random() % 70;
        const double scale = static_cast<double>(random() % 900) / 100 - 3;
        std::vector<int32_t> columns(count);
        for (size_t i = 0; i < count; ++i)
          columns[i] = round % 5 == 0
                           ? static_cast<int32_t>(random() % static_cast<unsigned>(width))
                           : std::clamp(static_cast<int32_t>(static_cast<double>(i) * scale) +
                                            (scale < 0 ? width - 1 : 0),
                                        0, width - 1);
        const PixelPicker picker(columns, sourceBytes, targetBytes, width);
        const Row source = RandomRow(static_cast<size_t>(width * sourceBytes), random);
        Framed picked(Row(count * static_cast<size_t>(targetBytes)));
        picker.Pick(source.data(), picked.Data());
        for (size_t i = 0; i < count; ++i)
          for (int byte = 0; byte < targetBytes; ++byte)
            ASSERT_EQ(
                picked.Data()[i * static_cast<size_t>(targetBytes) + static_cast<size_t>(byte)],
                source[static_cast<size_t>(columns[i] * sourceBytes + byte)])
                << hwy::TargetName(target) << ", round " << round << ", pixel " << i;
        ASSERT_TRUE(picked.FrameIsWhole()) << round;
        bool isOneToOne = true;
        for (size_t i = 0; i < count; ++i)
          isOneToOne = isOneToOne && columns[i] == columns[0] + static_cast<int32_t>(i);
        ASSERT_EQ(picker.IsOneToOne(), isOneToOne);
      }
  });
}

TEST(RoundScaledTest, EqualsTheExtendedProduct) {
  std::mt19937 random(16);
  for (int round = 0; round < 300000; ++round) {
    const int numerator = static_cast<int>(random() >> random() % 32) - 4;
    const int denominator = 1 + static_cast<int>(random() >> (1 + random() % 31));
    const double scale = static_cast<double>(numerator) / denominator;
    // Many products of these are within the last places of a half.
    const int64_t distance = round % 2 == 0
                                 ? int64_t{denominator} / 2 * (random() % 9)
                                 : static_cast<int64_t>(random() >> random() % 32) - 1000;
    if (std::fabs(static_cast<double>(distance) * scale) > 1e12) continue;
    ASSERT_EQ(RoundScaled(distance, scale),
              reference::RoundEven(reference::Extended(distance) * scale))
        << distance << " * " << scale;
  }
  EXPECT_EQ(RoundScaled(1, 2.5), 2);
  EXPECT_EQ(RoundScaled(1, 3.5), 4);
  EXPECT_EQ(RoundScaled(-1, 2.5), -2);
  EXPECT_EQ(RoundScaled(int64_t{1} << 32, 4294967296.0), int64_t{1} << 40);
}

}  // namespace
}  // namespace rasterkit::kernels
