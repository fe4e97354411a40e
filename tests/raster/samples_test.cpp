#include <cstring>

#include <gtest/gtest.h>

#include <rasterkit/raster/pixels.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {
namespace {

PixelLayout LayoutOfNumbers(NumberType type, int bands) {
  PixelLayout layout;
  layout.type = type;
  layout.bits = static_cast<int>(8 * BytesOf(type));
  layout.bands = bands;
  layout.model = ColorModel::other;
  return layout;
}

TEST(SamplesTest, RowsStandOneAfterTheOther) {
  Samples together(LayoutOfNumbers(NumberType::uint16, 3), 5, 4);
  EXPECT_EQ(together.Planes(), 1);
  EXPECT_EQ(together.PixelBytes(), 6u);
  EXPECT_EQ(together.Stride(), 30u);
  EXPECT_EQ(together.Row(3) - together.Row(0), 90);
  Samples planes(LayoutOfNumbers(NumberType::float64, 3), 5, 4, true);
  EXPECT_EQ(planes.Planes(), 3);
  EXPECT_EQ(planes.PixelBytes(), 8u);
  EXPECT_EQ(planes.Row(0, 1) - planes.Row(0), 5 * 8 * 4);
  EXPECT_EQ(planes.Row(3, 2) - planes.Row(0), 5 * 8 * 11);
}

TEST(SamplesTest, ACloneHasItsOwnRows) {
  for (const bool inPlanes : {false, true}) {
    Samples samples(LayoutOfNumbers(NumberType::int8, 2), 3, 2, inPlanes);
    samples.resolution = {72, 96};
    for (int plane = 0; plane < samples.Planes(); ++plane) {
      for (int y = 0; y < 2; ++y) {
        std::memset(samples.Row(y, plane), 10 * plane + y + 1, samples.Stride());
      }
    }
    const Samples copy = samples.Clone();
    std::memset(samples.Row(0), 99, samples.Stride());
    EXPECT_EQ(copy.Planes(), samples.Planes());
    EXPECT_EQ(copy.resolution.y, 96);
    for (int plane = 0; plane < copy.Planes(); ++plane) {
      for (int y = 0; y < 2; ++y) EXPECT_EQ(copy.Row(y, plane)[0], 10 * plane + y + 1);
    }
  }
  EXPECT_EQ(Samples().Clone().Width(), 0);
}

TEST(SamplesTest, MovingEmptiesTheSource) {
  Samples samples(LayoutOfNumbers(NumberType::uint8, 4), 3, 2);
  const uint8_t* rows = samples.Row(0);
  Samples moved(std::move(samples));
  EXPECT_EQ(moved.Row(0), rows);
  EXPECT_EQ(samples.Width(), 0);  // NOLINT(bugprone-use-after-move)
  EXPECT_EQ(samples.Height(), 0);
  moved = Samples();
  EXPECT_EQ(moved.Width(), 0);
}

TEST(SamplesTest, RefusesSizesBeyondTheLimitsAndEmptyOnes) {
  const PixelLayout layout = LayoutOfNumbers(NumberType::float64, 8);
  EXPECT_THROW(Samples(layout, 0, 3), RangeError);
  EXPECT_THROW(Samples(layout, 3, -1), RangeError);
  EXPECT_THROW(Samples(LayoutOfNumbers(NumberType::uint8, 0), 3, 3), RangeError);
  EXPECT_THROW(Samples(layout, 2147483647, 2147483647), LimitError);
  Limits limits;
  limits.pictureBytes = 6399;
  const LimitsScope scope(limits);
  EXPECT_THROW(Samples(layout, 10, 10), LimitError);
  EXPECT_NO_THROW(Samples(layout, 10, 9));
}

TEST(PixelsTest, TheLayoutOfARasterSaysWhatItHolds) {
  const auto layoutOf = [](TPixelFormat format) { return LayoutOf(Raster(format, 2, 2)); };
  EXPECT_EQ(layoutOf(pf1bit).bits, 1);
  EXPECT_EQ(layoutOf(pf1bit).model, ColorModel::gray);
  EXPECT_EQ(layoutOf(pf4bit).model, ColorModel::palette);
  EXPECT_EQ(layoutOf(pf4bit).palette, DefaultPalette(pf4bit));
  EXPECT_EQ(layoutOf(pf8bit).BitsPerPixel(), 8);
  EXPECT_EQ(layoutOf(pf15bit).BitsPerPixel(), 15);
  EXPECT_EQ(layoutOf(pf24bit).BitsPerPixel(), 24);
  EXPECT_EQ(layoutOf(pf24bit).model, ColorModel::rgb);
  EXPECT_EQ(layoutOf(pf32bit).BitsPerPixel(), 32);
  EXPECT_EQ(layoutOf(pf32bit).extraBands, 1);
  EXPECT_EQ(layoutOf(pf32bit).alpha, AlphaKind::none);
}

TEST(PixelsTest, RampsAreGrayAndTheReverseIsWhiteAsZero) {
  for (const auto& [format, count] :
       {std::pair(pf1bit, 2), std::pair(pf4bit, 16), std::pair(pf8bit, 256)}) {
    Raster raster(format, 2, 2);
    raster.palette = GrayPalette(count);
    EXPECT_EQ(LayoutOf(raster.Clone()).model, ColorModel::gray) << count;
    std::vector<tagPALETTEENTRY> entries(raster.palette.Entries().rbegin(),
                                         raster.palette.Entries().rend());
    raster.palette = HPALETTE(entries);
    EXPECT_EQ(LayoutOf(raster.Clone()).model, ColorModel::grayWhiteIsZero) << count;
    entries.back().peGreen ^= 1;
    raster.palette = HPALETTE(entries);
    EXPECT_EQ(LayoutOf(raster.Clone()).model, ColorModel::palette) << count;
  }
}

TEST(PixelsTest, TransparencyAndProfilesArePartOfTheLayout) {
  Raster raster(pf32bit, 2, 2);
  raster.transparentColor = clWhite;
  raster.profile = std::make_shared<std::vector<uint8_t>>(3);
  EXPECT_EQ(LayoutOf(raster.Clone()).alpha, AlphaKind::transparentColor);
  raster.alphaFormat = afDefined;
  EXPECT_EQ(LayoutOf(raster.Clone()).alpha, AlphaKind::straight);
  EXPECT_EQ(LayoutOf(raster.Clone()).profile, raster.profile);
  Samples samples(LayoutOfNumbers(NumberType::int32, 2), 2, 2);
  EXPECT_EQ(LayoutOf(std::move(samples)).type, NumberType::int32);
}

}  // namespace
}  // namespace rasterkit
