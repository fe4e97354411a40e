// Verbs that change colors, compared with the library's routines on true color, and checked for the
// same rule on every palette.

#include <functional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/engine/contrast_brightness.h>
#include <rasterkit/bitmaptools/pixels/color.h>
#include <rasterkit/bitmaptools/pixels/gray_mono.h>
#include <rasterkit/bitmaptools/pixels/transparency.h>
#include <rasterkit/raster/convert.h>

#include "tests/support/profiles.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/verb_run.h"

namespace rasterkit::test {
namespace {

using testing::HasSubstr;

TColor Gray(TColor color) {
  const uint8_t gray = GrayValue(color);
  return RGB(gray, gray, gray);
}

/// A 24-bit picture of every kind of color: dark, light, black, white, nearly white.
Raster Colors() {
  Raster raster = GradientRaster(pf24bit, 83, 52);
  for (int x = 0; x < 20; ++x)
    for (int c = 0; c < 3; ++c) {
      raster.Row(3)[x * 3 + c] = 0;
      raster.Row(4)[x * 3 + c] = 255;
      raster.Row(5)[x * 3 + c] = static_cast<uint8_t>(c == 2 ? 254 : 255);
    }
  return raster;
}

/// The result of a library routine on a 24-bit picture.
Raster ByLibrary(const Raster& raster, const std::function<void(TBitmap&)>& change) {
  TBitmap bitmap(raster.Clone());
  change(bitmap);
  return bitmap.Content().Clone();
}

/// An indexed picture with a transparent entry in the middle.
Raster Keyed(TPixelFormat format) {
  Raster raster = GradientRaster(format, 21, 9);
  raster.transparentColor = raster.PixelColor(10, 4);
  return raster;
}

Raster WithAlpha() {
  Raster raster = GradientRaster(pf32bit, 21, 9);
  raster.alphaFormat = afDefined;
  return raster;
}

class CliColors : public VerbTest {
 protected:
  /// Checks that a verb changes palettes of every depth like a 24-bit picture with the same colors,
  /// and keeps depth and number of entries.
  void ExpectSameRuleForPalettes(const std::string& verb, const std::vector<std::string>& options) {
    for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit}) {
      const Raster raster = GradientRaster(format, 40, 30);
      const Raster changed = Changed(verb, raster, options);
      EXPECT_EQ(changed.Format(), format) << verb;
      EXPECT_TRUE(SameColors(Changed(verb, ConvertRaster(raster, pf24bit), options), changed))
          << verb << ", " << StoredBitsPerPixel(format) << " bits";
    }
  }

  /// Checks that exactly the pixels that were transparent are transparent.
  void ExpectSameTransparency(const std::string& verb, const std::vector<std::string>& options) {
    const Raster alpha = WithAlpha();
    const Raster changed = Changed(verb, alpha, options);
    ASSERT_EQ(changed.alphaFormat, afDefined) << verb;
    for (int y = 0; y < 9; ++y)
      for (int x = 0; x < 21; ++x)
        ASSERT_EQ(changed.Row(y)[x * 4 + 3], alpha.Row(y)[x * 4 + 3]) << verb;
    for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit}) {
      const Raster keyed = Keyed(format);
      const Raster after = Changed(verb, keyed, options);
      ASSERT_TRUE(after.transparentColor.has_value()) << verb;
      for (int y = 0; y < 9; ++y)
        for (int x = 0; x < 21; ++x)
          ASSERT_EQ(after.PixelColor(x, y) == *after.transparentColor,
                    keyed.PixelColor(x, y) == *keyed.transparentColor)
              << verb << " " << x << "," << y;
    }
  }
};

using CliGray = CliColors;

TEST_F(CliGray, TrueColor_Should_Become8BitGrays) {
  const Raster gray = Changed("gray", Colors(), {});
  EXPECT_EQ(gray.Format(), pf8bit);
  EXPECT_TRUE(IsGrayRamp(gray.palette));
  EXPECT_TRUE(
      SamePixels(ByLibrary(Colors(), [](TBitmap& bitmap) { BitmapToGray(&bitmap, false); }), gray));
}

TEST_F(CliGray, TrueColor_Should_Stay_When_AskedFor) {
  const Raster gray = Changed("gray", Colors(), {"--true-color"});
  EXPECT_TRUE(
      SamePixels(ByLibrary(Colors(), [](TBitmap& bitmap) { BitmapToGray(&bitmap, true); }), gray));
}

TEST_F(CliGray, Palettes_Should_BecomeGrayAndKeepTheirDepth) {
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit}) {
    const Raster raster = GradientRaster(format, 40, 30);
    const Raster gray = Changed("gray", raster, {});
    EXPECT_EQ(gray.Format(), format);
    for (int y = 0; y < 30; ++y)
      for (int x = 0; x < 40; ++x) ASSERT_EQ(gray.PixelColor(x, y), Gray(raster.PixelColor(x, y)));
  }
}

TEST_F(CliGray, Transparency_Should_Stay) {
  ExpectSameTransparency("gray", {});
}

TEST_F(CliGray, ProfileOfColors_Should_BeDroppedAndReported_When_TheOutputIsGray) {
  Raster raster = Colors();
  raster.profile = RgbProfile();
  for (const char* verb : {"gray", "mono"}) {
    const ToolResult result = RunVerb(verb, raster, {"--strict"});
    EXPECT_EQ(result.code, 5) << verb;
    EXPECT_THAT(result.err, HasSubstr("lost: ICC profile")) << verb;
    EXPECT_EQ(LoadFile(folder_ / "out.png").profile, nullptr) << verb;
  }
  EXPECT_NE(Changed("gray", raster, {"--true-color"}).profile, nullptr);
}

using CliMono = CliColors;

TEST_F(CliMono, PixelsBelowTheThreshold_Should_BecomeBlackAndTheRestWhite) {
  const Raster colors = Colors();
  for (const int threshold : {0, 1, 100, 125, 255, 256}) {
    const Raster mono = Changed("mono", colors, {"--threshold", std::to_string(threshold)});
    EXPECT_EQ(mono.Format(), pf1bit);
    for (int y = 0; y < colors.Height(); ++y)
      for (int x = 0; x < colors.Width(); ++x)
        ASSERT_EQ(mono.PixelColor(x, y) == clBlack, GrayValue(colors.PixelColor(x, y)) < threshold);
  }
}

TEST_F(CliMono, Threshold_Should_Be125_When_NotGiven) {
  EXPECT_TRUE(
      SamePixels(Changed("mono", Colors(), {"--threshold", "125"}), Changed("mono", Colors(), {})));
}

TEST_F(CliMono, Colors_Should_BeThoseAskedFor) {
  const Raster mono = Changed("mono", Colors(), {"--dark", "102030", "--light", "F0E0D0"});
  EXPECT_EQ(mono.PixelColor(0, 3), RGB(0x10, 0x20, 0x30));
  EXPECT_EQ(mono.PixelColor(0, 4), RGB(0xF0, 0xE0, 0xD0));
}

TEST_F(CliMono, Transparency_Should_BePaintedAndReported) {
  Raster raster = WithAlpha();
  for (int x = 0; x < 21; ++x) raster.Row(0)[x * 4 + 3] = 0;
  const ToolResult result = RunVerb("mono", raster, {"--strict", "--background", "000000"});
  EXPECT_EQ(result.code, 5);
  EXPECT_THAT(result.err, HasSubstr("lost: the alpha channel"));
  EXPECT_EQ(LoadFile(folder_ / "out.png").PixelColor(20, 0), clBlack);
}

using CliContrast = CliColors;

TEST_F(CliContrast, EveryPixel_Should_ChangeByTheRuleOfSeveralThreads_When_AnyNumberIsGiven) {
  for (const int percent : {-100, -50, -1, 0, 30, 100}) {
    const Raster expected =
        ByLibrary(Colors(), [&](TBitmap& bitmap) { Kontrast(&bitmap, percent, 2, nullptr); });
    for (const char* threads : {"1", "2", "7", "100"})
      EXPECT_TRUE(SamePixels(expected,
                             Changed("contrast", Colors(),
                                     {"--percent", std::to_string(percent), "--threads", threads})))
          << percent << " " << threads;
  }
}

TEST_F(CliContrast, BlackAndWhite_Should_Change_When_ThePictureHasAPalette) {
  ExpectSameRuleForPalettes("contrast", {"--percent", "-50"});
  ExpectSameRuleForPalettes("contrast", {"--percent", "70"});
}

TEST_F(CliContrast, Transparency_Should_Stay) {
  ExpectSameTransparency("contrast", {"--percent", "-100"});
}

TEST_F(CliContrast, FewRows_Should_BeNoMatterForManyThreads) {
  for (const int height : {1, 2, 3, 5, 9}) {
    const Raster raster = GradientRaster(pf24bit, 7, height);
    EXPECT_TRUE(
        SamePixels(ByLibrary(raster, [](TBitmap& bitmap) { Kontrast(&bitmap, 40, 2, nullptr); }),
                   Changed("contrast", raster, {"--percent", "40", "--threads", "100"})));
  }
}

using CliBrightness = CliColors;

TEST_F(CliBrightness, EveryPixel_Should_ChangeByTheRuleOfSeveralThreads_When_AnyNumberIsGiven) {
  for (const int percent : {-100, -50, -1, 0, 30, 100}) {
    const Raster expected =
        ByLibrary(Colors(), [&](TBitmap& bitmap) { Helligkeit(&bitmap, percent, 2, nullptr); });
    for (const char* threads : {"1", "3", "100"})
      EXPECT_TRUE(SamePixels(expected,
                             Changed("brightness", Colors(),
                                     {"--percent", std::to_string(percent), "--threads", threads})))
          << percent << " " << threads;
  }
}

TEST_F(CliBrightness, BlackAndWhite_Should_Change_When_ThePictureHasAPalette) {
  ExpectSameRuleForPalettes("brightness", {"--percent", "-40"});
  ExpectSameRuleForPalettes("brightness", {"--percent", "40"});
}

TEST_F(CliBrightness, Transparency_Should_Stay) {
  ExpectSameTransparency("brightness", {"--percent", "100"});
}

TEST_F(CliBrightness, Grays_Should_StayGrays) {
  const Raster lighter = Changed("brightness", GrayRaster(40, 30), {"--percent", "20"});
  EXPECT_TRUE(IsGrayRamp(lighter.palette));
  EXPECT_TRUE(SameColors(
      Changed("brightness", ConvertRaster(GrayRaster(40, 30), pf24bit), {"--percent", "20"}),
      lighter));
}

TEST_F(CliBrightness, Percent_Should_BeGivenAndInRange) {
  EXPECT_EQ(RunVerb("brightness", Colors(), {}).code, 2);
  for (const char* percent : {"101", "-101", "x", "1.5"})
    EXPECT_EQ(RunVerb("brightness", Colors(), {"--percent", percent}).code, 2) << percent;
}

using CliAdjust = CliColors;

TEST_F(CliAdjust, ValuesOfZero_Should_ChangeNothing) {
  EXPECT_TRUE(SamePixels(Colors(), Changed("adjust", Colors(), {"--red", "0"})));
}

TEST_F(CliAdjust, NoValues_Should_BeWrongUsage) {
  const ToolResult result = RunVerb("adjust", Colors(), {});
  EXPECT_EQ(result.code, 2);
  EXPECT_THAT(result.err, testing::HasSubstr("--brightness"));
}

TEST_F(CliAdjust, Values_Should_BeAppliedBrightnessFirstThenContrastThenColors) {
  const Raster brighter = Changed("brightness", Colors(), {"--percent", "20"});
  const Raster both = Changed("contrast", brighter, {"--percent", "-30"});
  EXPECT_TRUE(SamePixels(
      Changed("adjust", both, {"--red", "50", "--blue", "-100"}),
      Changed("adjust", Colors(),
              {"--contrast", "-30", "--blue", "-100", "--red", "50", "--brightness", "20"})));
}

TEST_F(CliAdjust, Colors_Should_ScaleTheirChannelAndNoOther) {
  const Raster colors = Colors();
  const Raster shifted = Changed("adjust", colors, {"--red", "50", "--blue", "-100"});
  for (int y = 0; y < colors.Height(); ++y)
    for (int x = 0; x < colors.Width(); ++x) {
      const uint8_t* const before = colors.Row(y) + x * 3;
      const uint8_t* const after = shifted.Row(y) + x * 3;
      ASSERT_EQ(after[0], 0);
      ASSERT_EQ(after[1], before[1]);
      ASSERT_NEAR(after[2], std::min(255.0, before[2] * 1.5), 0.5);
    }
}

TEST_F(CliAdjust, Sharpen_Should_StrengthenAnEdgeAndSoftenItBelowZero) {
  Raster edge(pf24bit, 8, 4);
  for (int y = 0; y < 4; ++y)
    for (int x = 0; x < 24; ++x) edge.Row(y)[x] = x < 12 ? 90 : 120;
  edge.ClearPadding();
  const Raster sharper = Changed("adjust", edge, {"--sharpen", "50"});
  const Raster softer = Changed("adjust", edge, {"--sharpen", "-100"});
  // Three of nine neighbors differ by 30: the mean is 10 nearer to the other side.
  EXPECT_EQ(sharper.Row(1)[9], 80);
  EXPECT_EQ(sharper.Row(1)[12], 130);
  EXPECT_EQ(softer.Row(1)[9], 100);
  EXPECT_EQ(softer.Row(1)[12], 110);
  for (const int far : {0, 6, 15, 21}) {
    EXPECT_EQ(sharper.Row(2)[far], edge.Row(2)[far]);
    EXPECT_EQ(softer.Row(2)[far], edge.Row(2)[far]);
  }
}

TEST_F(CliAdjust, Palettes_Should_StayUnlessSharpened) {
  ExpectSameRuleForPalettes("adjust", {"--red", "20", "--contrast", "10"});
  EXPECT_EQ(Changed("adjust", GradientRaster(pf4bit, 9, 9), {"--sharpen", "10"}).Format(), pf24bit);
}

TEST_F(CliAdjust, Transparency_Should_Stay) {
  ExpectSameTransparency("adjust", {"--brightness", "30", "--green", "-20"});
  EXPECT_EQ(Changed("adjust", WithAlpha(), {"--sharpen", "40"}).alphaFormat, afDefined);
}

using CliWhiten = CliColors;

TEST_F(CliWhiten, PixelsAboveTheThreshold_Should_BecomeWhite) {
  for (const int threshold : {0, 60, 200, 254, 255}) {
    const Raster expected = ByLibrary(Colors(), [&](TBitmap& bitmap) {
      SetToTransparent(&bitmap, static_cast<uint8_t>(threshold));
    });
    EXPECT_TRUE(SamePixels(
        expected, Changed("whiten", Colors(), {"--threshold", std::to_string(threshold)})));
  }
}

/// Includes index 0 and both pixels of a byte.
TEST_F(CliWhiten, EveryPixel_Should_CountForItself_When_ThePictureHasAPalette) {
  ExpectSameRuleForPalettes("whiten", {"--threshold", "0"});
  ExpectSameRuleForPalettes("whiten", {"--threshold", "120"});
}

TEST_F(CliWhiten, White_Should_BecomeTransparent_When_AskedFor) {
  const Raster marked = Changed("whiten", Colors(), {"--threshold", "120", "--transparent"});
  EXPECT_EQ(marked.transparentColor, clWhite);
  const Raster alpha = WithAlpha();
  const Raster both = Changed("whiten", alpha, {"--threshold", "60", "--transparent"});
  for (int y = 0; y < 9; ++y)
    for (int x = 0; x < 21; ++x)
      ASSERT_EQ(both.Row(y)[x * 4 + 3],
                GrayValue(alpha.PixelColor(x, y)) > 60 ? 0 : alpha.Row(y)[x * 4 + 3]);
}

TEST_F(CliWhiten, Transparency_Should_Stay) {
  ExpectSameTransparency("whiten", {"--threshold", "20"});
}

using CliRecolor = CliColors;

TEST_F(CliRecolor, LighterPixels_Should_GetTheColor) {
  const Raster expected =
      ByLibrary(Colors(), [](TBitmap& bitmap) { SetColorAbGray(&bitmap, 90, 1, 2, 3, 255); });
  EXPECT_TRUE(SamePixels(expected,
                         Changed("recolor", Colors(), {"--threshold", "90", "--color", "010203"})));
}

TEST_F(CliRecolor, DarkerPixels_Should_GetTheColor_When_AskedFor) {
  const Raster expected =
      ByLibrary(Colors(), [](TBitmap& bitmap) { SetColorBisGray(&bitmap, 90, 1, 2, 3, 255); });
  EXPECT_TRUE(SamePixels(
      expected,
      Changed("recolor", Colors(), {"--threshold", "90", "--color", "010203", "--darker"})));
}

TEST_F(CliRecolor, Palettes_Should_FollowTheSameRule) {
  ExpectSameRuleForPalettes("recolor", {"--threshold", "100", "--color", "FF8000"});
  ExpectSameRuleForPalettes("recolor", {"--threshold", "100", "--color", "FF8000", "--darker"});
}

TEST_F(CliRecolor, Alpha_Should_MakeThesePixelsTransparent) {
  const Raster colors = Colors();
  const Raster clear =
      Changed("recolor", colors, {"--threshold", "90", "--color", "FFFFFF", "--alpha", "40"});
  ASSERT_EQ(clear.alphaFormat, afDefined);
  for (int y = 0; y < colors.Height(); ++y)
    for (int x = 0; x < colors.Width(); ++x)
      ASSERT_EQ(clear.Row(y)[x * 4 + 3], GrayValue(colors.PixelColor(x, y)) > 90 ? 40 : 255);
}

TEST_F(CliRecolor, Transparency_Should_Stay) {
  ExpectSameTransparency("recolor", {"--threshold", "30", "--color", "123456"});
}

using CliKeyColor = CliColors;

TEST_F(CliKeyColor, ColorOfTheBottomLeftPixel_Should_BeReplacedEverywhere) {
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf24bit}) {
    const Raster raster = GradientRaster(format, 40, 30);
    const TColor key = raster.PixelColor(0, 29);
    const Raster changed = Changed("key-color", raster, {"--color", "FE8001"});
    EXPECT_EQ(changed.Format(), format);
    for (int y = 0; y < 30; ++y)
      for (int x = 0; x < 40; ++x)
        ASSERT_EQ(changed.PixelColor(x, y),
                  raster.PixelColor(x, y) == key ? RGB(0xFE, 0x80, 0x01) : raster.PixelColor(x, y));
  }
}

TEST_F(CliKeyColor, NewColor_Should_BeMarkedTransparent_When_AskedFor) {
  for (const TPixelFormat format : {pf4bit, pf24bit}) {
    const Raster changed = Changed("key-color", GradientRaster(format, 40, 30),
                                   {"--color", "FE8001", "--transparent"});
    EXPECT_EQ(changed.transparentColor, RGB(0xFE, 0x80, 0x01));
  }
}

using CliPdfWhite = CliColors;

TEST_F(CliPdfWhite, BottomLeftPixel_Should_BecomeWhiteAndNoOther) {
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf24bit}) {
    Raster raster = GradientRaster(format, 40, 30);
    if (IsIndexed(format)) {
      // White is in the middle and in use.
      auto entries = PaletteTable(raster.palette);
      const auto count = static_cast<size_t>(raster.palette.Count());
      std::swap(entries[count / 3], entries[count - 1]);
      raster.palette = HPALETTE(std::span(entries).first(count));
    }
    const Raster changed = Changed("pdf-white", raster, {});
    EXPECT_EQ(changed.Format(), format);
    for (int y = 0; y < 30; ++y)
      for (int x = 0; x < 40; ++x)
        ASSERT_EQ(changed.PixelColor(x, y), x == 0 && y == 29 ? clWhite : raster.PixelColor(x, y))
            << StoredBitsPerPixel(format) << ": " << x << "," << y;
    if (IsIndexed(format)) {
      EXPECT_EQ(EntryColor(changed.palette.Entry(changed.palette.Count() - 1)), clWhite);
    }
  }
}

TEST_F(CliPdfWhite, PaletteWithoutWhite_Should_GetIt) {
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit}) {
    Raster raster = GradientRaster(format, 40, 30);
    std::vector<tagPALETTEENTRY> entries;
    for (int i = 0; i < raster.palette.Count(); ++i)
      entries.push_back({static_cast<uint8_t>(i), 7, 9, 0});
    raster.palette = HPALETTE(entries);
    const Raster changed = Changed("pdf-white", raster, {});
    for (int y = 0; y < 30; ++y)
      for (int x = 0; x < 40; ++x)
        ASSERT_EQ(changed.PixelColor(x, y), x == 0 && y == 29 ? clWhite : raster.PixelColor(x, y))
            << StoredBitsPerPixel(format) << ": " << x << "," << y;
  }
}

TEST_F(CliPdfWhite, ShortPalette_Should_GetWhiteBehindTheOthers) {
  Raster raster = GradientRaster(pf8bit, 4, 3);
  std::vector<tagPALETTEENTRY> entries(20, {1, 2, 3, 0});
  raster.palette = HPALETTE(entries);
  const Raster changed = Changed("pdf-white", raster, {});
  ASSERT_EQ(changed.palette.Count(), 21);
  EXPECT_EQ(EntryColor(changed.palette.Entry(20)), clWhite);
  EXPECT_EQ(changed.PixelColor(0, 2), clWhite);
  EXPECT_EQ(changed.PixelColor(1, 2), raster.PixelColor(1, 2));
}

}  // namespace
}  // namespace rasterkit::test
