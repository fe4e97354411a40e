// Color masks of 16-, 24- and 32-bit files.

#include <cmath>

#include <gmock/gmock.h>

#include <rasterkit/codecs/bmp/bmp_masks.h>
#include <rasterkit/runtime/errors.h>

#include "tests/codecs/bmp/bmp_test_support.h"

namespace rasterkit::test {
namespace {

BmpFile Masked(uint16_t bits, std::vector<uint32_t> masks, std::vector<uint8_t> pixels) {
  BmpFile file{
      .bits = bits, .compression = 3, .masks = std::move(masks), .pixels = std::move(pixels)};
  file.width = static_cast<int32_t>(file.pixels.size()) * 8 / bits;
  file.pixels.resize((file.pixels.size() + 3) / 4 * 4);
  if (file.masks.size() == 4) file.headerBytes = 56;
  return file;
}

TEST(BmpMasks, Should_Be15Bit_When_MasksAre555) {
  const Raster raster = DecodeBytes(Masked(16, {0x7C00, 0x3E0, 0x1F}, {0x34, 0x92}));
  ASSERT_EQ(raster.Format(), pf15bit);
  EXPECT_EQ(PixelAt(raster, 0, 0), 0x1234u);
}

TEST(BmpMasks, Should_Be16Bit_When_MasksAre565) {
  const Raster raster = DecodeBytes(Masked(16, {0xF800, 0x7E0, 0x1F}, {0x34, 0x92, 0xFF, 0xFF}));
  ASSERT_EQ(raster.Format(), pf16bit);
  EXPECT_EQ(PixelAt(raster, 0, 0), 0x9234u);
  EXPECT_EQ(PixelAt(raster, 1, 0), 0xFFFFu);
}

TEST(BmpMasks, Should_Be24Bit_When_16BitMasksAreOthers) {
  const Raster raster = DecodeBytes(Masked(16, {0xF00, 0x0F0, 0x00F}, {0x5A, 0x0F, 0x01, 0xF8}));
  ASSERT_EQ(raster.Format(), pf24bit);
  EXPECT_EQ(PixelAt(raster, 0, 0), 0xFF55AAu);
  EXPECT_EQ(PixelAt(raster, 1, 0), 0x880011u);
  EXPECT_TRUE(PaddingIsZero(raster));
}

TEST(BmpMasks, Should_HaveAlpha_When_16BitFileHasAnAlphaMask) {
  const Raster raster =
      DecodeBytes(Masked(16, {0x7C00, 0x3E0, 0x1F, 0x8000}, {0x00, 0x80, 0x1F, 0x7C}));
  ASSERT_EQ(raster.Format(), pf32bit);
  EXPECT_EQ(PixelAt(raster, 0, 0), 0xFF000000u);
  EXPECT_EQ(PixelAt(raster, 1, 0), 0x00FF00FFu);
  EXPECT_EQ(raster.alphaFormat, afDefined);
}

TEST(BmpMasks, Should_BeOpaque_When_AlphaIsZeroEverywhere) {
  for (const std::vector<uint32_t>& masks :
       {std::vector<uint32_t>{0xFF0000, 0xFF00, 0xFF, 0xFF000000},
        std::vector<uint32_t>{0xFF, 0xFF00, 0xFF0000, 0xFF000000}}) {
    const Raster raster = DecodeBytes(Masked(32, masks, {7, 7, 7, 0, 9, 9, 9, 0}));
    EXPECT_EQ(PixelAt(raster, 0, 0), 0xFF070707u);
    EXPECT_EQ(PixelAt(raster, 1, 0), 0xFF090909u);
    EXPECT_EQ(raster.alphaFormat, afIgnored);
  }
}

TEST(BmpMasks, Should_ReorderChannels_When_MasksAreReversed) {
  const Raster raster = DecodeBytes(Masked(32, {0xFF, 0xFF00, 0xFF0000, 0xFF000000}, {1, 2, 3, 4}));
  ASSERT_EQ(raster.Format(), pf32bit);
  EXPECT_EQ(PixelAt(raster, 0, 0), 0x04010203u);
  EXPECT_EQ(raster.alphaFormat, afDefined);
}

TEST(BmpMasks, Should_BeOpaque32Bit_When_WideMasksLeaveNoAlpha) {
  const Raster raster =
      DecodeBytes(Masked(32, {0xFFE00000, 0x1FFC00, 0x3FF}, {0xFF, 0x03, 0x00, 0x80}));
  ASSERT_EQ(raster.Format(), pf32bit);
  // Red 1024 of 2047, green 0, blue 1023 of 1023.
  EXPECT_EQ(PixelAt(raster, 0, 0), 0xFF8000FFu);
  EXPECT_EQ(raster.alphaFormat, afIgnored);
}

TEST(BmpMasks, Should_Read24Bit_When_MasksAreReversed) {
  const Raster raster = DecodeBytes(Masked(24, {0xFF, 0xFF00, 0xFF0000}, {1, 2, 3}));
  ASSERT_EQ(raster.Format(), pf24bit);
  EXPECT_EQ(PixelAt(raster, 0, 0), 0x010203u);
}

TEST(BmpMasks, Should_ReadAlphaBehindInfoHeader_When_CompressionIsAlphaBitFields) {
  BmpFile file{.bits = 32,
               .compression = 6,
               .masks = {0xFF0000, 0xFF00, 0xFF, 0xFF000000},
               .pixels = {1, 2, 3, 4}};
  const Raster raster = DecodeBytes(file);
  EXPECT_EQ(PixelAt(raster, 0, 0), 0x04030201u);
  EXPECT_EQ(raster.alphaFormat, afDefined);
}

TEST(BmpMasks, Should_BeZero_When_AChannelHasNoMask) {
  const Raster raster = DecodeBytes(Masked(16, {0xFF00, 0xFF, 0}, {0x12, 0x34}));
  EXPECT_EQ(PixelAt(raster, 0, 0), 0x341200u);
}

TEST(BmpMasks, Should_TakeSharedBits_When_MasksOverlap) {
  const Raster raster = DecodeBytes(Masked(16, {0xFF, 0xFF, 0xFF}, {0x77, 0x12}));
  EXPECT_EQ(PixelAt(raster, 0, 0), 0x777777u);
}

TEST(BmpMasks, Should_Refuse_When_AllMasksAreZero) {
  EXPECT_THROW(DecodeBytes(Masked(16, {0, 0, 0}, {1, 2})), FormatError);
  EXPECT_THROW(DecodeBytes(Masked(32, {0, 0, 0, 0xFF}, {1, 2, 3, 4})), FormatError);
}

TEST(BmpMasks, Should_Refuse_When_AMaskHasGaps) {
  EXPECT_THROW(DecodeBytes(Masked(16, {0xF0F0, 0xF00, 0xF}, {1, 2})), FormatError);
  EXPECT_THROW(DecodeBytes(Masked(32, {0x80000001, 0xFF00, 0xFF}, {1, 2, 3, 4})), FormatError);
}

TEST(BmpMasks, Should_Refuse_When_AMaskLiesBeyondThePixel) {
  EXPECT_THROW(DecodeBytes(Masked(16, {0x1F0000, 0x3E0, 0x1F}, {1, 2})), FormatError);
  EXPECT_THROW(DecodeBytes(Masked(24, {0xFF000000, 0xFF00, 0xFF}, {1, 2, 3})), FormatError);
}

TEST(BmpMasks, Should_Refuse_When_DataEndInsideTheMasks) {
  std::vector<uint8_t> bytes = Masked(16, {0x7C00, 0x3E0, 0x1F}, {1, 2}).Bytes();
  bytes.resize(14 + 40 + 11);
  EXPECT_THROW(DecodeBytes(bytes), FormatError);
}

TEST(BmpMasks, Should_Refuse_When_HeaderCannotHoldMasks) {
  BmpFile file{.headerBytes = 64, .bits = 16, .compression = 6, .pixels = {1, 2, 0, 0}};
  EXPECT_THROW(DecodeBytes(file), Error);
  file.headerBytes = 20;
  EXPECT_THROW(DecodeBytes(file), Error);
}

TEST(BmpMasks, Should_Refuse_When_PixelsAreIndexes) {
  BmpFile file{.bits = 8, .compression = 3, .masks = {0xFF, 0xFF, 0xFF}, .pixels = {1, 2, 0, 0}};
  EXPECT_THROW(DecodeBytes(file), FormatError);
}

TEST(BmpChannel, Should_RoundToNearest_When_AnyWidthIsScaled) {
  for (int width = 1; width <= 32; ++width) {
    const uint32_t highest = static_cast<uint32_t>((uint64_t{1} << width) - 1);
    for (const int shift : {0, 1, 32 - width}) {
      if (shift + width > 32) continue;
      const detail::BmpChannel channel(highest << shift, 32);
      const uint32_t step = width <= 16 ? 1 : highest / 4099;
      for (uint64_t value = 0; value <= highest; value += step) {
        // 80 bits hold product and quotient exactly enough: the distance to a half is at least 1 /
        // (2 * highest).
        const auto expected = std::lround(static_cast<long double>(value) * 255 / highest);
        const uint32_t pixel = static_cast<uint32_t>(value << shift) | ~(highest << shift);
        ASSERT_EQ(channel.Of(pixel), expected) << "width " << width << ", value " << value;
      }
      ASSERT_EQ(channel.Of(highest << shift), 255);
    }
  }
}

}  // namespace
}  // namespace rasterkit::test
