#include <QPainter>
#include <random>

#include <gtest/gtest.h>

#include <rasterkit/qt/bitmap_image.h>

#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

using test::GradientBitmap;
using test::kEveryFormat;
using test::RandomBitmap;
using test::WithoutUnusedBits;

/// The pixel of the image as 0x00BBGGRR.
TColor ColorAt(const QImage& image, int x, int y) {
  const QColor color = image.pixelColor(x, y);
  return RGB(static_cast<uint8_t>(color.red()), static_cast<uint8_t>(color.green()),
             static_cast<uint8_t>(color.blue()));
}

void ExpectSameColors(const QImage& image, const TBitmap& bitmap, const QRect& part) {
  ASSERT_EQ(image.size(), part.size());
  for (int y = 0; y < part.height(); ++y) {
    for (int x = 0; x < part.width(); ++x) {
      ASSERT_EQ(ColorAt(image, x, y), bitmap.PixelColor(part.x() + x, part.y() + y))
          << x << "," << y << " of format " << bitmap.PixelFormat();
    }
  }
}

bool IsViewOf(const QImage& image, const TBitmap& bitmap) {
  const uint8_t* first = bitmap.ScanLine(0);
  const uint8_t* end = first + bitmap.Stride() * static_cast<size_t>(bitmap.Height());
  return image.constBits() >= first && image.constBits() < end;
}

TEST(BitmapImage, Whole_Should_HaveTheBitmapsColors_When_FormatIsAny) {
  std::mt19937 random(1);
  for (const TPixelFormat format : kEveryFormat) {
    const TBitmap bitmap = WithoutUnusedBits(RandomBitmap(format, 37, 11, random));
    ExpectSameColors(ImageOfBitmap(bitmap), bitmap, {0, 0, 37, 11});
  }
}

TEST(BitmapImage, Part_Should_HaveTheBitmapsColors_When_ItStartsAnywhere) {
  std::mt19937 random(2);
  for (const TPixelFormat format : kEveryFormat) {
    const TBitmap bitmap = WithoutUnusedBits(RandomBitmap(format, 37, 11, random));
    for (const int x : {0, 1, 7, 8, 13, 16, 36}) {
      const QRect part = QRect(x, 3, 21, 5) & QRect(0, 0, 37, 11);
      ExpectSameColors(ImageOfPart(bitmap, part), bitmap, part);
    }
  }
}

TEST(BitmapImage, Image_Should_BeAView_When_FormatsAgree) {
  for (const TPixelFormat format : {pf1bit, pf8bit, pf24bit, pf32bit}) {
    const TBitmap bitmap = GradientBitmap(format, 37, 11);
    EXPECT_TRUE(IsViewOf(ImageOfBitmap(bitmap), bitmap)) << format;
    EXPECT_TRUE(IsViewOf(ImageOfPart(bitmap, {16, 2, 9, 4}), bitmap)) << format;
  }
}

TEST(BitmapImage, Writing_Should_LeaveTheBitmapAlone) {
  const TBitmap bitmap = GradientBitmap(pf24bit, 37, 11);
  const TColor before = bitmap.PixelColor(0, 0);
  QImage image = ImageOfBitmap(bitmap);
  image.fill(Qt::red);
  EXPECT_EQ(bitmap.PixelColor(0, 0), before);
}

TEST(BitmapImage, Part_Should_BeClipped_When_ItLiesPartlyOutside) {
  const TBitmap bitmap = GradientBitmap(pf24bit, 37, 11);
  ExpectSameColors(ImageOfPart(bitmap, {-5, -5, 100, 100}), bitmap, {0, 0, 37, 11});
  ExpectSameColors(ImageOfPart(bitmap, {30, 9, 100, 100}), bitmap, {30, 9, 7, 2});
}

TEST(BitmapImage, Image_Should_BeNull_When_ThereIsNothing) {
  EXPECT_TRUE(ImageOfBitmap(TBitmap()).isNull());
  const TBitmap bitmap = GradientBitmap(pf4bit, 37, 11);
  EXPECT_TRUE(ImageOfPart(bitmap, {37, 0, 5, 5}).isNull());
  EXPECT_TRUE(ImageOfPart(bitmap, {0, 0, 0, 5}).isNull());
  EXPECT_TRUE(ImageOfOwned(Raster()).isNull());
}

TEST(BitmapImage, Index_Should_BeBlack_When_BeyondThePalette) {
  TBitmap bitmap = GradientBitmap(pf8bit, 4, 1);
  const tagPALETTEENTRY white[] = {{255, 255, 255, 0}};
  bitmap.SetPalette(HPALETTE(white));
  for (int x = 0; x < 4; ++x) bitmap.ScanLine(0)[x] = static_cast<uint8_t>(x * 80);
  const QImage image = ImageOfBitmap(bitmap);
  EXPECT_EQ(ColorAt(image, 0, 0), clWhite);
  EXPECT_EQ(ColorAt(image, 3, 0), clBlack);
  // Painting goes through the table as well.
  QImage target(4, 1, QImage::Format_RGB32);
  target.fill(Qt::red);
  QPainter(&target).drawImage(0, 0, image);
  EXPECT_EQ(ColorAt(target, 2, 0), clBlack);
}

TEST(BitmapImage, Alpha_Should_Count_When_ItIsDefinedOnly) {
  TBitmap bitmap = GradientBitmap(pf32bit, 3, 2);
  bitmap.ScanLine(0)[3] = 0;
  bitmap.SetAlphaFormat(afIgnored);
  EXPECT_EQ(ImageOfBitmap(bitmap).pixelColor(0, 0).alpha(), 255);
  bitmap.SetAlphaFormat(afDefined);
  EXPECT_EQ(ImageOfBitmap(bitmap).pixelColor(0, 0).alpha(), 0);
}

TEST(BitmapImage, OwnedImage_Should_OutliveItsSource) {
  for (const TPixelFormat format : kEveryFormat) {
    const TBitmap bitmap = WithoutUnusedBits(GradientBitmap(format, 21, 5));
    QImage image;
    {
      QImage first = ImageOfOwned(bitmap.Content().Clone());
      image = first;
    }
    ExpectSameColors(image, bitmap, {0, 0, 21, 5});
  }
}

}  // namespace
}  // namespace rasterkit
