// Frames as pictures to look at.

#include <cmath>
#include <cstring>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/decode_frame.h>
#include <rasterkit/codecs/rows/stretch_numbers.h>

#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

template <class Number>
ImagingFrame Grid(WICPixelFormat format, int width, const std::vector<Number>& numbers) {
  const int height = static_cast<int>(numbers.size()) / width;
  ImagingFrame frame{format, Raster(sizeof(Number) == 2 ? pf16bit : pf32bit, width, height)};
  frame.rows.resolution = {100, 200};
  for (int y = 0; y < height; y++)
    std::memcpy(frame.rows.Row(y), numbers.data() + y * width,
                static_cast<size_t>(width) * sizeof(Number));
  return frame;
}

std::vector<int> Values(const Raster& raster) {
  std::vector<int> values;
  for (int y = 0; y < raster.Height(); y++)
    values.insert(values.end(), raster.Row(y), raster.Row(y) + raster.Width());
  return values;
}

void ExpectGrays(const Raster& raster) {
  EXPECT_EQ(raster.Format(), pf8bit);
  EXPECT_TRUE(IsGrayRamp(raster.palette));
  EXPECT_TRUE(PaddingIsZero(raster));
  EXPECT_EQ(raster.resolution, (Resolution{100, 200}));
}

TEST(FramePicture, Should_GoByTheirRange_When_WordsAreUnsigned) {
  std::vector<uint16_t> words;
  for (int i = 0; i <= 65535; i++) words.push_back(static_cast<uint16_t>(i));
  CodecReport report;
  const Raster raster = PictureOfFrame(Grid(GUID_WICPixelFormat16bppGray, 128, words), &report);
  ExpectGrays(raster);
  const std::vector<int> values = Values(raster);
  for (int i = 0; i <= 65535; i++) ASSERT_EQ(values[static_cast<size_t>(i)], (i + 128) / 257) << i;
  EXPECT_THAT(report.warnings, IsEmpty());
}

TEST(FramePicture, Should_GoFromLeastToGreatest_When_WordsAreSigned) {
  CodecReport report;
  const Raster raster = PictureOfFrame(
      Grid<int16_t>(GUID_WICPixelFormat16bppGrayFixedPoint, 5, {-300, 210, 0, -299, -298}),
      &report);
  ExpectGrays(raster);
  EXPECT_THAT(Values(raster), ElementsAre(0, 255, 150, 1, 1));
  EXPECT_THAT(report.warnings, ElementsAre(HasSubstr("from -300 to 210")));
}

TEST(FramePicture, Should_GoFromLeastToGreatest_When_Halves) {
  // 1, 2, 1.5, infinity, minus infinity, no number.
  const Raster raster = PictureOfFrame(Grid<uint16_t>(
      GUID_WICPixelFormat16bppGrayHalf, 6, {0x3C00, 0x4000, 0x3E00, 0x7C00, 0xFC00, 0x7E00}));
  ExpectGrays(raster);
  EXPECT_THAT(Values(raster), ElementsAre(0, 255, 128, 255, 0, 255));
}

TEST(FramePicture, Should_GoFromLeastToGreatest_When_Floats) {
  constexpr float kMost = std::numeric_limits<float>::max();
  constexpr float kNone = std::numeric_limits<float>::quiet_NaN();
  CodecReport report;
  Raster raster = PictureOfFrame(
      Grid<float>(GUID_WICPixelFormat32bppGrayFloat, 3, {-kMost, kMost, 0, kNone, 1, -1}), &report);
  ExpectGrays(raster);
  EXPECT_THAT(Values(raster), ElementsAre(0, 255, 128, 255, 128, 128));
  EXPECT_EQ(report.warnings.size(), 1u);
  raster = PictureOfFrame(Grid<float>(GUID_WICPixelFormat32bppGrayFloat, 2, {7, 7, kNone, 7}));
  EXPECT_THAT(Values(raster), ElementsAre(0, 0, 255, 0));
  report = {};
  raster =
      PictureOfFrame(Grid<float>(GUID_WICPixelFormat32bppGrayFloat, 1, {kNone, kNone}), &report);
  EXPECT_THAT(Values(raster), ElementsAre(255, 255));
  EXPECT_THAT(report.warnings, ElementsAre(HasSubstr("no number")));
}

TEST(StretchNumbers, Should_BeBlack_When_TheSpanIsTooTinyForADouble) {
  const double numbers[] = {0, std::numeric_limits<double>::denorm_min(), 0};
  Raster raster(pf32bit, 3, 1);
  const detail::NumberRange range = detail::StretchNumbers(numbers, raster);
  EXPECT_EQ(range.greatest, numbers[1]);
  EXPECT_THAT(Values(raster), ElementsAre(0, 0, 0));
}

TEST(FramePicture, Should_HaveARamp_When_Gray) {
  const std::pair<WICPixelFormat, TPixelFormat> cases[] = {{GUID_WICPixelFormatBlackWhite, pf1bit},
                                                           {GUID_WICPixelFormat4bppGray, pf4bit},
                                                           {GUID_WICPixelFormat8bppGray, pf8bit}};
  for (const auto& [format, stored] : cases) {
    Raster rows = GradientRaster(stored, 19, 7);
    Raster expected = rows.Clone();
    expected.palette = GrayPalette(1 << StoredBitsPerPixel(stored));
    rows.palette = HPALETTE();
    EXPECT_TRUE(SamePixels(expected, PictureOfFrame({format, std::move(rows)})));
  }
}

TEST(FramePicture, Should_StayAsItIs_When_ItIsAPicture) {
  const std::pair<WICPixelFormat, TPixelFormat> cases[] = {
      {GUID_WICPixelFormat1bppIndexed, pf1bit},  {GUID_WICPixelFormat4bppIndexed, pf4bit},
      {GUID_WICPixelFormat8bppIndexed, pf8bit},  {GUID_WICPixelFormat24bppBGR, pf24bit},
      {GUID_WICPixelFormat32bppBGR, pf32bit},    {GUID_WICPixelFormat32bppBGRA, pf32bit},
      {GUID_WICPixelFormat16bppBGR555, pf15bit}, {GUID_WICPixelFormat16bppBGR565, pf16bit}};
  std::mt19937 random(3);
  for (const auto& [format, stored] : cases) {
    SCOPED_TRACE(format);
    Raster rows = RandomRaster(stored, 19, 7, random);
    const Raster expected = rows.Clone();
    EXPECT_TRUE(SamePixels(expected, PictureOfFrame({format, std::move(rows)})));
  }
}

TEST(FramePicture, Should_ExchangeRedAndBlue_When_Rgb) {
  std::mt19937 random(4);
  Raster rows = RandomRaster(pf24bit, 19, 7, random);
  const Raster before = rows.Clone();
  const Raster raster = PictureOfFrame({GUID_WICPixelFormat24bppRGB, std::move(rows)});
  EXPECT_TRUE(PaddingIsZero(raster));
  for (int y = 0; y < 7; y++)
    for (int x = 0; x < 19 * 3; x++)
      ASSERT_EQ(raster.Row(y)[x], before.Row(y)[x - x % 3 + 2 - x % 3]);
}

TEST(FramePicture, Should_Be15Bit_When_ItsWordsAre) {
  std::mt19937 random(5);
  Raster rows = RandomRaster(pf16bit, 19, 7, random);
  const Raster before = rows.Clone();
  const Raster raster = PictureOfFrame({GUID_WICPixelFormat16bppBGR555, std::move(rows)});
  EXPECT_EQ(raster.Format(), pf15bit);
  for (int y = 0; y < 7; y++)
    EXPECT_EQ(std::memcmp(raster.Row(y), before.Row(y), before.Stride()), 0);
}

}  // namespace
}  // namespace rasterkit::test
