#include <array>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/decode_frame.h>
#include <rasterkit/codecs/gif/gif_decoder.h>
#include <rasterkit/codecs/picture_type.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/gif_file.h"
#include "tests/support/same_pixels.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

Raster Decode(const GifFile& file, CodecReport* report = nullptr) {
  return DecodeGif(file.Bytes(), report);
}

/// The picture stands at its place; `around` is the index of everything else.
void ExpectPicture(const GifPicture& picture, const Raster& raster, int around = -1) {
  int different = 0;
  for (int y = 0; y < raster.Height(); y++) {
    for (int x = 0; x < raster.Width(); x++) {
      const int inX = x - picture.left, inY = y - picture.top;
      const bool isInside = inX >= 0 && inX < picture.width && inY >= 0 && inY < picture.height;
      const int expected = isInside ? picture.At(inX, inY) : around;
      if (raster.Row(y)[x] != expected && different++ < 5)
        ADD_FAILURE() << x << ", " << y << ": " << int{raster.Row(y)[x]} << ", not " << expected;
    }
  }
  EXPECT_EQ(different, 0);
}

struct Size {
  uint16_t width, height;
};
constexpr Size kOddSizes[] = {{1, 1}, {1, 9}, {9, 1}, {19, 7}, {67, 70}, {301, 203}};

TEST(GifDecoder, Should_GiveIndexesAndPalette_When_SizesAreOdd) {
  for (const Size size : kOddSizes) {
    for (const int bits : {1, 2, 3, 4, 7, 8}) {
      SCOPED_TRACE(testing::Message() << size.width << " x " << size.height << ", " << bits);
      const GifFile file = PlainGif(size.width, size.height, bits);
      CodecReport report;
      const Raster raster = Decode(file, &report);
      EXPECT_EQ(raster.Format(), pf8bit);
      EXPECT_EQ(raster.Width(), size.width);
      EXPECT_EQ(raster.Height(), size.height);
      EXPECT_EQ(raster.palette, file.palette);
      EXPECT_EQ(raster.transparentColor, std::nullopt);
      EXPECT_THAT(report.warnings, IsEmpty());
      EXPECT_TRUE(PaddingIsZero(raster));
      ExpectPicture(file.pictures[0], raster);
    }
  }
}

TEST(GifDecoder, Should_PutRowsInOrder_When_Interlaced) {
  for (uint16_t height = 1; height <= 35; height++) {
    SCOPED_TRACE(height);
    GifFile file = PlainGif(13, height);
    file.pictures[0].interlaced = true;
    ExpectPicture(file.pictures[0], Decode(file));
  }
}

TEST(GifDecoder, Should_TakeThePicturesOwnPalette_When_ItHasOne) {
  GifFile file = PlainGif(9, 5, 4);
  file.pictures[0].palette = GrayPalette(16);
  EXPECT_EQ(Decode(file).palette, GrayPalette(16));
  file.palette = HPALETTE();
  EXPECT_EQ(Decode(file).palette, GrayPalette(16));
}

TEST(GifDecoder, Should_TakeGrays_When_ThereIsNoPalette) {
  GifFile file = PlainGif(9, 5);
  file.palette = HPALETTE();
  CodecReport report;
  const Raster raster = Decode(file, &report);
  EXPECT_TRUE(IsGrayRamp(raster.palette));
  EXPECT_THAT(report.warnings, ElementsAre(HasSubstr("no palette")));
  ExpectPicture(file.pictures[0], raster);
}

TEST(GifDecoder, Should_ShowBlack_When_AnIndexLiesBeyondThePalette) {
  GifFile file = PlainGif(9, 5, 2);
  file.pictures[0].bits = 8;
  file.pictures[0].indexes[4] = 200;
  const Raster raster = Decode(file);
  EXPECT_EQ(raster.Row(0)[4], 200);
  EXPECT_EQ(raster.PixelColor(4, 0), clBlack);
}

TEST(GifDecoder, Should_NameTheTransparentColor_When_TheFileHasOne) {
  GifFile file = PlainGif(9, 5, 3);
  file.pictures[0].transparent = 6;
  EXPECT_EQ(Decode(file).transparentColor, EntryColor(file.palette.Entry(6)));
  file.pictures[0].transparent = 8;
  EXPECT_EQ(Decode(file).transparentColor, std::nullopt) << "beyond the palette";
}

TEST(GifDecoder, Should_Warn_When_OpaquePixelsHaveTheTransparentColor) {
  GifFile file = PlainGif(9, 5, 2);
  const tagPALETTEENTRY white{255, 255, 255, 0};
  file.palette = HPALETTE(std::array{tagPALETTEENTRY{}, white, tagPALETTEENTRY{}, white});
  file.pictures[0].transparent = 3;
  CodecReport report;
  EXPECT_EQ(Decode(file, &report).transparentColor, clWhite);
  EXPECT_THAT(report.warnings, ElementsAre(HasSubstr("opaque pixels of the transparent color")));
  report = {};
  std::fill(file.pictures[0].indexes.begin(), file.pictures[0].indexes.end(), uint8_t{3});
  Decode(file, &report);
  EXPECT_THAT(report.warnings, IsEmpty());
}

TEST(GifDecoder, Should_TakeTheFirstPictureOnly_When_ThereAreMore) {
  GifFile file = PlainGif(19, 7);
  GifPicture second = file.pictures[0];
  second.transparent = 1;
  second.palette = GrayPalette(256);
  std::fill(second.indexes.begin(), second.indexes.end(), uint8_t{9});
  file.pictures.push_back(second);
  CodecReport report;
  const Raster raster = Decode(file, &report);
  ExpectPicture(file.pictures[0], raster);
  EXPECT_EQ(raster.palette, file.palette);
  EXPECT_EQ(raster.transparentColor, std::nullopt);
  EXPECT_THAT(report.warnings, IsEmpty());
}

GifFile InsetGif() {
  GifFile file = PlainGif(9, 5, 4);
  file.screenWidth = 23;
  file.screenHeight = 17;
  file.pictures[0].left = 6;
  file.pictures[0].top = 4;
  file.background = 11;
  return file;
}

TEST(GifDecoder, Should_ShowTheBackgroundAround_When_TheScreenIsLarger) {
  const GifFile file = InsetGif();
  const Raster raster = Decode(file);
  EXPECT_EQ(raster.Width(), 23);
  EXPECT_EQ(raster.Height(), 17);
  EXPECT_TRUE(PaddingIsZero(raster));
  ExpectPicture(file.pictures[0], raster, 11);
}

TEST(GifDecoder, Should_BeTransparentAround_When_ThePictureHasATransparentEntry) {
  GifFile file = InsetGif();
  file.pictures[0].transparent = 3;
  ExpectPicture(file.pictures[0], Decode(file), 3);
}

TEST(GifDecoder, Should_ShowTheNearestColorAround_When_ThePictureHasItsOwnPalette) {
  GifFile file = InsetGif();
  file.pictures[0].palette = GrayPalette(16);
  const int nearest =
      NearestEntry(GrayPalette(16).Entries(), EntryColor(file.palette.Entry(file.background)));
  ExpectPicture(file.pictures[0], Decode(file), nearest);
  file.palette = HPALETTE();
  ExpectPicture(file.pictures[0], Decode(file), 0);
}

TEST(GifDecoder, Should_GrowTheScreen_When_ThePictureDoesNotFit) {
  GifFile file = PlainGif(19, 7);
  for (const uint16_t side : {0, 5}) {
    file.screenWidth = file.screenHeight = side;
    const Raster raster = Decode(file);
    EXPECT_EQ(raster.Width(), 19);
    EXPECT_EQ(raster.Height(), 7);
    ExpectPicture(file.pictures[0], raster);
  }
  file.pictures[0].left = 3;
  EXPECT_EQ(Decode(file).Width(), 22);
}

TEST(GifDecoder, Should_GoByTheLastControl_When_ThereAreTwo) {
  GifFile file = PlainGif(9, 5, 3);
  for (const uint8_t hasTransparent : {1, 0}) {
    const auto control = GifExtension(0xF9, {hasTransparent, 10, 0, 2});
    file.extensions.insert(file.extensions.end(), control.begin(), control.end());
    EXPECT_EQ(Decode(file).transparentColor.has_value(), hasTransparent == 1);
  }
}

TEST(GifDecoder, Should_SkipExtensions_When_TheyComeFirst) {
  GifFile file = PlainGif(19, 7);
  for (const uint8_t function : {0xFE, 0xFF, 0x01, 0x77}) {
    const auto extension = GifExtension(function, std::vector<uint8_t>(600, 0x2C));
    file.extensions.insert(file.extensions.end(), extension.begin(), extension.end());
  }
  const auto empty = GifExtension(0xF9, {});
  file.extensions.insert(file.extensions.end(), empty.begin(), empty.end());
  ExpectPicture(file.pictures[0], Decode(file));
}

TEST(GifDecoder, Should_ReadTheOlderVersion) {
  const GifFile file = PlainGif(19, 7);
  std::vector<uint8_t> bytes = file.Bytes();
  bytes[4] = '7';
  ExpectPicture(file.pictures[0], DecodeGif(bytes));
}

TEST(GifDecoder, Frame_Should_BeIndexed) {
  const GifFile file = PlainGif(19, 7);
  TMemoryStream stream(file.Bytes());
  const ImagingFrame frame = DecodeFrame(stream);
  EXPECT_EQ(frame.format, GUID_WICPixelFormat8bppIndexed);
  EXPECT_FALSE(frame.isConverted);
  ExpectPicture(file.pictures[0], frame.rows);
}

}  // namespace
}  // namespace rasterkit::test
