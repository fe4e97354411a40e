#include <gtest/gtest.h>

#include <rasterkit/raster/cut_out.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

/// Value of pixel x of a row, counted in bits from the left.
uint64_t StoredPixel(const Raster& raster, int x, int y) {
  const int bits = StoredBitsPerPixel(raster.Format());
  uint64_t value = 0;
  for (int i = 0; i < bits; ++i) {
    const size_t bit = static_cast<size_t>(x) * bits + i;
    value = value << 1 | ((raster.Row(y)[bit / 8] >> (7 - bit % 8)) & 1u);
  }
  return value;
}

TEST(CutOut, Should_MoveStoredPixels_When_ThePartLiesAnywhereInAnyFormat) {
  constexpr unsigned kSeed = 20261121;
  std::mt19937 random(kSeed);
  for (const TPixelFormat format : kEveryFormat)
    for (const PixelRect part :
         {PixelRect{0, 0, 21, 13}, {1, 2, 20, 3}, {7, 0, 8, 13}, {8, 5, 17, 9}}) {
      const Raster source = RandomRaster(format, 21, 13, random);
      const Raster cut = CutOut(source, part);
      ASSERT_EQ(cut.Width(), part.right - part.left);
      ASSERT_EQ(cut.Height(), part.bottom - part.top);
      EXPECT_EQ(cut.palette, source.palette);
      EXPECT_TRUE(PaddingIsZero(cut));
      for (int y = 0; y < cut.Height(); ++y)
        for (int x = 0; x < cut.Width(); ++x)
          ASSERT_EQ(StoredPixel(cut, x, y), StoredPixel(source, x + part.left, y + part.top))
              << "format " << format << " at " << x << "," << y << ", seed " << kSeed;
    }
}

TEST(CutOut, Should_BeEmpty_When_ThePartIsEmpty) {
  const Raster cut = CutOut(GradientRaster(pf1bit, 9, 9), {3, 3, 3, 7});
  EXPECT_EQ(cut.Width(), 0);
  EXPECT_EQ(cut.Height(), 4);
}

TEST(CutOut, Should_Throw_When_ThePartReachesBeyondThePicture) {
  const Raster source = GradientRaster(pf8bit, 9, 7);
  EXPECT_THROW(CutOut(source, {-1, 0, 2, 2}), RangeError);
  EXPECT_THROW(CutOut(source, {0, 0, 10, 2}), RangeError);
  EXPECT_THROW(CutOut(source, {0, 0, 2, 8}), RangeError);
  EXPECT_THROW(CutOut(source, {5, 0, 2, 2}), RangeError);
}

}  // namespace
}  // namespace rasterkit::test
