#include <random>

#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/rotation/orient.h>

namespace rasterkit {
namespace {

TBitmap RandomBitmap(TPixelFormat format, int width, int height, uint32_t seed) {
  TBitmap bitmap;
  bitmap.ResetPixels(format, width, height);
  std::mt19937 random(seed);
  for (int y = 0; y < height; ++y) {
    uint8_t* row = bitmap.ScanLine(y);
    for (int x = 0; x < width * bitmap.StoredBits() / 8; ++x)
      row[x] = static_cast<uint8_t>(random());
  }
  return bitmap;
}

// Position in the stored picture of pixel (x, y) of the upright one, which is width x height. The
// EXIF tag states which sides of the picture the stored first row and first column are.
struct Place {
  int x, y;
};
Place StoredPlace(int orientation, int x, int y, int width, int height) {
  switch (orientation) {
    case 2:
      return {width - 1 - x, y};  // first row top, first column right
    case 3:
      return {width - 1 - x, height - 1 - y};  // bottom, right
    case 4:
      return {x, height - 1 - y};  // bottom, left
    case 5:
      return {y, x};  // left, top
    case 6:
      return {y, width - 1 - x};  // right, top
    case 7:
      return {height - 1 - y, width - 1 - x};  // right, bottom
    case 8:
      return {height - 1 - y, x};  // left, bottom
    default:
      return {x, y};  // top, left
  }
}

TEST(OrientTest, EveryOrientationBecomesUprightInEveryFormat) {
  for (TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf15bit, pf16bit, pf24bit, pf32bit, pfDevice})
    for (int orientation = 1; orientation <= 8; ++orientation) {
      const TBitmap stored = RandomBitmap(format, 37, 22, 5);
      const std::unique_ptr<TBitmap> upright = stored.Clone();
      Reorient(*upright, orientation);
      EXPECT_EQ(upright->PixelFormat(), format);
      ASSERT_EQ(upright->Width(), orientation < 5 ? 37 : 22);
      ASSERT_EQ(upright->Height(), orientation < 5 ? 22 : 37);
      for (int y = 0; y < upright->Height(); ++y)
        for (int x = 0; x < upright->Width(); ++x) {
          const Place place = StoredPlace(orientation, x, y, upright->Width(), upright->Height());
          ASSERT_EQ(upright->PixelColor(x, y), stored.PixelColor(place.x, place.y))
              << "format " << format << ", orientation " << orientation;
        }
    }
}

TEST(OrientTest, ValuesThatSayNothingChangeNothing) {
  for (int orientation : {-1, 0, 9, 1000}) {
    TBitmap bitmap = RandomBitmap(pf24bit, 5, 3, 1);
    const std::unique_ptr<TBitmap> before = bitmap.Clone();
    Reorient(bitmap, orientation);
    EXPECT_EQ(bitmap.Width(), 5);
    EXPECT_EQ(bitmap.PixelColor(4, 0), before->PixelColor(4, 0));
  }
}

TEST(OrientTest, ResolutionIsExchangedWithTheSides) {
  TBitmap bitmap = RandomBitmap(pf8bit, 5, 3, 1);
  bitmap.SetDpi({300, 150});
  Reorient(bitmap, Orientation::Rotate180);
  EXPECT_EQ(bitmap.Dpi(), (Resolution{300, 150}));
  Reorient(bitmap, Orientation::Rotate90Clockwise);
  EXPECT_EQ(bitmap.Dpi(), (Resolution{150, 300}));
}

TEST(OrientTest, PaletteProfileAndAlphaMarkStay) {
  TBitmap bitmap = RandomBitmap(pf8bit, 5, 3, 1);
  bitmap.SetPalette(GrayPalette(17));
  bitmap.SetProfile(std::make_shared<const std::vector<uint8_t>>(3, uint8_t{7}));
  Reorient(bitmap, 6);
  EXPECT_EQ(bitmap.Palette(), GrayPalette(17));
  EXPECT_EQ(*bitmap.Profile(), std::vector<uint8_t>(3, uint8_t{7}));

  TBitmap alpha = RandomBitmap(pf32bit, 5, 3, 1);
  alpha.SetAlphaFormat(afDefined);
  Reorient(alpha, 5);
  EXPECT_EQ(alpha.AlphaFormat(), afDefined);
}

TEST(OrientTest, TheTransparentColorStaysThoughTheCornerMoves) {
  TBitmap bitmap = RandomBitmap(pf24bit, 5, 3, 1);
  bitmap.SetTransparent(true);
  const TColor before = bitmap.TransparentColor();
  Reorient(bitmap, 3);
  EXPECT_TRUE(bitmap.Transparent());
  EXPECT_EQ(bitmap.TransparentColor(), before);
  EXPECT_EQ(bitmap.TransparentMode(), tmFixed);

  TBitmap opaque = RandomBitmap(pf24bit, 5, 3, 1);
  Reorient(opaque, 3);
  EXPECT_FALSE(opaque.Transparent());
  EXPECT_EQ(opaque.TransparentMode(), tmAuto);
}

TEST(OrientTest, EmptyPicturesHaveTheirSidesExchanged) {
  TBitmap bitmap;
  bitmap.ResetPixels(pf24bit, 7, 0);
  Reorient(bitmap, 6);
  EXPECT_EQ(bitmap.Width(), 0);
  EXPECT_EQ(bitmap.Height(), 7);
}

TEST(OrientTest, QuartersAreCountedCounterClockwiseModuloFour) {
  for (int quarters = -5; quarters <= 8; ++quarters) {
    TBitmap turned = RandomBitmap(pf4bit, 9, 4, 2);
    const std::unique_ptr<TBitmap> plain = turned.Clone();
    TurnQuarters(turned, quarters);
    const int steps = ((quarters % 4) + 4) % 4;
    for (int i = 0; i < steps; ++i) Reorient(*plain, Orientation::Rotate90CounterClockwise);
    ASSERT_EQ(turned.Width(), plain->Width());
    for (int y = 0; y < turned.Height(); ++y)
      for (int x = 0; x < turned.Width(); ++x)
        ASSERT_EQ(turned.PixelColor(x, y), plain->PixelColor(x, y)) << quarters;
  }
}

}  // namespace
}  // namespace rasterkit
