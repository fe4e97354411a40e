#include <gtest/gtest.h>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>
#include <rasterkit/runtime/ports.h>

#include "tests/reference/canvas_reference.h"
#include "tests/reference/halftone_reference.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

using reference::Manner;
using reference::Way;
using test::GradientBitmap;

TEST(CanvasBlit, AlphaBlend_Should_MixByConstantAndPixelAlpha) {
  TBitmap source = GradientBitmap(pf32bit, 7, 5);
  const Raster before = test::GradientRaster(pf24bit, 11, 9);
  for (const bool pixelAlpha : {false, true}) {
    for (const int constant : {0, 1, 128, 255}) {
      TBitmap target = GradientBitmap(pf24bit, 11, 9);
      target.SetModified(false);
      target.Canvas().AlphaBlend({1, 2, 8, 7}, source, {0, 0, 7, 5},
                                 {static_cast<uint8_t>(constant), pixelAlpha});
      const Manner manner{Way::blended, constant, pixelAlpha};
      EXPECT_TRUE(test::SamePixels(
          reference::DrawPart(before, {1, 2, 8, 7}, source.Content(), {0, 0, 7, 5}, manner),
          target.Content()))
          << constant << pixelAlpha;
      EXPECT_TRUE(target.Modified());
    }
  }
}

TEST(CanvasBlit, AlphaBlend_Should_TakePixelAlpha_WhateverTheMarkSays_And255FromOtherFormats) {
  TBitmap source = GradientBitmap(pf32bit, 3, 1);
  ASSERT_EQ(source.AlphaFormat(), afIgnored);
  source.ScanLine(0)[3] = 0;
  TBitmap target = GradientBitmap(pf24bit, 3, 1);
  const TColor before = target.PixelColor(0, 0);
  target.Canvas().AlphaBlend({0, 0, 3, 1}, source, {0, 0, 3, 1}, {255, true});
  EXPECT_EQ(target.PixelColor(0, 0), before);
  const TBitmap opaque = GradientBitmap(pf24bit, 5, 1);
  target.Canvas().AlphaBlend({0, 0, 3, 1}, opaque, {2, 0, 5, 1}, {255, true});
  EXPECT_EQ(target.PixelColor(0, 0), opaque.PixelColor(2, 0));
}

TEST(CanvasBlit, AlphaBlend_Should_MixTheAlphaOfA32BitTarget) {
  TBitmap target = GradientBitmap(pf32bit, 1, 1), source = GradientBitmap(pf32bit, 1, 1);
  target.ScanLine(0)[3] = 100;
  source.ScanLine(0)[3] = 128;
  target.Canvas().AlphaBlend({0, 0, 1, 1}, source, {0, 0, 1, 1}, {200, true});
  // a = 128 * 200 / 65025; 255 a + 100 (1 - a) = 161.02
  EXPECT_EQ(target.ScanLine(0)[3], 161);
}

TEST(CanvasBlit, TransparentBlt_Should_LeaveOutTheKey_When_A1BitPlanIsStretchedOnto32Bits) {
  TBitmap plan;
  plan.SetPixelFormat(pf1bit);
  plan.SetSize(3, 2);
  plan.ScanLine(0)[0] = 0x40;  // black, white, black; the second row is white
  TBitmap target = GradientBitmap(pf32bit, 7, 5);
  const Raster before = target.Content().Clone();
  target.Canvas().TransparentBlt({0, 0, 7, 5}, plan, {0, 0, 3, 2}, clWhite);
  EXPECT_TRUE(test::SamePixels(reference::DrawPart(before, {0, 0, 7, 5}, plan.Content(),
                                                   {0, 0, 3, 2}, {Way::keyed, 255, false, clWhite}),
                               target.Content()));
  EXPECT_EQ(target.PixelColor(0, 0), clBlack);
  EXPECT_EQ(target.ScanLine(0)[3], 255);
  EXPECT_EQ(target.PixelColor(3, 0), before.PixelColor(3, 0));
}

TEST(CanvasBlit, TransparentBlt_Should_AskForASystemColor_When_TheKeyIsNegative) {
  const auto saved = HostPorts().systemColor;
  HostPorts().systemColor = [](uint32_t index) { return index == 5 ? 0x102030u : 0u; };
  TBitmap source = GradientBitmap(pf24bit, 2, 1), target = GradientBitmap(pf24bit, 2, 1);
  source.ScanLine(0)[0] = 0x10, source.ScanLine(0)[1] = 0x20, source.ScanLine(0)[2] = 0x30;
  target.ScanLine(0)[0] = 77;
  target.Canvas().TransparentBlt({0, 0, 2, 1}, source, {0, 0, 2, 1},
                                 static_cast<TColor>(0xFF000005));
  HostPorts().systemColor = saved;
  EXPECT_EQ(target.ScanLine(0)[0], 77);
}

TEST(CanvasBlit, TransparentBlt_Should_NotBlend_When_TheSourceHasADefinedAlphaChannel) {
  TBitmap source = GradientBitmap(pf32bit, 4, 1);
  source.SetAlphaFormat(afDefined);
  source.ScanLine(0)[3] = 0;
  TBitmap target = GradientBitmap(pf24bit, 4, 1);
  target.Canvas().TransparentBlt({0, 0, 4, 1}, source, {0, 0, 4, 1}, RGB(1, 1, 1));
  EXPECT_EQ(target.PixelColor(0, 0), source.PixelColor(0, 0));
}

TEST(CanvasBlit, PlgBlt_Should_MirrorInPlace_When_TheSourceIsACopy) {
  for (const TPixelFormat format : test::kEveryFormat) {
    TBitmap bitmap = GradientBitmap(format, 13, 6);
    const std::unique_ptr<TBitmap> copy = bitmap.Clone();
    bitmap.Canvas().PlgBlt({{{12, 0}, {0, 0}, {12, 5}}}, *copy, {0, 0, 12, 5});
    for (int y = 0; y < 6; ++y)
      for (int x = 0; x < 13; ++x)
        EXPECT_EQ(bitmap.PixelColor(x, y), copy->PixelColor(x < 12 && y < 5 ? 11 - x : x, y));
  }
}

TEST(CanvasBlit, Should_ReadTheOldPixels_When_SourceIsTheTarget) {
  const auto draw = [](TBitmap& target, const TBitmap& source) {
    TCanvas& canvas = target.Canvas();
    canvas.AlphaBlend({1, 1, 9, 8}, source, {0, 0, 10, 9}, {140, true});
    canvas.TransparentBlt({9, 0, 2, 7}, source, {1, 1, 11, 9}, RGB(1, 2, 3));
    canvas.PlgBlt({{{10, 1}, {1, 0}, {9, 9}}}, source, {0, 0, 9, 9});
    canvas.CopyStretched({2, 0, 11, 5}, source);
    canvas.StretchMode = smHalftone;
    canvas.CopyStretched({2, 0, 8, 9}, source);
    canvas.StretchDraw({0, 3, 5, 9}, source);
  };
  for (const TPixelFormat format : test::kEveryFormat) {
    TBitmap self = GradientBitmap(format, 11, 9);
    TBitmap steps = GradientBitmap(format, 11, 9);
    draw(self, self);
    // The expected result, from a copy made before each step.
    TCanvas& canvas = steps.Canvas();
    canvas.AlphaBlend({1, 1, 9, 8}, *steps.Clone(), {0, 0, 10, 9}, {140, true});
    canvas.TransparentBlt({9, 0, 2, 7}, *steps.Clone(), {1, 1, 11, 9}, RGB(1, 2, 3));
    canvas.PlgBlt({{{10, 1}, {1, 0}, {9, 9}}}, *steps.Clone(), {0, 0, 9, 9});
    canvas.CopyStretched({2, 0, 11, 5}, *steps.Clone());
    canvas.StretchMode = smHalftone;
    canvas.CopyStretched({2, 0, 8, 9}, *steps.Clone());
    canvas.StretchDraw({0, 3, 5, 9}, *steps.Clone());
    EXPECT_TRUE(test::SamePixels(steps, self)) << format;
  }
}

TEST(CanvasBlit, StretchDraw_Should_Average_When_TheStretchModeIsHalftone) {
  const TBitmap source = GradientBitmap(pf24bit, 12, 9);
  const Raster before = test::GradientRaster(pf24bit, 11, 9);
  TBitmap target = GradientBitmap(pf24bit, 11, 9);
  target.Canvas().StretchMode = smHalftone;
  target.Canvas().StretchDraw({1, 2, 8, 20}, source);
  EXPECT_TRUE(test::SamePixels(
      reference::DrawHalftone(before, {1, 2, 8, 20}, source.Content(), false, {Way::opaque}),
      target.Content()));
}

TEST(CanvasBlit,
     StretchDraw_Should_BlendTheMeans_When_AlphaIsDefined_AndNotAverage_When_Transparent) {
  TBitmap source = GradientBitmap(pf32bit, 12, 9);
  source.SetAlphaFormat(afDefined);
  TBitmap target = GradientBitmap(pf24bit, 11, 9);
  target.Canvas().StretchMode = smHalftone;
  target.Canvas().StretchDraw({0, 0, 5, 4}, source);
  EXPECT_TRUE(
      test::SamePixels(reference::DrawHalftone(test::GradientRaster(pf24bit, 11, 9), {0, 0, 5, 4},
                                               source.Content(), true, {Way::blended, 255, true}),
                       target.Content()));
  source = GradientBitmap(pf24bit, 12, 9);
  source.SetTransparent(true);
  TBitmap plain = GradientBitmap(pf24bit, 11, 9);
  target = GradientBitmap(pf24bit, 11, 9);
  target.Canvas().StretchMode = smHalftone;
  target.Canvas().StretchDraw({0, 0, 5, 4}, source);
  plain.Canvas().StretchDraw({0, 0, 5, 4}, source);
  EXPECT_TRUE(test::SamePixels(plain, target));
}

TEST(CanvasBlit, CopyStretched_Should_ReplaceWithAlpha_InBothModes) {
  TBitmap source = GradientBitmap(pf32bit, 12, 9);
  source.SetAlphaFormat(afDefined);
  source.SetTransparent(true);
  const Raster before = test::GradientRaster(pf32bit, 6, 5);
  TBitmap target = GradientBitmap(pf32bit, 6, 5);
  target.Canvas().CopyStretched({0, 0, 6, 5}, source);
  EXPECT_TRUE(test::SamePixels(
      reference::DrawPart(before, {0, 0, 6, 5}, source.Content(), {0, 0, 12, 9}, {Way::copied}),
      target.Content()));
  target.Canvas().StretchMode = smHalftone;
  target.Canvas().CopyStretched({0, 0, 6, 5}, source);
  EXPECT_TRUE(test::SamePixels(
      reference::DrawHalftone(before, {0, 0, 6, 5}, source.Content(), true, {Way::copied}),
      target.Content()));
}

TEST(CanvasBlit, StretchMode_Should_GoWithTheCanvas) {
  TBitmap bitmap = GradientBitmap(pf24bit, 2, 2);
  EXPECT_EQ(bitmap.Canvas().StretchMode, smPlain);
  bitmap.Canvas().StretchMode = smHalftone;
  EXPECT_EQ(bitmap.Clone()->Canvas().StretchMode, smHalftone);
  TBitmap other;
  other.Canvas();
  other = std::move(bitmap);
  EXPECT_EQ(other.Canvas().StretchMode, smHalftone);
}

TEST(CanvasBlit, Should_DoNothing_When_ABitmapIsEmpty) {
  const TBitmap nothing;
  TBitmap target = GradientBitmap(pf24bit, 5, 4), empty;
  for (TBitmap* bitmap : {&target, &empty}) {
    for (const TStretchMode mode : {smPlain, smHalftone}) {
      TCanvas& canvas = bitmap->Canvas();
      canvas.StretchMode = mode;
      const TBitmap some = GradientBitmap(pf24bit, 3, 3);
      const TBitmap& source = bitmap == &empty ? some : nothing;
      canvas.AlphaBlend({0, 0, 5, 4}, source, {0, 0, 3, 3}, {});
      canvas.TransparentBlt({0, 0, 5, 4}, source, {0, 0, 3, 3}, 0);
      canvas.PlgBlt({{{0, 0}, {5, 1}, {0, 4}}}, source, {0, 0, 3, 3});
      canvas.CopyStretched({0, 0, 5, 4}, source);
      canvas.StretchDraw({0, 0, 5, 4}, source);
    }
  }
  EXPECT_TRUE(test::SamePixels(GradientBitmap(pf24bit, 5, 4), target));
}

}  // namespace
}  // namespace rasterkit
