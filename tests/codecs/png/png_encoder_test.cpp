#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/png/png_decoder.h>
#include <rasterkit/codecs/png/png_encoder.h>
#include <rasterkit/raster/convert.h>
#include <rasterkit/runtime/errors.h>

#include "tests/codecs/png/png_files.h"
#include "tests/support/profiles.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

struct Size {
  int width, height;
};
constexpr Size kSizes[] = {{1, 1}, {2, 3}, {7, 5}, {8, 8}, {9, 1}, {15, 17}, {33, 2}, {67, 41}};

/// What a raster becomes by way of a file.
Raster Expected(const Raster& source) {
  if (source.Format() == pf15bit || source.Format() == pf16bit)
    return ConvertRaster(source, pf24bit);
  if (source.Format() == pf32bit && source.alphaFormat == afIgnored)
    return ConvertRaster(source, pf24bit);
  return source.Clone();
}

TEST(PngEncoder, Should_GiveTheSameRasterBack_When_ReadAgain) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  for (const Size size : kSizes) {
    for (const TPixelFormat format : kEveryFormat) {
      for (const TAlphaFormat alpha : {afIgnored, afDefined}) {
        Raster source = RandomRaster(format, size.width, size.height, random);
        source.alphaFormat = alpha;
        CodecReport report;
        const Raster decoded = DecodePng(Encoded(source), &report);
        EXPECT_TRUE(SamePixels(Expected(source), decoded))
            << format << " " << size.width << " x " << size.height;
        EXPECT_TRUE(PaddingIsZero(decoded));
        EXPECT_THAT(report.warnings, testing::IsEmpty());
        EXPECT_EQ(decoded.alphaFormat, format == pf32bit ? alpha : afIgnored);
        EXPECT_FALSE(decoded.resolution.IsKnown());
        EXPECT_EQ(decoded.profile, nullptr);
      }
    }
  }
}

TEST(PngEncoder, Should_GiveTheSamePixels_When_AnyLevelIsTaken) {
  const Raster source = GradientRaster(pf24bit, 61, 43);
  for (int level = -1; level <= 12; level++)
    EXPECT_TRUE(SamePixels(source, DecodePng(Encoded(source, level))));
  EXPECT_GT(Encoded(source, 0).size(), Encoded(source, 9).size());
}

uint8_t ColorTypeOf(const ByteList& file) {
  return file[25];
}

TEST(PngEncoder, Should_WriteGray_When_ThePaletteIsTheFullRamp) {
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit}) {
    Raster source = GradientRaster(format, 21, 9);
    source.palette = GrayPalette(1 << StoredBitsPerPixel(format));
    const ByteList file = Encoded(source);
    EXPECT_EQ(ColorTypeOf(file), 0);
    EXPECT_TRUE(SamePixels(source, DecodePng(file)));
  }
  Raster inverted = GradientRaster(pf1bit, 21, 9);
  const tagPALETTEENTRY entries[] = {{255, 255, 255, 0}, {0, 0, 0, 0}};
  inverted.palette = HPALETTE(entries);
  EXPECT_EQ(ColorTypeOf(Encoded(inverted)), 3);
  EXPECT_TRUE(SamePixels(inverted, DecodePng(Encoded(inverted))));
}

TEST(PngEncoder, Should_KeepTheNumberOfEntries_When_ThePaletteIsShort) {
  std::mt19937 random(7);
  for (const int count : {1, 2, 3, 5, 16, 100, 255}) {
    Raster source(pf8bit, 13, 7);
    source.palette = RandomPalette(count, random);
    for (int y = 0; y < 7; y++) {
      for (int x = 0; x < 13; x++) source.Row(y)[x] = static_cast<uint8_t>((x + y) % count);
    }
    source.ClearPadding();
    const Raster decoded = DecodePng(Encoded(source));
    EXPECT_EQ(decoded.palette.Count(), count);
    EXPECT_TRUE(SamePixels(source, decoded));
  }
}

TEST(PngEncoder, Should_AppendBlackEntries_When_PixelsPointBeyondThePalette) {
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit}) {
    Raster source = GradientRaster(format, 300, 2);
    const tagPALETTEENTRY entry[] = {{200, 100, 50, 0}};
    source.palette = HPALETTE(entry);
    CodecReport report;
    const Raster decoded = DecodePng(Encoded(source), &report);
    EXPECT_TRUE(SameColors(source, decoded));
    EXPECT_THAT(report.warnings, testing::IsEmpty());
    EXPECT_GT(decoded.palette.Count(), 1);
    source.palette = HPALETTE();
    EXPECT_TRUE(SameColors(source, DecodePng(Encoded(source))));
  }
}

TEST(PngEncoder, Should_DropEntriesBeyondTheDepth_When_ThePaletteIsTooLong) {
  std::mt19937 random(8);
  Raster source = GradientRaster(pf4bit, 21, 3);
  source.palette = RandomPalette(100, random);
  const Raster decoded = DecodePng(Encoded(source));
  EXPECT_EQ(decoded.palette.Count(), 16);
  EXPECT_TRUE(SameColors(source, decoded));
}

TEST(PngEncoder, Should_KeepTheTransparentColor_When_TheFileCanHoldIt) {
  std::mt19937 random(9);
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit}) {
    Raster source = RandomRaster(format, 21, 9, random);
    source.transparentColor = EntryColor(source.palette.Entry(1));
    EXPECT_EQ(DecodePng(Encoded(source)).transparentColor, source.transparentColor);
    source.palette = GrayPalette(1 << StoredBitsPerPixel(format));
    source.transparentColor = EntryColor(source.palette.Entry(1));
    EXPECT_EQ(DecodePng(Encoded(source)).transparentColor, source.transparentColor);
    source.transparentColor = RGB(1, 2, 3);  // no entry has it
    EXPECT_EQ(DecodePng(Encoded(source)).transparentColor, std::nullopt);
  }
  for (const TPixelFormat format : {pf15bit, pf16bit, pf24bit, pf32bit}) {
    Raster source = RandomRaster(format, 21, 9, random);
    source.alphaFormat = afIgnored;
    source.transparentColor = RGB(12, 34, 56);
    EXPECT_EQ(DecodePng(Encoded(source)).transparentColor, RGB(12, 34, 56));
    source.transparentColor = static_cast<TColor>(0x80000005u);  // one of the host's colors
    EXPECT_EQ(DecodePng(Encoded(source)).transparentColor, std::nullopt);
  }
  Raster alpha = RandomRaster(pf32bit, 21, 9, random);
  alpha.alphaFormat = afDefined;
  alpha.transparentColor = RGB(12, 34, 56);
  EXPECT_EQ(DecodePng(Encoded(alpha)).transparentColor, clWhite);
}

TEST(PngEncoder, Should_MakeEveryEntryOfTheColorTransparent_When_SeveralHaveIt) {
  Raster source = GradientRaster(pf4bit, 21, 9);
  const tagPALETTEENTRY entries[] = {{1, 1, 1, 0}, {9, 8, 7, 0}, {2, 2, 2, 0}, {9, 8, 7, 0}};
  source.palette = HPALETTE(entries);
  source.transparentColor = RGB(9, 8, 7);
  const ByteList file = Encoded(source);
  const ByteList chunk = PngChunk("tRNS", {255, 0, 255, 0});
  EXPECT_NE(std::search(file.begin(), file.end(), chunk.begin(), chunk.end()), file.end());
}

TEST(PngEncoder, Should_KeepResolutionAndProfile_When_Written) {
  Raster source = GradientRaster(pf24bit, 9, 5);
  source.resolution = {300, 72};
  source.profile = RgbProfile();
  CodecReport report;
  const Raster decoded = DecodePng(Encoded(source), &report);
  EXPECT_NEAR(decoded.resolution.x, 300, 0.013);
  EXPECT_NEAR(decoded.resolution.y, 72, 0.013);
  ASSERT_NE(decoded.profile, nullptr);
  EXPECT_EQ(*decoded.profile, *source.profile);
  // A value that was rounded once to whole dots per meter stays.
  EXPECT_EQ(DecodePng(Encoded(decoded)).resolution, decoded.resolution);

  Raster gray = GrayRaster(9, 5);
  gray.profile = GrayProfile();
  ASSERT_NE(DecodePng(Encoded(gray)).profile, nullptr);
  gray.profile = RgbProfile();
  EXPECT_EQ(DecodePng(Encoded(gray)).profile, nullptr);
}

TEST(PngEncoder, Should_WriteThePicture_When_TheProfileIsBroken) {
  std::vector<uint8_t> bytes = *RgbProfile();
  for (size_t i = 0; i < bytes.size(); i += i < 160 && i != 15 && i != 35 ? 1 : 3) {
    auto broken = bytes;
    broken[i] ^= 0x55;
    Raster source = GradientRaster(pf24bit, 9, 5);
    source.profile = std::make_shared<const std::vector<uint8_t>>(broken);
    EXPECT_TRUE(SamePixels(source, DecodePng(Encoded(source)))) << i;
  }
}

TEST(PngEncoder, Should_WriteFromThePosition_When_TheStreamHoldsSomething) {
  TMemoryStream stream;
  const uint8_t before[] = {1, 2, 3};
  stream.Write(before);
  const Raster source = GradientRaster(pf24bit, 9, 5);
  EncodePng(source, stream);
  EXPECT_EQ(stream.Position(), stream.Size());
  EXPECT_TRUE(SamePixels(source, DecodePng(stream.Bytes().subspan(3))));
}

class FullStream : public TMemoryStream {
 public:
  void Write(std::span<const uint8_t> source) override {
    if (Size() + source.size() > 100) throw FileError("the disk is full");
    TMemoryStream::Write(source);
  }
};

TEST(PngEncoder, Should_PassTheStreamsError_When_ItTakesNoMore) {
  FullStream stream;
  EXPECT_THROW(EncodePng(GradientRaster(pf24bit, 90, 50), stream), FileError);
}

TEST(PngEncoder, Should_Refuse_When_ThePictureIsEmpty) {
  TMemoryStream stream;
  EXPECT_THROW(EncodePng(Raster(pf24bit, 0, 5), stream), FormatError);
  EXPECT_THROW(EncodePng(Raster(pf1bit, 5, 0), stream), FormatError);
}

}  // namespace
}  // namespace rasterkit::test
