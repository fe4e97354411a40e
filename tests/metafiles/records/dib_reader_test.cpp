#include <gtest/gtest.h>

#include <rasterkit/codecs/jpeg/jpeg_encoder.h>
#include <rasterkit/codecs/png/png_encoder.h>
#include <rasterkit/metafiles/records/dib_reader.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/stream.h>

#include "tests/support/memory_limit.h"
#include "tests/support/packed_dib.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

using namespace detail;

Dib ReadPacked(const std::vector<uint8_t>& bytes, const DibRequest& request = {}) {
  return DibReader(bytes.size()).Read(SplitPackedDib(bytes, request.colors), request);
}

Dib ReadPacked(const BmpFile& file, const DibRequest& request = {}) {
  return ReadPacked(PackedDib(file), request);
}

/// 4 x 1 pixels with the indexes 0 to 3 in an 8-bit bitmap.
BmpFile FourIndexes() {
  BmpFile file;
  file.width = 4;
  file.bits = 8;
  file.pixels = {0, 1, 2, 3};
  return file;
}

TEST(DibReader, Should_ReadTrueColor) {
  const Dib dib = ReadPacked(SixColors());
  EXPECT_EQ(dib.raster.Format(), pf24bit);
  EXPECT_FALSE(dib.isTopDown);
  EXPECT_EQ(dib.raster.PixelColor(0, 0), 0x0000FF);
  EXPECT_EQ(dib.raster.PixelColor(2, 0), 0xFF0000);
  EXPECT_EQ(dib.raster.PixelColor(2, 1), 0x808080);
}

TEST(DibReader, Should_TellTopDownRows) {
  BmpFile file = SixColors();
  file.height = -2;
  const Dib dib = ReadPacked(file);
  EXPECT_TRUE(dib.isTopDown);
  EXPECT_EQ(dib.raster.PixelColor(0, 1), 0x0000FF);
}

TEST(DibReader, Should_ReadTheTableOfColors) {
  for (const bool isCore : {false, true}) {
    BmpFile file = FourIndexes();
    if (isCore) file.headerBytes = 12;
    file.palette.assign(256, 0x445566);
    file.palette[1] = 0x010203;
    const Dib dib = ReadPacked(file);
    EXPECT_EQ(dib.raster.palette.Count(), 256);
    EXPECT_EQ(dib.raster.PixelColor(1, 0), 0x030201) << isCore;
    EXPECT_EQ(dib.raster.PixelColor(3, 0), 0x665544) << isCore;
  }
}

TEST(DibReader, Should_ReadAShortTable) {
  BmpFile file = FourIndexes();
  file.colorsUsed = 3;
  file.palette = {0x111111, 0x222222, 0x333333};
  const Dib dib = ReadPacked(file);
  EXPECT_EQ(dib.raster.palette.Count(), 3);
  EXPECT_EQ(dib.raster.PixelColor(2, 0), 0x333333);
  EXPECT_EQ(dib.raster.PixelColor(3, 0), clBlack);
}

TEST(DibReader, Should_TakeTheEntriesThatAreThere_When_ATableIsCutOff) {
  BmpFile file = FourIndexes();
  file.palette = {0x111111, 0x222222};
  const std::vector<uint8_t> bytes = PackedDib(file);
  const std::span<const uint8_t> all(bytes);
  for (const auto& [headBytes, entries] : {std::pair<size_t, int>(48, 2), {47, 1}, {44, 1}}) {
    const DibParts parts{all.first(headBytes), all.subspan(48)};
    const Raster raster = DibReader(1000).Read(parts, {}).raster;
    EXPECT_EQ(raster.palette.Count(), entries) << headBytes;
    EXPECT_EQ(raster.PixelColor(0, 0), 0x111111) << headBytes;
    EXPECT_EQ(raster.PixelColor(3, 0), clBlack) << headBytes;
  }
}

TEST(DibReader, Should_BeBlack_When_ThereIsNoTableAtAll) {
  const std::vector<uint8_t> bytes = PackedDib(FourIndexes());
  const std::span<const uint8_t> all(bytes);
  const Raster raster = DibReader(1000).Read({all.first(40), all.subspan(40)}, {}).raster;
  EXPECT_EQ(raster.Width(), 4);
  for (int x = 0; x < 4; ++x) EXPECT_EQ(raster.PixelColor(x, 0), clBlack);
}

TEST(DibReader, Should_Refuse_When_MasksAreCutOff) {
  BmpFile file;
  file.width = 2;
  file.bits = 16;
  file.compression = 3;
  file.masks = {0xF800, 0x07E0, 0x001F};
  file.pixels = {0, 0, 0, 0};
  const std::vector<uint8_t> bytes = PackedDib(file);
  const std::span<const uint8_t> all(bytes);
  for (size_t headBytes = 0; headBytes < 52; ++headBytes) {
    EXPECT_THROW(DibReader(1000).Read({all.first(headBytes), all.subspan(52)}, {}), FormatError)
        << headBytes;
  }
  EXPECT_NO_THROW(DibReader(1000).Read({all.first(52), all.subspan(52)}, {}));
}

TEST(DibReader, Should_ReadSomeRows_When_TheBitmapRunsDownward) {
  BmpFile file = SixColors();
  file.height = -500;
  DibRequest request;
  request.rows = 2;
  const Dib dib = ReadPacked(file, request);
  EXPECT_TRUE(dib.isTopDown);
  ASSERT_EQ(dib.raster.Height(), 2);
  EXPECT_EQ(dib.raster.PixelColor(0, 1), 0x0000FF);
  EXPECT_EQ(dib.raster.PixelColor(0, 0), clWhite);
}

TEST(DibReader, Should_Refuse_When_SomeRowsAreNoneOrTooMany) {
  for (const int32_t height : {2, -2}) {
    for (const uint32_t rows : {0u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
      BmpFile file = SixColors();
      file.height = height;
      DibRequest request;
      request.rows = rows;
      EXPECT_THROW(ReadPacked(file, request), Error) << height << ", " << rows;
    }
  }
}

TEST(DibReader, Should_Refuse_When_ASideIsImpossible) {
  for (const auto& [width, height] :
       {std::pair(0, 2), {-3, 2}, {INT32_MIN, 2}, {3, 0}, {3, INT32_MIN}, {INT32_MAX, INT32_MAX}}) {
    BmpFile file = SixColors();
    file.width = width;
    file.height = height;
    EXPECT_THROW(ReadPacked(file), Error) << width << " x " << height;
  }
}

TEST(DibReader, Should_ReadASmallBitmap_When_ItsBytesAreAlmostNone) {
  BmpFile file = FourIndexes();
  file.width = 4096;
  file.height = 16;
  file.compression = 1;
  file.palette.assign(256, 0x445566);
  file.pixels = {0, 1};  // the runs end at once
  const Raster raster = ReadPacked(file).raster;
  EXPECT_EQ(raster.Width(), 4096);
  EXPECT_EQ(raster.PixelColor(4095, 15), 0x665544);
}

TEST(DibReader, Should_SkipTheTableOfATrueColorBitmap) {
  BmpFile file = SixColors();
  file.colorsUsed = 2;
  file.palette = {0x111111, 0x222222};
  EXPECT_EQ(ReadPacked(file).raster.PixelColor(0, 0), 0x0000FF);
}

TEST(DibReader, Should_LookUpIndexes_When_TheTableHoldsSuch) {
  BmpFile file = FourIndexes();
  file.colorsUsed = 4;
  std::vector<uint8_t> bytes = PackedDib(file);
  const uint8_t table[] = {2, 0, 1, 0, 0, 0, 9, 0};  // 16-bit indexes
  bytes.insert(bytes.begin() + 40, std::begin(table), std::end(table));
  const tagPALETTEENTRY entries[] = {{10, 0, 0, 0}, {20, 0, 0, 0}, {30, 0, 0, 0}};
  DibRequest request{DibColors::paletteIndexes, HPALETTE(entries), false, {}};
  const Raster raster = ReadPacked(bytes, request).raster;
  EXPECT_EQ(raster.PixelColor(0, 0), 30);
  EXPECT_EQ(raster.PixelColor(1, 0), 20);
  EXPECT_EQ(raster.PixelColor(2, 0), 10);
  EXPECT_EQ(raster.PixelColor(3, 0), clBlack) << "an index beyond the palette";
  request.palette = {};
  EXPECT_EQ(ReadPacked(bytes, request).raster.PixelColor(1, 0),
            EntryColor(DefaultPalette(pf8bit).Entry(1)));
}

TEST(DibReader, Should_TakeThePalette_When_ThereIsNoTable) {
  const tagPALETTEENTRY entries[] = {{1, 2, 3, 0}, {4, 5, 6, 0}};
  const DibRequest request{DibColors::noTable, HPALETTE(entries), false, {}};
  EXPECT_EQ(ReadPacked(FourIndexes(), request).raster.PixelColor(1, 0), 0x060504);
}

TEST(DibReader, Should_ReadMasks_When_TheyFollowTheHeader) {
  BmpFile file;
  file.width = 2;
  file.bits = 16;
  file.compression = 3;
  file.masks = {0xF800, 0x07E0, 0x001F};
  file.pixels = {0x00, 0xF8, 0x1F, 0x00};
  const Dib dib = ReadPacked(file);
  EXPECT_EQ(dib.raster.PixelColor(0, 0), 0x0000FF) << "full scale, as in every 16-bit picture";
  EXPECT_EQ(dib.raster.PixelColor(1, 0), 0xFF0000);
}

TEST(DibReader, Should_Unpack_When_RunLengths) {
  BmpFile file;
  file.width = 3;
  file.bits = 8;
  file.compression = 1;
  file.colorsUsed = 2;
  file.palette = {0x000000, 0xABCDEF};
  file.pixels = {3, 1, 0, 1};
  EXPECT_EQ(ReadPacked(file).raster.PixelColor(2, 0), 0xEFCDAB);
}

BmpFile Embedded(uint32_t compression, std::vector<uint8_t> bytes) {
  BmpFile file;
  file.width = 5;
  file.height = 3;
  file.bits = 0;
  file.compression = compression;
  file.pixels = std::move(bytes);
  return file;
}

TEST(DibReader, Should_ReadPngAndJpegInside) {
  const Raster picture = GradientRaster(pf24bit, 5, 3);
  TMemoryStream png;
  EncodePng(picture, png);
  EXPECT_TRUE(SamePixels(picture, ReadPacked(Embedded(5, png.TakeBytes())).raster));
  const Dib jpeg = ReadPacked(Embedded(4, EncodeJpeg(picture, 90)));
  EXPECT_EQ(jpeg.raster.Width(), 5);
  EXPECT_EQ(jpeg.raster.Height(), 3);
}

BmpFile OnePixel32(uint8_t alpha) {
  BmpFile file;
  file.bits = 32;
  file.pixels = {1, 2, 3, alpha};
  return file;
}

TEST(DibReader, Should_KeepAlpha_When_AskedTo) {
  DibRequest request;
  EXPECT_EQ(ReadPacked(OnePixel32(77), request).raster.Row(0)[3], 255);
  request.keepsAlpha = true;
  for (const uint32_t headerBytes : {40u, 108u, 124u}) {
    BmpFile file = OnePixel32(77);
    file.headerBytes = headerBytes;
    EXPECT_EQ(ReadPacked(file, request).raster.Row(0)[3], 77) << headerBytes;
    file.pixels[3] = 0;
    EXPECT_EQ(ReadPacked(file, request).raster.Row(0)[3], 0) << headerBytes;
  }
}

TEST(DibReader, Should_KeepAlpha_When_MasksSayWhatHoldsWithoutThem) {
  DibRequest request;
  request.keepsAlpha = true;
  BmpFile file = OnePixel32(77);
  file.compression = 3;
  file.masks = {0xFF0000, 0xFF00, 0xFF};
  EXPECT_EQ(ReadPacked(file, request).raster.Row(0)[3], 77);
  file.pixels[3] = 0;
  EXPECT_EQ(ReadPacked(file, request).raster.Row(0)[3], 0);
  file.masks = {0xFF, 0xFF00, 0xFF0000};
  EXPECT_EQ(ReadPacked(file, request).raster.Row(0)[3], 255);
}

TEST(DibReader, Should_ReadTheRowsThatAreThere_When_OnlySomeAre) {
  BmpFile file = SixColors();
  file.pixels.resize(12);
  DibRequest request;
  request.rows = 1;
  const Raster raster = ReadPacked(file, request).raster;
  EXPECT_EQ(raster.Height(), 1);
  EXPECT_EQ(raster.PixelColor(0, 0), clWhite);
  request.rows = 0;
  EXPECT_THROW(ReadPacked(file, request), FormatError);
}

TEST(DibReader, Should_Refuse_When_HeadOrTableIsCutOff) {
  BmpFile file = FourIndexes();
  file.palette.assign(256, 0);
  const std::vector<uint8_t> bytes = PackedDib(file);
  for (size_t count = 0; count < 40 + 4 * 256; ++count) {
    const auto cut = std::span(bytes).first(count);
    EXPECT_THROW(SplitPackedDib(cut, DibColors::colors), FormatError) << count;
  }
  // The header is complete, but not a single row is.
  const std::vector<uint8_t> head(bytes.begin(), bytes.begin() + 40 + 4 * 256);
  EXPECT_THROW(ReadPacked(head), FormatError);
}

TEST(DibReader, Should_Refuse_When_SizeIsNotAccountedFor) {
  BmpFile file = SixColors();
  file.height = 0x7FFFFFF;
  EXPECT_THROW(ReadPacked(file), LimitError);
  file.width = INT32_MAX;
  file.height = INT32_MIN;
  EXPECT_THROW(ReadPacked(file), LimitError);
  for (const int32_t width : {0, -1, INT32_MIN}) {
    file = SixColors();
    file.width = width;
    EXPECT_THROW(ReadPacked(file), FormatError) << width;
  }
  TMemoryStream png;
  EncodePng(GradientRaster(pf24bit, 5, 3), png);
  std::vector<uint8_t> bytes = png.TakeBytes();
  bytes[16] = bytes[20] = 1;  // 16 million pixels in each direction
  EXPECT_THROW(ReadPacked(Embedded(5, bytes)), LimitError);
}

TEST(DibReader, Should_EndAtSomeTime_When_EachOfManyBitmapsIsLarge) {
  BmpFile file;
  file.width = 4096;
  file.height = 4096;
  file.bits = 1;
  file.palette = {0, 0xFFFFFF};
  file.pixels.resize(512);
  const std::vector<uint8_t> bytes = PackedDib(file);
  DibReader reader(bytes.size());
  const auto readMany = [&] {
    for (int i = 0; i < 100; ++i) reader.Read(SplitPackedDib(bytes, DibColors::colors), {});
  };
  EXPECT_THROW(readMany(), LimitError);
}

TEST(DibReader, Should_KeepToThePictureMemory) {
  const MemoryLimit limit(64);
  EXPECT_THROW(ReadPacked(FourIndexes()), FormatError);  // the color table is missing
  BmpFile file = SixColors();
  file.pixels.resize(100);
  EXPECT_THROW(ReadPacked(file), LimitError);
}

}  // namespace
}  // namespace rasterkit::test
