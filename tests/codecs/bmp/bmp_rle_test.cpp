// Run-length codes of 4- and 8-bit files.

#include <gmock/gmock.h>

#include <rasterkit/runtime/errors.h>

#include "tests/codecs/bmp/bmp_test_support.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

BmpFile Rle8(int width, int height, std::vector<uint8_t> codes) {
  return {.width = width,
          .height = height,
          .bits = 8,
          .compression = 1,
          .colorsUsed = 2,
          .palette = {0x000000, 0xFFFFFF},
          .pixels = std::move(codes)};
}

BmpFile Rle4(int width, int height, std::vector<uint8_t> codes) {
  BmpFile file = Rle8(width, height, std::move(codes));
  file.bits = 4;
  file.compression = 2;
  return file;
}

TEST(BmpRle, Should_FillFromBottom_When_RunsFollowEachOther) {
  CodecReport report;
  const Raster raster = DecodeBytes(Rle8(3, 2, {3, 7, 0, 0, 1, 1, 2, 2, 0, 1}), &report);
  ASSERT_EQ(raster.Format(), pf8bit);
  EXPECT_THAT(Indexes(raster, 0), ElementsAre(1, 2, 2));
  EXPECT_THAT(Indexes(raster, 1), ElementsAre(7, 7, 7));
  EXPECT_TRUE(PaddingIsZero(raster));
  EXPECT_THAT(report.warnings, ElementsAre());
}

TEST(BmpRle, Should_FillFromTop_When_HeightIsNegative) {
  const Raster raster = DecodeBytes(Rle8(3, -2, {3, 7, 0, 0, 3, 1, 0, 1}));
  EXPECT_THAT(Indexes(raster, 0), ElementsAre(7, 7, 7));
  EXPECT_THAT(Indexes(raster, 1), ElementsAre(1, 1, 1));
}

TEST(BmpRle, Should_AlternateNibbles_When_RunIsRle4) {
  const Raster raster = DecodeBytes(Rle4(7, 1, {5, 0xAB, 2, 0xC1, 0, 1}));
  ASSERT_EQ(raster.Format(), pf4bit);
  EXPECT_THAT(Indexes(raster, 0), ElementsAre(10, 11, 10, 11, 10, 12, 1));
  EXPECT_TRUE(PaddingIsZero(raster));
}

TEST(BmpRle, Should_SkipFillByte_When_Rle8AbsoluteRunIsOdd) {
  const Raster raster = DecodeBytes(Rle8(5, 1, {0, 3, 9, 8, 7, 0xEE, 2, 4, 0, 1}));
  EXPECT_THAT(Indexes(raster, 0), ElementsAre(9, 8, 7, 4, 4));
}

TEST(BmpRle, Should_FillWords_When_Rle4AbsoluteRunHasAnyLength) {
  // 3 and 4 pixels take one word, 5 to 8 take two.
  EXPECT_THAT(Indexes(DecodeBytes(Rle4(4, 1, {0, 3, 0x12, 0x3F, 1, 0x90, 0, 1})), 0),
              ElementsAre(1, 2, 3, 9));
  EXPECT_THAT(Indexes(DecodeBytes(Rle4(5, 1, {0, 4, 0x12, 0x34, 1, 0x90, 0, 1})), 0),
              ElementsAre(1, 2, 3, 4, 9));
  EXPECT_THAT(Indexes(DecodeBytes(Rle4(6, 1, {0, 5, 0x12, 0x34, 0x5F, 0xEE, 1, 0x90, 0, 1})), 0),
              ElementsAre(1, 2, 3, 4, 5, 9));
}

TEST(BmpRle, Should_LeaveIndexZero_When_DeltaSkips) {
  CodecReport report;
  const Raster raster = DecodeBytes(Rle8(4, 3, {1, 5, 0, 2, 1, 2, 1, 6, 0, 1}), &report);
  EXPECT_THAT(Indexes(raster, 2), ElementsAre(5, 0, 0, 0));
  EXPECT_THAT(Indexes(raster, 1), ElementsAre(0, 0, 0, 0));
  EXPECT_THAT(Indexes(raster, 0), ElementsAre(0, 0, 6, 0));
  EXPECT_THAT(report.warnings, ElementsAre());
}

TEST(BmpRle, Should_Stop_When_DeltaLeadsPastTheEnd) {
  const Raster raster = DecodeBytes(Rle8(4, 3, {1, 5, 0, 2, 255, 255, 4, 6, 4, 6, 0, 1}));
  EXPECT_THAT(Indexes(raster, 2), ElementsAre(5, 0, 0, 0));
  EXPECT_THAT(Indexes(raster, 0), ElementsAre(0, 0, 0, 0));
}

TEST(BmpRle, Should_DropPixels_When_DeltaLeadsPastTheRow) {
  CodecReport report;
  const Raster raster = DecodeBytes(Rle8(4, 2, {0, 2, 255, 0, 3, 6, 0, 0, 4, 1, 0, 1}), &report);
  EXPECT_THAT(Indexes(raster, 1), ElementsAre(0, 0, 0, 0));
  EXPECT_THAT(Indexes(raster, 0), ElementsAre(1, 1, 1, 1));
  EXPECT_THAT(report.warnings, ElementsAre(HasSubstr("beyond the picture")));
}

TEST(BmpRle, Should_DropPixels_When_RunsAreLongerThanTheRow) {
  for (BmpFile file : {Rle8(4, 2, {255, 6, 0, 0, 0, 6, 1, 1, 1, 1, 1, 1, 0, 1}),
                       Rle4(4, 2, {255, 0x66, 0, 0, 0, 6, 0x11, 0x11, 0x11, 0, 0, 1})}) {
    CodecReport report;
    const Raster raster = DecodeBytes(file, &report);
    EXPECT_THAT(Indexes(raster, 1), ElementsAre(6, 6, 6, 6));
    EXPECT_THAT(Indexes(raster, 0), ElementsAre(1, 1, 1, 1));
    EXPECT_TRUE(PaddingIsZero(raster));
    EXPECT_THAT(report.warnings, ElementsAre(HasSubstr("beyond the picture")));
  }
}

TEST(BmpRle, Should_Stop_When_ThereAreMoreRowsThanThePicture) {
  const Raster raster = DecodeBytes(Rle8(2, 1, {2, 1, 0, 0, 2, 2, 0, 0, 2, 3, 0, 1}));
  EXPECT_THAT(Indexes(raster, 0), ElementsAre(1, 1));
}

TEST(BmpRle, Should_WarnAndKeepRows_When_DataEndEarly) {
  const std::vector<uint8_t> codes = {3, 1, 0, 0, 3, 2, 0, 0, 0, 2, 0, 0, 0, 3, 7, 7, 7, 0, 0, 1};
  const std::vector<uint8_t> whole = Rle8(3, 3, codes).Bytes();
  for (size_t cut = 0; cut < codes.size(); ++cut) {
    SCOPED_TRACE(cut);
    std::vector<uint8_t> bytes = whole;
    bytes.resize(bytes.size() - cut);
    CodecReport report;
    const Raster raster = DecodeBytes(bytes, &report);
    const int bottom = cut <= codes.size() - 2 ? 1 : 0;
    EXPECT_THAT(Indexes(raster, 2), ElementsAre(bottom, bottom, bottom));
    // The end code and the fill byte before it say nothing about pixels.
    if (cut <= 3) {
      EXPECT_THAT(report.warnings, ElementsAre());
    } else {
      EXPECT_THAT(report.warnings, ElementsAre(HasSubstr("of 3 rows are complete")));
    }
  }
}

TEST(BmpRle, Should_NotWarn_When_OnlyTheEndCodeIsMissing) {
  CodecReport report;
  DecodeBytes(Rle8(2, 2, {2, 1, 0, 0, 2, 1}), &report);
  EXPECT_THAT(report.warnings, ElementsAre());
}

TEST(BmpRle, Should_BeBlank_When_DataAreTheEndCodeAlone) {
  CodecReport report;
  const Raster raster = DecodeBytes(Rle8(300, 2, {0, 1}), &report);
  EXPECT_EQ(Indexes(raster, 0), std::vector<int>(300, 0));
  EXPECT_THAT(report.warnings, ElementsAre());
}

TEST(BmpRle, Should_Refuse_When_DepthDoesNotFitTheCode) {
  BmpFile file = Rle8(2, 1, {2, 1, 0, 1});
  file.bits = 4;
  EXPECT_THROW(DecodeBytes(file), FormatError);
  file.bits = 32;
  EXPECT_THROW(DecodeBytes(file), FormatError);
  file = Rle4(2, 1, {2, 1, 0, 1});
  file.bits = 8;
  EXPECT_THROW(DecodeBytes(file), FormatError);
}

}  // namespace
}  // namespace rasterkit::test
