#include <algorithm>
#include <random>
#include <stop_token>

#include <gtest/gtest.h>

#include <rasterkit/codecs/picture_io.h>
#include <rasterkit/codecs/png/png_picture.h>
#include <rasterkit/raster/palette.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

#include "tests/codecs/png/made_png.h"
#include "tests/support/same_pixels.h"

namespace rasterkit::test {
namespace {

ByteList Whole(const Pixels& pixels, const PictureWriting& writing) {
  TMemoryStream stream;
  WritePng(pixels, writing, stream);
  return stream.TakeBytes();
}

/// The rows of a picture from `top` on.
Pixels RowsOf(const Pixels& pixels, int top, int count) {
  Pixels rows = NewPixels(pixels, WidthOf(pixels), count);
  std::visit(
      [&](auto& target) {
        const auto& source = std::get<std::decay_t<decltype(target)>>(pixels);
        for (int y = 0; y < count; y++) {
          std::copy_n(source.Row(top + y), source.Stride(), target.Row(y));
        }
      },
      rows);
  return rows;
}

/// Writes in bands of so many rows. Nothing if there is no writer for such pixels.
std::optional<ByteList> InBands(const Pixels& pixels, const PictureWriting& writing, int step) {
  TMemoryStream stream;
  const int height = HeightOf(pixels);
  const Pixels like = NewPixels(pixels, 1, 1);
  const auto writer = OpenPngWriter(like, {WidthOf(pixels), height}, writing, stream);
  if (!writer) return std::nullopt;
  for (int y = 0; y < height; y += step) {
    Pixels band = RowsOf(pixels, y, std::min(step, height - y));
    writer->Write(band);
  }
  writer->Finish();
  return stream.TakeBytes();
}

Raster RandomRaster(TPixelFormat format, int width, int height, std::mt19937& random) {
  Raster raster(format, width, height);
  for (int y = 0; y < height; y++) {
    for (size_t i = 0; i < raster.RowBytes(); i++) {
      raster.Row(y)[i] = static_cast<uint8_t>(random() % 40 + (i + static_cast<size_t>(y)) / 3);
    }
  }
  raster.ClearPadding();
  return raster;
}

TEST(PngRowWriterTest, BandsGiveTheBytesOfTheWhole) {
  std::mt19937 random(30);
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf15bit, pf16bit, pf24bit, pf32bit}) {
    for (const int colorType : {-1, 0, 2, 3, 4, 6}) {
      Raster raster = RandomRaster(format, 37, 90, random);
      if (format == pf32bit && colorType % 2 == 0) raster.alphaFormat = afDefined;
      if (colorType == 2) raster.transparentColor = RGB(1, 2, 3);
      PictureWriting writing;
      if (colorType >= 0) writing.form = PngForm{8, colorType, false};
      writing.pngLevel = colorType < 0 ? std::nullopt : std::optional(2 * colorType);
      const Pixels pixels(std::move(raster));
      const ByteList whole = Whole(pixels, writing);
      for (const int step : {1, 7, 64, 90}) {
        const auto bands = InBands(pixels, writing, step);
        if (bands) {
          EXPECT_TRUE(whole == *bands) << format << ", " << colorType << ", " << step;
        }
        EXPECT_TRUE(bands || colorType >= 0) << format;
      }
    }
  }
}

TEST(PngRowWriterTest, APaletteFollowsTheIndexesOfAllBands) {
  std::mt19937 random(31);
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit}) {
    for (const int entries : {1, 2, 7, 16, 200}) {
      Raster raster = RandomRaster(format, 41, 50, random);
      std::vector<tagPALETTEENTRY> colors;
      for (int i = 0; i < entries; i++) colors.push_back({static_cast<uint8_t>(i), 7, 9, 0});
      raster.palette = HPALETTE(colors);
      const Pixels pixels(std::move(raster));
      const ByteList whole = Whole(pixels, {});
      for (const int step : {1, 7, 64}) {
        const auto bands = InBands(pixels, {}, step);
        ASSERT_TRUE(bands.has_value());
        EXPECT_TRUE(whole == *bands) << format << ", " << entries << ", " << step;
      }
    }
  }
}

TEST(PngRowWriterTest, EveryLevelKeepsThePixels) {
  std::mt19937 random(32);
  const Pixels pixels(RandomRaster(pf24bit, 150, 100, random));
  size_t largest = 0, smallest = SIZE_MAX;
  for (int level = 0; level <= 12; level++) {
    PictureWriting writing;
    writing.pngLevel = level;
    const ByteList file = Whole(pixels, writing);
    EXPECT_TRUE(SamePixels(std::get<Raster>(pixels), std::get<Raster>(DecodePngPixels(file))));
    largest = std::max(largest, file.size());
    smallest = std::min(smallest, file.size());
  }
  EXPECT_GT(largest, size_t{45000});
  EXPECT_LT(smallest, size_t{40000});
}

/// More than 64 MiB of rows.
Pixels LargePicture() {
  Raster raster(pf8bit, 8192, 8300);
  for (int y = 0; y < raster.Height(); y++) {
    for (int x = 0; x < raster.Width(); x++) {
      raster.Row(y)[x] = static_cast<uint8_t>((x * y) >> 9 ^ (x * 37) % 11);
    }
  }
  raster.palette = GrayPalette(256);
  return raster;
}

TEST(PngRowWriterTest, LargePicturesHaveTheSameBytesForEveryBandAndNumberOfThreads) {
  const Pixels pixels = LargePicture();
  PictureWriting writing;
  writing.pngLevel = 1;
  const ByteList whole = Whole(pixels, writing);
  {
    const Pixels back = DecodePngPixels(whole);
    EXPECT_TRUE(SamePixels(std::get<Raster>(pixels), std::get<Raster>(back)));
  }
  for (const int threads : {2, 7}) {
    writing.threads = threads;
    EXPECT_TRUE(whole == Whole(pixels, writing)) << threads;
  }
  for (const int step : {7, 64}) {
    const auto bands = InBands(pixels, writing, step);
    ASSERT_TRUE(bands.has_value());
    EXPECT_TRUE(whole == *bands) << step;
  }
}

/// The packer works for a second or more. Were the call to wait for it, packed pixels would be
/// written before the next look at the time.
TEST(PngRowWriterTest, CancelingDoesNotWaitForThePacker) {
  Raster noise(pf24bit, 1000, 750);
  std::minstd_rand random(5);
  for (int y = 0; y < 750; y++) {
    for (int i = 0; i < 3000; i++) noise.Row(y)[i] = static_cast<uint8_t>(random() >> 12 & 31);
  }
  const Pixels pixels(std::move(noise));
  PictureWriting writing;
  writing.pngLevel = 12;
  std::stop_source source;
  bool isPacking = false;
  const LimitsScope scope(Limits(), source.get_token(), [&] {
    if (isPacking) source.request_stop();
  });
  TMemoryStream stream;
  const auto writer = OpenPngWriter(NewPixels(pixels, 1, 1), {1000, 750}, writing, stream);
  ASSERT_TRUE(writer);
  Pixels rows = RowsOf(pixels, 0, 750);
  writer->Write(rows);
  isPacking = true;
  EXPECT_THROW(writer->Finish(), CanceledError);
  EXPECT_LT(stream.Size(), 1000u);
}

TEST(PngRowWriterTest, RowsMustBeComplete) {
  std::mt19937 random(33);
  TMemoryStream stream;
  const Pixels pixels(RandomRaster(pf24bit, 10, 10, random));
  const auto writer = OpenPngWriter(pixels, {10, 10}, {}, stream);
  ASSERT_NE(writer, nullptr);
  Pixels rows = RowsOf(pixels, 0, 6);
  writer->Write(rows);
  EXPECT_THROW(writer->Finish(), RangeError);
  EXPECT_THROW(writer->Write(rows), RangeError);
  EXPECT_THROW(OpenPngWriter(pixels, {0, 10}, {}, stream), FormatError);
}

TEST(PngRowWriterTest, InterlacedFilesAreWrittenAsAWhole) {
  std::mt19937 random(34);
  TMemoryStream stream;
  PictureWriting writing;
  writing.form = PngForm{8, 2, true};
  const Pixels pixels(RandomRaster(pf24bit, 10, 10, random));
  EXPECT_EQ(OpenPngWriter(pixels, {10, 10}, writing, stream), nullptr);
}

}  // namespace
}  // namespace rasterkit::test
