#include <functional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/engine/composition.h>
#include <rasterkit/bitmaptools/pixels/color.h>
#include <rasterkit/raster/convert.h>

#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/verb_run.h"

namespace rasterkit::test {
namespace {

using testing::HasSubstr;

constexpr int kWidth = 31, kHeight = 23;

bool IsNearWhite(TColor color) {
  uint8_t red, green, blue;
  GetRGB(color, red, green, blue);
  return red > 250 && green > 250 && blue > 250;
}

/// Colors every second column from the third one on.
Raster Striped(Raster raster, uint8_t value) {
  for (int y = 0; y < raster.Height(); ++y)
    for (int x = 2; x < raster.Width(); x += 2)
      for (int c = 0; c < 3; ++c) raster.Row(y)[x * 3 + c] = value;
  return raster;
}

class CliCombine : public VerbTest {
 protected:
  ToolResult Combine(const Raster& over, std::vector<std::string> options,
                     const std::string& verb = "combine") {
    SavePngFile(folder_ / "over.png", over);
    options.insert(options.begin(), {"--with", folder_ / "over.png"});
    return RunVerb(verb, under_, options);
  }

  Raster Combined(const Raster& over, const std::vector<std::string>& options,
                  const std::string& verb = "combine") {
    const ToolResult result = Combine(over, options, verb);
    EXPECT_EQ(result.code, 0) << result.err;
    return LoadFile(folder_ / "out.png");
  }

  void Expect(const Raster& result, const std::function<TColor(int x, int y)>& color) {
    for (int y = 0; y < result.Height(); ++y)
      for (int x = 0; x < result.Width(); ++x)
        ASSERT_EQ(result.PixelColor(x, y), color(x, y)) << x << "," << y;
  }

  Raster under_ = GradientRaster(pf24bit, kWidth, kHeight);
  Raster over_ = Striped(FlippedColors(), 255);

 private:
  static Raster FlippedColors() {
    Raster raster = GradientRaster(pf24bit, kWidth, kHeight);
    for (int y = 0; y < kHeight; ++y)
      for (int x = 0; x < kWidth * 3; ++x)
        raster.Row(y)[x] = static_cast<uint8_t>(240 - raster.Row(y)[x]);
    return raster;
  }
};

TEST_F(CliCombine, Key_Should_LeaveOutPureWhiteAndReplaceTheRestToTheLastRowAndColumn) {
  const Raster combined = Combined(over_, {});
  EXPECT_EQ(combined.Format(), pf24bit);
  Expect(combined, [&](int x, int y) {
    return over_.PixelColor(x, y) == clWhite ? under_.PixelColor(x, y) : over_.PixelColor(x, y);
  });
  const Raster almost = Striped(over_.Clone(), 254);
  Expect(Combined(almost, {}), [&](int x, int y) { return almost.PixelColor(x, y); });
}

TEST_F(CliCombine, Key_Should_TakeDrawingsOfOneBit) {
  const Raster drawing = GradientRaster(pf1bit, kWidth, kHeight);
  Expect(Combined(drawing, {"--mode", "key"}), [&](int x, int y) {
    return drawing.PixelColor(x, y) == clWhite ? under_.PixelColor(x, y) : clBlack;
  });
}

TEST_F(CliCombine, Key_Should_LetAShareOfWhatLiesBelowShowThrough) {
  const Raster black = [] {
    Raster raster(pf24bit, kWidth, kHeight);
    raster.ClearPadding();
    for (int y = 0; y < kHeight; ++y) std::fill_n(raster.Row(y), raster.RowBytes(), 0);
    return raster;
  }();
  const Raster combined = Combined(black, {"--percent", "40"});
  for (int y = 0; y < kHeight; ++y)
    for (int x = 0; x < kWidth * 3; ++x) ASSERT_NEAR(combined.Row(y)[x], under_.Row(y)[x] * 0.4, 1);
  EXPECT_TRUE(SameColors(under_, Combined(black, {"--percent", "100"})));
}

TEST_F(CliCombine, Key_Should_GoByTheAlphaChannel_When_ThereIsOne) {
  Raster over = GradientRaster(pf32bit, kWidth, kHeight);
  over.alphaFormat = afDefined;
  for (int y = 0; y < kHeight; ++y)
    for (int x = 0; x < kWidth; ++x) over.Row(y)[x * 4 + 3] = x % 3 == 0 ? 0 : 255;
  Expect(Combined(over, {}), [&](int x, int y) {
    return x % 3 == 0 ? under_.PixelColor(x, y) : over.PixelColor(x, y);
  });
}

TEST_F(CliCombine, Overwrite_Should_LeaveOutNearWhite) {
  for (const uint8_t white : {250, 251, 255}) {
    const Raster over = Striped(over_.Clone(), white);
    Expect(Combined(over, {"--mode", "overwrite"}), [&](int x, int y) {
      return IsNearWhite(over.PixelColor(x, y)) ? under_.PixelColor(x, y) : over.PixelColor(x, y);
    });
  }
}

TEST_F(CliCombine, IntoWhite_Should_FillOnlyWhatIsNearWhite) {
  under_ = Striped(std::move(under_), 251);
  const Raster over = GradientRaster(pf8bit, kWidth, kHeight);
  Expect(Combined(over, {"--mode", "into-white"}), [&](int x, int y) {
    return IsNearWhite(under_.PixelColor(x, y)) ? over.PixelColor(x, y) : under_.PixelColor(x, y);
  });
}

/// All rows except the last equal those of the library.
TEST_F(CliCombine, TransparentAndShadow_Should_BeTheLibrarysAndReachTheLastRow) {
  Raster taller = GradientRaster(pf24bit, kWidth, kHeight + 1);
  Raster tallerOver = GradientRaster(pf24bit, kWidth, kHeight + 1);
  for (int y = 0; y < kHeight; ++y) {
    std::copy_n(under_.Row(y), under_.RowBytes(), taller.Row(y));
    std::copy_n(over_.Row(y), over_.RowBytes(), tallerOver.Row(y));
  }
  for (const bool gray : {false, true})
    for (const bool isShadow : {false, true}) {
      TBitmap expected(taller.Clone()), source(tallerOver.Clone());
      (isShadow ? CombineGeoResFix : CombineGeoResTrans)(&expected, &source, 30, gray, 2, nullptr);
      expected.SetSize(kWidth, kHeight);
      std::vector<std::string> options = {"--mode", isShadow ? "shadow" : "transparent",
                                          "--percent", "30"};
      if (gray) options.emplace_back("--gray");
      EXPECT_TRUE(SamePixels(expected.Content(), Combined(over_, options))) << isShadow << gray;
    }
}

TEST_F(CliCombine, Threads_Should_NotChangeAPixel) {
  const std::vector<std::string> options = {"--mode", "transparent", "--threads"};
  for (const char* threads : {"1", "2", "6", "100"}) {
    auto line = options;
    line.emplace_back(threads);
    EXPECT_TRUE(SamePixels(Combined(over_, {"--mode", "transparent", "--percent", "50"}),
                           Combined(over_, line)));
  }
}

TEST_F(CliCombine, OtherPicture_Should_BeStretchedOverTheWhole) {
  Raster corner(pf8bit, 2, 2);
  corner.ClearPadding();
  const auto index = [&](TColor color) {
    return static_cast<uint8_t>(NearestEntry(corner.palette.Entries(), color));
  };
  corner.Row(0)[0] = corner.Row(1)[1] = index(clBlack);
  corner.Row(0)[1] = corner.Row(1)[0] = index(clWhite);
  const Raster combined = Combined(corner, {});
  EXPECT_EQ(combined.PixelColor(0, 0), clBlack);
  EXPECT_EQ(combined.PixelColor(kWidth - 1, kHeight - 1), clBlack);
  EXPECT_EQ(combined.PixelColor(kWidth - 1, 0), under_.PixelColor(kWidth - 1, 0));
  EXPECT_EQ(combined.PixelColor(0, kHeight - 1), under_.PixelColor(0, kHeight - 1));
}

TEST_F(CliCombine, TransparentPicture_Should_BePaintedAndReported) {
  under_.transparentColor = under_.PixelColor(3, 3);
  const ToolResult result = Combine(over_, {"--strict"});
  EXPECT_EQ(result.code, 5);
  EXPECT_THAT(result.err, HasSubstr("lost: the transparent color"));
}

TEST_F(CliCombine, OptionsThatMeanNothing_Should_BeWrongUsage) {
  EXPECT_EQ(RunVerb("combine", under_, {}).code, 2) << "--with is missing";
  const std::vector<std::vector<std::string>> lines = {{"--mode", "mix"},
                                                       {"--mode", "overwrite", "--percent", "5"},
                                                       {"--mode", "into-white", "--percent", "5"},
                                                       {"--gray"},
                                                       {"--percent", "101"},
                                                       {"--percent", "-1"}};
  for (const auto& options : lines)
    EXPECT_EQ(Combine(over_, options).code, 2) << testing::PrintToString(options);
}

TEST_F(CliCombine, UnreadableOtherPicture_Should_Exit3) {
  EXPECT_EQ(RunVerb("combine", under_, {"--with", folder_ / "missing.png"}).code, 3);
}

using CliWatermark = CliCombine;

TEST_F(CliWatermark, GrayMark_Should_BeTheLibrarysWatermark) {
  const Raster mark = GrayRaster(11, 7);
  TBitmap graphic(under_.Clone()), marked(mark.Clone());
  const auto expected = WaterMarkedBitmap(graphic, marked);
  EXPECT_TRUE(SamePixels(expected->Content(), Combined(mark, {}, "watermark")));
}

TEST_F(CliWatermark, ColoredMark_Should_CountByItsDarkness) {
  Raster mark(pf24bit, 2, 2);
  mark.ClearPadding();
  const uint8_t colors[4][3] = {{0, 0, 255}, {255, 255, 255}, {255, 0, 0}, {0, 255, 0}};
  for (int i = 0; i < 4; ++i) std::copy_n(colors[i], 3, mark.Row(i / 2) + i % 2 * 3);
  Raster gray(pf8bit, 2, 2);
  gray.palette = GrayPalette(256);
  gray.ClearPadding();
  for (int i = 0; i < 4; ++i)
    gray.Row(i / 2)[i % 2] = GrayValue(colors[i][2], colors[i][1], colors[i][0]);
  EXPECT_TRUE(SamePixels(Combined(gray, {}, "watermark"), Combined(mark, {}, "watermark")));
}

TEST_F(CliWatermark, WhiteMark_Should_ChangeNothing) {
  Raster white(pf24bit, 5, 5);
  for (int y = 0; y < 5; ++y) std::fill_n(white.Row(y), white.RowBytes(), 255);
  white.ClearPadding();
  EXPECT_TRUE(SamePixels(under_, Combined(white, {}, "watermark")));
}

TEST_F(CliWatermark, SeveralPictures_Should_EachGetTheMark) {
  SavePngFile(folder_ / "mark.png", GrayRaster(11, 7));
  SavePngFile(folder_ / "a.png", under_);
  SavePngFile(folder_ / "b.png", under_);
  const ToolResult result =
      RunTool({"watermark", "--with", folder_ / "mark.png", "--out-dir", folder_ / "out", "--jobs",
               "2", folder_ / "a.png", folder_ / "b.png"});
  ASSERT_EQ(result.code, 0) << result.err;
  EXPECT_TRUE(SamePixels(LoadFile(folder_ / "out/a.png"), LoadFile(folder_ / "out/b.png")));
  EXPECT_FALSE(SamePixels(under_, LoadFile(folder_ / "out/a.png")));
}

TEST_F(CliWatermark, Transparency_Should_Stay) {
  under_ = GradientRaster(pf32bit, kWidth, kHeight);
  under_.alphaFormat = afDefined;
  for (int y = 0; y < kHeight; ++y)
    for (int x = 0; x < kWidth; ++x) under_.Row(y)[4 * x + 3] = static_cast<uint8_t>(8 * x);
  const Raster marked = Combined(GrayRaster(11, 7), {}, "watermark");
  ASSERT_EQ(marked.Format(), pf32bit);
  EXPECT_EQ(marked.alphaFormat, afDefined);
  for (int x = 0; x < kWidth; ++x) EXPECT_EQ(marked.Row(9)[4 * x + 3], 8 * x) << x;
}

TEST_F(CliWatermark, Resolution_Should_Stay) {
  under_.resolution = {300, 300};
  EXPECT_NEAR(Combined(GrayRaster(3, 3), {}, "watermark").resolution.x, 300, 0.1);
}

}  // namespace
}  // namespace rasterkit::test
