#include <gtest/gtest.h>

#include <rasterkit/graphics/canvas.h>
#include <rasterkit/graphics/icon.h>
#include <rasterkit/graphics/picture_registry.h>
#include <rasterkit/graphics/png_image.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/same_pixels.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

TBitmap NewMask(int width, int height) {
  TBitmap mask;
  mask.SetPixelFormat(pf1bit);
  mask.SetSize(width, height);
  return mask;
}

uint8_t AlphaAt(const TBitmap& bitmap, int x, int y) {
  return bitmap.ScanLine(y)[4 * x + 3];
}

TEST(Icon, SetColorAndMask_Should_TakeTheAlpha_When_ThereIsAny_WhateverTheMask) {
  TBitmap color = test::GradientBitmap(pf32bit, 9, 5);
  color.ScanLine(2)[4 * 3 + 3] = 0;
  const auto icon = TIcon::FromColorAndMask(color, NewMask(9, 5));
  EXPECT_TRUE(test::SamePixels(color, icon->ColorBitmap()));
  EXPECT_EQ(icon->ColorBitmap().AlphaFormat(), afDefined);
  EXPECT_TRUE(icon->Modified());
  const auto mask = icon->MaskBitmap();
  EXPECT_EQ(mask->PixelFormat(), pf1bit);
  for (int y = 0; y < 5; ++y)
    for (int x = 0; x < 9; ++x)
      EXPECT_EQ(mask->PixelColor(x, y), AlphaAt(color, x, y) == 0 ? clWhite : clBlack);
}

TEST(Icon, SetColorAndMask_Should_TakeTheMask_When_NoPixelHasAlpha) {
  TBitmap color = test::GradientBitmap(pf32bit, 9, 1);
  for (int x = 0; x < 9; ++x) color.ScanLine(0)[4 * x + 3] = 0;
  TBitmap mask = NewMask(9, 1);
  mask.ScanLine(0)[0] = 0x40;
  mask.ScanLine(0)[1] = 0;
  for (const TPixelFormat format : {pf32bit, pf24bit}) {
    color.SetPixelFormat(format);
    TIcon icon;
    icon.SetColorAndMask(color, mask);
    for (int x = 0; x < 9; ++x) EXPECT_EQ(AlphaAt(icon.ColorBitmap(), x, 0), x == 1 ? 0 : 255);
    EXPECT_TRUE(test::SameColors(color, icon.ColorBitmap()));
  }
  const auto none = TIcon::FromColorAndMask(color, NewMask(9, 1));
  EXPECT_EQ(AlphaAt(none->ColorBitmap(), 4, 0), 0) << "a new mask is transparent throughout";
}

TEST(Icon, SetColorAndMask_Should_RefuseAndKeepTheIcon_When_SizesDifferOrAreEmpty) {
  const TBitmap color = test::GradientBitmap(pf32bit, 9, 5);
  const auto icon = TIcon::FromColorAndMask(color, NewMask(9, 5));
  EXPECT_THROW(icon->SetColorAndMask(color, NewMask(9, 6)), RangeError);
  EXPECT_THROW(icon->SetColorAndMask(color, NewMask(8, 5)), RangeError);
  EXPECT_THROW(icon->SetColorAndMask(TBitmap(), TBitmap()), RangeError);
  EXPECT_TRUE(test::SamePixels(color, icon->ColorBitmap()));
}

TEST(Icon, Should_ComeBackFromAFile_ThroughTheRegisteredClass) {
  const test::TempFolder folder;
  const TBitmap color = test::GradientBitmap(pf32bit, 32, 31);
  const auto icon = TIcon::FromColorAndMask(color, NewMask(32, 31));
  icon->SaveToFile(folder / "a.ico");
  EXPECT_FALSE(icon->Modified());
  TPicture picture;
  picture.LoadFromFile(folder / "a.ico");
  auto* loaded = dynamic_cast<TIcon*>(picture.Graphic());
  ASSERT_NE(loaded, nullptr);
  EXPECT_TRUE(test::SamePixels(color, loaded->ColorBitmap()));
  EXPECT_FALSE(loaded->Modified());
  EXPECT_TRUE(loaded->Transparent());
}

TEST(Icon, Should_BlendItsAlpha_When_ItIsDrawn) {
  TBitmap color = test::GradientBitmap(pf32bit, 5, 4);
  const auto icon = TIcon::FromColorAndMask(color, NewMask(5, 4));
  TBitmap target = test::GradientBitmap(pf24bit, 9, 9),
          expected = test::GradientBitmap(pf24bit, 9, 9);
  target.Canvas().Draw(2, 1, *icon);
  expected.Canvas().AlphaBlend({2, 1, 7, 5}, color, {0, 0, 5, 4}, {255, true});
  EXPECT_TRUE(test::SamePixels(expected, target));
}

TEST(Icon, Assign_Should_CarryAlphaOrTransparentColor_BothWays) {
  TBitmap keyed = test::GradientBitmap(pf8bit, 6, 5);
  keyed.SetTransparent(true);
  TIcon icon;
  icon.Assign(&keyed);
  EXPECT_TRUE(test::SameColors(keyed.Content(), icon.ColorBitmap().Content()));
  EXPECT_EQ(AlphaAt(icon.ColorBitmap(), 0, 4), 0) << "the bottom-left pixel's color";
  EXPECT_EQ(AlphaAt(icon.ColorBitmap(), 5, 0), 255);
  TIcon copy;
  copy.Assign(&icon);
  EXPECT_TRUE(test::SamePixels(icon.ColorBitmap(), copy.ColorBitmap()));
  TBitmap back;
  back.Assign(&copy);
  EXPECT_TRUE(test::SamePixels(icon.ColorBitmap(), back));
  EXPECT_EQ(back.AlphaFormat(), afDefined);
  EXPECT_TRUE(back.Transparent());
  TBitmap ignored = test::GradientBitmap(pf32bit, 6, 5);
  icon.Assign(&ignored);
  EXPECT_EQ(AlphaAt(icon.ColorBitmap(), 5, 0), 255) << "alpha without a mark means nothing here";
  icon.Assign(nullptr);
  EXPECT_TRUE(icon.Empty());
}

TEST(Icon, SaveToStream_Should_Refuse_When_EmptyOrTooLarge) {
  TMemoryStream stream;
  TIcon icon;
  EXPECT_THROW(icon.SaveToStream(stream), FormatError);
  icon.SetColorAndMask(test::GradientBitmap(pf32bit, 300, 4), NewMask(300, 4));
  EXPECT_THROW(icon.SaveToStream(stream), LimitError);
  EXPECT_EQ(stream.Size(), 0u);
}

TEST(Icon, LoadFromStream_Should_KeepTheIcon_When_TheBytesAreNone) {
  const auto icon = TIcon::FromColorAndMask(test::GradientBitmap(pf32bit, 9, 5), NewMask(9, 5));
  TMemoryStream stream(std::vector<uint8_t>{1, 2, 3});
  EXPECT_THROW(icon->LoadFromStream(stream), FormatError);
  EXPECT_EQ(icon->Width(), 9);
}

}  // namespace
}  // namespace rasterkit
