#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/engine/composition.h>
#include <rasterkit/bitmaptools/pixels/gray_mono.h>
#include <rasterkit/bitmaptools/rotation/rotate.h>
#include <rasterkit/dialogs/editpdfbitmap/bitmap_settings.h>
#include <rasterkit/runtime/ports.h>

#include "tests/support/memory_limit.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

TBitmap Source() {
  return GradientBitmap(pf24bit, 37, 23);
}
TBitmap Applied(const BitmapSettings& settings) {
  TBitmap bitmap = Source();
  ApplySettings(settings, bitmap);
  return bitmap;
}

TEST(ApplySettings, Should_ChangeNothing_When_NothingIsAskedFor) {
  EXPECT_TRUE(SamePixels(Source(), Applied({})));
}

TEST(ApplySettings, Should_MirrorFirst) {
  TBitmap expected = Source();
  SwapBitmap(true, &expected);
  EXPECT_TRUE(SamePixels(expected, Applied({.mirror = true})));
  expected.SetPixelFormat(pf8bit);
  EXPECT_TRUE(SamePixels(expected, Applied({.mirror = true, .colors256 = true})));
}

TEST(ApplySettings, Should_MakeGray_AfterTheColorsAreFewer) {
  TBitmap expected = Source();
  BitmapToGray(&expected, false);
  EXPECT_TRUE(SamePixels(expected, Applied({.gray = true})));
  TBitmap few = Source();
  few.SetPixelFormat(pf8bit);
  BitmapToGray(&few, false);
  EXPECT_TRUE(SamePixels(few, Applied({.colors256 = true, .gray = true})));
}

TEST(ApplySettings, Should_MakeBlackAndWhite_OnlyWithoutGray) {
  TBitmap expected = Source();
  ColorBmpToSW(&expected, 125);
  EXPECT_TRUE(SamePixels(expected, Applied({.blackWhite = true})));
  EXPECT_EQ(Applied({.blackWhite = true}).PixelFormat(), pf1bit);
  EXPECT_EQ(Applied({.gray = true, .blackWhite = true}).PixelFormat(), pf8bit);
}

TEST(RotatePicture, Should_ReverseTheSign_OnWhite) {
  for (const int degrees : {-90, 10, 90, 180, 359, -360}) {
    auto expected = Source().Clone();
    ASSERT_TRUE(RotateBitmap(static_cast<float>(-degrees), expected, 0xFFFFFF, 4, nullptr));
    auto bitmap = Source().Clone();
    EXPECT_TRUE(RotatePicture(degrees, bitmap));
    EXPECT_TRUE(SamePixels(*expected, *bitmap)) << degrees;
  }
  auto bitmap = Source().Clone();
  RotatePicture(10, bitmap);
  EXPECT_EQ(bitmap->PixelColor(0, 0), 0xFFFFFF);
}

TEST(RotatePicture, Should_TurnClockwise) {
  auto bitmap = Source().Clone();
  const TColor topLeft = bitmap->PixelColor(0, 0);
  ASSERT_TRUE(RotatePicture(90, bitmap));
  EXPECT_EQ(bitmap->Width(), 23);
  EXPECT_EQ(bitmap->PixelColor(22, 0), topLeft);
}

TEST(RotatePicture, Should_DoNothing_When_TheAngleIsZero) {
  std::unique_ptr<TBitmap> none;
  EXPECT_TRUE(RotatePicture(0, none));
  EXPECT_FALSE(RotatePicture(90, none));
}

TEST(RotatePicture, Should_BeFalse_When_ThereIsNoMemory) {
  const Ports before = HostPorts();
  std::string message;
  HostPorts().messageBox = [&](const std::string& text) { message = text; };
  auto bitmap = Source().Clone();
  const TBitmap* same = bitmap.get();
  {
    const MemoryLimit limit(100);
    EXPECT_FALSE(RotatePicture(10, bitmap));
  }
  EXPECT_EQ(bitmap.get(), same);
  EXPECT_EQ(message, "Bitmap to large to rotate.");
  HostPorts() = before;
}

}  // namespace
}  // namespace rasterkit::test
