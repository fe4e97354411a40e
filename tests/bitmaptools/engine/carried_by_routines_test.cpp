#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/engine/composition.h>
#include <rasterkit/bitmaptools/pixels/gray_mono.h>
#include <rasterkit/bitmaptools/rotation/orient.h>
#include <rasterkit/bitmaptools/rotation/rotate.h>
#include <rasterkit/graphics/bitmap.h>

#include "tests/support/test_pictures.h"

/// Which properties each routine that makes a new bitmap carries over.
namespace rasterkit {
namespace {

constexpr Resolution kDpi = {300, 150}, kExchangedDpi = {150, 300}, kNoDpi = {};
constexpr TColor kKey = RGB(9, 8, 7);

ColorProfile SampleProfile() {
  static const auto profile =
      std::make_shared<const std::vector<uint8_t>>(std::vector<uint8_t>{1, 2, 3});
  return profile;
}

std::unique_ptr<TBitmap> Sample(TPixelFormat format) {
  auto bitmap = std::make_unique<TBitmap>(test::GradientBitmap(format, 17, 9));
  if (IsIndexed(format)) bitmap->SetPalette(GrayPalette(1 << StoredBitsPerPixel(format)));
  bitmap->SetDpi(kDpi);
  bitmap->SetProfile(SampleProfile());
  bitmap->SetAlphaFormat(afDefined);
  bitmap->SetTransparent(true);
  bitmap->SetTransparentColor(kKey);
  return bitmap;
}

struct Carried {
  Resolution dpi;
  bool hasProfile;
  bool isAlphaDefined;
  bool isTransparent;
};

void Expect(const Carried& expected, const TBitmap& bitmap, const std::string& what) {
  EXPECT_EQ(bitmap.Dpi(), expected.dpi) << what;
  EXPECT_EQ(bitmap.Profile(), expected.hasProfile ? SampleProfile() : nullptr) << what;
  EXPECT_EQ(bitmap.AlphaFormat() == afDefined, expected.isAlphaDefined) << what;
  EXPECT_EQ(bitmap.Transparent(), expected.isTransparent) << what;
  EXPECT_EQ(bitmap.TransparentMode(), expected.isTransparent ? tmFixed : tmAuto) << what;
  if (expected.isTransparent) {
    EXPECT_EQ(bitmap.TransparentColor(), kKey) << what;
  }
}

std::string Name(TPixelFormat format) {
  return "format " + std::to_string(format);
}

TEST(CarriedByRoutines, Reorient_Should_CarryAll) {
  for (const TPixelFormat format : test::kEveryFormat) {
    const auto bitmap = Sample(format);
    const HPALETTE palette = bitmap->Palette();
    Reorient(*bitmap, Orientation::Rotate90Clockwise);
    Expect({kExchangedDpi, true, true, true}, *bitmap, Name(format));
    EXPECT_EQ(bitmap->Palette(), palette);
    Reorient(*bitmap, Orientation::FlipVertically);
    Expect({kExchangedDpi, true, true, true}, *bitmap, Name(format));
  }
}

TEST(CarriedByRoutines, QuarterTurn_Should_CarryResolutionAndProfile) {
  for (const TPixelFormat format : {pf24bit, pf32bit}) {
    auto bitmap = Sample(format);
    ASSERT_TRUE(RotateBitmap(90, bitmap, clBlack, 1, nullptr));
    Expect({kExchangedDpi, true, false, false}, *bitmap, Name(format));
    bitmap = Sample(format);
    ASSERT_TRUE(RotateBitmap(180, bitmap, clBlack, 1, nullptr));
    Expect({kDpi, true, false, false}, *bitmap, Name(format));
  }
}

TEST(CarriedByRoutines, AnyAngle_Should_CarryAll) {
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf24bit, pf32bit}) {
    auto bitmap = Sample(format);
    const HPALETTE palette = bitmap->Palette();
    ASSERT_TRUE(RotateBitmap(30, bitmap, clBlack, 1, nullptr));
    Expect({kDpi, true, true, true}, *bitmap, Name(format));
    EXPECT_EQ(bitmap->Palette(), palette);
  }
  auto bitmap = Sample(pf24bit);
  bitmap->SetTransparentMode(tmAuto);
  ASSERT_TRUE(RotateBitmap(30, bitmap, RGB(1, 2, 3), 1, nullptr));
  EXPECT_EQ(bitmap->TransparentMode(), tmAuto);
  EXPECT_EQ(bitmap->TransparentColor(), RGB(1, 2, 3)) << "that of the new corner";
  bitmap->SetTransparentMode(tmFixed);
  EXPECT_EQ(bitmap->TransparentColor(), clWhite) << "that of a new bitmap, not the stored one";
}

TEST(CarriedByRoutines, AnyAngle_Should_CarryAFixedColor_When_NothingIsTransparent) {
  auto bitmap = Sample(pf24bit);
  bitmap->SetTransparent(false);
  ASSERT_TRUE(RotateBitmap(30, bitmap, clBlack, 1, nullptr));
  EXPECT_FALSE(bitmap->Transparent());
  EXPECT_EQ(bitmap->TransparentMode(), tmFixed);
  EXPECT_EQ(bitmap->TransparentColor(), kKey);
}

TEST(CarriedByRoutines, GrayAndMono_Should_CarryAllButTheAlphaMark) {
  for (const TPixelFormat format : {pf24bit, pf32bit}) {
    const auto gray = Sample(format);
    BitmapToGray(gray.get(), false);
    Expect({kDpi, true, false, true}, *gray, Name(format));
    EXPECT_EQ(gray->Palette(), GrayPalette(256));
  }
  for (const TPixelFormat format : test::kEveryFormat) {
    const auto mono = Sample(format);
    ColorBmpToSW(mono.get(), 100);
    Expect({kDpi, true, false, true}, *mono, Name(format));
    EXPECT_EQ(mono->Palette(), GrayPalette(2));
  }
}

TEST(CarriedByRoutines, Resize_Should_CarryWhatThePixelsMean) {
  for (const TPixelFormat format : test::kEveryFormat) {
    auto bitmap = Sample(format);
    const HPALETTE palette = bitmap->Palette();
    ResizeBitmap(bitmap, 6, 5, true);
    Expect({kNoDpi, false, format == pf32bit, false}, *bitmap, Name(format));
    EXPECT_EQ(bitmap->Palette(), palette);
    bitmap = Sample(format);
    ResizeBitmap(bitmap, 6, 5, false);
    Expect({kNoDpi, false, format == pf32bit, false}, *bitmap, Name(format));
    EXPECT_FALSE(bitmap->Palette());
  }
}

}  // namespace
}  // namespace rasterkit
