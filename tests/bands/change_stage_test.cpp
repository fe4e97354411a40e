#include <algorithm>
#include <cmath>
#include <cstring>

#include <gtest/gtest.h>

#include <rasterkit/bands/color_changes.h>
#include <rasterkit/bands/stages.h>
#include <rasterkit/bitmaptools/pixels/color.h>
#include <rasterkit/runtime/errors.h>

#include "tests/bands/band_pictures.h"
#include "tests/reference/pixel_mixing_reference.h"

namespace rasterkit {
namespace {

using test::MadeBy;
using test::MadeInEveryWay;
using test::PictureKind;
using test::Seen;
using test::SeenPixel;
using test::SidesOf;

const PictureKind& Kind(const std::string& name) {
  const auto& kinds = test::RasterKinds();
  return *std::find_if(kinds.begin(), kinds.end(),
                       [&](const PictureKind& kind) { return kind.name == name; });
}

const Raster& RasterOf(const Pixels& pixels) {
  return std::get<Raster>(pixels);
}

bool IsTransparent(const Pixels& pixels) {
  const Raster& raster = RasterOf(pixels);
  return raster.transparentColor || raster.alphaFormat == afDefined;
}

uint8_t Red(TColor color) {
  return static_cast<uint8_t>(color);
}
uint8_t Green(TColor color) {
  return static_cast<uint8_t>(color >> 8);
}
uint8_t Blue(TColor color) {
  return static_cast<uint8_t>(color >> 16);
}

using Rule = std::function<TColor(TColor)>;

/// Runs a change of single colors over every kind of raster: each visible pixel shows what the rule
/// says, opacities stay, and palettes keep their depth.
void ExpectColors(const ColorChange& change, const Rule& rule) {
  std::mt19937 random(1);
  for (const auto& kind : test::RasterKinds()) {
    for (int width = 1; width <= 17; width += 4) {
      SCOPED_TRACE(kind.name + ", width " + std::to_string(width));
      const Pixels source = kind.make(width, 9, random);
      const Pixels made = MadeInEveryWay(*ChangeStage(SidesOf(source), change), source);
      ASSERT_EQ(SidesOf(made), SidesOf(source));
      if (IsIndexed(RasterOf(source).Format())) {
        EXPECT_EQ(RasterOf(made).Format(), RasterOf(source).Format());
      }
      for (int y = 0; y < 9; ++y) {
        for (int x = 0; x < width; ++x) {
          const SeenPixel before = Seen(source, x, y), after = Seen(made, x, y);
          ASSERT_EQ(after.opacity, before.opacity) << x << ", " << y;
          if (before.opacity > 0) {
            ASSERT_EQ(after.color, rule(before.color)) << x << ", " << y;
          }
        }
      }
    }
  }
}

TColor GrayOf(TColor color) {
  const uint8_t gray = GrayValue(color);
  return RGB(gray, gray, gray);
}

TEST(ChangeStageTest, GrayIsTheGrayOfEachColor) {
  ExpectColors(MakeGray{false}, GrayOf);
  ExpectColors(MakeGray{true}, GrayOf);
  std::mt19937 random(2);
  Pixels source = Kind("format 6").make(5, 5, random);
  std::get<Raster>(source).profile = std::make_shared<std::vector<uint8_t>>(10);
  const Pixels gray = MadeBy(*ChangeStage({5, 5}, MakeGray{}), source);
  EXPECT_EQ(RasterOf(gray).Format(), pf8bit);
  EXPECT_TRUE(IsGrayRamp(RasterOf(gray).palette));
  EXPECT_EQ(RasterOf(gray).profile, nullptr);
  const Pixels color = MadeBy(*ChangeStage({5, 5}, MakeGray{true}), source);
  EXPECT_EQ(RasterOf(color).Format(), pf24bit);
  EXPECT_NE(RasterOf(color).profile, nullptr);
}

TEST(ChangeStageTest, LightPixelsBecomeWhite) {
  ExpectColors(WhitenLight{120, false},
               [](TColor color) { return GrayValue(color) > 120 ? clWhite : color; });
}

TEST(ChangeStageTest, LightOrDarkPixelsGetAColor) {
  for (const TColor color : {TColor{0x304050}, clBlack}) {
    ExpectColors(RecolorByGray{150, false, color, {}},
                 [color](TColor old) { return GrayValue(old) > 150 ? color : old; });
    ExpectColors(RecolorByGray{150, true, color, {}},
                 [color](TColor old) { return GrayValue(old) < 150 ? color : old; });
  }
}

TEST(ChangeStageTest, RecoloredPixelsGetTheOpacity) {
  std::mt19937 random(3);
  for (const auto& kind : test::RasterKinds()) {
    const Pixels source = kind.make(8, 7, random);
    const Pixels made =
        MadeInEveryWay(*ChangeStage({8, 7}, RecolorByGray{99, false, 0x112233, 40}), source);
    for (int y = 0; y < 7; ++y) {
      for (int x = 0; x < 8; ++x) {
        const SeenPixel before = Seen(source, x, y);
        const bool isLight = GrayValue(before.color) > 99;
        const SeenPixel expected = isLight ? SeenPixel{0x112233, 40} : before;
        ASSERT_EQ(Seen(made, x, y), expected) << kind.name;
      }
    }
  }
}

TColor Shifted(TColor color, const AdjustColors& change) {
  const auto scale = [](int channel, int percent) {
    // The sum is a single; its product with the channel is exact.
    const double factor = static_cast<double>(static_cast<float>(percent / 100.0 + 1));
    return static_cast<uint8_t>(std::clamp(std::nearbyint(channel * factor), 0.0, 255.0));
  };
  return RGB(scale(Red(color), change.red), scale(Green(color), change.green),
             scale(Blue(color), change.blue));
}

TEST(ChangeStageTest, ColorsAreScaled) {
  AdjustColors change;
  change.red = 30;
  change.green = -40;
  change.blue = 100;
  ExpectColors(change, [&](TColor color) { return Shifted(color, change); });
}

TEST(ChangeStageTest, ContrastAndBrightnessChangeBlackAndWhiteToo) {
  for (const int percent : {-100, -30, 50, 100}) {
    AdjustColors change;
    change.contrast = percent;
    ExpectColors(change, [percent](TColor color) {
      return RGB(reference::ContrastOf(Red(color), percent),
                 reference::ContrastOf(Green(color), percent),
                 reference::ContrastOf(Blue(color), percent));
    });
    change.contrast = 0;
    change.brightness = percent;
    ExpectColors(change, [percent](TColor color) {
      const auto changed =
          reference::BrightnessOf({Blue(color), Green(color), Red(color)}, percent);
      return RGB(changed.r, changed.g, changed.b);
    });
  }
}

TEST(ChangeStageTest, SharpeningKeepsOpacityAndNeedsTheRowsAround) {
  std::mt19937 random(5);
  AdjustColors change;
  change.sharpen = 60;
  for (const auto& kind : test::RasterKinds()) {
    SCOPED_TRACE(kind.name);
    const Pixels source = kind.make(9, 12, random);
    const auto stage = ChangeStage({9, 12}, change);
    EXPECT_EQ(stage->Needs({4, 2}), (RowRange{3, 4}));
    EXPECT_EQ(stage->Needs({0, 12}), (RowRange{0, 12}));
    const Pixels made = MadeInEveryWay(*stage, source);
    EXPECT_EQ(RasterOf(made).Format(), IsTransparent(source) ? pf32bit : pf24bit);
    for (int y = 0; y < 12; ++y) {
      for (int x = 0; x < 9; ++x) {
        ASSERT_EQ(Seen(made, x, y).opacity, Seen(source, x, y).opacity);
      }
    }
  }
}

TEST(ChangeStageTest, BlackAndWhiteGoByTheThreshold) {
  std::mt19937 random(6);
  for (const auto& kind : test::RasterKinds()) {
    for (const int threshold : {0, 1, 125, 255, 256}) {
      SCOPED_TRACE(kind.name + " " + std::to_string(threshold));
      const Pixels source = kind.make(13, 5, random);
      const MakeMono change{threshold, 0x102030, 0xF0E0D0};
      const Pixels made = MadeInEveryWay(*ChangeStage({13, 5}, change), source);
      ASSERT_EQ(RasterOf(made).Format(), pf1bit);
      ASSERT_FALSE(IsTransparent(made));
      for (int y = 0; y < 5; ++y) {
        for (int x = 0; x < 13; ++x) {
          const SeenPixel before = Seen(source, x, y);
          if (before.opacity != 0 && before.opacity != 255) continue;
          const TColor color = before.opacity == 0 ? clWhite : before.color;
          ASSERT_EQ(Seen(made, x, y).color,
                    GrayValue(color) < threshold ? change.dark : change.light);
        }
      }
    }
  }
}

/// The variance between the classes in long doubles, whose products of small counts are exact.
int OtsuByRule(const std::array<uint64_t, 256>& counts) {
  long double best = 0;
  int first = 128, last = 128;
  for (int threshold = 1; threshold < 256; ++threshold) {
    uint64_t darkCount = 0, darkSum = 0, lightCount = 0, lightSum = 0;
    for (int gray = 0; gray < 256; ++gray) {
      const uint64_t count = counts[static_cast<size_t>(gray)];
      (gray < threshold ? darkCount : lightCount) += count;
      (gray < threshold ? darkSum : lightSum) += count * static_cast<uint64_t>(gray);
    }
    if (darkCount == 0 || lightCount == 0) continue;
    const auto difference = static_cast<long double>(lightSum * darkCount) -
                            static_cast<long double>(darkSum * lightCount);
    const long double spread =
        difference * difference / static_cast<long double>(darkCount * lightCount);
    if (spread > best) {
      best = spread;
      first = last = threshold;
    } else if (spread == best && spread > 0 && last == threshold - 1 &&
               counts[static_cast<size_t>(threshold - 1)] == 0) {
      last = threshold;
    }
  }
  return (first + last) / 2;
}

TEST(OtsuThresholdTest, SeparatesDarkFromLight) {
  std::array<uint64_t, 256> counts{};
  EXPECT_EQ(detail::OtsuThreshold(counts), 128);
  counts[77] = 5;
  EXPECT_EQ(detail::OtsuThreshold(counts), 128);
  counts[200] = 5;
  EXPECT_EQ(detail::OtsuThreshold(counts), (78 + 200) / 2);
  counts[0] = uint64_t{1} << 40;
  counts[255] = uint64_t{1} << 40;
  EXPECT_EQ(detail::OtsuThreshold(counts), (78 + 200) / 2);
}

TEST(OtsuThresholdTest, EqualsThePlainRule) {
  std::mt19937 random(7);
  for (int i = 0; i < 3000; ++i) {
    std::array<uint64_t, 256> counts{};
    const unsigned bins = 2 + random() % 40;
    for (unsigned bin = 0; bin < bins; ++bin) counts[random() % 256] = random() % 50;
    ASSERT_EQ(detail::OtsuThreshold(counts), OtsuByRule(counts)) << "case " << i;
  }
}

TEST(ChangeStageTest, BlackAndWhiteWithoutAThresholdGoByOtsu) {
  Raster gray(pf8bit, 10, 2);
  gray.palette = GrayPalette(256);
  for (int x = 0; x < 10; ++x) {
    gray.Row(0)[x] = static_cast<uint8_t>(20 + x);
    gray.Row(1)[x] = static_cast<uint8_t>(90 + x);
  }
  gray.ClearPadding();
  const Pixels made = MadeInEveryWay(*ChangeStage({10, 2}, MakeMono{std::nullopt, 0, clWhite}),
                                     Pixels(std::move(gray)));
  for (int x = 0; x < 10; ++x) {
    EXPECT_EQ(Seen(made, x, 0).color, clBlack);
    EXPECT_EQ(Seen(made, x, 1).color, clWhite);
  }
}

TEST(ChangeStageTest, TheKeyColorIsReplacedEverywhere) {
  std::mt19937 random(8);
  for (const auto& kind : test::RasterKinds()) {
    for (const bool makesTransparent : {false, true}) {
      SCOPED_TRACE(kind.name);
      const Pixels source = kind.make(7, 6, random);
      const TColor key = Seen(source, 0, 5).color;
      const ReplaceKeyColor change{0x0A0B0C, makesTransparent};
      const Pixels made = MadeInEveryWay(*ChangeStage({7, 6}, change), source);
      for (int y = 0; y < 6; ++y) {
        for (int x = 0; x < 7; ++x) {
          const SeenPixel before = Seen(source, x, y), after = Seen(made, x, y);
          if (before.opacity == 0) {
            ASSERT_EQ(after.opacity, 0);
          } else if (before.color != key) {
            ASSERT_EQ(after, before);
          } else {
            ASSERT_EQ(after.color, 0x0A0B0C);
            ASSERT_EQ(after.opacity, makesTransparent ? 0 : before.opacity);
          }
        }
      }
    }
  }
}

TEST(ChangeStageTest, WhiteMarkedAsTransparentIsTransparent) {
  std::mt19937 random(9);
  for (const auto& kind : test::RasterKinds()) {
    SCOPED_TRACE(kind.name);
    const Pixels source = kind.make(7, 6, random);
    const Pixels made = MadeInEveryWay(*ChangeStage({7, 6}, WhitenLight{90, true}), source);
    for (int y = 0; y < 6; ++y) {
      for (int x = 0; x < 7; ++x) {
        const SeenPixel before = Seen(source, x, y);
        const bool isLight = GrayValue(before.color) > 90 || before.color == clWhite;
        if (before.opacity > 0) {
          ASSERT_EQ(Seen(made, x, y).opacity == 0, isLight);
        }
      }
    }
  }
}

TEST(ChangeStageTest, WhiteForPdfChangesTheBottomLeftPixelAlone) {
  std::mt19937 random(10);
  for (const auto& kind : test::RasterKinds()) {
    SCOPED_TRACE(kind.name);
    const Pixels source = kind.make(9, 4, random);
    const Pixels made = MadeInEveryWay(*ChangeStage({9, 4}, WhiteForPdf{}), source);
    EXPECT_EQ(Seen(made, 0, 3).color, clWhite);
    for (int y = 0; y < 4; ++y) {
      for (int x = 0; x < 9; ++x) {
        if (x == 0 && y == 3) continue;
        ASSERT_EQ(Seen(made, x, y).color, Seen(source, x, y).color) << x << ", " << y;
      }
    }
    const Raster& raster = RasterOf(made);
    if (IsIndexed(raster.Format())) {
      EXPECT_EQ(EntryColor(raster.palette.Entry(raster.palette.Count() - 1)), clWhite);
    }
  }
}

TEST(ChangeStageTest, TransparentPartsArePainted) {
  std::mt19937 random(11);
  for (const auto& kind : test::RasterKinds()) {
    for (const TColor background : {clWhite, TColor{0x336699}}) {
      SCOPED_TRACE(kind.name);
      const Pixels source = kind.make(9, 4, random);
      const Pixels made =
          MadeInEveryWay(*ChangeStage({9, 4}, PaintTransparency{background}), source);
      if (!IsTransparent(source)) {
        EXPECT_TRUE(test::SameRows(source, made));
        continue;
      }
      EXPECT_FALSE(IsTransparent(made));
      for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 9; ++x) {
          const SeenPixel before = Seen(source, x, y);
          if (before.opacity == 255) {
            ASSERT_EQ(Seen(made, x, y).color, before.color);
          }
          if (before.opacity == 0) {
            ASSERT_EQ(Seen(made, x, y).color, background);
          }
        }
      }
    }
  }
}

TEST(ChangeStageTest, OpacityIsExchanged) {
  std::mt19937 random(12);
  for (const auto& kind : test::RasterKinds()) {
    SCOPED_TRACE(kind.name);
    const Pixels source = kind.make(9, 4, random);
    const auto stage = ChangeStage({9, 4}, SwapOpacity{});
    if (!IsTransparent(source)) {
      EXPECT_THROW(MadeBy(*stage, source), FormatError);
      continue;
    }
    const Pixels made = MadeInEveryWay(*stage, source);
    for (int y = 0; y < 4; ++y) {
      for (int x = 0; x < 9; ++x) {
        ASSERT_EQ(Seen(made, x, y).opacity, Seen(source, x, y).opacity == 0 ? 255 : 0);
      }
    }
  }
}

TEST(ChangeStageTest, EntriesGetOtherColors) {
  std::mt19937 random(13);
  for (const auto& kind : test::RasterKinds()) {
    SCOPED_TRACE(kind.name);
    const Pixels source = kind.make(9, 4, random);
    SetPaletteEntries change;
    change.entries = {{1, 0x123456}};
    change.first = 0x654321;
    const auto stage = ChangeStage({9, 4}, change);
    if (!IsIndexed(RasterOf(source).Format())) {
      EXPECT_THROW(MadeBy(*stage, source), FormatError);
      continue;
    }
    const Pixels made = MadeInEveryWay(*stage, source);
    const int first = test::PixelAt(source, 0, 0)[0];
    EXPECT_EQ(EntryColor(RasterOf(made).palette.Entry(1)), 0x123456);
    if (first != 1) {
      EXPECT_EQ(EntryColor(RasterOf(made).palette.Entry(first)), 0x654321);
    }
    for (int y = 0; y < 4; ++y) {
      for (int x = 0; x < 9; ++x) {
        ASSERT_EQ(test::PixelAt(made, x, y), test::PixelAt(source, x, y));
      }
    }
    change.entries = {{RasterOf(source).palette.Count(), 0}};
    EXPECT_THROW(MadeBy(*ChangeStage({9, 4}, change), source), RangeError);
  }
}

TEST(ChangeStageTest, BitsAreThoseThatAreWanted) {
  std::mt19937 random(14);
  const std::pair<int, TPixelFormat> depths[] = {
      {1, pf1bit}, {4, pf4bit}, {8, pf8bit}, {24, pf24bit}, {32, pf32bit}};
  for (const auto& kind : test::RasterKinds()) {
    for (const auto& [bits, format] : depths) {
      SCOPED_TRACE(kind.name + " to " + std::to_string(bits));
      const Pixels source = kind.make(9, 4, random);
      const Pixels made = MadeInEveryWay(*ChangeStage({9, 4}, SetBits{bits}), source);
      EXPECT_EQ(RasterOf(made).Format(), format);
      if (bits < 24 || RasterOf(source).alphaFormat == afDefined) continue;
      for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 9; ++x) {
          ASSERT_EQ(Seen(made, x, y).color, Seen(source, x, y).color);
        }
      }
    }
  }
}

TEST(ChangeStageTest, LargePicturesAreChangedInPiecesAsSmallOnesAre) {
  std::mt19937 random(16);
  AdjustColors colors, sharper;
  colors.brightness = 20;
  colors.red = -10;
  sharper.sharpen = -40;
  const ColorChange changes[] = {MakeGray{},
                                 MakeGray{true},
                                 MakeMono{},
                                 colors,
                                 sharper,
                                 WhitenLight{150, true},
                                 RecolorByGray{99, true, 0x112233, {}},
                                 RecolorByGray{99, true, 0x112233, 30},
                                 PaintTransparency{0x778899},
                                 SwapOpacity{},
                                 SetBits{24},
                                 SetBits{32}};
  const Sides sides{1601, 1301};
  for (const auto& kind : test::RasterKinds()) {
    const Pixels source = kind.make(sides.width, sides.height, random);
    for (const ColorChange& change : changes) {
      if (std::holds_alternative<SwapOpacity>(change) && !IsTransparent(source)) continue;
      SCOPED_TRACE(kind.name + ", change " + std::to_string(change.index()));
      const auto stage = ChangeStage(sides, change);
      const Pixels made = MadeBy(*stage, source, 2);
      for (const int top : {0, 600, sides.height - 40}) {
        // A part with a row more above and below, as sharpening needs it.
        const Pixels part = MadeBy(*CropStage(sides, 0, top, sides.width, 40), source);
        const Pixels expected = MadeBy(*ChangeStage({sides.width, 40}, change), part);
        ASSERT_TRUE(
            test::SameRows(MadeBy(*CropStage({sides.width, 40}, 0, 1, sides.width, 38), expected),
                           MadeBy(*CropStage(sides, 0, top + 1, sides.width, 38), made)));
      }
    }
  }
}

TEST(ChangeStageTest, RefusesNumbersThatAChangeDoesNotHave) {
  const Sides sides{3, 3};
  EXPECT_THROW(ChangeStage(sides, MakeMono{257, 0, 0}), RangeError);
  EXPECT_THROW(ChangeStage(sides, MakeMono{-1, 0, 0}), RangeError);
  EXPECT_THROW(ChangeStage(sides, WhitenLight{256, false}), RangeError);
  EXPECT_THROW(ChangeStage(sides, RecolorByGray{-1, false, 0, {}}), RangeError);
  EXPECT_THROW(ChangeStage(sides, RecolorByGray{1, false, 0, 256}), RangeError);
  AdjustColors change;
  change.blue = 101;
  EXPECT_THROW(ChangeStage(sides, change), RangeError);
  EXPECT_THROW(ChangeStage(sides, SetBits{2}), RangeError);
  EXPECT_THROW(ChangeStage(sides, UsePalette{}), RangeError);
}

TEST(ChangeStageTest, RefusesSamples) {
  std::mt19937 random(15);
  const Pixels source = test::SampleKinds()[0].make(3, 3, random);
  EXPECT_THROW(MadeBy(*ChangeStage({3, 3}, MakeGray{}), source), UnsupportedError);
}

}  // namespace
}  // namespace rasterkit
